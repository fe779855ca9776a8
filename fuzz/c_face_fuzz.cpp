// Any calls of the C face in any order, on several handles of all components at once: never a crash, a hang
// or a leak, and handles that must agree do.
//
// An input is text, a call a line. Its first character says which handle (O and o for output, A and a for
// alert, B and b for backtest, V for validation, S for a script), the second which call (or script), and the
// arguments follow:
//   S0SET A = SMA(CLOSE, 3)
//   OA20,9        twenty bars of shape 9 for the incremental way of the first output
//   Op0           the script is prepared there
//   OR0,0,A       and run

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "alert_player.hpp"
#include "backtest_player.hpp"
#include "output_player.hpp"
#include "scripts.hpp"
#include "validate_player.hpp"

namespace brindlewort::fuzz {

namespace {

/// Enough for a story, few enough for many a second.
constexpr int kMostLines = 24;

/// All handles of a play; each is made when it is first spoken of.
class Stage {
 public:
  void play(std::string_view line) {
    if (line.size() < 2) return;
    const std::string_view rest = line.substr(2);
    switch (line[0]) {
      case 'S':
        return scripts_.set(static_cast<std::size_t>(line[1] - '0'), rest);
      case 'O':
      case 'o':
        return on(outputs_[line[0] == 'o'], line[1], rest);
      case 'A':
      case 'a':
        return on(alerts_[line[0] == 'a'], line[1], rest);
      case 'B':
      case 'b':
        return on(backtests_[line[0] == 'b'], line[1], rest);
      case 'V':
        return on(validator_, line[1], rest);
      default:
        return;
    }
  }

  void compare() {
    for (auto& player : outputs_) {
      if (player) player->compare();
    }
    for (auto& player : alerts_) {
      if (player) player->compare();
    }
  }

 private:
  template <class Player>
  void on(std::optional<Player>& player, char letter, std::string_view rest) {
    if (!player) player.emplace(scripts_);
    player->play(letter, Line(rest));
  }

  Scripts scripts_;
  std::optional<OutputPlayer> outputs_[2];
  std::optional<AlertPlayer> alerts_[2];
  std::optional<BacktestPlayer> backtests_[2];
  std::optional<ValidatePlayer> validator_;
};

}  // namespace

}  // namespace brindlewort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brindlewort::fuzz;
  std::string_view left(reinterpret_cast<const char*>(data), size);
  Stage stage;
  for (int i = 0; i < kMostLines && !left.empty(); ++i) {
    const std::size_t end = std::min(left.find('\n'), left.size());
    stage.play(left.substr(0, end));
    left.remove_prefix(std::min(end + 1, left.size()));
  }
  stage.compare();
  return 0;
}

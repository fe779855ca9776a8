// Changes inputs as what they are: lines that call, and scripts in them. libFuzzer's own changes of bytes
// come in between.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "alert_player.hpp"
#include "backtest_player.hpp"
#include "output_player.hpp"
#include "random.hpp"
#include "script_writer.hpp"
#include "validate_player.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace brindlewort::fuzz {

namespace {

using Lines = std::vector<std::string>;

template <class Player>
CallForm anyCall(Random& random) {
  const auto& call = random.of(Player::calls());
  return {call.letter, call.arguments};
}

std::string text(std::size_t number) {
  return std::to_string(number);
}

/// Writes lines of an input.
class LineWriter {
 public:
  explicit LineWriter(Random& random) : random_(random), scripts_(random) {}

  std::string scriptLine() { return "S" + text(random_.below(Scripts::kCount)) + scripts_.script(); }

  std::string anyLine() {
    if (random_.oneIn(4)) return scriptLine();
    // A validation makes thousands of bars up: it is dear.
    if (random_.oneIn(24)) return line('V', anyCall<ValidatePlayer>(random_));
    switch (random_.below(8)) {
      case 0:
      case 1:
        return line(random_.oneIn(3) ? 'b' : 'B', anyCall<BacktestPlayer>(random_));
      case 2:
      case 3:
        return line(random_.oneIn(3) ? 'a' : 'A', anyCall<AlertPlayer>(random_));
      default:
        return line(random_.oneIn(3) ? 'o' : 'O', anyCall<OutputPlayer>(random_));
    }
  }

  /// What a host does from the start to a first result.
  void scene(Lines& lines) {
    static constexpr std::string_view kScenes[][5] = {
        {"Ob$n,$h", "Or$s,0,$v", "", "", ""},          {"Oi0", "Op$s", "OA$n,$h", "OR$s,0,$v", "OA0,$h"},
        {"oi0", "oA$n,$h", "op$s", "oP$s,0,$v", ""},   {"As$s", "Ab$n,$h", "Aa0,$h", "", ""},
        {"Ai0", "Ap$s", "As$s", "AA$n,$h", ""},        {"Bb$n,$h", "Br$s,$s,$s,$s,0,$p", "", "", ""},
        {"Bb$n,$h", "BR$s,$s,$s,$s,0,$p", "", "", ""},
    };
    lines.push_back(scriptLine());
    if (random_.oneIn(30)) lines.push_back(filled("Vv$s,$m"));
    for (std::string_view form : random_.of(kScenes)) {
      if (!form.empty()) lines.push_back(filled(form));
    }
  }

  /// Another script by a small step: a word, a number, an expression put in or taken out.
  std::string changedScript(const std::string& line) {
    std::string changed = line;
    const std::size_t from = 2 + random_.below(changed.size() - 1);
    const std::size_t length = std::min(random_.below(8), changed.size() - from);
    switch (random_.below(6)) {
      case 0:
        return changed.replace(from, length, scripts_.word());
      case 1:
        return changed.replace(from, length, scripts_.number());
      case 2:
        return changed.replace(from, length, scripts_.expression(1));
      case 3:
        return changed.replace(from, length, scripts_.call(1));
      case 4:
        return changed + "\r" + scripts_.expression(1);
      default:
        return changed.erase(from, length);
    }
  }

 private:
  std::string line(char handle, const CallForm& form) {
    std::string written = {handle, form.letter};
    for (std::size_t i = 0; i < form.arguments.size(); ++i) {
      if (i > 0) written += ',';
      written += argument(form.arguments[i]);
    }
    return written;
  }

  std::string filled(std::string_view form) {
    std::string written;
    for (std::size_t i = 0; i < form.size(); ++i) {
      if (form[i] == '$') {
        written += argument(form[++i]);
      } else {
        written += form[i];
      }
    }
    return written;
  }

  std::string argument(char kind) {
    static constexpr std::string_view kSets[] = {
        "", "", "A", "A,B", "C", "FED", "CLOSE", "SMA(CLOSE, 3)", "\"A\",B", ","};
    static constexpr std::string_view kLimits[] = {"",
                                                   "a=0;b=0;c=0;d=0;",
                                                   "a=1;b=1;c=1;d=3;",
                                                   "StopLoss=2;Trailing=1;Target=3;Days=0;",
                                                   "a=5;b=0;c=2;d=1;",
                                                   "a=;b;c==;d=x;"};
    static constexpr std::string_view kWholes[] = {"0",   "1",   "2",    "11", "22", "20", "-987654321",
                                                   "101", "102", "1999", "-1", "m",  "r"};
    switch (kind) {
      case 'n':
        return text(random_.below(random_.oneIn(2) ? 4 : random_.oneIn(4) ? 40 : 14));
      case 'h':
        return random_.oneIn(4) ? text(random_.below(1000)) : text(random_.below(10));
      case 'k':
        return random_.oneIn(6) ? letter() : text(random_.below(24));
      case 's':
        return text(random_.below(Scripts::kCount));
      case 'm':
        return text(random_.below(5)).insert(0, random_.oneIn(5) ? "-" : "");
      case 'i':
        return random_.oneIn(2) ? text(random_.below(40)) : std::string(random_.of(kWholes));
      case 'd':
        return random_.oneIn(3) ? letter() : scripts_.number();
      case 'p':
        return std::string(random_.of(kLimits));
      default:
        return std::string(random_.of(kSets));
    }
  }

  std::string letter() { return std::string(1, static_cast<char>('a' + random_.below(26))); }

  Random& random_;
  ScriptWriter scripts_;
};

Lines split(std::string_view input) {
  Lines lines;
  while (!input.empty()) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    lines.emplace_back(input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
  }
  return lines;
}

std::string join(const Lines& lines) {
  std::string input;
  for (const std::string& line : lines) input.append(line).push_back('\n');
  return input;
}

void changeOneLine(Lines& lines, Random& random) {
  LineWriter writer(random);
  const std::size_t at = random.below(lines.size());
  const auto place = lines.begin() + static_cast<std::ptrdiff_t>(at);
  switch (lines.empty() ? 0 : random.below(9)) {
    case 0:
      return writer.scene(lines);
    case 1:
      *place = writer.anyLine();
      return;
    case 2:
      lines.erase(place);
      return;
    case 3: {
      const std::string copy = *place;
      lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(random.below(lines.size() + 1)), copy);
      return;
    }
    case 4:
      std::swap(*place, lines[random.below(lines.size())]);
      return;
    case 5:
    case 6: {
      const auto script = std::find_if(
          place, lines.end(), [](const std::string& line) { return line.size() > 2 && line[0] == 'S'; });
      if (script == lines.end()) {
        lines.insert(lines.begin(), writer.scriptLine());
      } else {
        *script = random.oneIn(3) ? writer.scriptLine() : writer.changedScript(*script);
      }
      return;
    }
    default:
      lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(random.below(lines.size() + 1)),
                   writer.anyLine());
      return;
  }
}

}  // namespace

}  // namespace brindlewort::fuzz

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
  using namespace brindlewort::fuzz;
  Random random(seed);
  if (size > 0 && random.oneIn(4)) return LLVMFuzzerMutate(data, size, maxSize);
  Lines lines = split({reinterpret_cast<const char*>(data), size});
  const std::size_t changes = 1 + random.below(3);
  for (std::size_t i = 0; i < changes; ++i) changeOneLine(lines, random);
  const std::string input = join(lines);
  const std::size_t length = std::min(input.size(), maxSize);
  std::memcpy(data, input.data(), length);
  return length;
}

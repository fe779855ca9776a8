#include "validate_player.hpp"

#include <string>

namespace brindlewort::fuzz {

namespace {

std::string help(bw_validate* h) {
  char* text = nullptr;
  require(bw_validate_get_script_help(h, &text) == 0 && text, "validate: help is given");
  const std::string page = text;
  bw_free(text);
  return page;
}

}  // namespace

ValidatePlayer::ValidatePlayer(const Scripts& scripts) : scripts_(scripts), handle_(bw_validate_create()) {
  require(handle_ != nullptr, "a handle can be made");
}

std::span<const Call<ValidatePlayer>> ValidatePlayer::calls() {
  using P = ValidatePlayer;
  static constexpr Call<P> kCalls[] = {
      {'v', "si", &P::validate}, {'c', "i", &P::constant}, {'z', "", &P::refusals}};
  return kCalls;
}

void ValidatePlayer::play(char letter, Line line) {
  playCall(*this, calls(), letter, line);
}

/// A script that is refused for its text alone is never run, and the manual page of the run before stays.
void ValidatePlayer::validate(Line& line) {
  if (++validations_ > 2) return;
  const std::string& script = scripts_.of(line);
  const int32_t version = line.integer();
  const auto answer = [&](bw_validate* h) {
    Transcript t;
    char* text = nullptr;
    t.integer(bw_validate_validate(h, script.c_str(), version, &text));
    t.takeText(text);
    return t.str();
  };
  const std::string before = help(handle_.get());
  const std::string played = answer(handle_.get());
  if (validations_ == 1) return;
  const ValidateHandle fresh(bw_validate_create());
  requireSame(played, answer(fresh.get()), "validate: the answer to a script is that of a fresh handle");
  const std::string page = help(handle_.get()), freshPage = help(fresh.get());
  if (freshPage.empty() && page == before) return;
  requireSame(page, freshPage, "validate: the page is that of a fresh handle");
}

void ValidatePlayer::constant(Line& line) {
  static constexpr const char* kNames[] = {"EXCHANGE", "sector", "INDUSTRY", "SYMBOL", "NONE", nullptr};
  char* text = nullptr;
  require(bw_validate_get_constant(handle_.get(), kNames[line.choice(std::size(kNames))], &text) == 0 && text,
          "validate: a constant is told");
  bw_free(text);
}

void ValidatePlayer::refusals(Line&) {
  bw_validate* h = handle_.get();
  char* text = nullptr;
  const bool refused = bw_validate_validate(nullptr, "CLOSE > 1", 1, &text) == -1 &&
                       bw_validate_validate(h, "CLOSE > 1", 1, nullptr) == -1 &&
                       bw_validate_get_constant(h, "SYMBOL", nullptr) == -1 &&
                       bw_validate_get_script_help(h, nullptr) == -1;
  require(refused, "validate: null is refused");
}

}  // namespace brindlewort::fuzz

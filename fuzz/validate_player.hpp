#pragma once

#include <memory>
#include <span>

#include "player.hpp"
#include "scripts.hpp"
#include "transcript.hpp"

namespace brindlewort::fuzz {

struct ValidateCloser {
  void operator()(bw_validate* h) const { bw_validate_destroy(h); }
};
using ValidateHandle = std::unique_ptr<bw_validate, ValidateCloser>;

/// Plays calls on a handle of bw_validate; its answer to a script is that of a fresh one. Only the first two
/// validations of a handle are made: each runs the script over thousands of made-up bars.
class ValidatePlayer {
 public:
  explicit ValidatePlayer(const Scripts& scripts);
  ValidatePlayer(const ValidatePlayer&) = delete;
  ValidatePlayer& operator=(const ValidatePlayer&) = delete;

  static std::span<const Call<ValidatePlayer>> calls();
  void play(char letter, Line line);

 private:
  void validate(Line& line);
  void constant(Line& line);
  void refusals(Line& line);

  const Scripts& scripts_;
  ValidateHandle handle_;
  int validations_ = 0;
};

}  // namespace brindlewort::fuzz

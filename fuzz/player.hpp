#pragma once

#include <span>
#include <string_view>

#include "line.hpp"

namespace brindlewort::fuzz {

/// A call that a line can ask for: its letter, and what its arguments are, a letter each:
///   n count of bars    h shape of bars   k bar or date    s script      m first bar to report
///   i whole number     d any number      v name or sets   p limits of a backtest
template <class Player>
struct Call {
  char letter;
  std::string_view arguments;
  void (Player::*play)(Line&);
};

/// Letters and arguments of a component's calls, for whoever writes lines.
struct CallForm {
  char letter;
  std::string_view arguments;
};

template <class Player>
void playCall(Player& player, std::span<const Call<Player>> calls, char letter, Line line) {
  for (const Call<Player>& call : calls) {
    if (call.letter == letter) return (player.*call.play)(line);
  }
}

}  // namespace brindlewort::fuzz

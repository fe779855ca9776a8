#pragma once

#include <string_view>

/// The pieces that both ways of evaluation read scripts by.
namespace brindlewort::scanner {

/// Characters that end an operand.
bool endsOperand(char c);

/// The text between the bracket at `open` and its match, or all the text behind it when it has none.
/// `behind` becomes the position behind the closing bracket.
std::string_view bracketed(std::string_view text, std::size_t open, std::size_t& behind);

/// Walks the arguments of a call: pieces between commas outside brackets, trimmed. The last one runs to
/// the end of the text.
class ArgumentReader {
 public:
  explicit ArgumentReader(std::string_view text) : rest_(text) {}
  /// False when there is no further argument.
  bool next(std::string_view& argument);

 private:
  std::string_view rest_;
  bool done_ = false;
};

/// "SET name = text" taken apart. A text that begins with these three letters loses four characters in any
/// case; without a "=" it is no SET statement all the same.
struct Statement {
  bool isSet;
  std::string_view name;
  std::string_view text;
};
Statement splitStatement(std::string_view text);

/// Operators that both ways know, or those of the incremental way too: "&& ", "|| ", "|" and a lone "!".
enum class Dialect { kPlain, kIncremental };

/// Walks an expression from operand to operand. An operator stays until the next one replaces it.
class OperandScanner {
 public:
  OperandScanner(std::string_view text, Dialect dialect) : text_(text), dialect_(dialect) {}
  /// Goes on to the next operand: false when none follows.
  bool next();
  /// The operator in front of the operand, by the spelling of its handler; empty when there is none.
  std::string_view op() const { return op_; }
  /// Where the operand begins; its reader moves it behind the operand.
  std::size_t position = 0;
  /// The text begins with the operand, or with a word that is an operator and touches it.
  bool inFirstRound() const { return rounds_ == 1; }

 private:
  bool readSign(char c);

  std::string_view text_;
  Dialect dialect_;
  std::string_view op_;
  int rounds_ = 0;
};

}  // namespace brindlewort::scanner

#include "engine/scanner.hpp"

#include <algorithm>

#include "series/text.hpp"

namespace brindlewort::scanner {

bool endsOperand(char c) {
  static constexpr std::string_view kEnds = "&+-/\\*^ ><=";
  return kEnds.find(c) != std::string_view::npos;
}

std::string_view bracketed(std::string_view text, std::size_t open, std::size_t& behind) {
  int depth = 0;
  for (std::size_t i = open; i < text.size(); ++i) {
    if (text[i] == '(') ++depth;
    if (text[i] == ')' && --depth == 0) {
      behind = i + 1;
      return text.substr(open + 1, i - open - 1);
    }
  }
  behind = text.size();
  return text.substr(open + 1);
}

bool ArgumentReader::next(std::string_view& argument) {
  if (done_) return false;
  int depth = 0;
  for (std::size_t i = 0; i < rest_.size(); ++i) {
    if (rest_[i] == '(') ++depth;
    if (rest_[i] == ')') --depth;
    if (rest_[i] == ',' && depth == 0) {
      argument = trim(rest_.substr(0, i));
      rest_.remove_prefix(i + 1);
      return true;
    }
  }
  argument = trim(rest_);
  done_ = true;
  return true;
}

Statement splitStatement(std::string_view text) {
  if (!text.starts_with("SET")) return {false, {}, text};
  text = trim(text.substr(std::min<std::size_t>(4, text.size())));
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return {false, {}, text};
  return {true, trim(text.substr(0, equals)), trim(text.substr(equals + 1))};
}

namespace {

/// Operators of three characters and the spelling of their handler; "IMP" has none.
struct WordOperator {
  std::string_view text;
  std::string_view handler;
  Dialect since = Dialect::kPlain;
};
constexpr WordOperator kWords[] = {{"NOT", "NOT"},
                                   {"OR ", "OR "},
                                   {"AND", "AND"},
                                   {"XOR", "XOR"},
                                   {"EQV", "EQV"},
                                   {"IMP", "IMP"},
                                   {"&& ", "AND", Dialect::kIncremental},
                                   {"|| ", "OR ", Dialect::kIncremental}};

bool isOneOf(char c, std::string_view characters) {
  return characters.find(c) != std::string_view::npos;
}

}  // namespace

bool OperandScanner::next() {
  while (position < text_.size()) {
    ++rounds_;
    for (const WordOperator& word : kWords) {
      if (word.since > dialect_ || text_.substr(position, 3) != word.text) continue;
      op_ = word.handler;
      position += 3;
      break;
    }
    if (position >= text_.size()) return false;  // the operator was the last word
    if (!readSign(text_[position])) return true;
  }
  return false;
}

/// Reads a blank or an operator that is a sign; false when an operand stands here.
bool OperandScanner::readSign(char c) {
  if (c == ' ') {
    ++position;
  } else if (isOneOf(c, "&+-*/\\^") || (c == '|' && dialect_ == Dialect::kIncremental)) {
    op_ = text_.substr(position++, 1);
  } else if (isOneOf(c, "><=!")) {
    const bool two = position + 1 < text_.size() && isOneOf(text_[position + 1], "><=");
    op_ = text_.substr(position, two ? 2 : 1);
    position += op_.size();
    if (op_ == "!" && dialect_ == Dialect::kIncremental) op_ = "NOT";
  } else {
    return false;
  }
  return true;
}

}  // namespace brindlewort::scanner

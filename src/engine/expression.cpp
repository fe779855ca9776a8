#include "engine/expression.hpp"

#include "engine/scanner.hpp"
#include "series/numbers.hpp"
#include "series/text.hpp"

namespace brindlewort {

using namespace scanner;

namespace {

/// Bare words that functions know by themselves, where they are no variables: a moving average type that is
/// also a function, and the source that stands for both the high and the low.
bool isBareWord(std::string_view argument) {
  return argument == "VIDYA" || argument == "HIGHLOW";
}

std::unique_ptr<CallSite> readCall(std::string_view name, std::string_view inner) {
  auto call = std::make_unique<CallSite>();
  call->name = name;
  call->innerText = inner;
  call->function = findFunction(name, Path::kIncremental);
  ArgumentReader reader(inner);
  for (std::string_view argument; reader.next(argument) && !argument.empty();) {
    call->arguments.push_back({argument, nullptr, isBareWord(argument)});
  }
  return call;
}

/// Reads one operand; `position` moves behind it.
Term readTerm(std::string_view text, std::size_t& position) {
  const std::size_t start = position;
  while (position < text.size() && text[position] != '(' && !endsOperand(text[position])) ++position;
  const std::string_view token = text.substr(start, position - start);
  Term term;
  if (position < text.size() && text[position] == '(') {
    const std::string_view inner = bracketed(text, position, position);
    term.kind = token.empty() ? Term::Kind::kGroup : Term::Kind::kCall;
    term.text = inner;
    if (!token.empty()) term.call = readCall(trim(token), inner);
  } else if (IsNumberText(token) && !token.empty()) {
    term.kind = Term::Kind::kNumber;
    term.number = parseDouble(token);
  } else if (!token.empty() && token != "IF") {
    term.kind = Term::Kind::kName;
    term.text = token;
  }
  return term;
}

}  // namespace

Expression& ExpressionTable::of(std::string_view text) {
  if (const auto at = expressions_.find(text); at != expressions_.end()) return *at->second;
  return ofPiece(texts_.emplace_back(text));
}

Expression& ExpressionTable::ofPiece(std::string_view text) {
  auto& expression = expressions_[text];
  if (!expression) {
    expression = std::make_unique<Expression>();
    expression->text = text;
  }
  return *expression;
}

void ExpressionTable::forgetRows() {
  for (auto& [text, expression] : expressions_) {
    expression->valid = false;
    expression->variableRows = 0;
  }
}

void scanExpression(Expression& expression) {
  expression.scanned = true;
  const Statement statement = splitStatement(trim(expression.text));
  expression.isSet = statement.isSet;
  expression.setName = statement.name;
  const std::string_view text = statement.text;
  OperandScanner scanner(text, Dialect::kIncremental);
  while (scanner.next()) {
    Step step;
    if (scanner.op() == "&") {
      step.kind = Step::Kind::kTakeValue;
    } else if (!scanner.op().empty()) {
      step.kind = Step::Kind::kApply;
      step.op = findOperator(scanner.op());
      if (!step.op) return;
    }
    if (expression.steps.empty()) expression.opensWithOperand = scanner.inFirstRound();
    step.term = readTerm(text, scanner.position);
    expression.steps.push_back(std::move(step));
  }
}

}  // namespace brindlewort

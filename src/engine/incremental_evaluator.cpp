// The evaluator of the incremental way: expressions are scanned once and evaluated anew at every run, each
// into an entry of its own, which keeps its rows from run to run.

#include <algorithm>
#include <array>

#include "engine/depth_guard.hpp"
#include "engine/expression.hpp"
#include "engine/fold.hpp"
#include "functions/script_engine.hpp"
#include "platform/run_watch.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

/// What an evaluation counts for, beside what its calls do: the clock is read once in 64 evaluations.
constexpr std::int64_t kStepsOfEvaluation = std::int64_t{1} << 14;

bool isPriceName(std::string_view text) {
  static constexpr std::array<std::string_view, 5> kNames = {"OPEN", "HIGH", "LOW", "CLOSE", "VOLUME"};
  return std::find(kNames.begin(), kNames.end(), text) != kNames.end();
}

const StoreEntry& nothing() {
  static const StoreEntry entry;
  return entry;
}

}  // namespace

Expression& CScriptEngine::expressionOf(std::string_view text) {
  if (!expressions_) expressions_ = std::make_unique<ExpressionTable>();
  return expressions_->of(text);
}

/// The entry of an expression, found or made. An entry made for a text is no name that a script may use.
StoreEntry* CScriptEngine::entryOf(Expression& expression) {
  if (expression.shape == variables.shape() && expression.pattern == candlePattern) return expression.entry;
  std::string key = MakeKey(expression.text, "");
  NormalizeKey(key);
  const bool isNumber = IsNumberText(expression.text);
  StoreEntry* entry = variables.get(key);
  expression.isDirect = isNumber || (entry && isPriceName(expression.text));
  if (!entry) {
    entry = constants.get(key);
    expression.isDirect = expression.isDirect || entry;
  }
  if (!entry) {
    entry = AddStoreEntry(key);
    if (!entry) return nullptr;
    entry->madeForText = !entry->isConstant;
  }
  if (entry != expression.entry) expression.valid = false;
  expression.entry = entry;
  expression.shape = variables.shape();
  expression.pattern = candlePattern;
  return entry;
}

/// True for a text that is nothing but the name of its own entry, as a variable's name in an argument or a
/// bracket is: there is nothing to compute.
bool CScriptEngine::isItsOwnName(Expression& expression) {
  if (expression.steps.size() != 1 || !errorText.empty()) return false;
  Term& term = expression.steps[0].term;
  if (term.kind != Term::Kind::kName || term.text == "DATE") return false;
  return !expression.isSet && expression.entry == variableOf(term) && !expression.entry->values.empty();
}

/// What the name of a term means.
const StoreEntry* CScriptEngine::variableOf(Term& term) {
  if (term.namedShape != variables.shape()) {
    term.named = lookupFast(term.text);
    term.namedShape = term.named ? variables.shape() : 0;
  }
  return term.named;
}

/// True when an evaluation would change nothing. The second one in a run may still change the last row, since
/// a resumed operation forms it anew; a third finds everything as the second did, unless something has
/// happened in between that evaluations depend on. Conditions and the parts of IF are evaluated as arguments
/// and once more by the function: without this a nest of them would be evaluated twice as often at each
/// level.
bool CScriptEngine::onlyRepeats(const Expression& expression) const {
  const Expression::Repeats& before = expression.repeats;
  return before.times >= 2 && !repeatsAll_ && before.run == runNumber_ && before.effects == effects_ &&
         expression.valid && errorText.empty() &&
         expression.entry->changes.since(expression.seen) == ChangeLog::kNone;
}

void CScriptEngine::noteEvaluation(Expression& expression, std::uint64_t effects, std::uint64_t calls) {
  Expression::Repeats& repeats = expression.repeats;
  repeats.times = repeats.run == runNumber_ && repeats.effects == effects ? repeats.times + 1 : 1;
  repeats.run = runNumber_;
  repeats.effects = effects;
  repeats.levels = deepest_ - nesting_.depth + 1;
  repeats.calls = callsNoted_ != calls;
  repeats.lastCall = lastCall_.value_or(std::string_view());
}

const StoreEntry& CScriptEngine::EvaluateFast(Expression& expression) {
  const DepthGuard guard(nesting_);
  if (guard.isTooDeep()) {
    abortRun();
    return nothing();
  }
  platform::spendSteps(kStepsOfEvaluation);
  deepest_ = std::max(deepest_, nesting_.depth);
  StoreEntry* entry = entryOf(expression);
  if (!entry) return nothing();
  if (expression.isDirect) return *entry;
  if (!expression.scanned) scanExpression(expression);
  if (isItsOwnName(expression)) return *entry;
  if (onlyRepeats(expression)) {
    const Expression::Repeats& repeats = expression.repeats;
    deepest_ = std::max(deepest_, nesting_.depth + repeats.levels - 1);
    if (deepest_ > kMaxDepth) abortRun();
    if (repeats.calls) noteCall(repeats.lastCall);
    return *entry;
  }
  const std::uint64_t effects = effects_, calls = callsNoted_;
  const int deepestOutside = std::exchange(deepest_, nesting_.depth);
  Fold(*this, expression, *entry).run();
  if (!expression.setName.empty()) rememberFast(expression, *entry);
  noteEvaluation(expression, effects, calls);
  deepest_ = std::max(deepest_, deepestOutside);
  return *entry;
}

void CScriptEngine::forgetRows() {
  repeatsAll_ = true;
  if (expressions_) expressions_->forgetRows();
}

/// Evaluates the arguments of a call, up to the first empty one.
void CScriptEngine::evaluateArgumentsFast(CallSite& site) {
  site.values.clear();
  for (CallSite::Argument& argument : site.arguments) {
    if (aborted_) return;
    if (argument.bareWord && !variables.get(argument.text)) {
      site.values.emplace_back();
      continue;
    }
    if (!argument.expression) argument.expression = &expressions_->ofPiece(argument.text);
    const Expression& expression = *argument.expression;
    const bool direct = expression.isDirect && expression.shape == variables.shape();
    const StoreEntry& entry = direct ? *expression.entry : EvaluateFast(*argument.expression);
    site.values.push_back({&entry, !entry.values.empty(), entry.value});
  }
}

StoreEntry* CScriptEngine::lookupFast(std::string_view name) {
  if (name == "LAST") name = "CLOSE";
  if (StoreEntry* entry = variables.getNamed(name)) return entry;
  if (StoreEntry* constant = constants.get(name)) return constant;
  errorText = "Error: Undefined variable '" + std::string(name) + "'";
  return nullptr;
}

/// Stores the value of a SET statement under its name, over an entry of that name. Only rows that can differ
/// are copied.
void CScriptEngine::rememberFast(Expression& statement, const StoreEntry& value) {
  ++effects_;
  const bool known = statement.variable && statement.variableShape == variables.shape();
  StoreEntry* variable = known ? statement.variable : variables.get(statement.setName);
  if (!variable) {
    if (variables.size() > kMaxVariables || variables.full()) {
      abortRun();
      return;
    }
    ScriptVariable fresh;
    fresh.name = statement.setName;
    fresh.value = value.value;
    fresh.values = Series(value.values.view());
    variable = &variables[variables.append(std::move(fresh))];
    noteChange(*variable, 0);
  } else {
    if (variable->madeForText) {
      variable->madeForText = false;
      variables.noteShape();
    }
    copyToVariable(statement, value, *variable);
  }
  statement.variable = variable;
  statement.variableShape = variables.shape();
  statement.variableRows =
      std::min(variable->values.size(), static_cast<std::size_t>(std::max(windowLength, 0)));
  statement.variableSeen = moment_;
  if (variable->kind == kComputedVariable) listOutput(*variable);  // data of the host is no output
}

void CScriptEngine::copyToVariable(const Expression& statement, const StoreEntry& value,
                                   StoreEntry& variable) {
  const std::size_t rows = static_cast<std::size_t>(std::max(windowLength, 0));
  std::size_t from = 0;
  const std::size_t before = variable.values.size();
  if (variable.kind == kDataVariable) undo_.keepSeries(variable);
  if (before == 0 && !variable.isConstant) variable.slot = -1;
  if (before < rows && (before > 0 || !variable.isConstant)) variable.values.resize(rows, NULL_VALUE);
  if (before > 0 && statement.variable == &variable && statement.variableRows > 0) {
    from = std::min({statement.variableRows - 1, variable.changes.since(statement.variableSeen),
                     value.changes.since(statement.variableSeen), before});
  }
  variable.value = value.value;
  if (variable.values.empty()) return;
  const Out out = variable.values.edit();
  const View in = value.values.view();
  const std::size_t end = std::min({rows, out.size(), in.empty() ? rows : in.size()});
  for (std::size_t i = from; i < end; ++i) out[i] = in.empty() ? value.value : in[i];
  noteChange(variable, std::min(from, end));
}

}  // namespace brindlewort

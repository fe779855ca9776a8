#include "engine/fold.hpp"

#include <algorithm>
#include <bit>
#include <string>
#include <utility>

#include "series/numbers.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

bool sameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// True when the rows that a step makes of an operand are, but for changed rows of a series, those of the
/// last time.
bool sameOperand(const Step& step, const Step::Operand& now, const Step::Operand& before) {
  if (now.entry != before.entry || (now.rows != nullptr) != (before.rows != nullptr)) return false;
  if (now.leftHasRows != before.leftHasRows) return false;
  if (!now.rows) return step.kind != Step::Kind::kApply || sameBits(now.value, before.value);
  return now.leftHasRows || sameBits(now.leftValue, before.leftValue);
}

}  // namespace

void Fold::run() {
  Expression& e = expression_;
  const bool wasValid = std::exchange(e.valid, false);  // should memory run out on the way
  // The last row of the last time is made again: it is no longer the last, or its bar has changed.
  from_ = wasValid && e.rows > 0 ? std::min(e.rows - 1, target_.changes.since(e.seen)) : 0;
  comparable_ = wasValid;
  const bool failed = !engine_.errorText.empty();
  if (!failed || e.opensWithOperand) {
    for (std::size_t i = 0; i < expression_.steps.size(); ++i) {
      take(i);
      if (!engine_.errorText.empty()) break;
    }
  }
  finish();
}

/// Evaluates the operand of a step and applies it. When it turns out that earlier rows are needed than
/// thought so far, the steps before are applied to those rows first.
void Fold::take(std::size_t index) {
  std::vector<Step>& steps = expression_.steps;
  Step& step = steps[index];
  Operand now = evaluate(step.term);
  if (now.rows == &target_.values && steps.size() == 1 && step.kind == Step::Kind::kTake) {
    // The text of a call, or a name: its entry is the operand itself, and is up to date.
    step.operand = now;
    hasRows_ = true;
    value_ = now.value;
    return;
  }
  now.leftHasRows = hasRows_;
  now.leftValue = value_;
  if (now.entry == &target_ && steps.size() > 1 && out_ != &scratch_) {
    ++engine_.effects_;  // it reads what it writes
    scratch_ = *out_;
    scratch_.edit();
    out_ = &scratch_;
    startAt(0);
  }
  const std::size_t before = from_;
  if (comparable_ && sameOperand(step, now, step.operand)) {
    if (now.entry && now.rows) startAt(now.entry->changes.since(expression_.seen));
  } else {
    startAt(0);
  }
  step.operand = now;

  const std::size_t rowsOfOperand = now.rows ? now.rows->size() : 0;
  const std::size_t rowsOfRun = static_cast<std::size_t>(std::max(engine_.windowLength, 0));
  switch (step.kind) {
    case Step::Kind::kTake:
      hasRows_ = now.rows != nullptr;
      if (hasRows_) setLength(rowsOfOperand);
      break;
    case Step::Kind::kTakeValue:
      break;
    case Step::Kind::kApply:
      if (hasRows_) break;
      if (step.op->family == Operator::Family::kArithmetic) {
        setLength(rowsOfRun);
        hasRows_ = true;
      } else if (now.rows && !engine_.dryRun) {
        setLength(std::min(rowsOfOperand, rowsOfRun));
        hasRows_ = true;
      }
      break;
  }
  if (from_ < before) {
    for (std::size_t i = 0; i < index; ++i) applyRows(steps[i], from_, before);
  }
  applyRows(step, from_, out_->size());
  value_ = step.kind == Step::Kind::kApply ? step.op->scalars(value_, now.value) : now.value;
}

void Fold::setLength(std::size_t rows) {
  if (out_->size() == rows) return;
  out_->resize(rows, 0.0);
  startAt(0);
}

void Fold::applyRows(const Step& step, std::size_t from, std::size_t to) {
  const Operand& operand = step.operand;
  to = std::min(to, out_->size());
  if (from >= to) return;
  if (step.kind == Step::Kind::kApply) {
    applyOperator(step, from, to);
    return;
  }
  if (step.kind != Step::Kind::kTake || !operand.rows) return;
  if (operand.rows != out_) {
    const View rows = operand.rows->view();
    const Out out = out_->edit();
    const std::size_t end = std::min(to, rows.size());
    if (from < end) std::copy(rows.begin() + from, rows.begin() + end, out.begin() + from);
  }
  const std::size_t last = operand.rows->size() - 1;
  if (last >= from && last < to && (*out_)[last] != operand.lastRow) out_->set(last, operand.lastRow);
}

void Fold::applyOperator(const Step& step, std::size_t from, std::size_t to) {
  const Operand& operand = step.operand;
  const Operator& op = *step.op;
  const bool logical = op.family == Operator::Family::kLogical;
  if (logical && engine_.dryRun) return;
  const Out out = out_->edit();
  if (!operand.leftHasRows) {
    // The left scalar is not spread over the series by arithmetic and comparison; logic does spread it.
    if (logical && !operand.rows) return;
    std::fill(out.begin() + from, out.begin() + to, logical ? operand.leftValue : 0.0);
  }
  to = std::min(to, static_cast<std::size_t>(std::max(engine_.windowLength, 0)));
  if (!operand.rows) {
    if (from >= to || (logical && op.prefix)) return;
    const Out rows = out.subspan(from, to - from);
    op.withScalar(rows, operand.value, rows);
    return;
  }
  const View right = operand.rows->view();
  to = std::min(to, right.size());
  if (from >= to) return;
  const bool withLast = to == right.size() && right.back() != operand.lastRow;
  const std::size_t end = withLast ? to - 1 : to;
  const Out rows = out.subspan(from, end - from);
  op.withSeries(rows, right.subspan(from, end - from), rows);
  if (withLast) out[end] = op.scalars(out[end], operand.lastRow);
}

/// A scalar of a SET statement becomes a series, the last row takes the value, and the entry takes the
/// result.
void Fold::finish() {
  Expression& e = expression_;
  // A failed expression that is a name leaves the rows of that variable alone.
  if (!engine_.errorText.empty() && !target_.madeForText) return;
  // The text of a call, or a name: the entry is the operand itself.
  bool untouched = hasRows_ && e.steps.size() == 1 && e.steps[0].operand.rows == &target_.values;
  const std::size_t rowsOfRun = static_cast<std::size_t>(std::max(engine_.windowLength, 0));
  if (!hasRows_ && e.isSet && !e.setName.empty()) {
    setLength(rowsOfRun);
    if (!comparable_ || !sameBits(value_, e.scalar)) startAt(0);
    const Out out = out_->edit();
    if (from_ < out.size()) std::fill(out.begin() + from_, out.end(), value_);
    hasRows_ = true;
  }
  if (!hasRows_) {
    if (!out_->empty()) startAt(0);
    out_->clear();
  } else if (!out_->empty() && out_->back() != value_) {
    out_->set(out_->size() - 1, value_);
    untouched = false;
  }
  if (out_ == &scratch_) target_.values = std::move(scratch_);
  target_.value = value_;
  if (!untouched) engine_.noteChange(target_, std::min(from_, target_.values.size()));
  e.rows = std::min(target_.values.size(), rowsOfRun);  // rows behind those of the run were not computed
  e.scalar = value_;
  e.valid = engine_.errorText.empty();
  e.seen = engine_.moment();
}

Fold::Operand Fold::evaluate(Term& term) {
  Operand operand;
  // A call and a group are evaluated in any case; after an error nothing comes of them either.
  const bool simple = term.kind == Term::Kind::kNumber || term.kind == Term::Kind::kName;
  if (simple && !engine_.errorText.empty()) return operand;
  switch (term.kind) {
    case Term::Kind::kNothing:
      break;
    case Term::Kind::kNumber:
      operand.value = term.number;
      break;
    case Term::Kind::kGroup:
      return evaluateGroup(term);
    case Term::Kind::kCall:
      return evaluateCall(term);
    case Term::Kind::kName:
      if (term.text == "DATE" && !engine_.fields.empty()) {
        const Series& dates = engine_.dates();
        if (dates.empty()) break;
        operand.rows = &dates;
        operand.value = operand.lastRow = dates.back();
        break;
      }
      return operandOf(engine_.variableOf(term));
  }
  return operand;
}

Fold::Operand Fold::operandOf(const StoreEntry* entry) {
  Operand operand;
  if (!entry) return operand;
  operand.entry = entry;
  operand.value = entry->value;
  if (entry->values.empty()) return operand;
  operand.rows = &entry->values;
  operand.lastRow = entry->values.back();
  return operand;
}

/// A bracket group gives its series, and a value that has passed through a text of 20 decimals.
Fold::Operand Fold::evaluateGroup(Term& term) {
  engine_.noteCall({});
  if (term.text == "CSP()") engine_.resolvePattern();
  if (!term.group) term.group = &engine_.expressions_->ofPiece(term.text);
  const StoreEntry& entry = engine_.EvaluateFast(*term.group);
  if (!engine_.errorText.empty()) return {};
  Operand operand = operandOf(&entry);
  operand.value = throughText(operand.value);
  operand.lastRow = operand.value;
  return operand;
}

Fold::Operand Fold::evaluateCall(Term& term) {
  CallSite& site = *term.call;
  engine_.noteCall(site.name);
  engine_.evaluateArgumentsFast(site);
  if (engine_.aborted_) return {};
  const StoreEntry* result = engine_.EvaluateFunctionFast(site);
  if (!engine_.errorText.empty()) return {};
  return operandOf(result);
}

}  // namespace brindlewort

// The resumable forms of conditions, loops, arithmetic, windows and dates.

#include "functions/series_operations.hpp"

#include <cmath>

#include "indicators/compute_rows.hpp"
#include "indicators/ranked_extremes.hpp"
#include "indicators/windows.hpp"
#include "platform/random15.hpp"
#include "series/julian_date.hpp"
#include "series/numbers.hpp"

namespace brindlewort {

namespace {

Count rowsOf(const Target& out) {
  return static_cast<Count>(out.rows.size());
}

double& row(const Target& out, Count i) {
  return out.rows[static_cast<std::size_t>(i)];
}
double row(View in, Count i) {
  return in[static_cast<std::size_t>(i)];
}

Count headOf(View rows) {
  Count nulls = 0;
  for (double x : rows) {
    if (!isNull(x)) break;
    ++nulls;
  }
  return nulls;
}

/// The first row that has never been computed, or the last one that has.
Count resumeAt(const Target& out, Count first) {
  return *out.slot == -1 ? first : *out.slot - 1;
}

}  // namespace

Count headCount(const Operand& operand) {
  return headOf(operand.rows);
}

Count BarsBack::from(Count row, Count rows) const {
  if (perRow.empty()) return row >= fixed && row - fixed < rows ? row - fixed : -1;
  if (row >= brindlewort::rowsOf(perRow)) return -1;
  const Count back = toInt32(perRow[static_cast<std::size_t>(row)]);
  return back <= row && row - back < rows ? row - back : -1;
}

namespace CTechnicalFunctions {

Status CrossOver(const Operand& a, const Operand& b, Target out) {
  if (a.isNumber() && b.isNumber()) return kNothingDone;
  const Count n = std::min(a.count(rowsOf(out)), b.count(rowsOf(out)));
  const Count start =
      std::max<Count>(*out.slot == -1 ? 1 + std::max(headCount(a), headCount(b)) : *out.slot - 1, 1);
  if (start >= n) return kNothingDone;
  if (*out.slot == -1) row(out, start - 1) = NULL_VALUE;
  for (Count i = start; i < n; ++i) {
    const bool below = QuantizeForCompare(a.at(i - 1)) <= QuantizeForCompare(b.at(i - 1));
    row(out, i) = below && QuantizeForCompare(a.at(i)) > QuantizeForCompare(b.at(i)) ? 1.0 : 0.0;
  }
  return finish(out, n);
}

Status Reference(View source, const BarsBack& back, Target out) {
  const Count n = rowsOf(out);
  if (source.empty()) return kNothingDone;
  return computeRows(out, back.fixed, n, [&](Count i) {
    const Count from = back.from(i, brindlewort::rowsOf(source));
    return from < 0 ? NULL_VALUE : row(source, from);
  });
}

Status IfThenElse(const Operand& condition, const Operand& truePart, const Operand& falsePart, Target out) {
  const Count n = condition.count(rowsOf(out));
  const Count start = resumeAt(out, 0);
  if (start >= n) return kNothingDone;
  for (Count i = start; i < n; ++i) {
    const Operand& part = condition.at(i) != 0.0 ? truePart : falsePart;
    if (i < part.count(n)) row(out, i) = part.at(i);
  }
  return finish(out, n);
}

Status RunCount(View condition, bool repeat, Target out) {
  const Count n = std::min(brindlewort::rowsOf(condition), rowsOf(out));
  const Count start = *out.slot == -1 ? headOf(condition) : *out.slot - 1;
  if (start >= n) return kNothingDone;
  double count = start > 0 ? nz(row(out, start - 1)) : 0.0;
  for (Count i = start; i < n; ++i) {
    count = (row(condition, i) != 0.0) == repeat ? count + 1.0 : 0.0;
    row(out, i) = count;
  }
  return finish(out, n);
}

Status CountIf(View condition, Target out) {
  const Count n = std::min(brindlewort::rowsOf(condition), rowsOf(out));
  const Count start = *out.slot == -1 ? headOf(condition) : *out.slot - 1;
  if (start >= n) return kNothingDone;
  double count = start > 0 ? std::trunc(nz(row(out, start - 1))) : 0.0;
  for (Count i = start; i < n; ++i) {
    if (row(condition, i) != 0.0) count += 1.0;
    row(out, i) = count;
  }
  return finish(out, n);
}

Status SumIf(View condition, View vector, Target out) {
  const Count n = std::min({brindlewort::rowsOf(condition), brindlewort::rowsOf(vector), rowsOf(out)});
  const Count start = *out.slot == -1 ? headOf(vector) : *out.slot - 1;
  if (start >= n) return kNothingDone;
  // A total may happen to be the null value, so what tells a row that was written is its number.
  double sum = start > headOf(vector) ? row(out, start - 1) : 0.0;
  for (Count i = start; i < n; ++i) {
    if (row(condition, i) != 0.0) sum += row(vector, i);
    row(out, i) = sum;
  }
  return finish(out, n);
}

namespace {

double combine(LoopOperator op, double left, double right) {
  switch (op) {
    case LoopOperator::kAdd:
      return left + right;
    case LoopOperator::kSubtract:
      return left - right;
    case LoopOperator::kMultiply:
      return left * right;
    case LoopOperator::kDivide:
      break;
  }
  return right == 0.0 ? NULL_VALUE : left / right;
}

}  // namespace

Status LoopSeries(const Operand& one, const Operand& two, Count firstOffset, Count secondOffset,
                  std::int32_t op, Target out) {
  const Count n = std::min(one.count(rowsOf(out)), two.count(rowsOf(out)));
  const Count start = resumeAt(out, std::max(headCount(one), headCount(two)));
  if (start >= n) return kNothingDone;
  for (Count i = start; i < n; ++i) {
    row(out, i) = one.at(i);
    if (i < firstOffset || i < secondOffset) continue;
    const double right = two.at(i - secondOffset);
    if (isNull(right)) {
      row(out, i) = NULL_VALUE;
    } else if (op >= 1 && op <= 4) {
      row(out, i) = combine(static_cast<LoopOperator>(op), row(out, i - firstOffset), right);
    }
  }
  return finish(out, n);
}

namespace {

/// f of each row that is not null, from the head on.
template <class Function>
Status eachRow(const Operand& source, Target out, Function f) {
  const Count n = source.count(rowsOf(out));
  const Count start = resumeAt(out, headCount(source));
  if (start >= n) return kNothingDone;
  for (Count i = start; i < n; ++i) row(out, i) = isNull(source.at(i)) ? NULL_VALUE : f(source.at(i));
  return finish(out, n);
}

}  // namespace

Status MathFunction(const Operand& source, RowFunction f, Target out) {
  return eachRow(source, out, f);
}

Status RandomSeries(const Operand& source, std::uint32_t seed, Target out) {
  platform::Random15 random(seed);
  random.next();  // the draw that is the result's value, which its last row then takes the place of
  return eachRow(source, out,
                 [&](double) { return static_cast<double>(random.next()) / 32767.0 * source.value; });
}

Status RoundSeries(const Operand& source, const Rounding& rounding, Target out) {
  return eachRow(source, out, [&](double x) { return rounding(x); });
}

namespace {

Status runningTotals(View source, Count p, double divisor, Target out, bool* headWritten) {
  *headWritten = false;
  const Count n = std::min(brindlewort::rowsOf(source), rowsOf(out));
  if (p > n) return kNothingDone;
  const Count first = headOf(source) + p - 1;
  const Count start = startRow(out, first);
  if (start >= n) return kNothingDone;
  sumWindows<WindowOrder::kOldestFirst>(
      start, n, p, [source](Count j, Count) { return row(source, j); },
      [&](Count i, double total) { row(out, i) = total / divisor; });
  if (start == first) {
    std::fill_n(out.rows.begin(), p, row(out, first));
    *headWritten = true;
  }
  return finish(out, n);
}

}  // namespace

Status SumSeries(View source, Count p, Target out, bool* headWritten) {
  return runningTotals(source, p, 1.0, out, headWritten);
}

Status AverageSeries(View source, Count p, Target out, bool* headWritten) {
  return runningTotals(source, p, static_cast<double>(p), out, headWritten);
}

Status WindowExtreme(View source, Count p, bool greatest, Target out) {
  const Count n = std::min(brindlewort::rowsOf(source), rowsOf(out));
  if (p > n) return kNothingDone;
  const Count start = startRow(out, headOf(source) + p - 1);
  if (start >= n) return kNothingDone;
  rankedExtremes(
      source, p, start, n, greatest, [](double x) { return !isNull(x); }, out.rows);
  return finish(out, n);
}

namespace {

/// Each pass starts by the slot from before the call, so the slot is set behind the last one.
template <class Beats>
Status bestOf(std::span<const Operand> vectors, Target out, Beats beats) {
  const Count all = rowsOf(out);
  const bool fresh = *out.slot == -1;
  const Count head = fresh ? std::max(headCount(vectors[0]), headCount(vectors[1])) : 0;
  const Count rows = std::min(vectors[0].count(all), vectors[1].count(all));
  if (resumeAt(out, head) >= rows) return kNothingDone;
  for (Count i = resumeAt(out, head); i < rows; ++i) {
    const double first = vectors[0].at(i), second = vectors[1].at(i);
    row(out, i) = beats(QuantizeForCompare(first), QuantizeForCompare(second)) ? first : second;
  }
  for (const Operand& vector : vectors.subspan(2)) {
    const Count n = std::min(rows, vector.count(all));
    const Count later = fresh ? std::max(headOf(out.rows), headCount(vector)) : 0;
    for (Count i = resumeAt(out, later); i < n; ++i) {
      if (beats(QuantizeForCompare(vector.at(i)), QuantizeForCompare(row(out, i))))
        row(out, i) = vector.at(i);
    }
  }
  return finish(out, rows);
}

}  // namespace

Status MaxOfSeries(std::span<const Operand> vectors, Target out) {
  return bestOf(vectors, out, [](std::int64_t mine, std::int64_t best) { return mine > best; });
}

Status MinOfSeries(std::span<const Operand> vectors, Target out) {
  return bestOf(vectors, out, [](std::int64_t mine, std::int64_t best) { return mine < best; });
}

Status DatePart(View dates, const BarsBack& back, int part, Target out) {
  return computeRows(out, back.fixed, rowsOf(out), [&](Count i) {
    const Count from = back.from(i, brindlewort::rowsOf(dates));
    return from < 0 ? NULL_VALUE : DatePartOf(row(dates, from), part);
  });
}

Status DateDiff(View dates, const BarsBack& first, const BarsBack& second, int unit, Target out) {
  return computeRows(out, 0, rowsOf(out), [&](Count i) {
    const Count one = first.from(i, brindlewort::rowsOf(dates));
    const Count two = second.from(i, brindlewort::rowsOf(dates));
    return one < 0 || two < 0 ? NULL_VALUE : DateDifference(row(dates, one), row(dates, two), unit);
  });
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort

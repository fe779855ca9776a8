#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "indicators/frame.hpp"
#include "series/rounding.hpp"

/// The resumable forms of the functions that are no indicators. Each writes the rows from the last computed
/// one on (on a first call from its first row) and sets the slot; kNothingDone when there is no row to
/// compute. Rows before the first stay as they are. A head is the run of nulls at the front of a series.
namespace brindlewort {

/// An operand: a series, or a number that stands in all rows.
struct Operand {
  View rows;
  double value = 0.0;

  bool isNumber() const { return rows.empty(); }
  /// Rows there are; `all` for a number.
  Count count(Count all) const { return isNumber() ? all : std::min(rowsOf(rows), all); }
  double at(Count row) const { return isNumber() ? value : rows[static_cast<std::size_t>(row)]; }
};

using RowFunction = double (*)(double);

/// How ROUND and its family treat a value.
struct Rounding {
  RoundMode mode;
  bool toMultiple;
  std::int32_t digits;
  double multiple;
  double operator()(double x) const {
    return toMultiple ? RoundToMultiple(x, multiple, mode) : RoundValue(x, digits, mode);
  }
};

/// The nulls at the front; 0 for a number.
Count headCount(const Operand& operand);

/// How many bars back a row looks: a fixed number, or each row's own from a series.
struct BarsBack {
  Count fixed = 0;  ///< never negative; of a series its last value
  View perRow;      ///< empty for a fixed number
  /// The row that row `row` of `rows` rows looks at; -1 when there is none.
  Count from(Count row, Count rows) const;
};

namespace CTechnicalFunctions {

/// 1 where `a` rises above `b` from at or below it, else 0. First row: one behind the longer head.
Status CrossOver(const Operand& a, const Operand& b, Target out);

/// The source some rows earlier; from row `back.fixed` on.
Status Reference(View source, const BarsBack& back, Target out);

/// The true part where the condition is not exactly 0.0, else the false part; from row 0.
Status IfThenElse(const Operand& condition, const Operand& truePart, const Operand& falsePart, Target out);

/// REPEATIF: rows for which the condition has held; LASTIF: rows since it held. From the head on.
Status RunCount(View condition, bool repeat, Target out);
/// How often the condition has held so far. From the head on.
Status CountIf(View condition, Target out);
/// The total of the vector over the rows where the condition has held. From the vector's head on.
Status SumIf(View condition, View vector, Target out);

enum class LoopOperator : std::int32_t { kAdd = 1, kSubtract = 2, kMultiply = 3, kDivide = 4 };
/// out[i] = out[i - firstOffset] op two[i - secondOffset] over a copy of `one`; null where the row of `two`
/// is null, or 0.0 as a divisor. Any other operator leaves the copy.
Status LoopSeries(const Operand& one, const Operand& two, Count firstOffset, Count secondOffset,
                  std::int32_t op, Target out);

/// f of each row that is not null, from the head on.
Status MathFunction(const Operand& source, RowFunction f, Target out);

/// A new draw between 0 and 1 times the source's last value in each row where the source is not null.
Status RandomSeries(const Operand& source, std::uint32_t seed, Target out);

/// Each row rounded; nulls stay.
Status RoundSeries(const Operand& source, const Rounding& rounding, Target out);

/// Total of the last p rows, nulls being numbers. Rows 0 to p - 1 take the first total whenever it is
/// computed;
/// `*headWritten` tells.
Status SumSeries(View source, Count p, Target out, bool* headWritten);
/// The same divided by p.
Status AverageSeries(View source, Count p, Target out, bool* headWritten);

/// The newest row of a window of p rows, or the oldest of those truly above it (MIN: below it), null rows
/// being passed over; values are compared quantised. From head + p - 1.
Status WindowExtreme(View source, Count p, bool greatest, Target out);

/// Row by row the greatest of the vectors, from the later head of the two compared; equal values keep the
/// earlier one, beginning with the second vector.
Status MaxOfSeries(std::span<const Operand> vectors, Target out);
Status MinOfSeries(std::span<const Operand> vectors, Target out);

/// A part of the date of an earlier bar; from row `back.fixed` on.
Status DatePart(View dates, const BarsBack& back, int part, Target out);
/// The time between the dates of two earlier bars, in a unit; from row 0.
Status DateDiff(View dates, const BarsBack& first, const BarsBack& second, int unit, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort

#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "series/null_value.hpp"
#include "series/numbers.hpp"
#include "series/series.hpp"

/// The frame that all indicators share.
///
/// Every indicator exists twice, as two computations of one idea that need not agree to the last digit
/// (warm-up, seeds and some formulas differ, and hosts rely on both):
///
///   namespace CFeedkit              the batch form: whole series in, whole series out.
///   namespace CTechnicalFunctions   the resumable form: writes into an output that lives across calls
///                                   and recomputes only the last row and the rows appended since.
///
/// Row 0 of the batch form is the filler bar, so batch windows start at row 1 or 2.
namespace brindlewort {

/// Rows and periods. Signed and wide, so that a period taken from any 32-bit integer can be added to.
using Count = std::int64_t;

inline Count rowsOf(View series) { return static_cast<Count>(series.size()); }

/// Range test of a period, batch form: the period must leave at least one row.
inline bool batchRange(Count p, Count n) { return 1 <= p && p < n; }
/// Range test of a period, resumable form: a period of all rows is allowed.
inline bool resumableRange(Count p, Count n) { return 1 <= p && p <= n; }

/// The lead of a series: how many NULL_VALUE rows stand at its head. Counts from row 0 and stops at the
/// first value greater than 0; values that are not positive neither stop the scan nor count. A null row
/// counts only while no value has been seen, or while the first value seen was exactly -1.0 (the mark
/// of "no value yet").
Count firstValueIndex(View series);

/// A work series that starts all null.
inline std::vector<double> nullRows(std::size_t rows) { return std::vector<double>(rows, NULL_VALUE); }

/// The price series of a run, all of one length. `rows()` is the length of the close.
struct Prices {
  View open, high, low, close, volume;
  Count rows() const { return rowsOf(close); }
};

// ---- Resumable form -----------------------------------------------------------------------------------

/// What a resumable operation answers: kDone, or kNothingDone (a range error, or no row to compute; the
/// output is as it was).
using Status = std::int16_t;
inline constexpr Status kDone = 0;
inline constexpr Status kNothingDone = -1;

/// An input of a resumable operation; the name goes into the keys of work series.
struct Source {
  View rows;
  std::string_view name;
};

/// An output of a resumable operation: pre-sized rows, NULL_VALUE where never written, and the count of
/// rows already computed (-1: never). On success an operation sets `*slot` to the row count.
struct Target {
  Out rows;
  std::int32_t* slot;
};

/// A work series in the engine's store: output of one operation, input of the next.
struct WorkField {
  Out rows;
  std::int32_t* slot;
  std::string_view name;
  operator Source() const { return {rows, name}; }
  operator Target() const { return {rows, slot}; }
};

/// One piece of the key of a work series: the name of an input, a number, or a moving average type.
struct KeyPart {
  enum Kind : std::uint8_t { kText, kNumber, kMaType };
  Kind kind;
  double number = 0.0;
  std::string_view text;

  KeyPart(std::string_view name) : kind(kText), text(name) {}  // NOLINT: keys read as lists
  KeyPart(const Source& source) : kind(kText), text(source.name) {}
  KeyPart(const WorkField& field) : kind(kText), text(field.name) {}
  KeyPart(Count number_) : kind(kNumber), number(static_cast<double>(number_)) {}
  KeyPart(double number_) : kind(kNumber), number(number_) {}
  static KeyPart maType(Count type) {
    KeyPart part(type);
    part.kind = kMaType;
    return part;
  }
};

/// The store of work series, as an operation sees it. The engine implements it.
class WorkStore {
 public:
  virtual ~WorkStore() = default;
  /// The work series of this name for these parameters (in text: name, "(", the parts joined with ",",
  /// ")"); made with as many null rows as the run has, and slot -1, when it is absent. Each distinct
  /// list of parts has a series of its own. The result is valid until the end of the running operation.
  virtual WorkField field(std::string_view name, std::initializer_list<KeyPart> parts) = 0;
};

/// The price series of the incremental way, under the names "OPEN", "HIGH", "LOW", "CLOSE", "VOLUME".
struct PriceSources {
  Source open, high, low, close, volume;
  Count rows() const { return rowsOf(close.rows); }
};

/// Rows that a resumable operation may touch: those of the input, capped by those of the output.
inline Count rowsOf(const Source& in, const Target& out) {
  return std::min<Count>(rowsOf(in.rows), static_cast<Count>(out.rows.size()));
}

/// Where a call starts: at `first` when nothing has been computed, else at the last row already
/// computed, but never before the first row that the present period allows.
inline Count startRow(const Target& out, Count first) {
  return *out.slot == -1 ? first : std::max<Count>(*out.slot - 1, first);
}

/// Ends a successful call: `n` rows are computed.
inline Status finish(const Target& out, Count n) {
  *out.slot = static_cast<std::int32_t>(n);
  return kDone;
}

/// The word of a moving average type in a key: 1 "SIMPLE" to 8 "WWS", anything else "SIMPLE".
std::string_view maTypeName(Count type);

}  // namespace brindlewort

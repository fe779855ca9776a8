#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "line.hpp"

namespace brindlewort::fuzz {

/// A bar as the bulk calls take it: date, open, high, low, close, volume and, for alerts alone, the date of
/// the last trade.
struct Row {
  double date, open, high, low, close, volume, lastTrade;
};

/// Whether the bulk calls take a volume: cut, it is a whole number of 32 bits.
bool fitsVolume(double volume);
/// The volume as the calls for one bar take it.
std::int32_t volumeOf(const Row& row);

/// Bar number `index` of a market of some shape: the walk of prices by the first digit, the dates by the
/// next.
Row makeRow(int shape, std::size_t index);

/// The bars that a handle must have, kept beside it.
class Model {
 public:
  /// More than any short script warms up for, and than the blocks of bars that a backtest skips.
  static constexpr std::size_t kMostBars = 80;

  const std::vector<Row>& rows() const { return rows_; }
  bool full() const { return rows_.size() >= kMostBars; }
  void append(const Row& row) { rows_.push_back(row); }
  void clear() { rows_.clear(); }
  /// The bars that a line adds: their number and shape.
  std::vector<Row> newRows(Line& line) const;
  /// A date of a line: a small whole number is that of a bar.
  double date(Line& line) const;
  /// A bar of a line: its date, and number and shape of its prices.
  Row row(Line& line) const;
  /// The first bar of a date; -1 for none.
  std::ptrdiff_t find(double date) const;
  /// Puts a bar in the place of the first of its date. False when there is none.
  bool edit(const Row& row);
  bool editDate(double from, double to);
  void replace(std::size_t i, const Row& row) { rows_[i] = row; }
  /// Rows of so many doubles, as the bulk calls take them.
  std::vector<double> packed(std::size_t columns) const;

 private:
  std::vector<Row> rows_;
};

std::vector<double> packed(const std::vector<Row>& rows, std::size_t columns);

}  // namespace brindlewort::fuzz

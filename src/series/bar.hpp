#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace brindlewort {

/// One period of an instrument: one block of eight doubles.
struct Bar {
  double JDate = 0.0;  ///< Julian day number with fraction; the record's only key
  double OpenPrice = 0.0;
  double HighPrice = 0.0;
  double LowPrice = 0.0;
  double ClosePrice = 0.0;
  double Volume = 0.0;            ///< given as a signed 32-bit integer, read back truncated to one
  double dJDateOfLTT = 0.0;       ///< date of the last trade; only the alert component takes it from the host
  double dLastTradedPrice = 0.0;  ///< the close, when the alert component makes the record
};
static_assert(sizeof(Bar) == 64 && std::is_trivially_copyable_v<Bar>);

/// The bars of one instrument in the host's order. Nothing sorts them or looks for equal dates; every
/// search by date compares exactly and takes the first match.
class BarStore {
 public:
  static constexpr std::ptrdiff_t kNotFound = -1;

  void AppendRecord(const Bar& bar);
  /// Takes the bars from this row on away again.
  void dropFrom(std::size_t row) { bars_.resize(row); }
  /// Replaces the whole first bar of this date. False when there is none.
  bool EditRecord(const Bar& bar);
  /// Changes only the date of the first bar of date `oldDate`; later rows do not move.
  bool EditJDate(double oldDate, double newDate);
  void ClearRecords();
  std::int32_t RecordCount() const { return static_cast<std::int32_t>(bars_.size()); }

  /// Row of the first bar with exactly this date, or kNotFound.
  std::ptrdiff_t findDate(double date) const;
  /// Row of the last bar of those at the front whose dates are earlier than `date`; kNotFound when the first
  /// bar is not earlier.
  std::ptrdiff_t lastRowBefore(double date) const;
  /// The bar with a number counted from 1, or null outside 1 to the count.
  const Bar* byNumber(std::int32_t number) const;

  std::size_t size() const { return bars_.size(); }
  bool empty() const { return bars_.empty(); }
  const Bar& operator[](std::size_t row) const { return bars_[row]; }
  /// Replaces the bar of a row, also by one of another date.
  void replace(std::size_t row, const Bar& bar);
  const Bar& back() const { return bars_.back(); }
  /// Room for `more` bars, grown in proportion, so that blocks of any size are appended in linear time.
  void makeRoom(std::size_t more);
  const std::vector<Bar>& rows() const { return bars_; }

 private:
  std::vector<Bar> bars_;
  bool rising_ = true;  ///< each date is later than the one before, so a date can be found by halving
};

/// A volume as the host reads it back: cut to a 32-bit integer, the most negative one when out of range.
std::int32_t volumeToInt32(double volume);

}  // namespace brindlewort

#include "bars.hpp"

#include <algorithm>

namespace brindlewort::fuzz {

namespace {

constexpr double kFirstDate = 2444300.5;

std::uint64_t mixed(std::uint64_t x) {
  x += 0x9e3779b97f4a7c15u;
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
  x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
  return x ^ (x >> 31);
}

double wild(std::uint64_t bits) {
  return kWildNumbers[bits % kWildCount];
}

/// Candles of whole and half steps around 100, so that equal prices, gaps, dojis and long bodies all come up.
Row candle(std::uint64_t bits, std::size_t index) {
  const auto step = [&](int shift, int count) { return static_cast<double>((bits >> shift) % count); };
  Row row{};
  row.open = 100.0 + 4.0 * step(0, 5) - 0.5 * static_cast<double>(index % 3);
  row.close = row.open + 0.5 * step(8, 17) - 4.0;
  row.high = std::max(row.open, row.close) + 0.5 * step(16, 5);
  row.low = std::min(row.open, row.close) - 0.5 * step(24, 5);
  return row;
}

Row around(double close, double width) {
  return {0, close - 0.5 * width, close + width, close - width, close, 0, 0};
}

Row prices(int walk, std::size_t index, std::uint64_t bits) {
  const double i = static_cast<double>(index);
  const double noise = static_cast<double>(bits % 1000) / 100.0;
  switch (walk) {
    case 0:
      return around(50.0 + noise, 1.0);
    case 1:
      return around(10.0 + i * 1.25 + noise * 0.1, 0.75);
    case 2:
      return around(200.0 - i * 2.5 - noise * 0.1, 2.0);
    case 3:
      return around(20.0 + static_cast<double>((index * 7) % 11), 0.5);
    case 4:
      return around(100.0, 0.0);
    case 5:
      return around(bits % 3 ? noise : -987654321.0, bits % 5 ? 1.0 : -987654321.0);
    case 6:
      return around(noise - 5.0, 3.0);
    case 7:
      return around(bits % 4 ? 1e9 + noise : 0.0, 0.01);
    case 8:
      return {0, wild(bits), wild(bits >> 8), wild(bits >> 16), wild(bits >> 24), 0, 0};
    default:
      return candle(bits, index);
  }
}

double dateOf(int kind, std::size_t index, std::uint64_t bits) {
  const double i = static_cast<double>(index);
  switch (kind) {
    case 1:
      return kFirstDate + i / 1440.0;
    case 2:
      return kFirstDate + static_cast<double>(index / 3);
    case 3:
      return kFirstDate - i * 40.25;
    case 4:
      return bits % 3 ? kFirstDate + i : wild(bits);
    default:
      return kFirstDate + i;
  }
}

double volume(int kind, std::size_t index, std::uint64_t bits) {
  switch (kind) {
    case 1:
      return 0.0;
    case 2:
      return wild(bits);
    default:
      return static_cast<double>(100 * ((index * 5) % 7) + bits % 90);
  }
}

}  // namespace

bool fitsVolume(double volume) {
  return volume > -2147483649.0 && volume < 2147483648.0;
}

std::int32_t volumeOf(const Row& row) {
  return fitsVolume(row.volume) ? static_cast<std::int32_t>(row.volume) : 7;
}

Row makeRow(int shape, std::size_t index) {
  const std::uint64_t bits = mixed(static_cast<std::uint64_t>(shape) * 4096 + index);
  Row row = prices(shape % 10, index, bits);
  row.date = dateOf(shape / 10 % 10, index, bits >> 40);
  row.volume = volume(shape / 100 % 10, index, bits >> 32);
  row.volume = static_cast<double>(volumeOf(row));
  row.lastTrade = row.date + 0.25;
  return row;
}

std::vector<Row> Model::newRows(Line& line) const {
  const std::size_t wanted = line.choice(kMostBars) + 1;
  const int shape = static_cast<int>(line.choice(1000));
  std::vector<Row> added;
  const std::size_t before = rows_.size();
  for (std::size_t i = before; i < before + wanted && i < kMostBars; ++i) added.push_back(makeRow(shape, i));
  return added;
}

double Model::date(Line& line) const {
  const double number = line.number();
  if (number >= 0.0 && number < 1000.0 && !rows_.empty()) {
    return rows_[static_cast<std::size_t>(number) % rows_.size()].date;
  }
  return number;
}

Row Model::row(Line& line) const {
  const double date = this->date(line);
  const std::size_t index = line.choice(kMostBars);
  Row row = makeRow(static_cast<int>(line.choice(1000)), index);
  row.date = date;
  return row;
}

std::ptrdiff_t Model::find(double date) const {
  const auto at =
      std::find_if(rows_.begin(), rows_.end(), [date](const Row& row) { return row.date == date; });
  return at == rows_.end() ? -1 : at - rows_.begin();
}

bool Model::edit(const Row& row) {
  const std::ptrdiff_t at = find(row.date);
  if (at >= 0) rows_[static_cast<std::size_t>(at)] = row;
  return at >= 0;
}

bool Model::editDate(double from, double to) {
  const std::ptrdiff_t at = find(from);
  if (at >= 0) rows_[static_cast<std::size_t>(at)].date = to;
  return at >= 0;
}

std::vector<double> Model::packed(std::size_t columns) const {
  return fuzz::packed(rows_, columns);
}

std::vector<double> packed(const std::vector<Row>& rows, std::size_t columns) {
  std::vector<double> numbers;
  numbers.reserve(rows.size() * columns);
  for (const Row& row : rows) {
    const double all[] = {row.date, row.open, row.high, row.low, row.close, row.volume, row.lastTrade};
    numbers.insert(numbers.end(), all, all + columns);
  }
  return numbers;
}

}  // namespace brindlewort::fuzz

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench_support.hpp"
#include "series/julian_date.hpp"
#include "series/numbers.hpp"

/// Texts of numbers and dates as output rows need them, each beside plain code over printf.
namespace brindlewort::bench {
namespace {

void plainTruncated(std::string& text, double value, int decimals) {
  char full[400];
  std::snprintf(full, sizeof full, "%.20f", value > 0.0 ? value + 1e-10 : value - 1e-10);
  text.append(
      full, static_cast<std::size_t>(std::strchr(full, '.') - full) + 1 + static_cast<std::size_t>(decimals));
}

void plainFixed(std::string& text, double value, int precision) {
  char full[400];
  text.append(full, static_cast<std::size_t>(std::snprintf(full, sizeof full, "%.*f", precision, value)));
}

void plainDateTime(std::string& text, double JDate) {
  const double Z = std::floor(JDate), alpha = std::floor((Z - 1867216 - 0.25) / 36524.25);
  double A = Z + 1 + alpha - std::floor(0.25 * alpha), f = JDate - Z + 0.5;
  if (f >= 1) f -= 1, A += 1;
  const double B = A + 1524, C = std::floor((B - 2439870 - 122.1) / 365.25 + 6680),
               D = std::floor(C * 365.25);
  const double E = std::floor((B - D) / 30.6001), day = B - D - std::floor(E * 30.6001);
  const double month = E > 13 ? E - 13 : E - 1, year = month > 2 ? C - 4716 : C - 4715;
  const double hour = std::floor(f * 24), minute = std::floor((f * 24 - hour) * 60);
  const double second = std::floor(((f * 24 - hour) * 60 - minute) * 60);
  char full[64];
  text.append(full, static_cast<std::size_t>(std::snprintf(full, sizeof full,
                                                           "%04.0f-%02.0f-%02.0f %02.0f:%02.0f:%02.0f", year,
                                                           month, day, hour, minute, second)));
}

/// Writes one text for each of `values` into one string.
template <class Append>
void textRow(const char* name, std::vector<double> (*values)(std::int64_t), Append append) {
  benchmark::RegisterBenchmark(name,
                               [values, append](benchmark::State& state) {
                                 const std::vector<double> numbers = values(state.range(0));
                                 std::string text;
                                 for (auto _ : state) {
                                   text.clear();
                                   for (const double number : numbers) append(text, number);
                                   benchmark::DoNotOptimize(text.data());
                                   benchmark::ClobberMemory();
                                 }
                                 state.SetItemsProcessed(state.iterations() * state.range(0));
                               })
      ->Arg(kSome)
      ->Arg(kMany);
}

std::vector<double> prices(std::int64_t rows) {
  return bars(rows).close;
}

/// Hourly bars, over and over the same thirty years.
std::vector<double> dates(std::int64_t rows) {
  std::vector<double> out;
  for (std::int64_t i = 0; i < rows; ++i) {
    const std::int64_t hour = i % (30 * 365 * 24);
    out.push_back(2444239.5 + static_cast<double>(hour) / 24.0);
  }
  return out;
}

const bool kRegistered = [] {
  textRow("FormatTruncated(4)/engine", prices, [](std::string& s, double x) { appendTruncated(s, x, 4); });
  textRow("FormatTruncated(4)/plain", prices, [](std::string& s, double x) { plainTruncated(s, x, 4); });
  textRow("FormatFixed(20)/engine", prices, [](std::string& s, double x) { appendFixed(s, x, 20); });
  textRow("FormatFixed(20)/plain", prices, [](std::string& s, double x) { plainFixed(s, x, 20); });
  textRow("FormatFixed(4)/engine", prices, [](std::string& s, double x) { appendFixed(s, x, 4); });
  textRow("FormatFixed(4)/plain", prices, [](std::string& s, double x) { plainFixed(s, x, 4); });
  textRow("DateTimeText/engine", dates, [](std::string& s, double x) { appendDateTimeText(s, x); });
  textRow("DateTimeText/plain", dates, [](std::string& s, double x) { plainDateTime(s, x); });
  return true;
}();

}  // namespace
}  // namespace brindlewort::bench

#include <algorithm>
#include <cmath>
#include <string>

#include "bench_support.hpp"
#include "indicators/aroon.hpp"
#include "indicators/directional.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/true_range.hpp"

/// True range, directional movement and Aroon.
namespace brindlewort::bench {
namespace {

constexpr Count kPeriod = 14;

// ---- Textbook loops -----------------------------------------------------------------------------------

double plainRange(const Bars& b, std::size_t i) {
  const double before = b.close[i - 1];
  return std::max(b.high[i] - b.low[i],
                  std::max(std::fabs(b.high[i] - before), std::fabs(before - b.low[i])));
}

void plainTrueRange(const Bars& b, Out out) {
  for (std::size_t i = 1; i < out.size(); ++i) out[i] = plainRange(b, i);
}

void plainSimpleAverage(const Bars& b, Out out) {
  std::vector<double> range(out.size());
  double sum = 0.0;
  for (std::size_t i = 1; i < out.size(); ++i) {
    sum += range[i] = plainRange(b, i);
    if (i > kPeriod) sum -= range[i - kPeriod];
    if (i >= kPeriod) out[i] = sum / kPeriod;
  }
}

void plainWilderAverage(const Bars& b, Out out) {
  double average = 0.0;
  for (std::size_t i = 1; i < out.size(); ++i) {
    average = (average * (kPeriod - 1) + plainRange(b, i)) / kPeriod;
    out[i] = average;
  }
}

template <DirectionalLine line>
void plainMovement(const Bars& b, Out out) {
  constexpr double p = kPeriod;
  double range = 0.0, up = 0.0, down = 0.0, adx = 0.0;
  for (std::size_t i = 1; i < out.size(); ++i) {
    const double rise = b.high[i] - b.high[i - 1], fall = b.low[i - 1] - b.low[i];
    range += (plainRange(b, i) - range) / p;
    if constexpr (line == DirectionalLine::kTrSum) {
      out[i] = range;
      continue;
    }
    up += ((rise > fall && rise > 0 ? rise : 0.0) - up) / p;
    down += ((fall > rise && fall > 0 ? fall : 0.0) - down) / p;
    const double plus = up * 100.0 / range, minus = down * 100.0 / range;
    const double dx = std::fabs(plus - minus) * 100.0 / (plus + minus);
    const double before = adx;
    adx = (adx * (p - 1) + dx) / p;
    out[i] = line == DirectionalLine::kDiPlus    ? plus
             : line == DirectionalLine::kDiMinus ? minus
             : line == DirectionalLine::kDx      ? dx
             : line == DirectionalLine::kAdx     ? adx
                                                 : (adx + before) / 2.0;
  }
}

template <AroonLine line>
void plainAroon(const Bars& b, Out out) {
  constexpr double p = kPeriod;
  for (std::size_t i = kPeriod; i < out.size(); ++i) {
    std::size_t highest = i - kPeriod, lowest = i - kPeriod;
    for (std::size_t j = i - kPeriod + 1; j <= i; ++j) {
      if (line != AroonLine::kDown && b.high[j] >= b.high[highest]) highest = j;
      if (line != AroonLine::kUp && b.low[j] <= b.low[lowest]) lowest = j;
    }
    const double up = (p - static_cast<double>(i - highest)) / p * 100.0;
    const double down = (p - static_cast<double>(i - lowest)) / p * 100.0;
    out[i] = line == AroonLine::kUp ? up : line == AroonLine::kDown ? down : up - down;
  }
}

// ---- Rows ---------------------------------------------------------------------------------------------

using PriceLoop = void (*)(const Bars&, Out);

/// The three rows of an operation over the prices.
template <class Batch, class Resumable>
void add(const std::string& name, Batch batch, PriceLoop plain, Resumable resumable) {
  batchRow((name + "/engine").c_str(), [=](const Bars& b, Out o) { batch(b.prices(), o); });
  batchRow((name + "/plain").c_str(), plain);
  resumedRow((name + "/resumed").c_str(), resumable);
}

void addAverage(const std::string& name, Count type, PriceLoop plain) {
  add(
      name, [=](const Prices& p, Out o) { CFeedkit::AverageTrueRange(p, kPeriod, type, o); }, plain,
      [=](WorkStore& s, const PriceSources& p, Target o) {
        CTechnicalFunctions::AverageTrueRange(s, p, kPeriod, type, o);
      });
}

void addRanges() {
  add("TrueRange", CFeedkit::TrueRange, plainTrueRange,
      [](WorkStore&, const PriceSources& p, Target o) { CTechnicalFunctions::TrueRange(p, o); });
  addAverage("AverageTrueRange simple", kSimple, plainSimpleAverage);
  addAverage("AverageTrueRange Wilder", kWilderRange, plainWilderAverage);
}

template <DirectionalLine line>
void addMovement(const std::string& name) {
  add(
      name, [](const Prices& p, Out o) { CFeedkit::DirectionalMovement(p, kPeriod, 0, 0, line, o); },
      plainMovement<line>,
      [](WorkStore& s, const PriceSources& p, Target o) {
        CTechnicalFunctions::DirectionalMovement(s, p, kPeriod, 0, 0, line, "ADX(14)", o);
      });
}

void addMovements() {
  addMovement<DirectionalLine::kTrSum>("TRSUM");
  addMovement<DirectionalLine::kDiPlus>("DIP");
  addMovement<DirectionalLine::kDiMinus>("DIN");
  addMovement<DirectionalLine::kDx>("DX");
  addMovement<DirectionalLine::kAdx>("ADX");
  addMovement<DirectionalLine::kAdxr>("ADXR");
}

template <AroonLine line>
void addAroon(const std::string& name) {
  add(
      name, [](const Prices& p, Out o) { CFeedkit::AROON(p, kPeriod, line, o); }, plainAroon<line>,
      [](WorkStore& s, const PriceSources& p, Target o) {
        CTechnicalFunctions::AROON(s, p, kPeriod, line, o);
      });
}

void addAroons() {
  addAroon<AroonLine::kUp>("AROON UP");
  addAroon<AroonLine::kDown>("AROON DOWN");
  addAroon<AroonLine::kOscillator>("AROON OSCILLATOR");
  resumedRow("AROSC/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::AROSC(s, p, kPeriod, o);
  });
}

[[maybe_unused]] const bool kRegistered = (addRanges(), addMovements(), addAroons(), true);

}  // namespace
}  // namespace brindlewort::bench

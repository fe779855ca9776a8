#include <cmath>

#include "indicators/macd.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/oscillators.hpp"
#include "plain_averages.hpp"

/// Oscillators of one series, the channel index and MACD.
namespace brindlewort::bench {
namespace {

constexpr Count kPeriod = 14, kShort = 12, kLong = 26, kSignal = 9;

// ---- Textbook loops -----------------------------------------------------------------------------------

void plainStrength(View in, Out out) {
  const double p = kPeriod;
  double gain = 0.0, loss = 0.0;
  for (Count i = 1; i < rowsOf(in); ++i) {
    const double step = in[i] - in[i - 1];
    gain = (gain * (p - 1) + (step > 0 ? step : 0)) / p;
    loss = (loss * (p - 1) + (step < 0 ? -step : 0)) / p;
    out[i] = 100.0 - 100.0 / (1.0 + gain / loss);
  }
}

void plainMomentum(View in, Out out) {
  for (Count i = kPeriod; i < rowsOf(in); ++i) out[i] = in[i] / in[i - kPeriod] * 100.0;
}

void plainChande(View in, Out out) {
  for (Count i = kPeriod; i < rowsOf(in); ++i) {
    double up = 0.0, down = 0.0;
    for (Count j = i - kPeriod + 1; j <= i; ++j) {
      const double step = in[j] - in[j - 1];
      if (step > 0) up += step;
      if (step < 0) down -= step;
    }
    out[i] = (up - down) / (up + down) * 100.0;
  }
}

void plainPriceOscillator(View in, Out out) {
  const std::vector<double> s = plainSimple(in, kShort), l = plainSimple(in, kLong);
  for (Count i = kLong; i < rowsOf(in); ++i) out[i] = (s[i] - l[i]) / l[i] * 100.0;
}

void plainDetrended(View in, Out out) {
  const std::vector<double> m = plainSimple(in, kPeriod);
  const Count shift = kPeriod / 2 + 1;
  for (Count i = shift; i < rowsOf(in); ++i) out[i] = in[i] - m[i - shift];
}

void plainTrix(View in, Out out) {
  const std::vector<double> e =
      plainExponential(plainExponential(plainExponential(in, kPeriod), kPeriod), kPeriod);
  for (Count i = 1; i < rowsOf(in); ++i) out[i] = (e[i] - e[i - 1]) / e[i - 1] * 100.0;
}

void plainFilter(View in, Out out) {
  for (Count i = kPeriod; i < rowsOf(in); ++i) {
    double path = 0.0;
    for (Count j = i - kPeriod + 1; j <= i; ++j) path += std::fabs(in[j] - in[j - 1]);
    out[i] = (plainHighest(in, i - kPeriod + 1, i) - plainLowest(in, i - kPeriod + 1, i)) / path;
  }
}

void plainChannel(const Bars& b, Out out) {
  const Count n = rowsOf(b.close);
  std::vector<double> tp(b.close.size());
  for (Count i = 0; i < n; ++i) tp[i] = (b.high[i] + b.low[i] + b.close[i]) / 3.0;
  const std::vector<double> m = plainSimple(tp, kPeriod);
  for (Count i = kPeriod; i < n; ++i) {
    double sum = 0.0;
    for (Count j = i - kPeriod + 1; j <= i; ++j) sum += std::fabs(tp[j] - m[i]);
    out[i] = (tp[i] - m[i]) / (0.015 * sum / kPeriod);
  }
}

std::vector<double> plainDifference(View in) {
  std::vector<double> s = plainExponential(in, kShort);
  const std::vector<double> l = plainExponential(in, kLong);
  for (std::size_t i = 0; i < s.size(); ++i) s[i] -= l[i];
  return s;
}

void plainMacd(View in, Out out) {
  const std::vector<double> difference = plainDifference(in);
  std::copy(difference.begin(), difference.end(), out.begin());
}

void plainSignal(View in, Out out) {
  const std::vector<double> signal = plainExponential(plainDifference(in), kSignal);
  std::copy(signal.begin(), signal.end(), out.begin());
}

// ---- Rows ---------------------------------------------------------------------------------------------

template <auto loop>
void plainRow(const char* name) {
  batchRow(name, [](const Bars& b, Out out) { loop(b.close, out); });
}

void registerSeriesOscillators() {
  batchRow("RSI/engine", [](const Bars& b, Out o) { CFeedkit::RelativeStrengthIndex(b.close, kPeriod, o); });
  plainRow<plainStrength>("RSI/plain");
  resumedRow("RSI/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::RelativeStrengthIndex(s, p.close, kPeriod, o);
  });
  batchRow("MO/engine", [](const Bars& b, Out o) { CFeedkit::MomentumOscillator(b.close, kPeriod, o); });
  plainRow<plainMomentum>("MO/plain");
  resumedRow("MO/resumed", [](WorkStore&, const PriceSources& p, Target o) {
    CTechnicalFunctions::MomentumOscillator(p.close, kPeriod, o);
  });
  batchRow("CMO/engine",
           [](const Bars& b, Out o) { CFeedkit::ChandeMomentumOscillator(b.close, kPeriod, o); });
  plainRow<plainChande>("CMO/plain");
  resumedRow("CMO/resumed", [](WorkStore&, const PriceSources& p, Target o) {
    CTechnicalFunctions::ChandeMomentumOscillator(p.close, kPeriod, o);
  });
  batchRow("VHF/engine",
           [](const Bars& b, Out o) { CFeedkit::VerticalHorizontalFilter(b.close, kPeriod, o); });
  plainRow<plainFilter>("VHF/plain");
  resumedRow("VHF/resumed", [](WorkStore&, const PriceSources& p, Target o) {
    CTechnicalFunctions::VerticalHorizontalFilter(p.close, kPeriod, o);
  });
}

void registerAverageOscillators() {
  batchRow("PO/engine",
           [](const Bars& b, Out o) { CFeedkit::PriceOscillator(b.close, kShort, kLong, kSimple, o); });
  plainRow<plainPriceOscillator>("PO/plain");
  resumedRow("PO/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::PriceOscillator(s, p.close, kShort, kLong, kSimple, o);
  });
  batchRow("DPO/engine",
           [](const Bars& b, Out o) { CFeedkit::DetrendedPriceOscillator(b.close, kPeriod, kSimple, o); });
  plainRow<plainDetrended>("DPO/plain");
  resumedRow("DPO/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::DetrendedPriceOscillator(s, p.close, kPeriod, kSimple, o);
  });
  batchRow("TRIX/engine", [](const Bars& b, Out o) { CFeedkit::TRIX(b.close, kPeriod, o); });
  plainRow<plainTrix>("TRIX/plain");
  resumedRow("TRIX/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::TRIX(s, p.close, kPeriod, o);
  });
  batchRow("CCI/engine",
           [](const Bars& b, Out o) { CFeedkit::CommodityChannelIndex(b.prices(), kPeriod, kSimple, o); });
  batchRow("CCI/plain", [](const Bars& b, Out o) { plainChannel(b, o); });
  resumedRow("CCI/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::CommodityChannelIndex(s, p, kPeriod, kSimple, o);
  });
}

template <MacdLine line>
void registerMacdLine(const char* engine, const char* resumed) {
  batchRow(engine, [](const Bars& b, Out o) {
    CFeedkit::MACD(b.prices(), kShort, kLong, kSignal, kExponential, line, o);
  });
  resumedRow(resumed, [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::MACD(s, p, kShort, kLong, kSignal, kExponential, line, o);
  });
}

void registerMacd() {
  registerMacdLine<MacdLine::kDifference>("MACD/engine", "MACD/resumed");
  plainRow<plainMacd>("MACD/plain");
  registerMacdLine<MacdLine::kSignal>("MACDSIGNAL/engine", "MACDSIGNAL/resumed");
  plainRow<plainSignal>("MACDSIGNAL/plain");
  resumedRow("MACDHISTOGRAM/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::MACDHISTOGRAM(s, p, kShort, kLong, kSignal, kExponential, o);
  });
}

[[maybe_unused]] const bool kRegistered =
    (registerSeriesOscillators(), registerAverageOscillators(), registerMacd(), true);

}  // namespace
}  // namespace brindlewort::bench

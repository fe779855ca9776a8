#include "indicators/moving_averages.hpp"
#include "indicators/stochastics.hpp"
#include "plain_averages.hpp"

/// Oscillators that place the close within the range of the last bars.
namespace brindlewort::bench {
namespace {

constexpr Count kPeriod = 14, kSlowing = 3, kSmooth = 3, kDouble = 5, kD = 3;

// ---- Textbook loops -----------------------------------------------------------------------------------

std::vector<double> plainK(const Bars& b) {
  std::vector<double> raw(b.close.size());
  for (Count i = kPeriod; i < rowsOf(b.close); ++i) {
    const double hh = plainHighest(b.high, i - kPeriod + 1, i), ll = plainLowest(b.low, i - kPeriod + 1, i);
    raw[i] = (b.close[i] - ll) / (hh - ll) * 100.0;
  }
  return plainSimple(raw, kSlowing);
}

std::vector<double> plainMomentumK(const Bars& b) {
  std::vector<double> num(b.close.size()), den(b.close.size());
  for (Count i = kPeriod; i < rowsOf(b.close); ++i) {
    const double hh = plainHighest(b.high, i - kPeriod, i - 1), ll = plainLowest(b.low, i - kPeriod, i - 1);
    num[i] = b.close[i] - (hh + ll) * 0.5;
    den[i] = hh - ll;
  }
  num = plainSimple(plainSimple(num, kSmooth + 1), kDouble);
  den = plainSimple(plainSimple(den, kSmooth + 1), kDouble);
  for (Count i = kPeriod; i < rowsOf(b.close); ++i) num[i] = num[i] / (den[i] * 0.5) * 100.0;
  return num;
}

void plainWilliams(const Bars& b, Out out) {
  for (Count i = kPeriod; i < rowsOf(b.close); ++i) {
    const double hh = plainHighest(b.high, i - kPeriod + 1, i), ll = plainLowest(b.low, i - kPeriod + 1, i);
    out[i] = (hh - b.close[i]) / (hh - ll) * -100.0;
  }
}

void copyTo(Out out, const std::vector<double>& rows) {
  std::copy(rows.begin(), rows.end(), out.begin());
}

// ---- Rows ---------------------------------------------------------------------------------------------

void registerStochastic() {
  batchRow("SOPK/engine",
           [](const Bars& b, Out o) { CFeedkit::SOPK(b.prices(), kPeriod, kSlowing, kD, kSimple, o); });
  batchRow("SOPK/plain", [](const Bars& b, Out o) { copyTo(o, plainK(b)); });
  resumedRow("SOPK/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::SOPK(s, p, kPeriod, kSlowing, kD, kSimple, o);
  });
  batchRow("SOPD/engine",
           [](const Bars& b, Out o) { CFeedkit::SOPD(b.prices(), kPeriod, kSlowing, kD, kSimple, o); });
  batchRow("SOPD/plain", [](const Bars& b, Out o) { copyTo(o, plainSimple(plainK(b), kD)); });
  resumedRow("SOPD/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::SOPD(s, p, kPeriod, kSlowing, kD, kSimple, o);
  });
}

void registerMomentumIndex() {
  batchRow("SMIK/engine", [](const Bars& b, Out o) {
    CFeedkit::SMIK(b.prices(), kPeriod, kSmooth, kDouble, kD, kSimple, kSimple, o);
  });
  batchRow("SMIK/plain", [](const Bars& b, Out o) { copyTo(o, plainMomentumK(b)); });
  resumedRow("SMIK/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::SMIK(s, p, kPeriod, kSmooth, kDouble, kD, kSimple, kSimple, o);
  });
  batchRow("SMID/engine", [](const Bars& b, Out o) {
    CFeedkit::SMID(b.prices(), kPeriod, kSmooth, kDouble, kD, kSimple, kSimple, o);
  });
  batchRow("SMID/plain", [](const Bars& b, Out o) { copyTo(o, plainSimple(plainMomentumK(b), kD)); });
  resumedRow("SMID/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::SMID(s, p, kPeriod, kSmooth, kDouble, kD, kSimple, kSimple, o);
  });
}

void registerWilliams() {
  batchRow("WPR/engine", [](const Bars& b, Out o) { CFeedkit::WilliamsPctR(b.prices(), kPeriod, o); });
  batchRow("WPR/plain", [](const Bars& b, Out o) { plainWilliams(b, o); });
  resumedRow("WPR/resumed", [](WorkStore&, const PriceSources& p, Target o) {
    CTechnicalFunctions::WilliamsPctR(p, kPeriod, o);
  });
}

[[maybe_unused]] const bool kRegistered =
    (registerStochastic(), registerMomentumIndex(), registerWilliams(), true);

}  // namespace
}  // namespace brindlewort::bench

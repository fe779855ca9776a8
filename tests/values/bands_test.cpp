// Value cases of bands, channels and stops.

#include "values/average_twins.hpp"
#include "values/range_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

constexpr double kInactive = 99999999999999.0;

/// The root of the mean square distance of p rows from the present average.
double spreadOf(const Rows& in, double middle, int p, int i) {
  double sum = 0;
  for (int j = i - p + 1; j <= i; ++j) sum += (nz(in[j]) - nz(middle)) * (nz(in[j]) - nz(middle));
  return std::sqrt(sum / p);
}

/// The mean square less the square of the average.
Rows wholeSdv(const Rows& in, int p, double d, int type) {
  const Rows m = whole::average(in, p, type);
  Rows out = nulls(in);
  for (int i = p + 1; i < countOf(in); ++i) {
    double squares = 0;
    for (int j = i - p + 1; j <= i; ++j) squares += nz(in[j]) * nz(in[j]);
    out[i] = std::sqrt(squares / p - nz(m[i]) * nz(m[i])) * d;
  }
  return out;
}
Rows livingSdv(const Rows& in, int p, double d, int type) {
  const Rows m = living::average(in, p, type);
  Rows out = nulls(in);
  for (int i = std::max(leadOf(in), leadOf(m)); i < countOf(in); ++i) out[i] = spreadOf(in, m[i], p, i) * d;
  return out;
}

/// Sides: 1 top, 0 middle, -1 bottom.
Rows lines(const Rows& middle, const Rows& width, int side, int first) {
  Rows out = nulls(middle);
  for (int i = first; i < countOf(middle); ++i) out[i] = nz(middle[i]) + side * nz(width[i]);
  return out;
}

Rows bollingerOver(const Rows& in, const Rows& m, int p, double d, int side, int first) {
  Rows width = nulls(in);
  for (int i = first; i < countOf(in); ++i) width[i] = spreadOf(in, m[i], p, i) * d;
  return lines(m, width, side, first);
}
Rows wholeBollinger(const Rows& in, int p, double d, int type, int side) {
  const Rows m = whole::average(in, p, type);
  return side == 0 ? m : bollingerOver(in, m, p, d, side, p + 1);
}
Rows livingBollinger(const Rows& in, int p, double d, int type, int side) {
  const Rows m = living::average(in, p, type);
  return side == 0 ? m : bollingerOver(in, m, p, d, side, std::max(leadOf(in), leadOf(m)));
}

Rows scaled(Rows rows, double factor) {
  for (double& x : rows) x = nz(x) * factor;
  return rows;
}
Rows wholeKeltner(B b, int p, int type, double factor, int side) {
  const Rows a = whole::average(reachFrom(b, 2), p, type), m = whole::average(b.close, p, type);
  return side == 0 ? m : lines(m, scaled(a, factor), side, p + 1);
}
Rows livingKeltner(B b, int p, int type, double factor, int side) {
  const Rows a = living::average(reachFrom(b, 1), p, type), m = living::average(b.close, p, type);
  return lines(m, scaled(a, factor), side, std::max(leadOf(a), leadOf(m)));
}

Rows envelopeOver(const Rows& m, double shift, int side, int first) {
  return lines(m, scaled(m, shift / 100), side, first);
}
Rows wholeEnvelope(B b, int p, int type, double shift, int side) {
  return envelopeOver(whole::average(b.close, p, type), shift, side, 1);
}
Rows livingEnvelope(B b, int p, int type, double shift, int side) {
  const Rows m = living::average(b.close, p, type);
  return envelopeOver(m, shift, side, leadOf(m));
}

/// Values below 10 are taken ten times; over the whole history their fraction is cut before, on the other way
/// after.
Rows primeBand(const Rows& in, bool top, bool wholeHistory) {
  Rows out = nulls(in);
  double found = 0;
  for (int i = wholeHistory ? 1 : 0; i < countOf(in); ++i) {
    double x = wholeHistory ? std::trunc(nz(in[i])) : nz(in[i]);
    if (x < 10) x *= 10;
    const auto v = static_cast<long long>(x);
    out[i] = found = top ? primeAbove(v, found) : primeBelow(v, found);
  }
  return out;
}

Rows fractalBand(B b, bool top) {
  const Rows &H = b.high, &L = b.low;
  Rows out = nulls(H);
  for (int i = 4; i < b.count(); ++i) {
    const double h3 = H[i - 2], l3 = L[i - 2];
    const bool high = H[i - 4] < h3 && H[i - 3] < h3 && H[i - 1] < h3 && H[i] < h3;
    const bool low = L[i - 4] >= l3 && L[i - 3] >= l3 && L[i - 1] >= l3 && L[i] >= l3;
    out[i] = top ? (high ? h3 : out[i - 1]) : (low ? l3 : out[i - 1]);
  }
  return out;
}

Rows wholeSar(B b, double min, double max) {
  const Rows &H = b.high, &L = b.low;
  Rows out = nulls(H);
  bool isLong = L[2] - L[1] <= H[2] - H[1];
  double sar = isLong ? L[1] : H[1], epHigh = H[1], epLow = L[1], af = min;
  for (int i = 2; i < b.count(); ++i) {
    const double high = epHigh, low = epLow, factor = af;
    if (isLong) {
      if (H[i] > epHigh) {
        epHigh = H[i];
        if (max > af) af += min;
      }
      sar = (high - sar) * factor + sar;
      if (sar > L[i]) isLong = false, af = min, sar = high, epHigh = 0, epLow = L[i];
    } else {
      if (L[i] < epLow) {
        epLow = L[i];
        if (max > af) af += min;
      }
      sar = (low - sar) * factor + sar;
      if (sar < H[i]) isLong = true, af = min, sar = low, epLow = 0, epHigh = H[i];
    }
    out[i] = sar;
  }
  return out;
}
Rows livingSar(B b, double min, double max) {
  const Rows &H = b.high, &L = b.low;
  Rows out = nulls(H), pos = out, af = out, epMax = out, epMin = out;
  pos[0] = pos[1] = 1;
  af[1] = min, epMax[1] = H[0], epMin[1] = L[0];
  out[1] = L[1];
  for (int i = 2; i < b.count(); ++i) {
    pos[i] = pos[i - 1];
    if (L[i] < out[i - 1] && pos[i - 1] == 1) {
      pos[i] = 0;
    } else if (H[i] > out[i - 1] && pos[i - 2] == 0) {
      pos[i] = 1;
    }
    const bool turns = pos[i] != pos[i - 1];
    const double current = !turns ? out[i - 1] : pos[i] == 1 ? epMin[i - 1] : epMax[i - 1];
    epMax[i] = turns ? H[i] : std::max(H[i], epMax[i - 1]);
    epMin[i] = turns ? L[i] : std::min(L[i], epMin[i - 1]);
    const bool moved = pos[i - 1] == 1 ? epMax[i] != epMax[i - 1] : epMin[i] != epMin[i - 1];
    af[i] = turns ? min : moved && !(af[i - 1] + min > max) ? af[i - 1] + min : af[i - 1];
    out[i] = ((pos[i] == 0 ? epMin[i] : epMax[i]) - current) * af[i] + current;
  }
  return out;
}

/// `first` is the row of the first step; the row before it has trend 1 and the stops given.
Rows superTrend(B b, const Rows& range, double factor, int first, Rows low, Rows high) {
  Rows out = nulls(b.close);
  int trend = 1;
  bool flipped = false;
  for (int i = first; i < b.count(); ++i) {
    const double middle = (b.high[i] + b.low[i]) / 2, r = range[i] * factor;
    const double rising = isNull(low[i - 1]) ? middle - r : std::max(middle - r, low[i - 1]);
    if (trend == 1 && !(low[i - 1] <= b.close[i])) {
      trend = 2;
      high[i] = flipped ? std::min(middle + r, high[i - 1]) : middle + r;
      flipped = true;
    } else if (trend == 1 || high[i - 1] < b.close[i]) {
      trend = 1;
      low[i] = rising;
      high[i] = kInactive;
    } else {
      high[i] = std::min(middle + r, high[i - 1]);
    }
    out[i] = trend == 1 ? low[i] : high[i];
  }
  return out;
}
Rows wholeSuperTrend(B b, int p, double factor) {
  const Rows range = whole::atr(b, p);
  Rows low = nulls(range), high = low;
  low[p + 1] = (b.high[p + 1] + b.low[p + 1]) / 2 - range[p + 1] * factor;
  high[p + 1] = kInactive;
  Rows out = superTrend(b, range, factor, p + 2, low, high);
  out[p + 1] = low[p + 1];
  return out;
}
Rows livingSuperTrend(B b, int p, double factor) {
  const Rows range = living::atr(b, p);
  return superTrend(b, range, factor, leadOf(range), nulls(range), nulls(range));
}

const Family kBands{{
    {{"HHV", "HIGHESTHIGHVALUE"},
     "4",
     [](B b) { return highestBefore(b.high, 4, 5); },
     [](B b) { return highestBefore(b.high, 4, 4); }},
    {{"LLV", "LOWESTLOWVALUE"},
     "4",
     [](B b) { return lowestBefore(b.low, 4, 5); },
     [](B b) { return lowestBefore(b.low, 4, 4); }},
    {{"SDV", "STANDARDDEVIATION"},
     "HIGH, 5, 3, SIMPLE",
     [](B b) { return wholeSdv(b.high, 5, 3, kTypeSimple); },
     [](B b) { return livingSdv(b.high, 5, 3, kTypeSimple); }},
    {{"BBT", "BOLLINGERBANDSTOP"},
     "OPEN, 5, 2.5, SIMPLE",
     [](B b) { return wholeBollinger(b.open, 5, 2.5, kTypeSimple, 1); },
     [](B b) { return livingBollinger(b.open, 5, 2.5, kTypeSimple, 1); }},
    {{"BBM", "BOLLINGERBANDSMIDDLE"},
     "LOW, 4, 2, WEIGHTED",
     [](B b) { return wholeBollinger(b.low, 4, 2, kTypeWeighted, 0); },
     [](B b) { return livingBollinger(b.low, 4, 2, kTypeWeighted, 0); }},
    {{"BBB", "BOLLINGERBANDSBOTTOM"},
     "HIGH, 4, 2, EXPONENTIAL",
     [](B b) { return wholeBollinger(b.high, 4, 2, kTypeExponential, -1); },
     [](B b) { return livingBollinger(b.high, 4, 2, kTypeExponential, -1); }},
    {{"KCT", "KELTNERCHANNELTOP"},
     "5, SIMPLE, 1.5",
     [](B b) { return wholeKeltner(b, 5, kTypeSimple, 1.5, 1); },
     [](B b) { return livingKeltner(b, 5, kTypeSimple, 1.5, 1); }},
    {{"KCM", "KELTNERCHANNELMEDIAN"},
     "5, WEIGHTED, 1.5",
     [](B b) { return wholeKeltner(b, 5, kTypeWeighted, 1.5, 0); },
     [](B b) { return livingKeltner(b, 5, kTypeWeighted, 1.5, 0); }},
    {{"KCB", "KELTNERCHANNELBOTTOM"},
     "4, EXPONENTIAL, 0.5",
     [](B b) { return wholeKeltner(b, 4, kTypeExponential, 0.5, -1); },
     [](B b) { return livingKeltner(b, 4, kTypeExponential, 0.5, -1); }},
    {{"MAET", "MOVINGAVERAGEENVELOPETOP"},
     "4, WEIGHTED, 5",
     [](B b) { return wholeEnvelope(b, 4, kTypeWeighted, 5, 1); },
     [](B b) { return livingEnvelope(b, 4, kTypeWeighted, 5, 1); }},
    {{"MAEB", "MOVINGAVERAGEENVELOPEBOTTOM"},
     "5, SIMPLE, 2.5",
     [](B b) { return wholeEnvelope(b, 5, kTypeSimple, 2.5, -1); },
     [](B b) { return livingEnvelope(b, 5, kTypeSimple, 2.5, -1); }},
    {{"PNBT", "PRIMENUMBERBANDSTOP"},
     "",
     [](B b) { return primeBand(b.high, true, true); },
     [](B b) { return primeBand(b.high, true, false); }},
    {{"PNBB", "PRIMENUMBERBANDSBOTTOM"},
     "",
     [](B b) { return primeBand(b.low, false, true); },
     [](B b) { return primeBand(b.low, false, false); }},
    {{"FCHH", "FRACTALCHAOSBANDSHIGH"}, "5", kUnknown, [](B b) { return fractalBand(b, true); }},
    {{"FCHL", "FRACTALCHAOSBANDSLOW"}, "5", kUnknown, [](B b) { return fractalBand(b, false); }},
    {{"HLBUP", "HIGHLOWBANDSTOP"}, "6", kUnknown, [](B b) { return living::vidya(b.high, 6, 0.8); }},
    {{"HLB", "HIGHLOWBANDSTOPMEDIAN"}, "7", kUnknown, [](B b) { return living::vidya(b.close, 3, 0.8); }},
    {{"HLBDN", "HIGHLOWBANDSTOPBOTTOM"}, "6", kUnknown, [](B b) { return living::vidya(b.low, 6, 0.8); }},
    {{"PSAR", "PARABOLICSAR"},
     "0.05, 0.3",
     [](B b) { return wholeSar(b, 0.05, 0.3); },
     [](B b) { return livingSar(b, 0.05, 0.3); }},
    {{"PSAR"}, "", [](B b) { return wholeSar(b, 0.02, 0.2); }, [](B b) { return livingSar(b, 0.02, 0.2); }},
    {{"PSAR"},
     "0.05",
     [](B b) { return wholeSar(b, 0.05, 0.2); },
     [](B b) { return livingSar(b, 0.05, 0.2); }},
    // A first limit above the second moves the second to 0.1 above the first; what is not above 0 is the
    // default.
    {{"PSAR"},
     "0.3, 0.1",
     [](B b) { return wholeSar(b, 0.3, 0.3 + 0.1); },
     [](B b) { return livingSar(b, 0.3, 0.3 + 0.1); }},
    {{"PSAR"},
     "0, -1",
     [](B b) { return wholeSar(b, 0.02, 0.2); },
     [](B b) { return livingSar(b, 0.02, 0.2); }},
    {{"SUPERT", "SUPERTREND"},
     "5, 1.5",
     [](B b) { return wholeSuperTrend(b, 5, 1.5); },
     [](B b) { return livingSuperTrend(b, 5, 1.5); }},
}};

}  // namespace
}  // namespace brindlewort::testing

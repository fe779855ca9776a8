#pragma once

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include "support/series_checks.hpp"

/// A slow recogniser of candlestick patterns, pattern by pattern, and hand-made candles that
/// fire each pattern that can fire.
namespace brindlewort::testing {

struct Bar4 {
  double O = 0, H = 0, L = 0, C = 0;
};

/// A quiet bar before the made-up candles: true range 1, so that a long body is one above some 1.
inline constexpr Bar4 kQuiet = {100, 100.5, 99.5, 100};

struct MadeUp {
  int id;
  const char* what;
  Bar4 bars[3];
};

/// The candles of the patterns that can fire, oldest first.
inline const std::vector<MadeUp> kFiring = {
    {1, "body of 1.5", {kQuiet, kQuiet, {100, 102, 99.8, 101.5}}},
    {2, "body of a fortieth of the range", {kQuiet, kQuiet, {100, 102, 98, 100.1}}},
    {3, "open and close near the high", {kQuiet, kQuiet, {101.8, 102, 99, 101.9}}},
    {3, "open and close near the low", {kQuiet, kQuiet, {99.2, 102, 99, 99.1}}},
    {4, "falls inside a riser", {kQuiet, {100, 105.2, 99.8, 105}, {103, 103.5, 101.5, 102}}},
    {5, "above a long body", {kQuiet, {100, 103, 99.8, 102.8}, {104.9, 105, 103, 104.2}}},
    {5, "below a long body", {kQuiet, {103, 103.2, 100, 100.2}, {99.4, 99.5, 97.5, 98.9}}},
    {7, "morning", {{110, 110.5, 103.5, 104}, {103, 103.3, 102, 102.8}, {104, 107.2, 103.8, 107}}},
    {8, "evening", {{104, 110.5, 103.5, 110}, {111, 112, 110.7, 111.2}, {110, 110.2, 105.8, 106}}},
    {9, "pierces half of a long faller", {kQuiet, {104, 104.2, 99.8, 100}, {99, 103.2, 98.9, 103}}},
    {10, "engulfs a small riser", {kQuiet, {100, 101, 99.5, 100.5}, {99, 103.2, 98.8, 103}}},
    {11, "hangs between", {{106, 106.5, 105.5, 106}, {102, 102.5, 101.5, 102}, {103.8, 104, 101, 103.9}}},
    {12, "covers half of a riser", {kQuiet, {100, 104.2, 99.8, 104}, {105, 105.2, 100.8, 101}}},
    {14, "doji under a long faller", {kQuiet, {104, 104.2, 99.8, 100}, {99.95, 101, 99, 100}}},
    {15, "shoots from a riser's top", {kQuiet, {100, 103.2, 99.8, 103}, {104.2, 107, 104, 104.1}}},
    {16, "falling body between long shadows", {kQuiet, kQuiet, {101, 102, 99.5, 100.5}}},
    {16, "rising body between long shadows", {kQuiet, kQuiet, {100.5, 102, 99.5, 101}}},
    {17, "doji inside a riser", {{98, 98.5, 97.5, 98.2}, {100, 105.2, 99.8, 105}, {102, 103, 101.5, 102.02}}},
    {19, "soldiers", {{100, 102.1, 99.9, 102}, {101, 103.6, 100.9, 103.5}, {103, 105.1, 102.9, 105}}},
    {20, "crows", {{105, 105.1, 102.9, 103}, {104, 104.1, 101.4, 101.5}, {102, 102.1, 99.9, 100}}},
    {22,
     "fills an upside gap",
     {{100, 102, 99.8, 101.8}, {103.5, 105.2, 103, 105}, {104, 104.2, 101.5, 102.5}}},
    {23,
     "hammer under a rise",
     {{103, 103.5, 102.5, 103}, {104, 104.5, 103.5, 104}, {101.9, 102, 99, 101.8}}},
    {24, "kicks up", {kQuiet, {100, 100, 97, 97}, {102, 105, 102, 105}}},
    {25, "kicks down", {kQuiet, {100, 103, 100, 103}, {98, 98, 95, 95}}},
    {26, "opens at its high", {kQuiet, kQuiet, {104, 104, 100, 100.5}}},
    {27, "closes below its low", {kQuiet, kQuiet, {100, 104, 100, 99.5}}},
    {28, "two crows", {{100, 105.2, 99.8, 105}, {107, 107.2, 105.8, 106}, {106.5, 106.7, 102.8, 103}}},
    {29, "equal lows", {kQuiet, {104, 104.2, 100, 100.5}, {102, 102.2, 100, 100.8}}},
};

struct TwinCandle {
  int type = 0;
  double direction = 0;
  int star = 0;
  Bar4 raw, scaled;
  double lbody = kNull, no = 0, nc = 0, rr = 0;
};

inline double normalise(double hi, double lo, double x) {
  return hi == lo ? 0.0 : (x - lo) / (hi - lo);
}

/// The type of candle 2. `bars` are the three bars (zeros where missing), `lbody` their thresholds.
inline int judgeTwin(const Bar4 (&bars)[3], const double (&lbody)[3], int r) {
  TwinCandle k[3];
  // The scans start at the oldest bar, which thus stands when it is not a number.
  double least = std::fabs(bars[0].H - bars[0].L), greatest = least, hh = bars[0].H, ll = bars[0].L;
  for (int i = 0; i < 3; ++i) {
    k[i].raw = bars[i];
    k[i].lbody = lbody[i];
    k[i].no = normalise(bars[i].H, bars[i].L, bars[i].O);
    k[i].nc = normalise(bars[i].H, bars[i].L, bars[i].C);
    least = std::min(least, std::fabs(bars[i].H - bars[i].L));
    greatest = std::max(greatest, std::fabs(bars[i].H - bars[i].L));
    hh = std::max(hh, bars[i].H);
    ll = std::min(ll, bars[i].L);
  }
  for (TwinCandle& c : k) {
    c.rr = least == greatest ? 1.0 : normalise(greatest, least, std::fabs(c.raw.H - c.raw.L));
    c.scaled = {normalise(hh, ll, c.raw.O), normalise(hh, ll, c.raw.H), normalise(hh, ll, c.raw.L),
                normalise(hh, ll, c.raw.C)};
  }
  static const std::set<int> kLong = {1, 5, 9, 10, 12, 14, 17, 19, 28, 29}, kDojis = {2, 6, 14, 17},
                             kHammers = {3, 11, 15, 23}, kStars = {5, 6};
  bool doji2 = false;
  for (int i = 0; i < 3; ++i) {
    TwinCandle& c = k[i];
    if (kLong.count(r) && std::fabs(c.raw.C - c.raw.O) > c.lbody) {
      if (c.lbody > 0 || (std::fabs(c.no - c.nc) > 0.5 && c.rr >= 0.4)) {
        c.type = 1;
        if (c.raw.O < c.raw.C) c.direction = 1;
        if (c.raw.O > c.raw.C) c.direction = -1;
      }
    }
    if (kDojis.count(r) && std::fabs(c.no - c.nc) < 0.05) {
      c.type = 2;
      c.direction = 0;
      if (i == 2) doji2 = true;
    }
    if (kHammers.count(r)) {
      const double range = c.raw.H - c.raw.L;
      if ((c.raw.O - c.raw.C) * 4 < range) {
        if ((c.raw.C - c.raw.L) / range > 0.7 && (c.raw.O - c.raw.L) / range > 0.7) {
          c.type = 3, c.star = 1, c.direction = 1;
        } else if ((c.raw.H - c.raw.C) / range > 0.7 && (c.raw.H - c.raw.O) / range > 0.7) {
          c.type = 3, c.star = -1, c.direction = 0;
        }
      }
    }
    if (kStars.count(r) && i > 0 && std::fabs(c.no - c.nc) < 0.45 && c.no > 0.8 && c.nc > 0.2) {
      const TwinCandle& before = k[i - 1];
      const Bar4 &x = c.scaled, &p = before.scaled;
      if (p.L + (p.H - p.L) * 0.7 < x.L && std::min(x.O, x.C) > std::max(p.O, p.C) && before.type == 1) {
        c.type = 5, c.star = 1;
      }
      if (p.H + (p.H - p.L) * 0.7 > x.H && std::min(p.O, p.C) > std::max(x.O, x.C) && before.type == 1) {
        c.type = 5, c.star = -1;
      }
    }
  }

  const double O0 = k[0].scaled.O, H0 = k[0].scaled.H, L0 = k[0].scaled.L, C0 = k[0].scaled.C;
  const double O1 = k[1].scaled.O, H1 = k[1].scaled.H, L1 = k[1].scaled.L, C1 = k[1].scaled.C;
  const double O2 = k[2].scaled.O, H2 = k[2].scaled.H, L2 = k[2].scaled.L, C2 = k[2].scaled.C;
  const double O[] = {O0, O1, O2}, H[] = {H0, H1, H2}, L[] = {L0, L1, L2}, C[] = {C0, C1, C2};
  bool found = false;
  switch (r) {
    case 4:
      if (C1 < O1 && O2 < C2 && O1 >= H2 && L2 >= C1) k[1].type = 4;
      found = O1 < C1 && C2 < O2 && C1 >= H2 && L2 >= O1;
      break;
    case 6:
      found = doji2 && k[2].type == 5;
      break;
    case 7:
      found = C0 < O0 && (O0 - C0) / (0.001 + H0 - L0) > 0.6 && O1 < C0 && C1 < O1 &&
              H1 - L1 > (O1 - C1) * 3 && O2 < C2 && O1 < O2;
      break;
    case 8:
      found = O0 < C0 && (C0 - O0) / (0.001 + H0 - L0) > 0.6 && O1 > C0 && O1 < C1 && C2 < O2 && O1 > O2 &&
              H1 - L1 > (C1 - O1) * 3;
      break;
    case 9:
      found = k[1].type == 1 && k[1].direction == -1 && L1 > O2 && (H1 + L1) / 2 <= C2;
      break;
    case 10:
      found = k[2].type == 1 && C2 > O2 && C2 > H1 && O2 < L1 && O1 <= C1;
      break;
    case 11:
      found = k[2].type == 3 && k[2].direction == 1 && k[2].star == 1 && C1 < O2 && C1 < C2 && C2 < C0;
      break;
    case 12:
      found = k[2].type == 1 && O1 < C1 && (O1 + C1) / 2 > C2 && C2 < O2 && H1 < O2 && O1 < C2;
      break;
    case 13:
      found = k[2].type == 1 && C2 < O2 && O2 > H1 && C2 < L1 && O1 <= C1;
      break;
    case 14:
      found = k[1].type == 1 && O1 > C1 && C1 >= O2 && k[2].type == 2;
      break;
    case 15:
      found = C1 > O1 && L1 + (H1 - L1) * 0.7 < O2 && k[2].type == 3 && k[2].star == -1;
      break;
    case 16:
      found = (C2 < O2 && H2 - O2 > O2 - C2 && C2 - L2 > O2 - C2) ||
              (C2 > O2 && H2 - C2 > C2 - O2 && O2 - L2 > C2 - O2);
      break;
    case 17:
      found = k[1].type == 1 && k[1].direction == 1 && k[2].type == 2 && C1 > H2 && O1 < L2 && H0 < L1;
      break;
    case 18:
      found = true;
      for (const TwinCandle& c : k) found = found && c.type == 5 && c.star == 1;
      break;
    case 19:
      found = C0 < C1 && C1 < C2 && O0 < O1 && O1 < O2 && C0 > O1 && C1 > O2;
      for (int i = 0; i < 3; ++i) found = found && O[i] < C[i] && (H[i] - C[i]) / (H[i] - L[i]) < 0.3;
      break;
    case 20:
      found = C0 > C1 && C1 > C2 && O0 > O1 && O1 > O2 && C0 < O1 && C1 < O2;
      for (int i = 0; i < 3; ++i) found = found && C[i] < O[i] && (C[i] - L[i]) / (H[i] - L[i]) < 0.2;
      break;
    case 21:
      found = k[1].type == 2 &&
              ((C0 < O0 && O2 < C2 && H1 < L0 && H1 < L2) || (O0 < C0 && C2 < O2 && H0 < L1 && H2 < L1));
      break;
    case 22:
      found = O0 < C0 && O1 < C1 && H0 < L1 && O1 < O2 && C1 > O2 && L1 > C2 && H0 > L2;
      break;
    case 23:
      found = k[2].type == 3 && k[2].direction == 1 && k[2].star == 1 && C1 > C2 && C0 < C1 &&
              std::fabs(H2 - L2) / 8 > std::fabs(O2 - C2);
      break;
    case 24:
      found = (O1 - C1) / (H1 - L1) > 0.98 && (C2 - O2) / (H2 - L2) > 0.98 && H1 < L2;
      break;
    case 25:
      found = (C1 - O1) / (H1 - L1) > 0.98 && (O2 - C2) / (H2 - L2) > 0.98 && H2 < L1;
      break;
    case 26:
      found = H2 == O2 && (O2 - L2) / (C2 - L2) > 4;
      break;
    case 27:
      found = L2 == O2 && (O2 - H2) / (C2 - L2) > 4;
      break;
    case 28:
      found = k[0].type == 1 && k[0].direction == 1 && H0 < O1 && O1 > C1 && O2 > C2 && C1 < O2 && O1 > O2 &&
              C0 > C2 && O0 < C2;
      break;
    case 29:
      found = k[1].type == 1 && k[1].direction == -1 && O2 > C2 && L1 == L2;
      break;
  }
  return found ? r : k[2].type;
}

inline bool usableTwin(const PriceRows& p, std::size_t row) {
  return p.high[row] != 0 && p.low[row] != 0 && p.close[row] != 0;
}

inline double greatestOf(double a, double b, double c) {
  return std::max(std::max(a, b), c);
}

/// The batch form over the first `n` rows.
inline int batchTwin(const PriceRows& p, std::size_t n, int r) {
  if (n <= 3) return 0;
  std::vector<Bar4> last;  // up to 20 usable bars, newest last
  for (std::size_t row = n; row-- > 0 && last.size() < 20;) {
    if (usableTwin(p, row)) last.insert(last.begin(), {p.open[row], p.high[row], p.low[row], p.close[row]});
  }
  const int m = static_cast<int>(last.size());
  Rows range(m, kNull), lbody(m, kNull);
  for (int i = 2; i < m; ++i) {
    range[i] = greatestOf(last[i].H - last[i].L, std::fabs(last[i].H - last[i - 1].C),
                          std::fabs(last[i - 1].C - last[i].L));
  }
  if (16 < m) {
    double sum = 0;
    for (int j = 16; j >= 2; --j) sum += nz(range[j]);
    lbody[16] = sum / 15;
    for (int i = 17; i < m; ++i) {
      sum -= nz(range[i - 15]);
      sum += nz(range[i]);
      lbody[i] = sum / 15;
    }
  }
  Bar4 bars[3];
  double threshold[3] = {kNull, kNull, kNull};
  for (int k = 2; k >= 0; --k) {
    const int position = m - 3 + k;
    if (position < 0) continue;
    bars[k] = last[position];
    if (position > 0) threshold[k] = lbody[position - 1];
  }
  return judgeTwin(bars, threshold, r);
}

/// All rows of the resumable form.
inline Rows resumableTwin(const PriceRows& p, int r) {
  const std::size_t n = p.close.size();
  Rows out(n, kNull);
  if (n < 3) return out;
  Rows range(n, kNull), average(n, kNull);
  for (std::size_t i = 1; i < n; ++i) {
    range[i] = 0;
    for (double x : {p.high[i] - p.low[i], std::fabs(p.high[i] - p.close[i - 1]),
                     std::fabs(p.close[i - 1] - p.low[i])}) {
      if (x > range[i]) range[i] = x;
    }
  }
  double sum = 0;
  for (std::size_t i = 15; i < n; ++i) {
    if (i == 15) {
      for (std::size_t j = 15; j >= 1; --j) sum += nz(range[j]);
    } else {
      sum -= nz(range[i - 15]);
      sum += nz(range[i]);
    }
    average[i] = sum / 15;
  }
  for (std::size_t row = 2; row < n; ++row) {
    Bar4 bars[3];
    double threshold[3] = {kNull, kNull, kNull};
    int k = 2;
    for (std::size_t j = row + 1; j-- > 0 && k >= 0;) {
      if (!usableTwin(p, j)) continue;
      bars[k] = {p.open[j], p.high[j], p.low[j], p.close[j]};
      threshold[k] = j > 0 ? average[j - 1] : kNull;
      --k;
    }
    out[row] = judgeTwin(bars, threshold, r);
  }
  return out;
}

/// 18 quiet bars and then these three.
inline PriceRows barsWith(const Bar4 (&last)[3]) {
  PriceRows p;
  const auto add = [&](const Bar4& bar) {
    p.open.push_back(bar.O);
    p.high.push_back(bar.H);
    p.low.push_back(bar.L);
    p.close.push_back(bar.C);
    p.volume.push_back(1000);
  };
  for (int i = 0; i < 18; ++i) add(kQuiet);
  for (const Bar4& bar : last) add(bar);
  return p;
}

}  // namespace brindlewort::testing

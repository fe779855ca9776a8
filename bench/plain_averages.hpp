#pragma once

#include "bench_support.hpp"

/// Textbook averages for the hand-written loops that the oscillators stand beside.
namespace brindlewort::bench {

inline std::vector<double> plainSimple(View in, Count p) {
  std::vector<double> out(in.size());
  double sum = 0.0;
  for (Count i = 0; i < rowsOf(in); ++i) {
    sum += in[i];
    if (i >= p) sum -= in[i - p];
    if (i >= p - 1) out[i] = sum / static_cast<double>(p);
  }
  return out;
}

inline std::vector<double> plainExponential(View in, Count p) {
  std::vector<double> out(in.size());
  const double k = 2.0 / (static_cast<double>(p) + 1.0);
  out[0] = in[0];
  for (Count i = 1; i < rowsOf(in); ++i) out[i] = out[i - 1] + (in[i] - out[i - 1]) * k;
  return out;
}

inline double plainHighest(View in, Count first, Count last) {
  double best = in[first];
  for (Count j = first + 1; j <= last; ++j) best = in[j] > best ? in[j] : best;
  return best;
}

inline double plainLowest(View in, Count first, Count last) {
  double best = in[first];
  for (Count j = first + 1; j <= last; ++j) best = in[j] < best ? in[j] : best;
  return best;
}

}  // namespace brindlewort::bench

#include "indicators/moving_averages.hpp"

namespace brindlewort {

namespace {

/// VIDYA has a scale that a type number cannot tell.
constexpr double kVidyaScale = 0.65;

}  // namespace

namespace CFeedkit {

void movingAverageByType(View in, Count p, Count type, Out out) {
  switch (type) {
    case kExponential:
      return ExponentialMovingAverage(in, p, out);
    case kTimeSeries:
      return TimeSeriesMovingAverage(in, p, out);
    case kVariable:
      return VariableMovingAverage(in, p, out);
    case kTriangular:
      return TriangularMovingAverage(in, p, out);
    case kWeighted:
      return WeightedMovingAverage(in, p, out);
    case kVidya:
      return VIDYA(in, p, kVidyaScale, out);
    case kWilder:
      return WellesWilderSmoothing(in, p, out);
    default:
      return SimpleMovingAverage(in, p, out);
  }
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status movingAverageByType(WorkStore& store, Source in, Count p, Count type, Target out) {
  switch (type) {
    case kExponential:
      return ExponentialMovingAverage(in, p, out);
    case kTimeSeries:
      return TimeSeriesMovingAverage(in, p, out);
    case kVariable:
      return VariableMovingAverage(store, in, p, out);
    case kTriangular:
      return TriangularMovingAverage(store, in, p, out);
    case kWeighted:
      return WeightedMovingAverage(in, p, out);
    case kVidya:
      return VIDYA(store, in, p, kVidyaScale, out);
    case kWilder:
      return WellesWilderSmoothing(in, p, out);
    default:
      return SimpleMovingAverage(in, p, out);
  }
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort

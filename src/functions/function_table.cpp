#include "functions/function_table.hpp"

#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "functions/handlers.hpp"
#include "functions/incremental_handlers.hpp"
#include "functions/operation_adapter.hpp"
#include "functions/slots.hpp"
#include "indicators/aroon.hpp"
#include "indicators/bands.hpp"
#include "indicators/candlestick.hpp"
#include "indicators/cycles.hpp"
#include "indicators/directional.hpp"
#include "indicators/ichimoku.hpp"
#include "indicators/macd.hpp"
#include "indicators/mass_index.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/oscillators.hpp"
#include "indicators/percent_swing.hpp"
#include "indicators/pivots.hpp"
#include "indicators/point_figure.hpp"
#include "indicators/price_bases.hpp"
#include "indicators/range_count.hpp"
#include "indicators/regression.hpp"
#include "indicators/stochastics.hpp"
#include "indicators/stops.hpp"
#include "indicators/swing_index.hpp"
#include "indicators/true_range.hpp"
#include "indicators/volume.hpp"

namespace brindlewort {

namespace {

using namespace slots;     // the words that rows are written in
using namespace handlers;  // outputs of the families
using A = const Arguments&;
using I = const IncrementalArguments&;
namespace Tf = CTechnicalFunctions;

// ---- Operations whose arguments are not simply the slots in order
// ---------------------------------------------

template <void (*kernel)(View, View, Out)>
bool withVolume(A a, Out out) {
  kernel(a.view(0), a.prices.volume, out);
  return true;
}

bool averageTrueRange(A a, Out out) {
  CFeedkit::AverageTrueRange(a.prices, a.period(0), kWilderRange, out);
  return true;
}
bool easeOfMovement(A a, Out out) {
  CFeedkit::EaseOfMovement(a.prices, a.period(1), kSimple, out);
  return true;
}
bool envelope(A a, Out out) {
  return CFeedkit::MovingAverageEnvelope(a.prices.close, a.period(0), a.period(1), a.number(2),
                                         static_cast<Band>(a.output), out);
}
bool highestHigh(A a, Out out) {
  CFeedkit::HighestHighValue(a.prices.high, a.period(0), out);
  return true;
}
bool lowestLow(A a, Out out) {
  CFeedkit::LowestLowValue(a.prices.low, a.period(0), out);
  return true;
}
bool tradeVolumeIndex(A a, Out out) {
  CFeedkit::TradeVolumeIndex(a.view(0), a.prices.volume, a.number(1), out);
  return true;
}
bool volumeAdjustedAverage(A a, Out out) {
  CFeedkit::VAA(a.view(0), a.prices.volume, a.period(1), out);
  return true;
}
bool volumeOscillator(A a, Out out) {
  CFeedkit::VolumeOscillator(a.prices.volume, a.period(0), a.period(1), a.period(2), a.period(3), out);
  return true;
}

/// Unusable limits take their defaults, and a first above the second moves the second.
struct SarLimits {
  double first, second;
};
SarLimits sarLimits(double minimum, double maximum) {
  const double first = minimum > 0.0 ? minimum : 0.02;
  const double second = maximum > 0.0 ? maximum : 0.2;
  return {first, first > second ? first + 0.1 : second};
}
bool parabolicSar(A a, Out out) {
  const auto [first, second] = sarLimits(a.number(0), a.number(1));
  CFeedkit::ParabolicSAR(a.prices, first, second, out);
  return true;
}

/// The double smoothing takes the second period; the third is checked and has no effect.
template <void (*kernel)(const Prices&, Count, Count, Count, Count, Count, Count, Out)>
bool stochasticMomentum(A a, Out out) {
  kernel(a.prices, a.period(0), a.period(1), a.period(1), a.period(3), a.period(4), a.period(5), out);
  return true;
}

/// A dry run skips the operation: all rows are 1.
bool percentSwing(A a, Out out) {
  if (a.dryRun) {
    std::fill(out.begin(), out.end(), 1.0);
  } else {
    CFeedkit::PercentSwing(a.prices, a.number(0), 0, static_cast<SwingLine>(a.output), out);
  }
  return true;
}

/// Only the periods that a line needs are given, the others are 0.
template <IchimokuLine line>
bool ichimoku(A a, Out out) {
  const Count p = a.period(0);
  switch (line) {
    case IchimokuLine::kTenkan:
      CFeedkit::Ichimoku(a.prices, p, 0, 0, 0, line, out);
      break;
    case IchimokuLine::kKijun:
      CFeedkit::Ichimoku(a.prices, 0, p, 0, 0, line, out);
      break;
    case IchimokuLine::kSpanA:
      CFeedkit::Ichimoku(a.prices, p, a.period(1), a.period(2), 0, line, out);
      break;
    default:
      CFeedkit::Ichimoku(a.prices, 0, 0, 0, p, line, out);
      break;
  }
  return true;
}

double correlation(A a) {
  return CFeedkit::CORRELATIONANALYSIS(a.view(0), a.view(1));
}

// ---- The same for the incremental way
// ---------------------------------------------

template <auto kernel>
Status withVolume(I a, Target out) {
  if constexpr (std::is_invocable_v<decltype(kernel), WorkStore&, Source, Source, Target>) {
    return kernel(a.store, a.source(0), a.prices.volume, out);
  } else {
    return kernel(a.source(0), a.prices.volume, out);
  }
}

Status averageTrueRange(I a, Target out) {
  return Tf::AverageTrueRange(a.store, a.prices, a.period(0), kWilderRange, out);
}
Status easeOfMovement(I a, Target out) {
  return Tf::EaseOfMovement(a.store, a.prices, a.period(1), kSimple, out);
}
Status envelope(I a, Target out) {
  return Tf::MovingAverageEnvelope(a.store, a.prices.close, a.period(0), a.period(1), a.number(2),
                                   static_cast<Band>(a.output), out);
}
Status highestHigh(I a, Target out) {
  return Tf::HighestHighValue(a.prices.high, a.period(0), out);
}
Status lowestLow(I a, Target out) {
  return Tf::LowestLowValue(a.prices.low, a.period(0), out);
}
Status tradeVolumeIndex(I a, Target out) {
  return Tf::TradeVolumeIndex(a.store, a.source(0), a.prices.volume, a.number(1), out);
}
Status volumeAdjustedAverage(I a, Target out) {
  return Tf::VAA(a.source(0), a.prices.volume, a.period(1), out);
}
Status volumeOscillator(I a, Target out) {
  return Tf::VolumeOscillator(a.store, a.prices.volume, a.period(0), a.period(1), a.period(2), a.period(3),
                              out);
}
Status parabolicSar(I a, Target out) {
  const auto [first, second] = sarLimits(a.number(0), a.number(1));
  return Tf::ParabolicSAR(a.store, a.prices, first, second, out);
}
template <Status (*kernel)(WorkStore&, const PriceSources&, Count, Count, Count, Count, Count, Count, Target)>
Status stochasticMomentum(I a, Target out) {
  return kernel(a.store, a.prices, a.period(0), a.period(1), a.period(1), a.period(3), a.period(4),
                a.period(5), out);
}
Status percentSwing(I a, Target out) {
  return Tf::PercentSwing(a.store, a.prices, a.number(0), 0, static_cast<SwingLine>(a.output), out);
}
Status pointFigure(I a, Target out) {
  return Tf::PointFigure(a.store, a.source(0), a.source(3), a.number(1), a.period(2),
                         static_cast<PointFigureLine>(a.output), out);
}
template <IchimokuLine line>
Status ichimoku(I a, Target out) {
  const Count p = a.period(0);
  switch (line) {
    case IchimokuLine::kTenkan:
      return Tf::Ichimoku(a.store, a.prices, p, 0, 0, 0, 0, line, out);
    case IchimokuLine::kKijun:
      return Tf::Ichimoku(a.store, a.prices, 0, p, 0, 0, 0, line, out);
    case IchimokuLine::kSpanA:
      return Tf::Ichimoku(a.store, a.prices, p, a.period(1), a.period(2), 0, 0, line, out);
    case IchimokuLine::kSpanB:
      return Tf::Ichimoku(a.store, a.prices, 0, 0, 0, p, 0, line, out);
    case IchimokuLine::kChikou:
      break;
  }
  return Tf::Ichimoku(a.store, a.prices, 0, 0, 0, 0, p, line, out);
}

constexpr int id(Band band) {
  return static_cast<int>(band);
}
constexpr int id(AroonLine line) {
  return static_cast<int>(line);
}
constexpr int id(DirectionalLine line) {
  return static_cast<int>(line);
}
constexpr int id(MacdLine line) {
  return static_cast<int>(line);
}
constexpr int id(PivotLevel level) {
  return static_cast<int>(level);
}
constexpr int id(PointFigureLine line) {
  return static_cast<int>(line);
}
constexpr int id(RegressionLine line) {
  return static_cast<int>(line);
}
constexpr int id(SwingLine line) {
  return static_cast<int>(line);
}

// ---- The table
// ------------------------------------------------------------------------------------------------

using namespace CFeedkit;
using Rows = std::vector<FunctionRow>;

// What a wrong count reports; all other rows report "Number of" as an invalid argument.
constexpr Report kCountNotValid = function("Number of argument not valid");
constexpr Report kNumberOf = function("Number of");
constexpr CheckOrder kEmptyFirst = {Check::kEmpty, Check::kSurplus, Check::kNegative, Check::kWhole,
                                    Check::kBind};
constexpr CheckOrder kNegativeFirst = {Check::kSurplus, Check::kNegative, Check::kEmpty, Check::kWhole,
                                       Check::kBind};

std::vector<Slot> macdSlots() {
  return {whole("short cycle periods", 1).outside(invalid("shortCycle")),
          whole("long cycle periods", 1).outside(invalid("longCycle")),
          whole("signal periods", 1).outside(invalid("signalPeriods")), maType()};
}

std::vector<Slot> pointFigureSlots() {
  return {series(),
          literal("box size", 0.005, 99999.9999).empty(required("BoxSize")).outside(function("BoxSize")),
          whole("reversal", 1, 99).empty(required("ReversalSize")).outside(function("ReversalSize"))};
}

// A function a group: the rows of all groups at once would take more stack than threads of some hosts have.
// clang-format off

// -- conditions, loops, references --
Rows conditions() {
  return {
      {.names = {{"IF"}}, .slots = {any("condition"), any("true part"), any("false part")},
       .operation = "IfThenElse", .handler = ifThenElse, .incrementalHandler = incremental::ifThenElse, .required = 3},
      {.names = {{"COUNTIF"}}, .slots = {any("condition")}, .operation = "CountIf", .handler = countIf, .incrementalHandler = incremental::countIf},
      {.names = {{"SUMIF"}}, .slots = {any("condition"), any("vector")}, .operation = "SumIf", .handler = sumIf, .incrementalHandler = incremental::sumIf},
      {.names = {{"LASTIF", kLastIf}, {"REPEATIF", kRepeatIf}}, .slots = {any("condition")},
       .operation = "RunCount", .handler = runCount, .incrementalHandler = incremental::runCount},
      {.names = {{"CROSSOVER"}}, .slots = {any("vector 1"), any("vector 2")}, .operation = "CrossOver",
       .handler = crossOver, .incrementalHandler = incremental::crossOver, .required = 2},
      {.names = {{"REF"}}, .slots = {any("source"), any("periods")}, .operation = "Reference",
       .handler = reference, .incrementalHandler = incremental::reference, .required = 2},
      {.names = {{"LOOP"}}, .slots = {any("vector 1"), any("vector 2"), any("offset 1"), any("offset 2"),
       any("operator")}, .operation = "LoopSeries", .handler = loopSeries, .incrementalHandler = incremental::loopSeries, .required = 5},
      {.names = {{"TREND"}}, .slots = {series(), whole("periods", 2).empty(function("Period argument not valid"))},
       .operation = "TREND", .batch = batch<TREND>, .incremental = resumable<Tf::TREND>, .order = kNegativeFirst},
  };
}

// -- arithmetic, rounding, windows, dates --
Rows arithmetic() {
  return {
      {.names = {{"ABS", kAbs}, {"SIN", kSin}, {"COS", kCos}, {"TAN", kTan}, {"ATN", kAtn}, {"EXP", kExp},
       {"LOG", kLog}, {"LOG10", kLog10}, {"RND", kRnd}}, .slots = {any("source")}, .operation = "MathFunction",
       .handler = mathFunction, .incrementalHandler = incremental::mathFunction},
      {.names = {{"ROUND", kRound}, {"ROUNDUP", kRoundUp}, {"ROUNDDOWN", kRoundDown}},
       .slots = {any("source"), any("digits")}, .operation = "RoundSeries", .handler = roundSeries, .incrementalHandler = incremental::roundSeries, .required = 2},
      {.names = {{"MROUND", kMRound}, {"MROUNDUP", kMRoundUp}, {"MROUNDDOWN", kMRoundDown}},
       .slots = {any("source"), any("multiple")}, .operation = "RoundSeries", .handler = roundSeries, .incrementalHandler = incremental::roundSeries, .required = 2},
      {.names = {{"SUM", kSum}}, .slots = {any("source"), any("periods")}, .operation = "SumSeries",
       .handler = windowFunction, .incrementalHandler = incremental::windowFunction, .required = 2},
      {.names = {{"AVG", kAverage}, {"AVERAGE", kAverage}}, .slots = {any("source"), any("periods")},
       .operation = "AverageSeries", .handler = windowFunction, .incrementalHandler = incremental::windowFunction, .required = 2},
      {.names = {{"MAX", kMax}, {"MIN", kMin}}, .slots = {any("source"), any("periods")},
       .operation = "WindowExtreme", .handler = windowFunction, .incrementalHandler = incremental::windowFunction, .required = 2},
      {.names = {{"MAXOF", kMaxOf}, {"MINOF", kMinOf}}, .slots = {any("vector 1"), any("vector 2"), more("vector 3"),
       more("vector 4"), more("vector 5"), more("vector 6"), more("vector 7"), more("vector 8")},
       .operation = "MaxOfSeries", .handler = extremeOfSeries, .incrementalHandler = incremental::extremeOfSeries, .required = 2},
      {.names = {{"DATEPART"}}, .slots = {any("reference"), any("period")}, .operation = "DatePart",
       .handler = datePart, .incrementalHandler = incremental::datePart, .required = 2},
      {.names = {{"DATEDIFF"}}, .slots = {any("reference 1"), any("reference 2"), any("periods")},
       .operation = "DateDiff", .handler = dateDiff, .incrementalHandler = incremental::dateDiff, .required = 2},
  };
}

// -- moving averages --
Rows movingAverages() {
  return {
      {.names = {{"SMA"}, {"SIMPLEMOVINGAVERAGE"}}, .slots = {series(), whole("periods", 1)},
       .operation = "SimpleMovingAverage", .batch = batch<SimpleMovingAverage>, .incremental = resumable<Tf::SimpleMovingAverage>},
      {.names = {{"EMA"}, {"EXPONENTIALMOVINGAVERAGE"}}, .slots = {series(), whole("periods", 1)},
       .operation = "ExponentialMovingAverage", .batch = batch<ExponentialMovingAverage>, .incremental = resumable<Tf::ExponentialMovingAverage>},
      {.names = {{"TSMA"}, {"TIMESERIESMOVINGAVERAGE"}}, .slots = {series(), whole("periods", 1)},
       .operation = "TimeSeriesMovingAverage", .batch = batch<TimeSeriesMovingAverage>, .incremental = resumable<Tf::TimeSeriesMovingAverage>},
      {.names = {{"VMA"}, {"VARIABLEMOVINGAVERAGE"}}, .slots = {series(), whole("periods", 1)},
       .operation = "VariableMovingAverage", .batch = batch<VariableMovingAverage>, .incremental = resumable<Tf::VariableMovingAverage>,
       .rewrites = Rewrites::kPeriods},
      {.names = {{"TMA"}, {"TRIANGULARMOVINGAVERAGE"}}, .slots = {series(), whole("periods", 1)},
       .operation = "TriangularMovingAverage", .batch = batch<TriangularMovingAverage>, .incremental = resumable<Tf::TriangularMovingAverage>},
      {.names = {{"WMA"}, {"WEIGHTEDMOVINGAVERAGE"}}, .slots = {series(), whole("periods", 1)},
       .operation = "WeightedMovingAverage", .batch = batch<WeightedMovingAverage>, .incremental = resumable<Tf::WeightedMovingAverage>},
      {.names = {{"WWS"}, {"WELLESWILDERSMOOTHING"}}, .slots = {series(), whole("periods", 1)},
       .operation = "WellesWilderSmoothing", .batch = batch<WellesWilderSmoothing>, .incremental = resumable<Tf::WellesWilderSmoothing>},
      {.names = {{"VIDYA"}}, .slots = {series(), whole("periods", 1), number("R2 scale").orElse(0.65)},
       .operation = "VIDYA", .batch = batch<VIDYA>, .incremental = resumable<Tf::VIDYA>},
  };
}

Rows furtherAverages() {
  return {
      {.names = {{"ZLEMA"}, {"ZEROLAGEXPONENTIALMOVINGAVERAGE"}}, .slots = {series(), whole("periods", 1)},
       .operation = "ZEROLAGEXPONENTIALMOVINGAVERAGE", .batch = batch<ZEROLAGEXPONENTIALMOVINGAVERAGE>, .incremental = resumable<Tf::ZEROLAGEXPONENTIALMOVINGAVERAGE>,
       .surplus = kCountNotValid},
      {.names = {{"HA"}, {"HULLAVERAGE"}}, .slots = {series(), whole("periods", 1)}, .operation = "HA",
       .batch = batch<HA>, .incremental = resumable<Tf::HA>, .surplus = kCountNotValid},
      {.names = {{"AMA"}, {"ADAPTIVEMOVINGAVERAGE"}}, .slots = {series(), whole("AMA periods", 1),
       whole("Fast periods", 1), whole("Slow periods", 1)},
       .operation = "ADAPTIVEMOVINGAVERAGE", .batch = batch<ADAPTIVEMOVINGAVERAGE>, .incremental = resumable<Tf::ADAPTIVEMOVINGAVERAGE>, .surplus = kNumberOf},
      {.names = {{"FA"}, {"FACTORAVERAGE"}},
       .slots = {series(), literal("factor", 0, 1).open().empty(required("factor")).outside(
                               function("Factor should be in range 0-1 exclusive of 0 and 1")),
                 whole("start periods", 2, 9999).reports(
                     function("StartSMA should be between 2 to 9999"))},
       .operation = "FACTORAVERAGE", .batch = batch<FACTORAVERAGE>, .incremental = resumable<Tf::FACTORAVERAGE>, .surplus = kNumberOf},
      {.names = {{"VAA"}, {"VOLUMEADJUSTEDAVERAGE"}},
       .slots = {series(), whole("periods", 1).reports(function("Period argument not valid"))},
       .operation = "VAA", .batch = volumeAdjustedAverage, .incremental = volumeAdjustedAverage, .surplus = kCountNotValid},
      {.names = {{"CAVG"}, {"CUMULATIVEAVERAGE"}}, .slots = {series()}, .operation = "CUMULATIVEAVERAGE",
       .batch = batch<CUMULATIVEAVERAGE>, .incremental = resumable<Tf::CUMULATIVEAVERAGE>, .surplus = kCountNotValid},
  };
}

// -- oscillators --
Rows oscillators() {
  return {
      {.names = {{"RSI"}, {"RELATIVESTRENGTHINDEX"}}, .slots = {series(), whole("periods", 2)},
       .operation = "RelativeStrengthIndex", .batch = batch<RelativeStrengthIndex>, .incremental = resumable<Tf::RelativeStrengthIndex>},
      {.names = {{"MO"}, {"MOMENTUMOSCILLATOR"}}, .slots = {series(), whole("periods", 2)},
       .operation = "MomentumOscillator", .batch = batch<MomentumOscillator>, .incremental = resumable<Tf::MomentumOscillator>,
       .incrementalSlots = {series(), whole("periods", 1)}},
      {.names = {{"CMO"}, {"CHANDEMOMENTUMOSCILLATOR"}}, .slots = {series(), whole("periods", 2)},
       .operation = "ChandeMomentumOscillator", .batch = batch<ChandeMomentumOscillator>, .incremental = resumable<Tf::ChandeMomentumOscillator>},
      {.names = {{"PO"}, {"PRICEOSCILLATOR"}},
       .slots = {series(), whole("short term periods"), whole("long term periods"), maType()},
       .operation = "PriceOscillator", .batch = batch<PriceOscillator>, .incremental = resumable<Tf::PriceOscillator>},
      {.names = {{"DPO"}, {"DETRENDEDPRICEOSCILLATOR"}}, .slots = {series(), whole("periods", 2), maType()},
       .operation = "DetrendedPriceOscillator", .batch = batch<DetrendedPriceOscillator>, .incremental = resumable<Tf::DetrendedPriceOscillator>},
      {.names = {{"TRIX"}}, .slots = {series(), whole("periods", 2)}, .operation = "TRIX", .batch = batch<TRIX>, .incremental = resumable<Tf::TRIX>},
      {.names = {{"VHF"}, {"VERTICALHORIZONTALFILTER"}}, .slots = {series(), whole("periods", 2)},
       .operation = "VerticalHorizontalFilter", .batch = batch<VerticalHorizontalFilter>, .incremental = resumable<Tf::VerticalHorizontalFilter>,
       .incrementalSlots = {series(), whole("periods", 1)}},
      {.names = {{"CCI"}, {"COMMODITYCHANNELINDEX"}}, .slots = {whole("periods", 2), maType()},
       .operation = "CommodityChannelIndex", .batch = batch<CommodityChannelIndex>, .incremental = resumable<Tf::CommodityChannelIndex>},
      {.names = {{"SOPK"}, {"STOCHASTICOSCILLATORPCTK"}}, .slots = stochasticSlots(), .operation = "SOPK",
       .batch = batch<SOPK>, .incremental = resumable<Tf::SOPK>},
      {.names = {{"SOPD"}, {"STOCHASTICOSCILLATORPCTD"}}, .slots = stochasticSlots(), .operation = "SOPD",
       .batch = batch<SOPD>, .incremental = resumable<Tf::SOPD>},
      {.names = {{"SMIK"}}, .slots = stochasticMomentumSlots(false), .operation = "SMIK",
       .batch = stochasticMomentum<SMIK>, .incremental = stochasticMomentum<Tf::SMIK>, .incrementalSlots = stochasticMomentumSlots(true)},
      {.names = {{"SMID"}}, .slots = stochasticMomentumSlots(false), .operation = "SMID",
       .batch = stochasticMomentum<SMID>, .incremental = stochasticMomentum<Tf::SMID>, .incrementalSlots = stochasticMomentumSlots(true)},
      {.names = {{"WPR"}, {"WILLIAMSPCTR"}}, .slots = {whole("periods", 2)}, .operation = "WilliamsPctR",
       .batch = batch<WilliamsPctR>, .incremental = resumable<Tf::WilliamsPctR>},
      {.names = {{"MACD", id(MacdLine::kDifference)}, {"MACDS", id(MacdLine::kSignal)},
       {"MACDSIGNAL", id(MacdLine::kSignal)}}, .slots = macdSlots(), .operation = "MACD", .batch = batch<MACD>, .incremental = resumable<Tf::MACD>},
      {.names = {{"MACDH"}, {"MACDHISTOGRAM"}}, .slots = macdSlots(), .operation = "MACDHISTOGRAM",
       .incremental = resumable<Tf::MACDHISTOGRAM>, .path = Path::kIncremental},
      {.names = {{"FCO"}, {"FRACTALCHAOSOSCILLATOR"}}, .slots = {whole("periods", 2)},
       .operation = "FractalChaosOscillator", .batch = batch<FractalChaosOscillator>, .incremental = resumable<Tf::FractalChaosOscillator>},
  };
}

Rows furtherOscillators() {
  return {
      {.names = {{"PNO"}, {"PRIMENUMBEROSCILLATOR"}}, .slots = {series()}, .operation = "PrimeNumberOscillator",
       .batch = batch<PrimeNumberOscillator>, .incremental = resumable<Tf::PrimeNumberOscillator>},
      {.names = {{"RBO"}, {"RAINBOWOSCILLATOR"}}, .slots = {series(), barsNumber("levels"), maType()},
       .operation = "RainbowOscillator", .batch = batch<RainbowOscillator>, .incremental = resumable<Tf::RainbowOscillator>,
       .settles = false},
      {.names = {{"ULTOSC"}, {"ULTIMATEOSCILLATOR"}},
       .slots = {integer("cycle 1", 1), barsNumber("cycle 2"), barsNumber("cycle 3")},
       .operation = "ULTIMATEOSCILLATOR", .incremental = resumable<Tf::ULTIMATEOSCILLATOR>, .path = Path::kIncremental},
      {.names = {{"CRSI"}, {"COMPARATIVERELATIVESTRENGTHINDEX"}}, .slots = {series("series 1"), series("series 2", "OPEN")},
       .operation = "ComparativeRelativeStrength", .batch = batch<ComparativeRelativeStrength>, .incremental = resumable<Tf::ComparativeRelativeStrength>,
       .incrementalSlots = {series("series 1"), series("series 2")}},
      {.names = {{"FST"}, {"FISHERTRANSFORM"}}, .slots = {series(), whole("periods", 1)},
       .operation = "FISHERTRANSFORM", .batch = batch<FISHERTRANSFORM>, .incremental = resumable<Tf::FISHERTRANSFORM>, .surplus = kNumberOf},
      {.names = {{"PFI"}, {"PERFORMANCEINDEX"}}, .slots = {series()}, .operation = "PerformanceIndex",
       .batch = batch<PerformanceIndex>, .incremental = resumable<Tf::PerformanceIndex>},
  };
}

// -- bands, channels, stops --
Rows bands() {
  return {
      {.names = {{"HHV"}, {"HIGHESTHIGHVALUE"}}, .slots = {barsNumber("periods")}, .operation = "HighestHighValue",
       .batch = highestHigh, .incremental = highestHigh},
      {.names = {{"LLV"}, {"LOWESTLOWVALUE"}}, .slots = {barsNumber("periods")}, .operation = "LowestLowValue",
       .batch = lowestLow, .incremental = lowestLow},
      {.names = {{"SDV"}, {"STANDARDDEVIATION"}},
       .slots = {seriesRequired(), barsNumber("periods"), barsNumber("standard deviations"), maType()},
       .operation = "StandardDeviations", .batch = batch<StandardDeviations>, .incremental = resumable<Tf::StandardDeviations>},
      {.names = {{"BBT", id(Band::kTop)}, {"BOLLINGERBANDSTOP", id(Band::kTop)}, {"BBM", id(Band::kMiddle)},
       {"BOLLINGERBANDSMIDDLE", id(Band::kMiddle)}, {"BBB", id(Band::kBottom)}, {"BOLLINGERBANDSBOTTOM", id(Band::kBottom)}},
       .slots = {series(), whole("periods", 2), number("standard deviations"), maType()},
       .operation = "BollingerBands", .batch = batch<BollingerBands>, .incremental = resumable<Tf::BollingerBands>},
      {.names = {{"KCT", id(Band::kTop)}, {"KELTNERCHANNELTOP", id(Band::kTop)}, {"KCM", id(Band::kMiddle)},
       {"KELTNERCHANNELMEDIAN", id(Band::kMiddle)}, {"KCB", id(Band::kBottom)}, {"KELTNERCHANNELBOTTOM", id(Band::kBottom)}},
       .slots = {whole("periods", 2), maType(), number("multiplier")}, .operation = "KeltnerChannel",
       .batch = batch<KeltnerChannel>, .incremental = resumable<Tf::KeltnerChannel>,
       .rewrites = Rewrites::kPeriods},
      {.names = {{"MAET", id(Band::kTop)}, {"MOVINGAVERAGEENVELOPETOP", id(Band::kTop)}, {"MAEB", id(Band::kBottom)},
       {"MOVINGAVERAGEENVELOPEBOTTOM", id(Band::kBottom)}}, .slots = {whole("periods", 2), maType(), number("shift")},
       .operation = "MovingAverageEnvelope", .batch = envelope, .incremental = envelope},
      {.names = {{"PNBT", id(Band::kTop)}, {"PRIMENUMBERBANDSTOP", id(Band::kTop)}, {"PNBB", id(Band::kBottom)},
       {"PRIMENUMBERBANDSBOTTOM", id(Band::kBottom)}}, .operation = "PrimeNumberBands",
       .batch = batch<PrimeNumberBands>, .incremental = resumable<Tf::PrimeNumberBands>, .noArguments = true},
      {.names = {{"FCHH", id(Band::kTop)}, {"FRACTALCHAOSBANDSHIGH", id(Band::kTop)}, {"FCHL", id(Band::kBottom)},
       {"FRACTALCHAOSBANDSLOW", id(Band::kBottom)}}, .slots = {barsNumber("periods")},
       .operation = "FractalChaosBands", .incremental = resumable<Tf::FractalChaosBands>, .path = Path::kIncremental},
      {.names = {{"HLBUP", id(Band::kTop)}, {"HIGHLOWBANDSTOP", id(Band::kTop)}, {"HLB", id(Band::kMiddle)},
       {"HIGHLOWBANDSTOPMEDIAN", id(Band::kMiddle)}, {"HLBDN", id(Band::kBottom)}, {"HIGHLOWBANDSTOPBOTTOM", id(Band::kBottom)}},
       .slots = {barsNumber("periods")}, .operation = "HighLowBands", .incremental = resumable<Tf::HighLowBands>, .path = Path::kIncremental},
      {.names = {{"PSAR"}, {"PARABOLICSAR"}},
       .slots = {barsNumber("minimum AF").orElse(0.02).negative(), barsNumber("maximum AF").orElse(0.2).negative()},
       .operation = "ParabolicSAR", .batch = parabolicSar, .incremental = parabolicSar},
      {.names = {{"SUPERT"}, {"SUPERTREND"}},
       .slots = {whole("periods", 2).empty(function("Period argument not valid"))
                     .outside(function("period argument is not valid")),
                 number("multiplier", 1, 99).empty(function("Multiplier argument not valid"))
                     .outside(function("value should be between 1-99"))},
       .operation = "SUPERTREND", .batch = batch<SUPERTREND>, .incremental = resumable<Tf::SUPERTREND>, .surplus = kCountNotValid, .order = kEmptyFirst},
  };
}

// -- regression and statistics --
Rows statistics() {
  return {
      {.names = {{"R2", id(RegressionLine::kRSquared)}, {"RSQUARED", id(RegressionLine::kRSquared)},
       {"SLOPE", id(RegressionLine::kSlope)}, {"INTERCEPT", id(RegressionLine::kIntercept)},
       {"FORECAST", id(RegressionLine::kForecast)}}, .slots = {seriesRequired(), barsNumber("periods")},
       .operation = "LinearRegression", .batch = batch<LinearRegression>, .incremental = resumable<Tf::LinearRegression>},
      {.names = {{"TSF"}, {"TIMESERIESFORECAST"}}, .slots = {seriesRequired(), barsNumber("periods")},
       .operation = "TIMESERIESFORECAST", .batch = batch<TIMESERIESFORECAST>, .incremental = resumable<Tf::TIMESERIESFORECAST>},
      {.names = {{"CA"}, {"CORRELATIONANALYSIS"}}, .slots = {seriesRequired("series 1"), seriesRequired("series 2")},
       .operation = "CORRELATIONANALYSIS", .scalar = correlation, .incremental = resumable<Tf::CORRELATIONANALYSIS>,
       .incrementalSlots = {seriesRequired("source1"), seriesRequired("source2")}},
      {.names = {{"HVI"}, {"HISTORICALVOLATILITYINDEX"}, {"HISTORICALVOLATILITY"}, {"HISTORICVOLATILITY"},
       {"HISTORICVOLATILITYINDEX"}},
       .slots = {series(), whole("periods", 2), whole("bar history", 2), barsNumber("standard deviations")},
       .operation = "HistoricalVolatilityIndex", .batch = batch<HistoricalVolatilityIndex>, .incremental = resumable<Tf::HistoricalVolatilityIndex>},
      {.names = {{"TS"}, {"TRENDSCORE"}},
       .slots = {series(),
                 whole("reference periods", 1).reports(function("RefPeriods argument not valid")),
                 whole("trend periods", 2).reports(function("TrendPeriods argument not valid"))},
       .operation = "TRENDSCORE", .batch = batch<TRENDSCORE>, .incremental = resumable<Tf::TRENDSCORE>, .surplus = kNumberOf,
       .incrementalSlots = {series(), whole("reference periods", 1).reports(function("RefPeriods")),
                            whole("trend periods", 2)
                                .reports(function("Invalid TrendPeriods(min 2) for indicator"))}},
  };
}

// -- directional movement, ranges --
Rows ranges() {
  return {
      {.names = {{"TR"}, {"TRUERANGE"}}, .operation = "TrueRange", .batch = batch<TrueRange>, .incremental = resumable<Tf::TrueRange>, .noArguments = true},
      {.names = {{"ATR"}, {"AVERAGETRUERANGE"}}, .slots = {whole("periods", 2)},
       .operation = "AverageTrueRange", .batch = averageTrueRange, .incremental = averageTrueRange, .surplus = kCountNotValid},
      {.names = {{"ADX", id(DirectionalLine::kAdx)}, {"ADXR", id(DirectionalLine::kAdxr)},
       {"DX", id(DirectionalLine::kDx)}, {"DIP", id(DirectionalLine::kDiPlus)}, {"DIN", id(DirectionalLine::kDiMinus)}},
       .slots = directionalSlots(), .operation = "DirectionalMovement", .batch = batch<DirectionalMovement>, .incremental = resumable<Tf::DirectionalMovement>},
      {.names = {{"TRSUM", id(DirectionalLine::kTrSum)}}, .slots = directionalSlots(),
       .operation = "DirectionalMovement", .batch = batch<DirectionalMovement>, .path = Path::kWholeHistory},
      {.names = {{"AROONUP", id(AroonLine::kUp)}, {"AROONDOWN", id(AroonLine::kDown)}},
       .slots = {whole("periods", 2)}, .operation = "AROON", .batch = batch<AROON>, .incremental = resumable<Tf::AROON>},
      {.names = {{"AROSC"}}, .slots = {whole("periods", 2)}, .operation = "AROSC", .incremental = resumable<Tf::AROSC>, .path = Path::kIncremental},
      {.names = {{"RUPCOUNT"}, {"RANGEUPCOUNT"}}, .slots = {series(), whole("periods", 1)},
       .operation = "RANGEUPCOUNT", .batch = batch<RANGEUPCOUNT>, .incremental = resumable<Tf::RANGEUPCOUNT>, .surplus = kCountNotValid},
      {.names = {{"RDNCOUNT"}, {"RANGEDOWNCOUNT"}}, .slots = {series(), whole("periods", 1)},
       .operation = "RANGEDOWNCOUNT", .batch = batch<RANGEDOWNCOUNT>, .incremental = resumable<Tf::RANGEDOWNCOUNT>, .surplus = kCountNotValid},
  };
}

// -- volume and money flow --
Rows volumes() {
  return {
      {.names = {{"OBV"}, {"ONBALANCEVOLUME"}}, .slots = {series()}, .operation = "OnBalanceVolume",
       .batch = withVolume<OnBalanceVolume>, .incremental = withVolume<Tf::OnBalanceVolume>},
      {.names = {{"PVT"}, {"PRICEVOLUMETREND"}}, .slots = {series()}, .operation = "PriceVolumeTrend",
       .batch = withVolume<PriceVolumeTrend>, .incremental = withVolume<Tf::PriceVolumeTrend>},
      {.names = {{"PVI"}, {"POSITIVEVOLUMEINDEX"}}, .slots = {series()}, .operation = "PositiveVolumeIndex",
       .batch = withVolume<PositiveVolumeIndex>, .incremental = withVolume<Tf::PositiveVolumeIndex>},
      {.names = {{"NVI"}, {"NEGATIVEVOLUMEINDEX"}}, .slots = {series()}, .operation = "NegativeVolumeIndex",
       .batch = withVolume<NegativeVolumeIndex>, .incremental = withVolume<Tf::NegativeVolumeIndex>},
      {.names = {{"TVI"}, {"TRADEVOLUMEINDEX"}}, .slots = {series(), number("minimum tick value")},
       .operation = "TradeVolumeIndex", .batch = tradeVolumeIndex, .incremental = tradeVolumeIndex},
      {.names = {{"MFI"}, {"MONEYFLOWINDEX"}}, .slots = {whole("periods", 2)}, .operation = "MoneyFlowIndex",
       .batch = batch<MoneyFlowIndex>, .incremental = resumable<Tf::MoneyFlowIndex>},
      {.names = {{"CMF"}, {"CHAIKINMONEYFLOW"}}, .slots = {whole("periods", 2)}, .operation = "ChaikinMoneyFlow",
       .batch = batch<ChaikinMoneyFlow>, .incremental = resumable<Tf::ChaikinMoneyFlow>},
      {.names = {{"VO"}, {"VOLUMEOSCILLATOR"}}, .slots = {whole("short term periods"), whole("long term periods"),
       maType(), integer("points or percent", 1, 2)}, .operation = "VolumeOscillator", .batch = volumeOscillator, .incremental = volumeOscillator},
      {.names = {{"CV"}, {"CHAIKINVOLATILITY"}}, .slots = {integer("periods", 1), barsNumber("rate of change"), maType()},
       .operation = "ChaikinVolatility", .batch = batch<ChaikinVolatility>, .incremental = resumable<Tf::ChaikinVolatility>},
      {.names = {{"PROC"}, {"PRICERATEOFCHANGE"}}, .slots = {seriesRequired(), barsNumber("periods")},
       .operation = "PriceRateOfChange", .batch = batch<PriceRateOfChange>, .incremental = resumable<Tf::PriceRateOfChange>,
       .incrementalSlots = {seriesRequired(), integer("periods", 1).reports(invalid("periods"))}},
      {.names = {{"VROC"}, {"VOLUMERATEOFCHANGE"}}, .slots = {seriesRequired(), barsNumber("periods"), ignored()},
       .operation = "VolumeRateOfChange", .batch = batch<VolumeRateOfChange>, .incremental = resumable<Tf::VolumeRateOfChange>,
       .incrementalSlots = {seriesRequired(), integer("periods", 1).reports(invalid("periods"))}},
      {.names = {{"EOM"}, {"EASEOFMOVEMENT"}}, .slots = {series(), whole("periods", 2)},
       .operation = "EaseOfMovement", .batch = easeOfMovement, .incremental = easeOfMovement},
      {.names = {{"WAD"}, {"WILLIAMSACCUMULATIONDISTRIBUTION"}}, .operation = "WilliamsAccumulationDistribution",
       .batch = batch<WilliamsAccumulationDistribution>, .incremental = resumable<Tf::WilliamsAccumulationDistribution>, .noArguments = true},
  };
}

// -- price bases, pivots, swings --
Rows bases() {
  return {
      {.names = {{"MP"}, {"MEDIANPRICE"}}, .operation = "MEDIANPRICE", .batch = batch<MEDIANPRICE>, .incremental = resumable<Tf::MEDIANPRICE>, .noArguments = true},
      {.names = {{"TP"}, {"TYPICALPRICE"}}, .operation = "TypicalPrice", .batch = batch<TypicalPrice>, .incremental = resumable<Tf::TypicalPrice>, .noArguments = true},
      {.names = {{"HML"}, {"HIGHMINUSLOW"}}, .operation = "HIGHMINUSLOW", .batch = batch<HIGHMINUSLOW>, .incremental = resumable<Tf::HIGHMINUSLOW>, .noArguments = true},
      {.names = {{"WC"}, {"WEIGHTEDCLOSE"}}, .operation = "WeightedClose", .batch = batch<WeightedClose>, .incremental = resumable<Tf::WeightedClose>, .noArguments = true},
      {.names = {{"SPREAD"}}, .slots = {series("series 1"), series("series 2")}, .operation = "SPREAD",
       .incremental = resumable<Tf::SPREAD>, .path = Path::kIncremental},
      {.names = {{"COMPOSITE"}}, .slots = {series("series 1"), series("series 2"), number("factor 1"), number("factor 2")},
       .operation = "COMPOSITE", .incremental = resumable<Tf::COMPOSITE>, .path = Path::kIncremental},
      {.names = {{"PIVOT", id(PivotLevel::kPivot)}, {"RES1", id(PivotLevel::kRes1)}, {"RES2", id(PivotLevel::kRes2)},
       {"RES3", id(PivotLevel::kRes3)}, {"RES4", id(PivotLevel::kRes4)}, {"SUP1", id(PivotLevel::kSup1)},
       {"SUP2", id(PivotLevel::kSup2)}, {"SUP3", id(PivotLevel::kSup3)}, {"SUP4", id(PivotLevel::kSup4)}},
       .operation = "PIVOT", .batch = batch<PIVOT>, .incremental = resumable<Tf::PIVOT>, .argumentsIgnored = true},
      {.names = {{"SI"}, {"SWINGINDEX"}}, .slots = {number("limit move value")}, .operation = "SwingIndex",
       .batch = batch<SwingIndex>, .incremental = resumable<Tf::SwingIndex>},
      {.names = {{"ASI"}, {"ACCUMULATIVESWINGINDEX"}}, .slots = {number("limit move value")},
       .operation = "AccumulativeSwingIndex", .batch = batch<AccumulativeSwingIndex>, .incremental = resumable<Tf::AccumulativeSwingIndex>},
      {.names = {{"MI"}, {"MASSINDEX"}}, .slots = {whole("periods", 2)}, .operation = "MassIndex", .batch = batch<MassIndex>, .incremental = resumable<Tf::MassIndex>},
      {.names = {{"%SWING", id(SwingLine::kLine)}, {"%SWINGD", id(SwingLine::kDirection)}},
       .slots = {literal("swing percent", 0, 99.99).outside(function("value should be between 0-99.99"))
                     .unusable(required("swing percent"))},
       .operation = "PercentSwing", .batch = percentSwing, .incremental = percentSwing, .rewrites = Rewrites::kAll, .surplus = kCountNotValid},
      {.names = {{"%SWINGPTOP", id(SwingLine::kTop)}, {"%SWINGPBOT", id(SwingLine::kBottom)}},
       .slots = {any("swing percent"), any("number of the swing")}, .operation = "PercentSwing",
       .handler = swingLevel, .incrementalHandler = incremental::swingLevel},
      {.names = {{"PFX", id(PointFigureLine::kX)}, {"POINTFIGURECOUNTX", id(PointFigureLine::kX)},
       {"PFO", id(PointFigureLine::kO)}, {"POINTFIGURECOUNTO", id(PointFigureLine::kO)},
       {"PFD", id(PointFigureLine::kDirection)}, {"POINTFIGUREDIRECTION", id(PointFigureLine::kDirection)}},
       .slots = pointFigureSlots(), .operation = "PointFigureSmooth", .batch = batch<PointFigureSmooth>, .incremental = pointFigure,
       .incrementalHandler = {.bind = incremental::bindPointFigure}, .rewrites = Rewrites::kAll,
       .surplus = kNumberOf},
      {.names = {{"CSP"}, {"CANDLESTICKPATTERN"}, {"CANDLESTICKS"}}, .operation = "CandlestickPattern",
       .handler = candlestickPattern, .incrementalHandler = incremental::candlestickPattern, .noArguments = true},
  };
}

// -- Ichimoku lines --
Rows ichimokuLines() {
  return {
      {.names = {{"TENKAN"}}, .slots = {ichimokuPeriod("TenkanPeriods")}, .operation = "Ichimoku",
       .batch = ichimoku<IchimokuLine::kTenkan>, .incremental = ichimoku<IchimokuLine::kTenkan>, .surplus = kNumberOf},
      {.names = {{"KIJUN"}}, .slots = {ichimokuPeriod("KijunPeriods")}, .operation = "Ichimoku",
       .batch = ichimoku<IchimokuLine::kKijun>, .incremental = ichimoku<IchimokuLine::kKijun>, .surplus = kNumberOf},
      {.names = {{"SPANA"}}, .slots = {ichimokuPeriod("TenkanPeriod"), ichimokuPeriod("KijunPeriod"),
       ichimokuPeriod("SpanAPeriod")}, .operation = "Ichimoku", .batch = ichimoku<IchimokuLine::kSpanA>, .incremental = ichimoku<IchimokuLine::kSpanA>,
       .surplus = kNumberOf},
      {.names = {{"SPANB"}}, .slots = {ichimokuPeriod("SpanB")}, .operation = "Ichimoku",
       .batch = ichimoku<IchimokuLine::kSpanB>, .incremental = ichimoku<IchimokuLine::kSpanB>, .surplus = kNumberOf},
      {.names = {{"CHIKOU"}}, .slots = {ichimokuPeriod("ChikouPeriods")}, .operation = "Ichimoku",
       .incremental = ichimoku<IchimokuLine::kChikou>, .rewrites = Rewrites::kPeriods, .path = Path::kIncremental},
  };
}

// clang-format on

Rows makeTable() {
  static constexpr Rows (*kGroups[])() = {
      conditions, arithmetic, movingAverages, furtherAverages, oscillators, furtherOscillators,
      bands,      statistics, ranges,         volumes,         bases,       ichimokuLines};
  Rows table;
  for (const auto group : kGroups) {
    for (FunctionRow& row : group()) table.push_back(std::move(row));
  }
  return table;
}

using Index = std::unordered_map<std::string_view, FoundFunction>;

Index indexOf(Path path) {
  Index index;
  for (const FunctionRow& row : functionTable()) {
    if (row.path != Path::kBoth && row.path != path) continue;
    for (const FunctionName& name : row.names) index.try_emplace(name.name, FoundFunction{&row, name.output});
  }
  return index;
}

}  // namespace

std::span<const FunctionRow> functionTable() {
  static const std::vector<FunctionRow> table = makeTable();
  return table;
}

FoundFunction findFunction(std::string_view name, Path path) {
  static const Index wholeHistory = indexOf(Path::kWholeHistory);
  static const Index incremental = indexOf(Path::kIncremental);
  const Index& index = path == Path::kIncremental ? incremental : wholeHistory;
  const auto at = index.find(name);
  return at == index.end() ? FoundFunction{} : at->second;
}

}  // namespace brindlewort

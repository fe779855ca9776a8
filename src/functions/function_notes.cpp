#include "functions/function_notes.hpp"

namespace brindlewort {

// A null stands in a series as the number -987654321. Functions over the whole history that do not look for
// it compute with that number.

std::span<const OperationNotes> handlerNotes() {
  static constexpr OperationNotes kNotes[] = {
      // -- conditions, loops, references --
      {"IfThenElse",
       "One of two parts, chosen row by row by a condition. A condition is true on a row where it is not "
       "exactly "
       "0, so it is true where it is null.",
       "out[i] = true part[i] if condition[i] is not 0, else false part[i]",
       "rows from 0. A condition that is a single number chooses the last value of one part, and all rows "
       "are 0.",
       "rows from 0; a part without rows gives its value on every row; recomputes the last row."},
      {"CountIf", "On how many rows so far the condition was true.",
       "out[i] = out[i - 1] + 1 if condition[i] is not 0, else out[i - 1]",
       "rows from 0, the count starting from 0; null rows at the head of the condition count as true. A "
       "condition "
       "that is a single number gives 1 or 0, and all rows are 0.",
       "rows from the first row of the condition that is not null; recomputes the last row."},
      {"SumIf", "Running total of a series over the rows on which the condition was true.",
       "out[i] = out[i - 1] + vector[i] if condition[i] is not 0, else out[i - 1]",
       "rows from 0, the total starting from 0; null rows of the condition count as true. A condition that "
       "is a "
       "single number gives the last value of the vector or 0, and all rows are 0.",
       "rows from the first row of the vector that is not null; recomputes the last row."},
      {"RunCount",
       "How many rows ago the condition was last true (LASTIF), and for how many rows it has been true "
       "without a "
       "break (REPEATIF).",
       "LASTIF 0 if condition[i] is not 0, else out[i - 1] + 1; REPEATIF out[i - 1] + 1 if condition[i] is "
       "not 0, "
       "else 0",
       "rows from 0; rows 0 and 1 are 0, whatever the condition. A condition that is a single number other "
       "than 0 "
       "gives 1 for LASTIF and 0 for REPEATIF, a 0 the reverse, and all rows are 0.",
       "rows from the first row of the condition that is not null, rows 0 and 1 following the condition as "
       "all "
       "others; recomputes the last row."},
      {"CrossOver",
       "1 on a row where vector 1 has risen above vector 2 from at or below it, else 0. Values are compared "
       "at four "
       "decimals.",
       "out[i] = 1 if vector 1[i - 1] <= vector 2[i - 1] and vector 1[i] > vector 2[i], else 0",
       "rows from 1; null where a vector is null on the row before; row 1 is null too where a vector is "
       "exactly 0 "
       "on row 0. Row 0 holds the value of vector 2.",
       "first row one behind the longer null head of the two vectors, without a test for nulls; recomputes "
       "the last "
       "row."},
      {"Reference", "The source a number of rows earlier.",
       "out[i] = source[i - periods]; with a series of periods out[i] = source[i - trunc(periods[i])]",
       "0 <= periods <= n - 2; rows from periods, 0 before them. Of a series of periods the last value, "
       "without its "
       "sign, is tested and gives the first row; what it finds loses its fraction, and is null where it lies "
       "outside the source.",
       "0 <= periods <= n; rows from periods, null before them; a series of periods finds values with their "
       "fraction; recomputes the last row."},
      {"LoopSeries",
       "A recursion: each row is made of an earlier row of the result and an earlier row of vector 2. The "
       "result "
       "starts as vector 1, and a row that the operator does not write keeps that.",
       "ADD out[i] = out[i - offset 1] + vector 2[i - offset 2]; SUBTRACT, MULTIPLY and DIVIDE with -, * and "
       "/",
       "both offsets 0 to n; computed from the row of the greater offset on, vector 1 before it. DIVIDE "
       "writes only "
       "where vector 1[i - offset 1] and vector 2[i - offset 2] are not 0; an operator other than these four "
       "writes "
       "nothing.",
       "rows from the longer null head of the two vectors, computed from the row of the greater offset on; "
       "null "
       "where vector 2[i - offset 2] is null, and with DIVIDE where it is 0; recomputes the last row."},

      // -- arithmetic, rounding, windows, dates --
      {"MathFunction",
       "A function of each row's value x: size, sine, cosine and tangent of radians, arctangent, "
       "exponential, natural "
       "and common logarithm; RND draws random numbers.",
       "ABS |x|; SIN sin(x); COS cos(x); TAN tan(x); ATN arctan(x); EXP e^x; LOG ln(x); LOG10 log10(x); "
       "RND r / 32767 * last value of the source, r a random whole number of 0 to 32767, drawn anew for each "
       "row",
       "rows from 0; a null counts as -987654321. The draws of RND follow from the second of the clock in "
       "which the "
       "call is made.",
       "rows from the first row that is not null; null rows stay null; recomputes the last row."},
      {"RoundSeries",
       "Values rounded to a number of decimals: to the nearest (ROUND), away from zero (ROUNDUP) or toward "
       "zero "
       "(ROUNDDOWN). A value is cut to four decimals before anything else, and the result keeps 1e-10 away "
       "from "
       "zero, so that a later cut does not fall one unit short.",
       "v = source[i] cut to four decimals, x = |v| * 10^digits; ROUNDDOWN trunc(x) / 10^digits with the "
       "sign of v; "
       "ROUNDUP (trunc(x) + 1) / 10^digits with the sign of v where x has a fraction at four decimals, else "
       "as "
       "ROUNDDOWN; ROUND as ROUNDUP where the fraction of x is 0.5 or more, else as ROUNDDOWN",
       "rows from 0; a null, an infinity and a non-number give null; 0 where the cut leaves nothing.",
       "rows from 0, as over the whole history; recomputes the last row."},
      {"RoundToMultiple",
       "Values rounded to a multiple of a number: to the nearest (MROUND), away from zero (MROUNDUP) or "
       "toward zero "
       "(MROUNDDOWN); negative values otherwise, see the formula. A value is cut to four decimals before "
       "anything "
       "else, and the result keeps 1e-10 away from zero, so that a later cut does not fall one unit short.",
       "v = source[i] cut to four decimals, q = trunc(v / multiple), r = v - q * multiple; v itself where r "
       "is 0 at "
       "four decimals; for v > 0 MROUNDDOWN q * multiple, MROUNDUP (q + 1) * multiple; for v > 0 MROUND as "
       "MROUNDUP "
       "where 2 * r > multiple, else as MROUNDDOWN; for v < 0 MROUNDUP q * multiple, MROUND and MROUNDDOWN "
       "(q - 1) * multiple",
       "rows from 0; a null, an infinity and a non-number give null; 0 where the cut leaves nothing.",
       "rows from 0, as over the whole history; recomputes the last row."},
      {"SumSeries", "The sum of the last rows.", "out[i] = source[i - periods + 1] + ... + source[i]",
       "1 <= periods; rows from periods - 1, whose sum stands on all rows before it too; a null counts as "
       "-987654321. All rows are 0 for more periods than bars.",
       "1 <= periods; rows from null head + periods - 1, whose sum stands on the rows before it too; "
       "recomputes the "
       "last row."},
      {"AverageSeries",
       "The mean of the last rows in the incremental way. Over the whole history no mean is formed; SMA "
       "gives it "
       "there.",
       "out[i] = (source[i - periods + 1] + ... + source[i]) / periods",
       "1 <= periods; rows 0 to periods - 1 hold the sum of the first window, all later rows 0.",
       "1 <= periods; rows from null head + periods - 1, whose average stands on the rows before it too; "
       "recomputes "
       "the last row."},
      {"WindowExtreme",
       "The highest (MAX) or lowest (MIN) value of the last rows. Values are compared at four decimals; of "
       "equal "
       "ones that of the present row stands, then the oldest.",
       "MAX the greatest of source[i - periods + 1] ... source[i]; MIN the least of them",
       "1 <= periods; rows from periods - 1, whose value stands on all rows before it too; a null counts as "
       "-987654321. All rows are 0 for more periods than bars.",
       "1 <= periods; rows from null head + periods - 1, null before it; null rows of a window are passed "
       "over; "
       "recomputes the last row."},
      {"MaxOfSeries",
       "Row by row the highest (MAXOF) or lowest (MINOF) of two to eight series. Values are compared at four "
       "decimals; of equal ones the earlier argument's stands, that of vector 2 before all others.",
       "MAXOF the greatest of vector 1[i], vector 2[i] ...; MINOF the least of them",
       "rows from 0; a null counts as -987654321.",
       "rows from the longer null head of the series compared; recomputes the last row."},
      {"DatePart", "A part of the date of an earlier bar, in local time.",
       "out[i] = part of DATE[i - reference]: 1 second, 2 minute, 3 hour, 4 day of the month, 5 month, 6 "
       "year",
       "0 <= reference <= n - 2; rows from reference, 0 before them; null for a bar without a date. Of a "
       "series of "
       "references the last value, without its sign, is tested and gives the first row; null where one leads "
       "outside the bars.",
       "0 <= reference <= n; rows from reference, null before them; recomputes the last row."},
      {"DateDiff",
       "The time from the date of one earlier bar to that of another, in whole units, the rest being cut.",
       "out[i] = trunc(seconds from DATE[i - reference 2] to DATE[i - reference 1] / unit): 1 seconds, 2 "
       "minutes, "
       "3 hours, 4 days",
       "0 <= references <= n - 2; rows from the greater reference; null for a filler bar and for a bar "
       "without a "
       "date.",
       "0 <= references <= n; rows from the greater reference; null as over the whole history; recomputes "
       "the last "
       "row."},
  };
  return kNotes;
}

std::span<const ArgumentNotes> argumentNotes() {
  static constexpr std::string_view kSeriesOrNumber = "series or number";
  static constexpr std::string_view kCondition = "one comparison, without AND and OR";
  static constexpr std::string_view kWindow =
      "number of rows, at least 1; of a series the last value, without sign and fraction";
  static constexpr std::string_view kBack =
      "number of bars back; or a series of such numbers, a row's own being taken for each row";
  static constexpr std::string_view kPercent = "number, 0 to 99.99";
  static constexpr std::string_view kSide =
      "whole number, 2 to the number of bars; that of the periods when left out";
  static const std::vector<ArgumentNotes> notes = {
      {"IF", {kCondition, kSeriesOrNumber, kSeriesOrNumber}},
      {"COUNTIF", {kCondition}},
      {"SUMIF", {kCondition, kSeriesOrNumber}},
      {"LASTIF", {kCondition}},
      {"CROSSOVER", {kSeriesOrNumber, kSeriesOrNumber}},
      {"REF", {kSeriesOrNumber, kBack}},
      {"LOOP",
       {"series or number, without AND and OR", kSeriesOrNumber,
        "number of rows back; of a series the last value, without sign and fraction",
        "number of rows back; of a series the last value, without sign and fraction",
        "ADD, SUBTRACT, MULTIPLY or DIVIDE"}},
      {"ABS", {kSeriesOrNumber}},
      {"ROUND", {kSeriesOrNumber, "number above 0, no series; its whole part counts"}},
      {"MROUND", {kSeriesOrNumber, "number above 0, no series"}},
      {"SUM", {kSeriesOrNumber, kWindow}},
      {"AVG", {kSeriesOrNumber, kWindow}},
      {"MAX", {kSeriesOrNumber, kWindow}},
      {"MAXOF",
       {kSeriesOrNumber, kSeriesOrNumber, "series or number; may be left out",
        "series or number; may be left out", "series or number; may be left out",
        "series or number; may be left out", "series or number; may be left out",
        "series or number; may be left out"}},
      {"DATEPART", {kBack, "the part, 1 to 6"}},
      {"DATEDIFF", {kBack, kBack, "the unit, 1 to 4"}},
      {"ADX", {"whole number, 2 to the number of bars", kSide, kSide}},
      {"TRSUM", {"whole number, 2 to the number of bars", kSide, kSide}},
      {"%SWINGPTOP",
       {kPercent, "number, 0 to 10, 0 being the latest swing; of a series the last value, without sign"}},
  };
  return notes;
}

std::span<const CallNote> callNotes() {
  static constexpr CallNote kNotes[] = {
      {"FA", "p is the start periods."},
      {"VAA", "The weights are VOLUME."},
      {"AMA", "p is the AMA periods."},
      {"SMIK",
       "kDouble is the number given as %K smooth: what is given as %K double periods is checked and has no "
       "effect."},
      {"SMID",
       "kDouble is the number given as %K smooth: what is given as %K double periods is checked and has no "
       "effect."},
      {"HHV", "The series is HIGH."},
      {"LLV", "The series is LOW."},
      {"MAET", "The average is that of CLOSE."},
      {"PSAR",
       "A number that is missing or not above 0 is replaced by 0.02 and 0.2. A minimum above the maximum "
       "moves the maximum to the minimum + 0.1."},
      {"CA",
       "a is series 1, b series 2. Over the whole history the figure is the value of the call, and all rows "
       "are 0. In the incremental way "
       "all rows stay null."},
      {"SDV", "deviations is the standard deviations."},
      {"BBT", "deviations is the standard deviations."},
      {"HVI", "deviations is the standard deviations."},
      {"VIDYA", "scale is the R2 scale."},
      {"CRSI", "a is series 1, b series 2."},
      {"SPREAD", "a is series 1, b series 2."},
      {"COMPOSITE", "a is series 1, b series 2; x is factor 1, y factor 2."},
      {"KCT", "factor is the multiplier."},
      {"SUPERT", "factor is the multiplier, range the average true range."},
      {"SI", "limitMove is the limit move value."},
      {"ASI", "limitMove is the limit move value."},
      {"%SWING", "percent is the swing percent."},
      {"%SWINGPTOP", "percent is the swing percent, swingNumber the number of the swing."},
      {"TS", "p is the reference periods, count the trend periods."},
      {"ATR", "The average is Wilder's."},
      {"ADX", "DIP is DI+, DIN is DI-. The DI- periods are the second period, the DI+ periods the third."},
      {"OBV", "volume is VOLUME."},
      {"PVT", "volume is VOLUME."},
      {"PVI", "volume is VOLUME."},
      {"NVI", "volume is VOLUME."},
      {"TVI", "volume is VOLUME, minimumTick the minimum tick value."},
      {"VO", "The averages are those of VOLUME."},
      {"VROC", "The source is the volume: VROC(VOLUME, 10)."},
      {"EOM", "The source has no effect: the prices and the volume of the bars are read."},
      {"PIVOT", "What stands in the brackets is not looked at."},
      {"PFX",
       "In the incremental way the source HIGHLOW takes highs for the rising and lows for the falling "
       "column; "
       "a call without a source stops the script there."},
      {"CSP",
       "CSP() = DOJI asks for a pattern. Over the whole history, while an output is asked of the script, "
       "each "
       "row is 1 where the pattern stands and 0 elsewhere; otherwise the result is one figure, the type of "
       "the newest candle, without rows."},
      {"SPANB", "The window of its middle is always 52 rows."},
  };
  return kNotes;
}

std::span<const FunctionGroup> functionGroups() {
  static constexpr FunctionGroup kGroups[] = {
      {"IF", "Conditions, loops and references"},
      {"ABS", "Arithmetic, rounding, windows and dates"},
      {"SMA", "Moving averages"},
      {"RSI", "Oscillators"},
      {"HHV", "Bands, channels and stops"},
      {"R2", "Regression and statistics"},
      {"TR", "Ranges and directional movement"},
      {"OBV", "Volume, money flow and rates of change"},
      {"MP", "Price bases, pivots, swings and patterns"},
      {"TENKAN", "Ichimoku lines"},
  };
  return kGroups;
}

std::span<const ConstantGroup> constantGroups() {
  static const std::vector<ConstantGroup> groups = {
      {"Moving average types",
       "For every argument called a moving average type: a word, or a number above 0 and below 9, whose "
       "whole part "
       "counts. n and first rows are those of the average named.",
       "PO(CLOSE, 5, 20, SIMPLE) > 0",
       {{"SIMPLE", 1, "SMA"},
        {"EXPONENTIAL", 2, "EMA"},
        {"TIME_SERIES", 3, "TSMA"},
        {"VARIABLE", 4, "VMA"},
        {"TRIANGULAR", 5, "TMA"},
        {"WEIGHTED", 6, "WMA"},
        {"VOLATILITY", 7,
         "VIDYA with the R2 scale 0.65. The word VIDYA is understood too, but not as %D moving "
         "average type of SMIK and SMID over the whole history"},
        {"WILDER", 8, "WWS"},
        {"ZLEMA", 9, "refused as a type; the function ZLEMA exists"},
        {"HULL", 10, "refused as a type; the function HA exists"}}},
      {"Operators of LOOP",
       "",
       "LOOP(CLOSE, OPEN, 1, 0, ADD) > 0",
       {{"ADD", 1, "the earlier row plus vector 2"},
        {"SUBTRACT", 2, "the earlier row less vector 2"},
        {"MULTIPLY", 3, "the earlier row times vector 2"},
        {"DIVIDE", 4, "the earlier row divided by vector 2"},
        {"MOD", 5, "no operator of LOOP: the result stays vector 1"}}},
      {"Directions",
       "What TREND answers.",
       "TREND(CLOSE, 5) = UP",
       {{"UP", 1, "the series rises"}, {"DOWN", 2, "the series falls"}, {"SIDEWAYS", 3, "neither"}}},
      {"Units",
       "The last argument of VO.",
       "VO(5, 20, SIMPLE, POINTS) > 0",
       {{"POINTS", 1, "the distance of the averages"}, {"PERCENT", 2, "the distance in percent"}}},
      {"Truth and circle",
       "",
       "CROSSOVER(CLOSE, OPEN) = TRUE",
       {{"TRUE", 1, "what a condition that holds gives"},
        {"FALSE", 0, "what a condition that fails gives"},
        {"PI", 3.1415927410125732, "the circle's circumference by its diameter, in single precision"}}},
      {"Candlestick patterns",
       "What CSP() is compared with. The candle before is that of the bar before; a long body is longer than "
       "the "
       "average true range.",
       "CSP() = LONG_BODY",
       {{"LONG_BODY", 1, "a long body"},
        {"DOJI", 2, "open and close less than a twentieth of the bar's range apart"},
        {"HAMMER", 3,
         "open and close both in the upper or both in the lower three tenths of the bar; a falling body is "
         "shorter than a quarter of it"},
        {"HARAMI", 4, "a falling candle that lies within the body of the rising candle before it"},
        {"STAR", 5, "a body of less than half its bar, above or below the body of the long candle before it"},
        {"DOJI_STAR", 6, "a doji that is a star"},
        {"MORNING_STAR", 7,
         "a falling candle, a small falling body that opens below its close, then a rising candle "
         "that opens above that body's open"},
        {"EVENING_STAR", 8,
         "a rising candle, a small rising body that opens above its close, then a falling candle "
         "that opens below that body's open"},
        {"PIERCING_LINE", 9,
         "after a long falling candle an open below its low and a close at or above its middle"},
        {"BULLISH_ENGULFING_LINE", 10,
         "a long rising body that covers the whole of a candle that did not fall"},
        {"HANGING_MAN", 11,
         "a hammer with its body at the top, above the close before and below that before it"},
        {"DARK_CLOUD_COVER", 12,
         "after a rising candle a long falling one that opens above its high and closes in "
         "the lower half of its body"},
        {"BEARISH_ENGULFING_LINE", 13,
         "a long falling body that covers the whole of a candle that did not fall"},
        {"BEARISH_DOJI_STAR", 14, "a doji that opens at or below the close of a long falling candle"},
        {"BEARISH_SHOOTING_STAR", 15,
         "a hammer with its body at the bottom, opening in the upper three tenths of a "
         "rising candle or above it"},
        {"SPINNING_TOPS", 16, "shadows on both sides that are longer than the body"},
        {"HARAMI_CROSS", 17,
         "a doji within the body of a long rising candle that lies above the candle before it"},
        {"BULLISH_TRISTAR", 18, "three upward stars"},
        {"THREE_WHITE_SOLDIERS", 19,
         "three rising candles, each opening in the body before and closing higher, near "
         "its own high"},
        {"THREE_BLACK_CROWS", 20,
         "three falling candles, each opening in the body before and closing lower, near "
         "its own low"},
        {"ABANDONED_BABY", 21,
         "a doji with a gap on either side, between a fall and a rise or a rise and a fall"},
        {"BULLISH_UPSIDE_GAP", 22,
         "two rising candles with a gap between them, then one that opens in the body of "
         "the second and closes below its low, with a low under the high of the first"},
        {"BULLISH_HAMMER", 23,
         "a hammer with its body at the top, the body less than an eighth of the bar, closing "
         "below a close that was higher than the one before it"},
        {"BULLISH_KICKING", 24,
         "a falling and a rising candle, both nearly all body, with a gap upward between them"},
        {"BEARISH_KICKING", 25,
         "a rising and a falling candle, both nearly all body, with a gap downward between "
         "them"},
        {"BEARISH_BELT_HOLD", 26, "an open at the high and a close in the lowest quarter of the bar"},
        {"BULLISH_BELT_HOLD", 27, "an open at the low and a close below it: never on sound prices"},
        {"BEARISH_TWO_CROWS", 28,
         "above a long rising candle a gap and two falling ones, the second opening in the "
         "body of the first and closing in that of the long one"},
        {"BULLISH_MATCHING_LOW", 29, "a falling candle with the low of the long falling candle before it"}}},
  };
  return groups;
}

}  // namespace brindlewort

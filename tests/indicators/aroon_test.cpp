#include "indicators/aroon.hpp"

#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr AroonLine kLines[] = {AroonLine::kUp, AroonLine::kDown, AroonLine::kOscillator};

BatchOperation batch(Count p, AroonLine line) {
  return [=](const Prices& prices, Out out) { CFeedkit::AROON(prices, p, line, out); };
}
Operation resumable(Count p, AroonLine line) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::AROON(store, prices, p, line, out);
  };
}
Operation oscillator(Count p) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::AROSC(store, prices, p, out);
  };
}

/// The three lines of row i, each window scanned in the order of `rows`.
double literalRow(const PriceRows& prices, Count i, Count p, const std::vector<Count>& rows, AroonLine line) {
  Count highRow = i, lowRow = i;
  double highest = prices.high[i], lowest = prices.low[i];
  for (Count j : rows) {
    if (prices.high[j] > highest) highest = prices.high[j], highRow = j;
    if (prices.low[j] < lowest) lowest = prices.low[j], lowRow = j;
  }
  const double periods = static_cast<double>(p);
  const double up = (periods - static_cast<double>(i - highRow)) / periods * 100;
  const double down = (periods - static_cast<double>(i - lowRow)) / periods * 100;
  return line == AroonLine::kUp ? up : line == AroonLine::kDown ? down : up - down;
}

Rows literalBatch(const PriceRows& prices, Count p, AroonLine line) {
  const Count n = rowsOf(prices.close);
  Rows out(prices.close.size(), kNull);
  for (Count i = p + 1; i < n; ++i) {
    std::vector<Count> oldestFirst;
    for (Count j = i - p; j <= i - 1; ++j) oldestFirst.push_back(j);
    out[i] = literalRow(prices, i, p, oldestFirst, line);
  }
  return out;
}

Rows literalResumable(const PriceRows& prices, Count p, AroonLine line, Count first) {
  const Count n = rowsOf(prices.close);
  Rows out(prices.close.size(), kNull);
  for (Count i = first; i < n; ++i) {
    std::vector<Count> newestFirst;
    for (Count j = i - 1; j >= i - p + 1; --j) newestFirst.push_back(j);
    out[i] = literalRow(prices, i, p, newestFirst, line);
  }
  return out;
}

PriceRows highsAndLows(const Rows& high, const Rows& low) {
  return {high, high, low, low, high};
}

TEST(Aroon, BatchIsTheScan) {
  for (Count p : {1, 2, 5}) {
    forEachShortSeries(static_cast<int>(5 * p), [p](const PriceRows& prices) {
      for (AroonLine line : kLines) {
        EXPECT_TRUE(sameRows(literalBatch(prices, p, line), runBatch(prices, batch(p, line))));
      }
    });
  }
}

TEST(Aroon, FirstResumableCallIsTheScan) {
  for (Count p : {1, 2, 5}) {
    forEachShortSeries(static_cast<int>(5 * p), [p](const PriceRows& prices) {
      for (AroonLine line : kLines) {
        EXPECT_TRUE(
            sameRows(literalResumable(prices, p, line, p - 1), runResumable(prices, resumable(p, line))));
      }
      const Count lead = std::max(firstValueIndex(prices.high), firstValueIndex(prices.low));
      EXPECT_TRUE(sameRows(literalResumable(prices, p, AroonLine::kOscillator, lead + p - 1),
                           runResumable(prices, oscillator(p))));
    });
  }
}

TEST(Aroon, LongWindowsOverRisingAndFallingPricesAreTheScan) {
  const PriceRows rising = makePrices(Shape::kRising, 300), steps = makePrices(Shape::kSteps, 300);
  for (const PriceRows& prices : {rising, steps}) {
    for (AroonLine line : kLines) {
      EXPECT_TRUE(sameRows(literalBatch(prices, 60, line), runBatch(prices, batch(60, line))));
      EXPECT_TRUE(
          sameRows(literalResumable(prices, 60, line, 59), runResumable(prices, resumable(60, line))));
    }
  }
}

// Row 5 looks back over rows 1 to 4 in batch: highest high 9 at row 2, lowest low 1 at row 4.
TEST(Aroon, BatchByHand) {
  const PriceRows prices = highsAndLows({20, 5, 9, 6, 7, 8}, {0, 4, 3, 2, 1, 2});
  EXPECT_EQ((4 - 3) / 4.0 * 100, runBatch(prices, batch(4, AroonLine::kUp))[5]);
  EXPECT_EQ((4 - 1) / 4.0 * 100, runBatch(prices, batch(4, AroonLine::kDown))[5]);
  EXPECT_EQ(25.0 - 75, runBatch(prices, batch(4, AroonLine::kOscillator))[5]);
  EXPECT_TRUE(isNull(runBatch(prices, batch(4, AroonLine::kUp))[4]));
}

// Row 3 looks back over rows 0 to 2 in the resumable form: one row less, and it has a value two rows earlier.
TEST(Aroon, ResumableByHand) {
  const PriceRows prices = highsAndLows({20, 5, 9, 6, 7, 8}, {0, 4, 3, 2, 1, 2});
  const Rows up = runResumable(prices, resumable(4, AroonLine::kUp));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 25, 50, 25}, up));
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, kNull, 25, 100, 75}, runResumable(prices, resumable(4, AroonLine::kDown))));
}

TEST(Aroon, EqualHighsOverAWholeBatchWindowGiveUp100) {
  const PriceRows prices = makePrices(Shape::kFlat, 12);
  const Rows up = runBatch(prices, batch(5, AroonLine::kUp));
  for (Count i = 6; i < 12; ++i) EXPECT_EQ(100.0, up[i]);
}

TEST(Aroon, OfEqualOlderHighsTheOldestStandsInBatchAndTheNewestInTheResumableForm) {
  const PriceRows prices = highsAndLows({1, 9, 9, 9, 1, 1}, {0, 0, 0, 0, 0, 0});
  EXPECT_EQ((4 - 4) / 4.0 * 100, runBatch(prices, batch(4, AroonLine::kUp))[5]);
  EXPECT_EQ((4 - 2) / 4.0 * 100, runResumable(prices, resumable(4, AroonLine::kUp))[5]);
}

/// A store that tells which work series it was asked for.
struct AskedStore : TestStore {
  using TestStore::TestStore;
  WorkField field(std::string_view name, std::initializer_list<KeyPart> parts) override {
    asked.emplace_back(name);
    return TestStore::field(name, parts);
  }
  std::vector<std::string> asked;
};

TEST(Aroon, TheOscillatorFormsNoWorkSeriesWhileItHasNoRow) {
  const PriceRows prices = highsAndLows({kNull, kNull, 9, 8, 7}, {kNull, kNull, 1, 2, 3});
  for (const std::size_t rows : {4u, 5u}) {
    AskedStore store(rows);
    Rows out(rows, kNull);
    std::int32_t slot = -1;
    // The lead is 2, so that the first of its windows of 3 rows ends in row 4.
    const Status status = CTechnicalFunctions::AROSC(store, sourcesOf(prices, rows), 3, {out, &slot});
    EXPECT_EQ(status, rows == 5 ? kDone : kNothingDone);
    EXPECT_EQ(store.asked, rows == 5 ? (std::vector<std::string>{"AROONUP", "AROONDOWN", "AROON"})
                                     : std::vector<std::string>());
  }
}

TEST(Aroon, ANonNumberInThePresentRowIsNeverBeaten) {
  const PriceRows prices = highsAndLows({1, 9, 9, 9, kNaN}, {0, 0, 0, 0, kNaN});
  EXPECT_EQ(100.0, runBatch(prices, batch(3, AroonLine::kUp))[4]);
  EXPECT_EQ(100.0, runResumable(prices, resumable(3, AroonLine::kDown))[4]);
}

TEST(Aroon, WindowOfOneRowIsItsOwnExtremeInTheResumableForm) {
  const PriceRows prices = makePrices(Shape::kWalk, 5);
  EXPECT_TRUE(sameRows(Rows(5, 100.0), runResumable(prices, resumable(1, AroonLine::kUp))));
  EXPECT_TRUE(sameRows(Rows(5, 0.0), runResumable(prices, oscillator(1))));
}

TEST(Aroon, PeriodOutOfRange) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  for (Count p : {Count{INT32_MIN}, Count{-1}, Count{0}, Count{11}, Count{INT32_MAX}}) {
    for (AroonLine line : kLines) {
      EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batch(p, line))));
      expectNothingDone(prices, resumable(p, line));
    }
    expectNothingDone(prices, oscillator(p));
  }
  EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batch(10, AroonLine::kUp))));
  EXPECT_FALSE(isNull(runResumable(prices, resumable(10, AroonLine::kUp))[9]));
}

TEST(Aroon, StreamsLikeOneCall) {
  for (Count p : {1, 2, 7}) {
    for (AroonLine line : kLines) expectStreamsOverAllShapes(resumable(p, line));
    expectStreamsOverAllShapes(oscillator(p));
  }
}

TEST(Aroon, OscillatorStartsBehindTheHigherLeadWhileAroonDoesNot) {
  const PriceRows prices = highsAndLows({kNull, 5, 6, 7, 8}, {kNull, kNull, 3, 2, 1});
  EXPECT_FALSE(isNull(runResumable(prices, resumable(2, AroonLine::kOscillator))[1]));
  const Rows out = runResumable(prices, oscillator(2));
  EXPECT_TRUE(isNull(out[2]));
  EXPECT_EQ(0.0, out[3]);  // both extremes are the present row's
}

}  // namespace
}  // namespace brindlewort

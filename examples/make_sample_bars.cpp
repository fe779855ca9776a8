// Makes the sample bars that the examples run over, on standard output:
//
//   make_sample_bars > sample_daily.csv
//
// The bars are made up: a random walk in whole cents with drifting volatility, overnight gaps, closed days
// and days on which the price does not move. All arithmetic is on integers and the random generator is
// written out here, so every compiler and machine gives the same bytes.

#include <cstdint>
#include <cstdio>

namespace {

constexpr int kBars = 750;
constexpr std::uint64_t kSeed = 2;

/// splitmix64: a counter, scrambled.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  /// From 0 to limit - 1.
  std::int64_t below(std::int64_t limit) {
    return static_cast<std::int64_t>(next() % static_cast<std::uint64_t>(limit));
  }
  bool oneIn(std::int64_t odds) { return below(odds) == 0; }
  /// About normal, mean 0, standard deviation 1000: the sum of twelve even numbers.
  std::int64_t normal() {
    std::int64_t sum = -6 * 1000;
    for (int i = 0; i < 12; ++i) sum += below(1001);
    return sum;
  }

 private:
  std::uint64_t state_;
};

struct Date {
  int year, month, day;

  void advance() {
    if (++day <= daysInMonth()) return;
    day = 1;
    if (++month <= 12) return;
    month = 1;
    ++year;
  }
  int daysInMonth() const {
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return kDays[month - 1] + (month == 2 && leap ? 1 : 0);
  }
};

/// A move of `deviations` thousandths of a standard deviation, which is `basisPoints` of the price.
std::int64_t move(std::int64_t price, std::int64_t deviations, std::int64_t basisPoints) {
  return price * deviations * basisPoints / (1000 * 10000);
}

std::int64_t atLeast(std::int64_t least, std::int64_t x) {
  return x < least ? least : x;
}

void printPrice(std::int64_t cents) {
  std::printf(",%lld.%02lld", static_cast<long long>(cents / 100), static_cast<long long>(cents % 100));
}

}  // namespace

int main() {
  std::printf("# Made-up bars of no real instrument, written by examples/make_sample_bars.cpp\n");
  std::printf("Date,Open,High,Low,Close,Volume\n");

  Random random(kSeed);
  Date date{2021, 1, 4};
  int weekday = 0;  // Monday
  std::int64_t close = 10000;
  std::int64_t volatility = 110;  // basis points a day
  for (int bars = 0; bars < kBars; date.advance(), weekday = (weekday + 1) % 7) {
    const bool marketOpen = weekday < 5 && !random.oneIn(40);
    if (!marketOpen) continue;

    volatility = atLeast(60, volatility + random.below(21) - 10 + (110 - volatility) / 20);
    std::int64_t open = close, high = close, low = close;
    std::int64_t volume = 20000 + random.below(40000);
    if (!random.oneIn(60)) {  // else a day without a trade away from the last close
      const std::int64_t gap = random.oneIn(25) ? 6 : 1;
      open = atLeast(100, close + gap * move(close, random.normal(), volatility / 3));
      close = atLeast(100, open + move(open, random.normal() + 30, volatility));
      high = (open > close ? open : close) + move(open, random.below(900), volatility);
      low = atLeast(50, (open < close ? open : close) - move(open, random.below(900), volatility));
      volume = 400000 + random.below(500000) + (high - low) * 2000;
    }
    std::printf("%04d-%02d-%02d", date.year, date.month, date.day);
    printPrice(open);
    printPrice(high);
    printPrice(low);
    printPrice(close);
    std::printf(",%lld\n", static_cast<long long>(volume));
    ++bars;
  }
}

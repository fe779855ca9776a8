// The floating-point environment of a host, around calls and in its callbacks.

#include "platform/fp_environment.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/host_numbers.hpp"

namespace brindlewort::platform {
namespace {

using testing::HostNumbers;
using testing::kOddNumbers;
using testing::kPlainNumbers;
using testing::NamedNumbers;
using testing::ScopedNumbers;

/// A quotient that is rounded, one that is none of a number, one that is infinite, and one below the smallest
/// of the usual form.
struct Quotients {
  double third, none, infinite, small;
};
[[gnu::noinline]] Quotients divide(double one, double zero, double least) {
  return {one / (one + one + one), zero / zero, one / zero, least / (one + one)};
}

TEST(FpEnvironment, InsideNothingTrapsAndAllIsRoundedToTheNearest) {
  for (const NamedNumbers& host : kOddNumbers) {
    Quotients q{};
    {
      const ScopedNumbers numbers(host.numbers);
      FpDoor door;
      const FpDoor::Inside inside(door);
      const auto work = [] { return divide(1.0, 0.0, std::numeric_limits<double>::min()); };
      q = inside.run(work);
    }
    EXPECT_EQ(q.third, 0x1.5555555555555p-2) << host.name;
    EXPECT_TRUE(std::isnan(q.none)) << host.name;
    EXPECT_EQ(q.infinite, std::numeric_limits<double>::infinity()) << host.name;
    EXPECT_EQ(q.small, 0x1p-1023) << host.name;
  }
}

TEST(FpEnvironment, TheHostFindsItsOwnBehindTheCallFlagsIncluded) {
  for (const NamedNumbers& host : kOddNumbers) {
    HostNumbers behind;
    {
      const ScopedNumbers numbers(host.numbers);
      {
        FpDoor door;
        const FpDoor::Inside inside(door);
        const auto work = [] { return divide(1.0, 0.0, std::numeric_limits<double>::min()); };
        inside.run(work);
      }
      behind = HostNumbers::present();
    }
    EXPECT_EQ(behind, host.numbers) << host.name;
  }
}

#if defined(__x86_64__)

TEST(FpEnvironment, FlagsOfTheX87UnitAreTheHostsToo) {
  HostNumbers behind;
  HostNumbers before;
  {
    const ScopedNumbers numbers({0x1f80, 0x0340});
    {
      FpDoor door;
      const FpDoor::Inside inside(door);
      // Masked here; behind the door it would trap at the unit's next instruction.
      __asm__ volatile("fld1; fldz; fdivrp; fstp %%st(0)" : : : "st");
      before = HostNumbers::present();
    }
    behind = HostNumbers::present();
    __asm__ volatile("fld1; fstp %%st(0)" : : : "st");
  }
  EXPECT_EQ(before.x87Flags, 0x04) << "the division by zero has left no flag, and the test tests nothing";
  EXPECT_EQ(behind.x87Flags, 0);
  EXPECT_EQ(behind.x87, 0x0340);
}

#endif

TEST(FpEnvironment, ACallbackIsInTheHostsOwnAndMayChangeIt) {
  const HostNumbers host = kOddNumbers[0].numbers, changed = kOddNumbers[1].numbers;
  HostNumbers within, behindCallback, behind;
  double third = 0.0;
  {
    const ScopedNumbers numbers(host);
    {
      FpDoor door;
      const FpDoor::Inside inside(door);
      {
        const FpDoor::Outside outside(door);
        within = HostNumbers::present();
        changed.set();
      }
      behindCallback = HostNumbers::present();
      const auto work = [] { return divide(1.0, 0.0, 1.0).third; };
      third = inside.run(work);
    }
    behind = HostNumbers::present();
  }
  EXPECT_EQ(within, host);
  EXPECT_EQ(behindCallback, kPlainNumbers);
  EXPECT_EQ(third, 0x1.5555555555555p-2);
  EXPECT_EQ(behind, changed);
}

TEST(FpEnvironment, CallsWithinCallbacksAndCallsWithinCalls) {
  const HostNumbers host = kOddNumbers[0].numbers;
  HostNumbers inner, afterInner, callback, behind;
  {
    const ScopedNumbers numbers(host);
    {
      FpDoor door;
      const FpDoor::Inside call(door);
      {
        const FpDoor::Inside same(door);  // as a late-bound call makes
        const FpDoor::Outside outside(door);
        callback = HostNumbers::present();
        {
          const FpDoor::Inside again(door);
          inner = HostNumbers::present();
        }
        afterInner = HostNumbers::present();
      }
    }
    behind = HostNumbers::present();
  }
  EXPECT_EQ(callback, host);
  EXPECT_EQ(inner, kPlainNumbers);
  EXPECT_EQ(afterInner, host);
  EXPECT_EQ(behind, host);
}

}  // namespace
}  // namespace brindlewort::platform

#include "near_names.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindlewort::tool {
namespace {

using Names = std::vector<std::string_view>;

TEST(NearNames, SlipsAreLettersMoreLessWrongOrTurnedRound) {
  EXPECT_EQ(slipsBetween("", ""), 0u);
  EXPECT_EQ(slipsBetween("SMA", "SMA"), 0u);
  EXPECT_EQ(slipsBetween("SMA", ""), 3u);
  EXPECT_EQ(slipsBetween("", "SMA"), 3u);
  EXPECT_EQ(slipsBetween("SMA", "SMAX"), 1u);
  EXPECT_EQ(slipsBetween("SMA", "SA"), 1u);
  EXPECT_EQ(slipsBetween("SMA", "EMA"), 1u);
  EXPECT_EQ(slipsBetween("SMA", "MSA"), 1u);
  EXPECT_EQ(slipsBetween("CROSSOVER", "CORSSOVR"), 2u);
  EXPECT_EQ(slipsBetween("ABC", "XYZ"), 3u);
}

TEST(NearNames, TheNearestNameComesFirst) {
  const Names names = {"SMA", "EMA", "CROSSOVER", "MAX", "MAXOF", "%SWINGPTOP"};
  EXPECT_EQ(nearNames(names, "crosover", 8), Names{"CROSSOVER"});
  EXPECT_EQ(nearNames(names, "SMAA", 8), (Names{"SMA", "EMA", "MAX"}));
  EXPECT_EQ(nearNames(names, "SMAA", 1), Names{"SMA"});
  EXPECT_EQ(nearNames(names, "swingp", 8), Names{"%SWINGPTOP"});
  EXPECT_EQ(nearNames(names, "MAXOFALL", 8), (Names{"MAXOF", "MAX"}));
  EXPECT_EQ(nearNames(names, "", 8), Names{});
  EXPECT_EQ(nearNames(names, "NOTHING LIKE IT", 8), Names{});
  EXPECT_EQ(nearNames(names, std::string(100'000, 'S'), 8), Names{});
}

TEST(NearNames, LinesKeepTheirWidth) {
  EXPECT_EQ(inLines({}, "  ", 20), "");
  EXPECT_EQ(inLines(Names{"SMA"}, "  ", 20), "  SMA\n");
  EXPECT_EQ(inLines(Names{"SMA", "EMA", "CROSSOVER"}, "  ", 12), "  SMA, EMA,\n  CROSSOVER\n");
  EXPECT_EQ(inLines(Names{"CROSSOVER", "A"}, "  ", 4), "  CROSSOVER,\n  A\n");
}

TEST(NearNames, AnUnknownNameIsToldWithThoseNearIt) {
  const Names names = {"SMA", "EMA", "CROSSOVER"};
  EXPECT_EQ(unknownName("word", "SNA", names, "That is all."),
            "There is no word SNA. Near it are:\n  SMA\nThat is all.");
  EXPECT_EQ(unknownName("word", "QQQQQQQQ", names, "That is all."),
            "There is no word QQQQQQQQ. That is all.");
}

}  // namespace
}  // namespace brindlewort::tool

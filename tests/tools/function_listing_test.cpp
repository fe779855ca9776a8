#include "function_listing.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace brindlewort::tool {
namespace {

Slot slot(SlotKind kind, std::string_view name, double low = -kNoLimit, double high = kNoLimit) {
  Slot result;
  result.kind = kind;
  result.name = name;
  result.low = low;
  result.high = high;
  return result;
}

std::vector<FunctionRow> rows() {
  FunctionRow mean;
  mean.names = {{"MN"}, {"MEANOF"}};
  mean.slots = {slot(SlotKind::kSeries, "source"), slot(SlotKind::kWhole, "periods", 2, kBars)};
  mean.slots[0].defaultSeries = "CLOSE";
  FunctionRow lines;
  lines.names = {{"UPLINE", 0}, {"DOWNLINE", 1}, {"UL", 0}};
  lines.slots = {slot(SlotKind::kNumber, "factor", 0, 1), slot(SlotKind::kInteger, "levels", 1)};
  lines.slots[0].exclusive = true;
  lines.slots[1].optional = true;
  lines.slots[1].fallback = 3;
  FunctionRow plain;
  plain.names = {{"NOW"}};
  plain.noArguments = true;
  plain.path = Path::kIncremental;
  FunctionRow special;
  special.names = {{"WHEN"}};
  return {mean, lines, plain, special};
}

TEST(FunctionListing, ListsALineForEachOutputWithItsSpellings) {
  EXPECT_EQ(listFunctions(rows()),
            "MN(source, periods)  also MEANOF\n"
            "UPLINE(factor, levels)  also UL\n"
            "DOWNLINE(factor, levels)\n"
            "NOW()\n"
            "WHEN()\n");
}

/// The rows are made up, so that no script can call their names.
const std::string kUnknown = "Known to neither way.\n";

/// What describeFunction() says before the legend at its end.
std::string described(std::string_view name) {
  const std::string text = describeFunction(rows(), name).value_or("nothing");
  return text.substr(0, text.find("\nin: the source"));
}

TEST(FunctionListing, DescribesTheArgumentsOfAFunction) {
  EXPECT_EQ(described("meanof"), "MN(source, periods)  also MEANOF\n" + kUnknown +
                                     "\n"
                                     "Arguments\n"
                                     "  source   series or number; CLOSE when left out\n"
                                     "  periods  whole number, 2 to the number of bars\n");
  EXPECT_EQ(described("DOWNLINE"),
            "UPLINE(factor, levels)  also UL\n"
            "DOWNLINE(factor, levels)\n" +
                kUnknown +
                "\n"
                "Arguments\n"
                "  factor  number, between 0 and 1\n"
                "  levels  number, cut to a whole one, at least 1; 3 when left out\n");
  EXPECT_EQ(described("NOW"), "NOW()\n" + kUnknown);
}

TEST(FunctionListing, DescribesWhatAFunctionComputes) {
  const std::optional<std::string> text = describeFunction(functionTable(), "rangeupcount");
  ASSERT_TRUE(text.has_value());
  EXPECT_EQ(*text,
            "RUPCOUNT(source, periods)  also RANGEUPCOUNT\n"
            "\n"
            "Arguments\n"
            "  source   series or number; CLOSE when left out\n"
            "  periods  whole number, 1 to the number of bars\n"
            "\n"
            "How many of the last p steps of a series rise.\n"
            "\n"
            "Formula\n"
            "  number of rows j from i - p + 1 to i with in[j] > in[j - 1]\n"
            "\n"
            "Whole history\n"
            "  1 <= p < n; steps from row 1; rows from p.\n"
            "\n"
            "Incremental\n"
            "  1 <= p <= n; steps from lead + 1; rows from lead + p.\n"
            "\n"
            "in: the source; p: the periods; n: the number of bars; nz(x): x, or 0 where it is null;\n"
            "lead: how many null rows stand at the head of the source; in[-1]: the row before. Rows count "
            "from 0.\n");
}

TEST(FunctionListing, AnUnknownNameGivesNothing) {
  EXPECT_EQ(describeFunction(rows(), "LINE"), std::nullopt);
}

TEST(FunctionListing, NamesAreAllSpellingsInTheirOrder) {
  const std::vector<std::string_view> names = {"MN", "MEANOF", "UPLINE", "DOWNLINE", "UL", "NOW", "WHEN"};
  EXPECT_EQ(functionNames(rows()), names);
}

TEST(FunctionListing, EveryNameOfTheLanguageIsListedAndDescribed) {
  const std::string list = listFunctions(functionTable());
  std::size_t names = 0;
  for (const FunctionRow& row : functionTable()) {
    for (const FunctionName& name : row.names) {
      ++names;
      EXPECT_NE(list.find(name.name), std::string::npos) << name.name;
      EXPECT_TRUE(describeFunction(functionTable(), name.name).has_value()) << name.name;
    }
  }
  EXPECT_GT(names, 150u);
}

}  // namespace
}  // namespace brindlewort::tool

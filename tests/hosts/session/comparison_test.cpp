#include <gtest/gtest.h>

#include "transcript_comparison.hpp"

namespace brindlewort::session {
namespace {

TEST(TranscriptComparison, EqualTexts) {
  EXPECT_TRUE(isSame("", ""));
  EXPECT_TRUE(isSame("Error: No space before '>'", "Error: No space before '>'"));
  EXPECT_FALSE(isSame("Error", "Error:"));
  EXPECT_FALSE(isSame("Error:", "Error"));
  EXPECT_FALSE(isSame("no text", "no list"));
  EXPECT_FALSE(isSame("", " "));
}

TEST(TranscriptComparison, NumbersWithinTheFourthDecimal) {
  EXPECT_TRUE(isSame("1.9999", "2.0000"));
  EXPECT_TRUE(isSame(",-1.9999,5", ",-2.0000,5"));
  EXPECT_TRUE(isSame("0.12345678%", "0.12345600%"));
  EXPECT_FALSE(isSame("1.9998", "2.0000"));
  EXPECT_FALSE(isSame("2.0000", "-2.0000"));
  EXPECT_FALSE(isSame("7", "8"));
  EXPECT_FALSE(isSame("2460310", "2460311"));
}

TEST(TranscriptComparison, TheCountOfDecimalsIsText) {
  EXPECT_FALSE(isSame("2.0000", "2"));
  EXPECT_FALSE(isSame("-987654321", "-987654321.0000"));
}

TEST(TranscriptComparison, GreatNumbersWithinTheirLastBits) {
  EXPECT_TRUE(isSame("1234567890123456.0000", "1234567890123457.0000"));
  EXPECT_FALSE(isSame("1234567890123456.0000", "1234567990123456.0000"));
}

TEST(TranscriptComparison, DigitsOfANameAreText) {
  EXPECT_FALSE(isSame("R2(CLOSE)", "R3(CLOSE)"));
  EXPECT_TRUE(isSame("LOG10(CLOSE)", "LOG10(CLOSE)"));
  EXPECT_FALSE(isSame("LOG10.0001", "LOG10.0002"));
}

TEST(TranscriptComparison, DatesOfBothFormats) {
  EXPECT_TRUE(isSame("2024-02-29 18:05:09,1.0000", "2/29/2024 6:05:09 PM,1.0000"));
  EXPECT_TRUE(isSame("from 2024-02-09 00:00:00 to 2024-12-31 12:30:00\\r",
                     "from 2/9/2024 12:00:00 AM to 12/31/2024 12:30:00 PM\\r"));
  EXPECT_TRUE(isSame("2/9/2024 1:00:00 AM", "2/9/2024 1:00:00 AM"));
  EXPECT_FALSE(isSame("2024-02-29 18:05:09", "2/29/2024 6:05:09 AM"));
  EXPECT_FALSE(isSame("2024-02-29 18:05:09", "2/28/2024 6:05:09 PM"));
  EXPECT_FALSE(isSame("2024-02-29 18:05:09", "2/29/2024 6:05:10 PM"));
  EXPECT_FALSE(isSame("2024-02-29", "2/29/2024 12:00:00 AM"));
}

TEST(TranscriptComparison, TheDrawdownOfRandomRuns) {
  EXPECT_TRUE(isSame("    Maximum Drawdown (Monte Carlo): -31.0900\\r\\n",
                     "    Maximum Drawdown (Monte Carlo): -9.4200\\r\\n"));
  EXPECT_FALSE(isSame("    Maximum Drawdown (Monte Carlo): -31.0900\\r\\n",
                      "    Maximum Drawdown (Monte Carlo): none\\r\\n"));
  EXPECT_FALSE(isSame("    Maximum Drawdown: -31.0900\\r\\n", "    Maximum Drawdown: -9.4200\\r\\n"));
  EXPECT_FALSE(isSame("Maximum Drawdown (Monte Carlo): 1, 2", "Maximum Drawdown (Monte Carlo): 1, 3"));
}

}  // namespace
}  // namespace brindlewort::session

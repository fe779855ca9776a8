// Where the picture of a backtest goes, and what may not be lost to it.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

namespace fs = std::filesystem;

class ChartTarget : public Tool {
 protected:
  std::string command(const std::string& bars, const std::string& chart) const {
    return quoted(BRINDLEWORT_TOOL) + " backtest " + quoted(bars) +
           " --buy 'CLOSE = 80' --exit-long 'CLOSE = 90' --chart " + quoted(chart);
  }
  Outcome draw(const std::string& chart) const {
    return runShell(command(write("b.csv", twelveBars()), chart), "");
  }
  static bool isReport(const std::string& text) {
    return text.starts_with("Back tested from") && text.ends_with("EXIT LONG,90.0000,9\n");
  }
  static bool isPicture(const std::string& text) {
    return text.starts_with("<?xml") && text.ends_with("</svg>\n");
  }
  /// The names in the folder of a file that end in ".part".
  static std::ptrdiff_t partsBeside(const std::string& path) {
    const fs::directory_iterator folder(fs::path(path).parent_path());
    return std::count_if(begin(folder), end(folder),
                         [](const auto& e) { return e.path().extension() == ".part"; });
  }
};

TEST_F(ChartTarget, TheReportIsThereWhenThePictureFails) {
  const Outcome outcome = draw("/no/such/folder/chart.svg");
  EXPECT_EQ(outcome.code, 3);
  EXPECT_TRUE(isReport(outcome.out)) << outcome.out;
  EXPECT_EQ(outcome.err.substr(0, 40), "/no/such/folder/chart.svg: cannot write:");
}

TEST_F(ChartTarget, APictureIsReplacedAsAWhole) {
  const std::string chart = write("chart.svg", "the one before");
  ASSERT_EQ(chmod(chart.c_str(), 0640), 0);
  const Outcome outcome = draw(chart);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_TRUE(isPicture(readFile(chart)));
  EXPECT_EQ(fs::status(chart).permissions(), fs::perms(0640));
  EXPECT_EQ(partsBeside(chart), 0);
}

/// A limit of the size of files, in blocks of 512 bytes, stands for a disk that is full: the report still
/// fits.
TEST_F(ChartTarget, AFullDiskLeavesThePictureBefore) {
  const std::string chart = write("chart.svg", "the one before");
  const std::string limited = "trap '' XFSZ; ulimit -f 8; " + command(write("b.csv", twelveBars()), chart);
  const Outcome outcome = runShell("( " + limited + " )", "");
  EXPECT_EQ(outcome.code, 3);
  EXPECT_TRUE(isReport(outcome.out)) << outcome.out;
  EXPECT_EQ(outcome.err.substr(0, chart.size() + 15), chart + ": cannot write:");
  EXPECT_NE(outcome.err.find("What it held is unharmed"), std::string::npos) << outcome.err;
  EXPECT_EQ(readFile(chart), "the one before");
  EXPECT_EQ(partsBeside(chart), 0);
}

TEST_F(ChartTarget, ALinkStaysALink) {
  const std::string chart = write("chart.svg", "the one before"), link = chart + "-link.svg";
  fs::create_symlink("chart.svg", link);
  EXPECT_EQ(draw(link).code, 0);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_TRUE(isPicture(readFile(chart)));
  fs::remove(chart);
  EXPECT_EQ(draw(link).code, 0);  // it leads to a file that is not there
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_TRUE(isPicture(readFile(chart)));
}

TEST_F(ChartTarget, AMinusIsStandardOutput) {
  const Outcome outcome = draw("-");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(isPicture(outcome.out)) << outcome.out;
  EXPECT_TRUE(isReport(outcome.err)) << outcome.err;
  EXPECT_FALSE(fs::exists("-"));
}

TEST_F(ChartTarget, WhatIsNoSvgFileIsRefused) {
  EXPECT_EQ(draw("").err, "--chart needs the path of an SVG file, or - for standard output.\n");
  EXPECT_EQ(
      draw("out/picture.PNG").err,
      "--chart out/picture.PNG: the picture is SVG, so its path has to end in .svg. Give out/picture.svg. A "
      "PNG of it "
      "makes: rsvg-convert -o out/picture.PNG out/picture.svg\n");
  EXPECT_EQ(draw("picture").err,
            "--chart picture: the picture is SVG, so its path has to end in .svg. Give picture.svg.\n");
  for (const char* chart : {"", "picture.png", "picture", "picture.svg.txt"}) {
    const Outcome outcome = draw(chart);
    EXPECT_EQ(outcome.code, 1) << chart;
    EXPECT_EQ(outcome.out, "");
    EXPECT_FALSE(fs::exists(chart)) << chart;
  }
}

TEST_F(ChartTarget, AFileThatIsReadIsNeverReplaced) {
  const std::string bars = write("bars.svg", twelveBars()), script = write("script.svg", "CLOSE = 80");
  const std::string symbolic = bars + "-symbolic.svg", hard = bars + "-hard.svg";
  fs::create_symlink(bars, symbolic);
  fs::create_hard_link(bars, hard);
  for (const std::string& chart : {bars, symbolic, hard}) {
    const Outcome outcome = runShell(command(bars, chart), "");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "--chart " + chart + ": this is the file of the bars. Give another path.\n");
    EXPECT_EQ(runShell(command("-", chart) + " <" + quoted(bars), "").err, outcome.err);
  }
  const Outcome ofScript =
      run({"backtest", bars, "--buy", "@" + script, "--max-bars", "1", "--chart", script});
  EXPECT_EQ(ofScript.code, 1);
  EXPECT_EQ(ofScript.err, "--chart " + script + ": this is the file of a script. Give another path.\n");
  EXPECT_EQ(readFile(bars), twelveBars());
  EXPECT_EQ(readFile(script), "CLOSE = 80");
}

TEST_F(ChartTarget, TheReportIsNotReplacedByThePicture) {
  const std::string both = write("both.svg", "");
  const Outcome outcome = runShell(command(write("b.csv", twelveBars()), both) + " >" + quoted(both), "");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.err, "--chart " + both + ": the report goes there. Give another path.\n");
}

TEST_F(ChartTarget, WithoutTradesThePictureBeforeStays) {
  const std::string chart = write("chart.svg", "the one before");
  const Outcome outcome =
      run({"backtest", write("b.csv", twelveBars()), "--buy", "CLOSE = 999", "--chart", chart});
  EXPECT_EQ(outcome.code, 4);
  EXPECT_NE(outcome.err.find("\nNo picture was drawn.\n"), std::string::npos) << outcome.err;
  EXPECT_EQ(readFile(chart), "the one before");
}

}  // namespace
}  // namespace brindlewort::tool

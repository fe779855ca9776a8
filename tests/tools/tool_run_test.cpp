// Runs the built tool as a person does: arguments and standard input in, exit code and both outputs back.

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

const char kMeanOfThree[] = "SET A = SMA(CLOSE, 3)\nCLOSE > A";

TEST_F(Tool, PrintsTheComponentsTextWithLfLineEnds) {
  const Outcome run =
      this->run({"output", write("b.csv", twelveBars()), "--script", kMeanOfThree, "--sets", "A"});
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.code, 0);
  // The mean of three starts at the fourth bar: (20 + 30 + 40) / 3.
  EXPECT_EQ(run.out,
            "Date,\"A\"\n"
            "2024-01-01 00:00:00,-987654321\n"
            "2024-01-02 00:00:00,-987654321\n"
            "2024-01-03 00:00:00,-987654321\n"
            "2024-01-04 00:00:00,30.0000\n"
            "2024-01-05 00:00:00,40.0000\n"
            "2024-01-06 00:00:00,50.0000\n"
            "2024-01-07 00:00:00,60.0000\n"
            "2024-01-08 00:00:00,70.0000\n"
            "2024-01-09 00:00:00,80.0000\n"
            "2024-01-10 00:00:00,90.0000\n"
            "2024-01-11 00:00:00,100.0000\n"
            "2024-01-12 00:00:00,110.0000\n");
}

TEST_F(Tool, TakesTheScriptFromArgumentsFilesAndStandardInput) {
  const std::string bars = write("b.csv", twelveBars());
  const std::string script = write("s.bws", kMeanOfThree);
  const std::string expected = run({"output", bars, "--script", kMeanOfThree}).out;
  ASSERT_NE(expected, "");
  EXPECT_EQ(run({"output", bars, "--script", "@" + script}).out, expected);
  EXPECT_EQ(run({"output", bars, "--script-file", script}).out, expected);
  EXPECT_EQ(run({"output", bars, "--script-file", "-"}, kMeanOfThree).out, expected);
  EXPECT_EQ(run({"output", bars}, kMeanOfThree).out, expected);
  EXPECT_EQ(run({"output", bars, "-s", "SET A = SMA(CLOSE, 3)", "-s", "CLOSE > A"}).out, expected);
  EXPECT_EQ(run({"output", bars}, "\xEF\xBB\xBF# comment\r\nset a = sma(close, 3)\r\nclose > a\r\n").out,
            expected);
}

TEST_F(Tool, TakesTheBarsFromStandardInput) {
  const std::string expected = run({"output", write("b.csv", twelveBars()), "--script", kMeanOfThree}).out;
  ASSERT_NE(expected, "");
  EXPECT_EQ(run({"output", "-", "--script", kMeanOfThree}, twelveBars()).out, expected);

  const Outcome both = run({"output", "-"}, twelveBars());
  EXPECT_EQ(both.code, 1);
  EXPECT_EQ(both.out, "");
  EXPECT_NE(both.err.find("--script"), std::string::npos);
}

TEST_F(Tool, FromStartsAtThatBar) {
  const Outcome run = this->run(
      {"output", write("b.csv", twelveBars()), "--script", kMeanOfThree, "--sets", "A", "--from", "11"});
  EXPECT_EQ(run.out,
            "Date,\"A\"\n"
            "2024-01-11 00:00:00,100.0000\n"
            "2024-01-12 00:00:00,110.0000\n");
}

TEST_F(Tool, FromMinusOneListsTheBarsThatMeetTheLastExpression) {
  const std::string bars = write("b.csv", twelveBars());
  EXPECT_EQ(run({"output", bars, "--script", "CLOSE > 100", "--from", "-1"}).out, "11,12,\n");
  const Outcome table = run({"output", bars, "--script", "CLOSE > 100", "--from", "-1", "--format", "table"});
  EXPECT_EQ(table.code, 1);
  EXPECT_EQ(table.out, "");
}

TEST_F(Tool, SetsChoosesColumnsInTheOrderGiven) {
  const std::string bars = write("b.csv", twelveBars());
  const std::string script = "SET A = CLOSE\nSET B = CLOSE + 1\nSET C = CLOSE + 2\nA > B";
  const Outcome run = this->run({"output", bars, "--script", script, "--sets", "C,a", "--from", "12"});
  EXPECT_EQ(run.out, "Date,\"C\",\"A\"\n2024-01-12 00:00:00,122.0000,120.0000\n");
}

TEST_F(Tool, JsonHasFullNumbersAndNulls) {
  const std::string bars = write("b.csv", twelveBars());
  const Outcome run = this->run(
      {"output", bars, "--script", "SET A = SMA(CLOSE, 3) / 7\nA > 1", "--sets", "A", "--format", "json"});
  ASSERT_EQ(run.code, 0) << run.err;
  const nlohmann::json json = nlohmann::json::parse(run.out);
  ASSERT_EQ(json["Date"].size(), 12u);
  EXPECT_EQ(json["Date"][3], "2024-01-04 00:00:00");
  EXPECT_EQ(json["JDate"][3], 2460313.5);
  EXPECT_EQ(json["A"][3].get<double>(), 30.0 / 7);
  EXPECT_EQ(json["A"][11].get<double>(), 110.0 / 7);
}

TEST_F(Tool, JsonNullsStandWhereTheTextHasTheNullValue) {
  const Outcome run = this->run(
      {"output", write("b.csv", twelveBars()), "--script", kMeanOfThree, "--sets", "A", "--format", "json"});
  EXPECT_EQ(nlohmann::json::parse(run.out)["A"],
            nlohmann::json::parse("[null,null,null,30.0,40.0,50.0,60.0,70.0,80.0,90.0,100.0,110.0]"));
}

TEST_F(Tool, TableIsAligned) {
  const std::string bars = write("b.csv", twelveBars());
  EXPECT_EQ(
      run({"output", bars, "--script", kMeanOfThree, "--sets", "A", "--from", "0", "--format", "table"}).out,
      "Date               A\n"
      "----------  --------\n"
      "2024-01-01\n"
      "2024-01-02\n"
      "2024-01-03\n"
      "2024-01-04   30.0000\n"
      "2024-01-05   40.0000\n"
      "2024-01-06   50.0000\n"
      "2024-01-07   60.0000\n"
      "2024-01-08   70.0000\n"
      "2024-01-09   80.0000\n"
      "2024-01-10   90.0000\n"
      "2024-01-11  100.0000\n"
      "2024-01-12  110.0000\n");
}

TEST_F(Tool, ABadLineIsToldAndNothingIsPrinted) {
  const std::string bars = write("b.csv", twelveBars() + "2024-01-13,1,2,x,4,5\n");
  const Outcome run = this->run({"output", bars, "--script", kMeanOfThree});
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, bars + ":14: column 4 (Low): expected a number such as 101.25, found \"x\"\n");
  const Outcome piped = this->run({"output", "-", "--script", kMeanOfThree}, "Date,Open\n");
  EXPECT_EQ(piped.code, 3);
  EXPECT_EQ(piped.err.substr(0, 25), "standard input:1: expecte");
}

TEST_F(Tool, AFileThatIsNotThereIsTold) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"output", "no_such_file.csv", "--script", "CLOSE"},
        std::vector<std::string>{"output", write("b.csv", twelveBars()), "--script", "@no_such_file.bws"},
        std::vector<std::string>{"output", write("b.csv", twelveBars()), "--script-file", "no_such_file.bws"},
        std::vector<std::string>{"output", "/", "--script", "CLOSE"}}) {
    const Outcome run = this->run(arguments);
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("cannot "), std::string::npos) << run.err;
  }
}

TEST_F(Tool, AScriptsErrorGoesToStandardError) {
  for (const char* format : {"csv", "json", "table"}) {
    const Outcome run = this->run(
        {"output", write("b.csv", twelveBars()), "--script", "CLOSE > NOSUCHNAME", "--format", format});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.substr(0, 7), "Error: ");
    EXPECT_EQ(run.err.back(), '\n');
  }
}

TEST_F(Tool, TooFewBarsTellHowManyTheScriptAsksFor) {
  const std::string bars = write("b.csv", twelveBars());
  for (const char* format : {"csv", "json", "table"}) {
    const Outcome run = this->run({"output", bars, "--script", "sma(close, 10) > 1", "--format", format});
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              "Not enough data: the script asks for 20 bars (twice the greatest period in it), and there are "
              "12. Give "
              "more bars, or use shorter periods.\n");
  }
  EXPECT_EQ(this->run({"output", bars, "--script", "SMA(CLOSE, 6) > 1"}).code, 0);
  EXPECT_EQ(this->run({"output", bars, "--script", "SMA(CLOSE, 7) > 1"}).code, 4);
  EXPECT_EQ(this->run({"output", bars, "--script", "SMA(CLOSE, 5) > 1", "--from", "3"}).code, 0);
  EXPECT_NE(this->run({"output", bars, "--script", "SMA(CLOSE, 6) > 1", "--from", "3"})
                .err.find("asks for 14 bars"),
            std::string::npos);
}

TEST_F(Tool, NoBarsAreTooFewBars) {
  const Outcome run = this->run({"output", "-", "--script", "CLOSE > 1"}, "Date,Open,High,Low,Close\n");
  EXPECT_EQ(run.code, 4);
  EXPECT_EQ(run.err.substr(0, 16), "Not enough data:");
}

TEST_F(Tool, AnEmptyScriptIsTold) {
  for (const char* script : {"", " \n\t\r\n"}) {
    const Outcome run = this->run({"output", write("b.csv", twelveBars())}, script);
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.substr(0, 20), "the script is empty.");
  }
  EXPECT_EQ(this->run({"output", write("b.csv", twelveBars()), "--script", "# only a comment"}).err,
            "Error: No script!\n");
}

TEST_F(Tool, AWrongCommandLineTellsWhereHelpIs) {
  const std::string bars = write("b.csv", twelveBars());
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, std::vector<std::string>{"nonsense"}, std::vector<std::string>{"output"},
        std::vector<std::string>{"output", bars, "--nonsense"},
        std::vector<std::string>{"output", bars, "--from", "x"},
        std::vector<std::string>{"output", bars, "--from", "-2"},
        std::vector<std::string>{"output", bars, "--format", "xml"},
        std::vector<std::string>{"output", bars, "--script", "CLOSE", "--script-file", "x"}}) {
    const Outcome run = this->run(arguments, "CLOSE");
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("--help"), std::string::npos) << run.err;
  }
}

TEST_F(Tool, HelpAndVersionGoToStandardOutput) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, std::vector<std::string>{"output", "--help"},
        std::vector<std::string>{"functions", "--help"}, std::vector<std::string>{"help"},
        std::vector<std::string>{"--version"}}) {
    const Outcome run = this->run(arguments);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_NE(run.out, "");
  }
  EXPECT_EQ(this->run({"help", "output"}).out, this->run({"output", "--help"}).out);
  EXPECT_EQ(this->run({"--version"}).out, "brindlewort " BRINDLEWORT_VERSION "\n");
}

TEST_F(Tool, FunctionsListsTheLanguage) {
  const Outcome all = run({"functions"});
  EXPECT_EQ(all.code, 0);
  EXPECT_NE(all.out.find("\nSMA("), std::string::npos);
  const Outcome one = run({"functions", "simplemovingaverage"});
  EXPECT_EQ(one.code, 0);
  EXPECT_EQ(one.out.substr(0, 4), "SMA(");
  const Outcome none = run({"functions", "NOSUCHNAME"});
  EXPECT_EQ(none.code, 1);
  EXPECT_EQ(none.out, "");
  EXPECT_NE(none.err, "");
}

TEST_F(Tool, AReaderThatHasSeenEnoughEndsTheToolQuietly) {
  std::string bars = "Date,Open,High,Low,Close\n";
  for (int i = 0; i < 20000; ++i) bars += "2024-01-01,1,1,1,1\n";
  const std::string command =
      quoted(BRINDLEWORT_TOOL) + " output " + quoted(write("b.csv", bars)) + " -s 'SET A = CLOSE' -s 'A > 1'";
  const Outcome killed = runShell(command + " | head -n 1", "");
  EXPECT_EQ(killed.out, "Date,\"A\"\n");
  EXPECT_EQ(killed.err, "");
  const Outcome told = runShell("trap '' PIPE; " + command + " | head -n 1", "");
  EXPECT_EQ(told.out, "Date,\"A\"\n");
  EXPECT_EQ(told.err, "");
}

TEST_F(Tool, AFullDeviceIsTold) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP();
  for (const char* words : {"functions", "help", "help SMA", "--help", "output --help", "--version"}) {
    const Outcome run = runShell(quoted(BRINDLEWORT_TOOL) + ' ' + words + " >/dev/full", "");
    EXPECT_EQ(run.code, 3) << words;
    EXPECT_EQ(run.err.substr(0, 33), "cannot write to standard output: ") << words;
  }
  const std::string bars = quoted(write("b.csv", twelveBars()));
  // The dates go out; what is told of them cannot.
  EXPECT_EQ(runShell(quoted(BRINDLEWORT_TOOL) + " output " + bars + " -s 'CLOSE > 1' 2>/dev/full", "").code,
            3);
}

TEST_F(Tool, SeveralFilesAreToldWithWhatToDo) {
  const std::string a = write("a.csv", twelveBars()), b = write("b.csv", twelveBars());
  const Outcome two = this->run({"output", a, b, "--script", kMeanOfThree});
  EXPECT_EQ(two.code, 1);
  EXPECT_EQ(two.out, "");
  EXPECT_EQ(two.err.substr(0, 67),
            "output takes one file of bars, and 2 words stand in its place:\n  " + a.substr(0, 2));
  EXPECT_NE(
      two.err.find("\nTake them one by one: for bars in *.csv; do brindlewort output \"$bars\" ...; done\n"),
      std::string::npos)
      << two.err;
  // 500 names are not all repeated.
  std::vector<std::string> many = {"alert"};
  for (int i = 0; i < 500; ++i) many.push_back(a);
  const Outcome crowd = this->run(many);
  EXPECT_EQ(crowd.code, 1);
  EXPECT_EQ(crowd.err.substr(0, 64), "alert takes one file of bars, and 500 words stand in its place:\n");
  EXPECT_LT(crowd.err.size(), 13 * (a.size() + 4) + 200);
  const Outcome unquoted = this->run({"backtest", a, "--buy", "CLOSE", ">", "5"});
  EXPECT_EQ(unquoted.code, 1);
  EXPECT_NE(unquoted.err.find("put it in quotation marks"), std::string::npos) << unquoted.err;
}

TEST_F(Tool, AFileThatIsNoTextIsToldWithWhatReadsIt) {
  const std::string packed = write("b.csv.gz", std::string("\x1F\x8B\x08\0\0\0\0\0", 8));
  for (const char* command : {"output", "alert"}) {
    const Outcome run = this->run({command, packed, "--script", kMeanOfThree});
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, packed + ": this is a gzip file. Read it by: zcat " + packed + " | brindlewort " +
                           command + " - ...\n");
  }
  const Outcome piped =
      this->run({"output", "--follow", "--script", kMeanOfThree}, std::string("\xFF\xFE"
                                                                              "D\0a\0t\0e\0",
                                                                              10));
  EXPECT_EQ(piped.code, 3);
  EXPECT_EQ(
      piped.err,
      "standard input: this is text in UTF-16. Put a program before it: ... | iconv -f UTF-16 -t UTF-8 | "
      "brindlewort output - ...\n");
}

using Examples = Tool;

TEST_F(Examples, TheSampleBarsAreWhatTheirGeneratorMakes) {
  const std::string committed = readFile(BRINDLEWORT_SOURCE_DIR "/examples/sample_daily.csv");
  ASSERT_NE(committed, "");
  EXPECT_EQ(runProgram(BRINDLEWORT_MAKE_SAMPLE_BARS, {}, "").out, committed);
}

TEST_F(Examples, TheSampleBarsSayThatTheyAreMadeUp) {
  const std::string committed = readFile(BRINDLEWORT_SOURCE_DIR "/examples/sample_daily.csv");
  EXPECT_EQ(committed.substr(0, 14), "# Made-up bars");
}

TEST_F(Examples, EveryScriptRunsOverTheSampleBars) {
  int scripts = 0;
  for (const auto& entry : std::filesystem::directory_iterator(BRINDLEWORT_SOURCE_DIR "/examples")) {
    if (entry.path().extension() != ".bws") continue;
    ++scripts;
    const Outcome run = this->run({"output", BRINDLEWORT_SOURCE_DIR "/examples/sample_daily.csv",
                                   "--script-file", entry.path().string(), "--format", "json"});
    ASSERT_EQ(run.code, 0) << entry.path() << ' ' << run.err;
    const nlohmann::json json = nlohmann::json::parse(run.out);
    EXPECT_GT(json.size(), 2u);
    for (const auto& [name, rows] : json.items()) {
      EXPECT_EQ(rows.size(), 750u) << name;
      EXPECT_FALSE(rows.back().is_null()) << name;
    }
  }
  EXPECT_GE(scripts, 3);
}

/// The mean of the last closes of the sample bars, whose text this is.
double meanOfLastCloses(const std::string& bars, std::size_t periods) {
  constexpr int kClose = 4;  // columns in front of it
  std::vector<double> closes;
  std::istringstream lines(bars);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("20")) continue;
    std::size_t at = 0;
    for (int i = 0; i < kClose; ++i) at = line.find(',', at) + 1;
    closes.push_back(std::stod(line.substr(at)));
  }
  return std::accumulate(closes.end() - static_cast<std::ptrdiff_t>(periods), closes.end(), 0.0) /
         static_cast<double>(periods);
}

TEST_F(Examples, TheAveragesOfTheScriptsAreThoseOfTheSampleBars) {
  const auto lastOf = [&](const char* script, const char* name) {
    const Outcome run =
        this->run({"output", BRINDLEWORT_SOURCE_DIR "/examples/sample_daily.csv", "--script-file",
                   std::string(BRINDLEWORT_SOURCE_DIR "/examples/") + script, "--format", "json"});
    return nlohmann::json::parse(run.out).at(name).back().get<double>();
  };
  constexpr double kRounding = 1e-9;
  const std::string bars = readFile(BRINDLEWORT_SOURCE_DIR "/examples/sample_daily.csv");
  EXPECT_NEAR(lastOf("crossover.bws", "FAST"), meanOfLastCloses(bars, 14), kRounding);
  const double middle = lastOf("bands.bws", "MIDDLE");
  EXPECT_NEAR(middle, meanOfLastCloses(bars, 20), kRounding);
  const double width = lastOf("bands.bws", "UPPER") - middle;
  EXPECT_GT(width, 0.0);
  EXPECT_NEAR(lastOf("bands.bws", "LOWER"), middle - width, kRounding);
}

/// Closes are 100.5, 101.5, ... so the mean of three is the close of the day before.
const char kEmbedOutput[] =
    "Date,\"AVERAGE\"\r\n"
    "2024-01-01 00:00:00,-987654321\r\n"
    "2024-01-02 00:00:00,-987654321\r\n"
    "2024-01-03 00:00:00,-987654321\r\n"
    "2024-01-04 00:00:00,102.5000\r\n"
    "2024-01-05 00:00:00,103.5000\r\n"
    "2024-01-06 00:00:00,104.5000\r\n"
    "2024-01-07 00:00:00,105.5000\r\n"
    "2024-01-08 00:00:00,106.5000\r\n"
    "2024-01-09 00:00:00,107.5000\r\n"
    "2024-01-10 00:00:00,108.5000\r\n"
    "2024-01-11 00:00:00,109.5000\r\n"
    "2024-01-12 00:00:00,110.5000\r\n";

TEST_F(Examples, TheHostsInCAndCppPrintTheSeries) {
  EXPECT_EQ(runProgram(BRINDLEWORT_EMBED_CPP, {}, "").out, kEmbedOutput);
  EXPECT_EQ(runProgram(BRINDLEWORT_EMBED_C, {}, "").out, kEmbedOutput);
}

TEST_F(Examples, TheHostThatWatchesTellsTheOneBarOnWhichItsScriptFires) {
  // The thirteenth bar closes at 13, above the mean of 11, 10 and 13; before it each close is below its mean.
  const Outcome run = runProgram(BRINDLEWORT_WATCH_C, {}, "");
  EXPECT_EQ(run.out, "XYZ turn 2460322.5 13.00\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.code, 0);
}

}  // namespace
}  // namespace brindlewort::tool

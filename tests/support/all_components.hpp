#pragma once

#include <bit>
#include <brindlewort/brindlewort.hpp>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The four components at work, each on all of its ways: what a host gets of them, to the last bit.
namespace brindlewort::testing {

/// Bars of a price that wanders between 48 and 80 in steps of a 64th. All arithmetic is exact, so that they
/// are the same whatever rounding the program has set.
inline std::vector<Bar> wanderingBars(int count) {
  std::vector<Bar> bars;
  std::uint32_t dice = 12345;
  int close = 64 * 64;
  for (int i = 0; i < count; ++i) {
    dice = dice * 1664525u + 1013904223u;
    const int open = close;
    close += static_cast<int>(dice >> 24) - 128;
    if (close < 48 * 64 || close > 80 * 64) close = open;
    Bar bar;
    bar.JDate = 2453000.5 + i;
    bar.OpenPrice = open / 64.0;
    bar.ClosePrice = close / 64.0;
    bar.HighPrice = ((open > close ? open : close) + static_cast<int>(dice >> 16 & 31)) / 64.0;
    bar.LowPrice = ((open < close ? open : close) - static_cast<int>(dice >> 8 & 31)) / 64.0;
    bar.Volume = static_cast<std::int32_t>(dice >> 12 & 4095);
    bars.push_back(bar);
  }
  return bars;
}

/// Divisions, powers, sines, logarithms, recursions, values that go through texts; and in TINY numbers below
/// the smallest of the usual form.
inline constexpr std::string_view kOutputScripts[] = {
    "SET A = SMA(CLOSE, 7) / EMA(VOLUME, 3)\r\nSET B = (CLOSE / 3 + OPEN / 7) * (HIGH - LOW / 9)\r\nA > B / "
    "1000",
    "SET C = SDV(CLOSE, 9, 2, SIMPLE)\r\nSET D = SIN(CLOSE) + EXP(OPEN / 30) + LOG(HIGH) + LOG10(LOW) + "
    "ATN(CLOSE)\r\n"
    "D > C",
    "SET P = 0 - 174\r\nSET TINY = CLOSE ^ P / 8\r\nSET SUMS = (TINY + TINY / 3) * 2 ^ 100\r\nTINY > 0",
    "SET E = RSI(CLOSE, 5)\r\nSET F = VIDYA(CLOSE, 5, 0.3)\r\nSET G = MACD(5, 9, 3, EXPONENTIAL)\r\n"
    "SET H = ROUND(CLOSE / 3, 2) + MROUND(CLOSE / 7, 0.3)\r\nSET I = PSAR(0.02, 0.2)\r\nE > F + G + H - I",
    "SET J = IF(CLOSE > OPEN, CLOSE / OPEN, OPEN / CLOSE)\r\nSET K = COUNTIF(J > 1.01)\r\nSET L = CLOSE / "
    "(OPEN - OPEN)\r\n"
    "J * K > 1",
    "SET M = NOSUCHNAME(CLOSE)\r\nM > 1",
};

/// What the components say, a line an answer: results, texts, events, and the rows of series in hexadecimal.
class AllComponents {
 public:
  explicit AllComponents(std::vector<Bar> bars) : bars_(std::move(bars)) {}

  std::string answers() {
    said_.clear();
    for (const std::string_view script : kOutputScripts) {
      wholeHistoryOutput(std::string(script));
      livingOutput(std::string(script));
    }
    backtest();
    plainAlert();
    livingAlert();
    validate();
    return said_;
  }

 private:
  void say(std::string_view text) { (said_ += text) += '\n'; }
  void sayAnswer(const std::optional<std::string>& text) { say(text ? *text : "(none)"); }
  void sayBits(const double* values, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      char digits[17];
      const auto end = std::to_chars(digits, digits + 16, std::bit_cast<std::uint64_t>(values[i]), 16);
      (said_.append(digits, end.ptr)) += ' ';
    }
    said_ += '\n';
  }

  void wholeHistoryOutput(const std::string& script) {
    CScriptOutput output;
    output.OnScriptError([this](const std::string& text) { say(text); });
    output.AppendRecords(bars_);
    sayAnswer(output.GetScriptOutput(script, 0, ""));
    for (const char name : {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L'}) {
      if (const auto series = output.GetSeries(std::string(1, name))) sayBits(series->data(), series->size());
    }
    for (const char* name : {"TINY", "SUMS"}) {
      if (const auto series = output.GetSeries(name)) sayBits(series->data(), series->size());
    }
    say(output.ScriptHelp().substr(0, 20));
  }

  void livingOutput(const std::string& script) {
    CScriptOutput output;
    output.OnScriptError([this](const std::string& text) { say(text); });
    output.InitialiseTransientStore(250);
    output.ProcessScripData(script);
    for (const Bar& bar : bars_) {
      output.AppendRecord_New(bar);
      const bw_series_list* list = output.GetScriptOutput_PTR(script, 0, "");
      for (std::size_t i = 0; list && i < list->count; ++i) {
        const bw_series& series = list->items[i];
        if (series.count > 0) sayBits(series.values + series.count - 1, 1);
      }
    }
    Bar edited = bars_.back();
    edited.ClosePrice = edited.HighPrice;
    output.EditRecord_New(edited);
    sayAnswer(output.GetScriptOutput_New(script, 0, ""));
  }

  void backtest() {
    CBacktest test;
    test.OnScriptError([this](const std::string& text) { say(text); });
    test.SetRandomSeed(7);
    test.AppendRecords(bars_);
    const std::string buy = "CLOSE > SMA(CLOSE, 5)", sell = "CLOSE < SMA(CLOSE, 5) * 0.999";
    sayAnswer(
        test.Backtest(buy, sell, sell, buy, 0.1, "StopLoss=3;TrailingStop=1;ProfitTarget=7;MaxOpenDays=9;"));
    sayAnswer(test.Backtest_New(buy, sell, sell, buy, 0.1, ""));
    sayAnswer(test.Backtest("CLOSE > 1E9", "", "", "", 0.0, ""));
  }

  void listenTo(CAlert& alert) {
    alert.OnAlert([this](const std::string& symbol, const std::string& name, double date, double price) {
      say(symbol + name);
      const double values[] = {date, price};
      sayBits(values, 2);
    });
    alert.OnScriptError(
        [this](const std::string&, const std::string&, const std::string& text) { say(text); });
    alert.SetSymbol("S");
    alert.SetAlertName("N");
  }

  void plainAlert() {
    CAlert alert;
    listenTo(alert);
    for (const Bar& bar : bars_) alert.AppendRecord(bar, bar.JDate + 0.25);
    alert.SetAlertScript("EMA(CLOSE, 3) > CLOSE * 1.001");
    say(alert.Evaluate("EMA(CLOSE, 3) / 3 > CLOSE / 3.0001") ? "fires" : "does not fire");
    alert.Evaluate("NOSUCHNAME > 1");
    say(alert.ScriptHelp());
  }

  void livingAlert() {
    CAlert alert;
    listenTo(alert);
    alert.InitialiseTransientStore(250);
    alert.ProcessScripData("EMA(CLOSE, 3) / 3 > CLOSE / 2.999");
    for (const Bar& bar : bars_) alert.AppendRecord_Opt(bar, bar.JDate + 0.25);
  }

  void validate() {
    CValidate validation;
    for (const std::string_view script : kOutputScripts) say(validation.Validate(std::string(script)));
    say(validation.Validate("SMA(CLOSE, )"));
    say(validation.ScriptHelp().substr(0, 20));
  }

  const std::vector<Bar> bars_;
  std::string said_;
};

}  // namespace brindlewort::testing

// Every member of IBacktest, early-bound.

#include "bars.hpp"
#include "help.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

class BacktestMembers : public HostTest {
 protected:
  /// Bars of January 2000; the close of bar k is 100 + k.
  void appendRising(int bars) {
    for (int k = 1; k <= bars; ++k) append(backtest, k, 100 + k);
  }
  std::wstring report(const wchar_t* buy, const wchar_t* sell, const wchar_t* exitLong,
                      const wchar_t* exitShort, double slip = 0, const wchar_t* rules = L"") {
    return textOf(backtest, &IBacktest::Backtest, buy, sell, exitLong, exitShort, slip, rules);
  }
  std::wstring reportNew(const wchar_t* buy, const wchar_t* sell, const wchar_t* exitLong,
                         const wchar_t* exitShort, double slip = 0, const wchar_t* rules = L"") {
    return textOf(backtest, &IBacktest::Backtest_New, buy, sell, exitLong, exitShort, slip, rules);
  }
  void TearDown() override {
    sink.Reset();
    backtest.Reset();
    HostTest::TearDown();
  }

  ComPtr<IBacktest> backtest = library.make<IBacktest>();
  ComPtr<Sink> sink = connect(backtest);
};

std::wstring tradeLogOf(const std::wstring& report) {
  const std::size_t at = report.find(L"Trade Log:");
  return at == std::wstring::npos ? L"no log in " + report : report.substr(at);
}

TEST_F(BacktestMembers, BarsAreReadBackByNumberAndDate) {
  EXPECT_EQ(backtest->AppendRecord(dateOf(1), 1.25, 2.5, 0.5, 2.0, 1'234), S_OK);
  EXPECT_EQ(backtest->AppendRecord(dateOf(2), 3.25, 4.5, 2.5, 4.0, -5), S_OK);
  EXPECT_EQ(valueOf<LONG>(backtest, &IBacktest::get_RecordCount), 2);
  EXPECT_EQ(recordByIndex(backtest, 1), (Record{dateOf(1), 1.25, 2.5, 0.5, 2.0, 1'234, VARIANT_TRUE}));
  EXPECT_EQ(recordByDate(backtest, dateOf(2)), (Record{1.5, 3.25, 4.5, 2.5, 4.0, -5, VARIANT_TRUE}));
  EXPECT_EQ(recordByIndex(backtest, 0), untouched());
  EXPECT_EQ(recordByIndex(backtest, 3), untouched());
  EXPECT_EQ(recordByDate(backtest, dateOf(3)), untouched());
}

TEST_F(BacktestMembers, NullPlacesOfAQueryAreSkipped) {
  EXPECT_EQ(backtest->AppendRecord(dateOf(1), 1, 2, 3, 4, 5), S_OK);
  VARIANT_BOOL found = 77;
  EXPECT_EQ(backtest->GetRecordByIndex(1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &found),
            S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  double date = 0, low = 0;
  EXPECT_EQ(backtest->GetRecordByIndex(1, &date, nullptr, nullptr, &low, nullptr, nullptr, &found), S_OK);
  EXPECT_EQ(date, dateOf(1));
  EXPECT_EQ(low, 3);
  double open = 0;
  EXPECT_EQ(backtest->GetRecordByJDate(dateOf(1), &open, nullptr, nullptr, nullptr, nullptr, &found), S_OK);
  EXPECT_EQ(open, 1);
}

TEST_F(BacktestMembers, EditRecordIsMinusOneWhereItFound) {
  appendRising(3);
  EXPECT_EQ(boolOf(backtest, &IBacktest::EditRecord, dateOf(2), 5., 6., 4., 5.5, 7L), -1);
  EXPECT_EQ(recordByIndex(backtest, 2), (Record{dateOf(2), 5, 6, 4, 5.5, 7, VARIANT_TRUE}));
  EXPECT_EQ(boolOf(backtest, &IBacktest::EditRecord, dateOf(9), 5., 6., 4., 5.5, 7L), 0);
  EXPECT_EQ(valueOf<LONG>(backtest, &IBacktest::get_RecordCount), 3);
  EXPECT_EQ(backtest->ClearRecords(), S_OK);
  EXPECT_EQ(valueOf<LONG>(backtest, &IBacktest::get_RecordCount), 0);
}

TEST_F(BacktestMembers, TheWholeReport) {
  appendRising(12);
  // One long from 107 to 109: a return of 2 / 107 = 0.0186915888 in one month; 1,000 grow to 1018.69158879.
  const std::wstring expected = L"Back tested from " + dayText(1) + L" to " + dayText(12) + L"\r\n" +
                                L"Total number of trades: 2\r\n"
                                L"Average number of trades per month: 1\r\n"
                                L"Number of profitable trades: 1\r\n"
                                L"Number of losing trades: 0\r\n"
                                L"Total profit: 2.0000\r\n"
                                L"Total loss: 0.0000\r\n"
                                L"Percent profit: 100.000%\r\n"
                                L"Largest profit: 2.0000\r\n"
                                L"Largest loss: 0.0000\r\n"
                                L"Maximum Drawdown: 0.0000\r\n"
                                L"Maximum Drawdown (Monte Carlo): 0.0000\r\n"
                                L"Compound Monthly ROR: 0.0187\r\n"
                                L"Standard deviation: 0.00000000\r\n"
                                L"Annualized standard deviation: 0.00000000\r\n"
                                L"Downside deviation (MAR = 10%): 0.00000000\r\n"
                                L"Value Added Monthly Index (VAMI): 1018.69158879\r\n"
                                L"Sharpe ratio (RFR = 5%): 0.00000000\r\n"
                                L"Annualized Sharpe ratio (RFR = 5%): 0.00000000\r\n"
                                L"Sortino ratio (MAR = 5%): -1.00000000\r\n"
                                L"Annualized Sortino ratio (MAR = 5%): -1.00000000\r\n"
                                L"Sterling ratio (MAR = 5%): -1.00000000\r\n"
                                L"Calmar ratio: 0.00000000\r\n"
                                L"Risk to reward ratio: 0.000\r\n"
                                L"Trade Log:\n" +
                                dayText(7) + L",LONG,107.0000,7\r\n" + dayText(9) +
                                L",EXIT LONG,109.0000,9\r\n";
  EXPECT_EQ(report(L"CLOSE = 107", L"", L"CLOSE = 109", L""), expected);
  EXPECT_EQ(report(L"CLOSE = 107", L"", L"CLOSE = 109", L""), expected);  // a second call
  EXPECT_EQ(reportNew(L"CLOSE = 107", L"", L"CLOSE = 109", L""), expected);
  EXPECT_EQ(sink->take(), Lines{});
}

TEST_F(BacktestMembers, BarsAppendedAfterARunCount) {
  appendRising(12);
  report(L"CLOSE = 107", L"", L"CLOSE = 109", L"");
  append(backtest, 13, 113);
  EXPECT_EQ(
      tradeLogOf(report(L"CLOSE = 110", L"", L"CLOSE = 113", L"")),
      L"Trade Log:\n" + dayText(10) + L",LONG,110.0000,10\r\n" + dayText(13) + L",EXIT LONG,113.0000,13\r\n");
}

TEST_F(BacktestMembers, EveryArgumentReachesItsPlace) {
  appendRising(20);
  // Slippage of 1%: a long is entered dearer and left cheaper, a short the other way round.
  const std::wstring log = L"Trade Log:\n" + dayText(10) + L",LONG,111.1000,10\r\n" + dayText(12) +
                           L",EXIT LONG,110.8800,12\r\n" + dayText(15) + L",SHORT,113.8500,15\r\n" +
                           dayText(17) + L",EXIT SHORT,118.1700,17\r\n";
  EXPECT_EQ(tradeLogOf(report(L"CLOSE = 110", L"CLOSE = 115", L"CLOSE = 112", L"CLOSE = 117", 1.0)), log);
  EXPECT_EQ(tradeLogOf(reportNew(L"CLOSE = 110", L"CLOSE = 115", L"CLOSE = 112", L"CLOSE = 117", 1.0)), log);
}

TEST_F(BacktestMembers, AnErrorIsAnEventAndANullText) {
  appendRising(12);
  EXPECT_EQ(report(L"CLOSE > FOO", L"", L"CLOSE > 1", L""), L"(null)");
  EXPECT_EQ(sink->take(), Lines{L"1: 'Error: Undefined variable 'FOO''"});
  EXPECT_EQ(reportNew(L"CLOSE > FOO", L"", L"CLOSE > 1", L""), L"(null)");
  EXPECT_EQ(sink->take(), Lines{L"1: 'Error: Undefined variable 'FOO''"});
  EXPECT_EQ(report(L"CLOSE > 1", L"CLOSE > 2", L"", L""), L"(null)");
  EXPECT_EQ(sink->take(), Lines{L"1: 'Error: Scripts generated no trades.'"});
}

TEST_F(BacktestMembers, WithoutBarsTheTextIsEmptyAndNotNull) {
  EXPECT_EQ(report(L"CLOSE > 1", L"", L"", L""), L"");
  EXPECT_EQ(reportNew(L"CLOSE > 1", L"", L"", L""), L"");
  EXPECT_EQ(sink->take(), Lines{});
}

TEST_F(BacktestMembers, NullTextsReadAsEmptyOnes) {
  appendRising(12);
  Text text;
  const Text buy(L"CLOSE = 107"), exit(L"CLOSE = 109");
  EXPECT_EQ(backtest->Backtest(buy, nullptr, exit, nullptr, 0, nullptr, text.place()), S_OK);
  EXPECT_EQ(text.str(), report(L"CLOSE = 107", L"", L"CLOSE = 109", L""));
  EXPECT_FALSE(text.isNull());
}

TEST_F(BacktestMembers, TheHelpIsThatOfTheLastRun) {
  EXPECT_EQ(textOf(backtest, &IBacktest::get_ScriptHelp), L"");
  appendRising(12);
  report(L"SMA(CLOSE, 0) > 1", L"", L"", L"");
  EXPECT_EQ(textOf(backtest, &IBacktest::get_ScriptHelp), manualEntry(130));
  EXPECT_EQ(textOf(backtest, &IBacktest::get_ScriptHelp), manualEntry(130));
  report(L"CLOSE > RSI(CLOSE, 0)", L"", L"", L"");
  EXPECT_EQ(textOf(backtest, &IBacktest::get_ScriptHelp), manualEntry(165));
}

TEST_F(BacktestMembers, ToJulianDateCountsMilliseconds) {
  EXPECT_EQ(valueOf<double>(backtest, &IBacktest::ToJulianDate, 1980, 1, 1, 0, 0, 0, 0), newYear1980(0));
  EXPECT_EQ(valueOf<double>(backtest, &IBacktest::ToJulianDate, 1980, 1, 1, 6, 0, 0, 0), newYear1980(0.25));
  // Half a second is 500 / 3,600,000 of an hour.
  EXPECT_EQ(valueOf<double>(backtest, &IBacktest::ToJulianDate, 1980, 1, 1, 0, 0, 0, 500),
            newYear1980(500 / 3'600'000.0 / 24.0));
  EXPECT_EQ(valueOf<double>(backtest, &IBacktest::ToJulianDate, 1980, 1, 1, 1, 2, 3, 900),
            newYear1980((1 + 2 / 60.0 + 3 / 3600.0 + 900 / 3'600'000.0) / 24.0));
  EXPECT_EQ(valueOf<double>(backtest, &IBacktest::ToJulianDate, 1980, 1, 1, 0, 0, 0, 21'600'000),
            newYear1980(0.25));
}

TEST_F(BacktestMembers, FromJulianDateIsInTheUsersFormat) {
  EXPECT_EQ(textOf(backtest, &IBacktest::FromJulianDate, 2451545.25), localeText(2000, 1, 1, 18));
  EXPECT_EQ(textOf(backtest, &IBacktest::FromJulianDate, 0.0), L"No Date Time");
}

TEST_F(BacktestMembers, AMissingResultIsRefused) {
  append(backtest, 1, 5);
  EXPECT_EQ(backtest->EditRecord(dateOf(1), 6, 6, 6, 6, 6, nullptr), E_POINTER);
  EXPECT_EQ(recordByIndex(backtest, 1), (Record{dateOf(1), 5, 5, 5, 5, 100, VARIANT_TRUE}));
  EXPECT_EQ(backtest->Backtest(nullptr, nullptr, nullptr, nullptr, 0, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(backtest->Backtest_New(nullptr, nullptr, nullptr, nullptr, 0, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(backtest->get_RecordCount(nullptr), E_POINTER);
  EXPECT_EQ(backtest->get_ScriptHelp(nullptr), E_POINTER);
  EXPECT_EQ(backtest->ToJulianDate(1980, 1, 1, 0, 0, 0, 0, nullptr), E_POINTER);
  EXPECT_EQ(backtest->FromJulianDate(2444239.5, nullptr), E_POINTER);
}

}  // namespace
}  // namespace brindlewort::hosts

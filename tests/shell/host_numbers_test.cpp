// Hosts that have set rounding, traps or the treatment of small numbers in a way of their own.

#include "support/host_numbers.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/all_components.hpp"

namespace brindlewort {
namespace {

using testing::AllComponents;
using testing::HostNumbers;
using testing::kOddNumbers;
using testing::kPlainNumbers;
using testing::NamedNumbers;
using testing::ScopedNumbers;

TEST(HostNumbers, AllComponentsGiveTheSameBits) {
  AllComponents components(testing::wanderingBars(40));
  const std::string plain = components.answers();
  EXPECT_NE(plain.find("3ff0000000000000 "), std::string::npos) << "no row is 1.0";
  EXPECT_GT(std::count(plain.begin(), plain.end(), '\n'), 1000);
  for (const NamedNumbers& host : kOddNumbers) {
    std::string said;
    HostNumbers behind;
    {
      const ScopedNumbers numbers(host.numbers);
      said = components.answers();
      behind = HostNumbers::present();
    }
    EXPECT_TRUE(said == plain) << host.name;
    EXPECT_EQ(behind, host.numbers) << host.name;
  }
}

/// A host that changes them between any two calls: what a living series has computed before and what it
/// computes then belong together.
TEST(HostNumbers, ALivingSeriesDoesNotNoticeThatTheyChange) {
  const std::vector<Bar> bars = testing::wanderingBars(60);
  const std::string script = "SET A = EMA(CLOSE, 5) / 3\r\nSET P = 0 - 174\r\nSET B = CLOSE ^ P\r\nA > B";
  const auto rows = [&](bool changing) {
    CScriptOutput output;
    output.InitialiseTransientStore(250);
    output.ProcessScripData(script);
    std::size_t turn = 0;
    const bw_series_list* list = nullptr;
    for (const Bar& bar : bars) {
      const HostNumbers& host = kOddNumbers[turn++ % std::size(kOddNumbers)].numbers;
      const ScopedNumbers numbers(changing ? host : kPlainNumbers);
      output.AppendRecord_New(bar);
      list = output.GetScriptOutput_PTR(script, 0, "A,B");
    }
    std::vector<double> all;
    for (std::size_t i = 0; list && i < list->count; ++i) {
      all.insert(all.end(), list->items[i].values, list->items[i].values + list->items[i].count);
    }
    return all;
  };
  const std::vector<double> plain = rows(false);
  EXPECT_EQ(plain.size(), 120u);
  EXPECT_EQ(rows(true), plain);
}

// ---- Callbacks

/// What a callback has found, and what it leaves.
struct Seen {
  HostNumbers within;
  HostNumbers left;
  int calls = 0;

  void look() {
    within = HostNumbers::present();
    left.set();
    ++calls;
  }
};

/// Checks an event that `call` causes once: it runs in the host's numbers, and what it changes stays.
template <class Call>
void expectOwnNumbers(Seen& seen, Call call) {
  seen = {};
  seen.left = kOddNumbers[1].numbers;
  HostNumbers behind;
  {
    const ScopedNumbers numbers(kOddNumbers[0].numbers);
    call();
    behind = HostNumbers::present();
  }
  EXPECT_EQ(seen.calls, 1);
  EXPECT_EQ(seen.within, kOddNumbers[0].numbers);
  EXPECT_EQ(behind, kOddNumbers[1].numbers);
}

TEST(HostNumbers, EventsRunInTheHostsOwn) {
  const std::vector<Bar> bars = testing::wanderingBars(20);
  Seen seen;
  CScriptOutput output;
  output.OnScriptError([&](const std::string&) { seen.look(); });
  output.AppendRecords(bars);
  expectOwnNumbers(seen, [&] { output.GetScriptOutput("NOSUCHNAME > 1", 0, ""); });

  CBacktest backtest;
  backtest.OnScriptError([&](const std::string&) { seen.look(); });
  backtest.AppendRecords(bars);
  expectOwnNumbers(seen, [&] { backtest.Backtest("NOSUCHNAME > 1", "", "", "", 0.0, ""); });

  CAlert alert;
  alert.OnAlert([&](const std::string&, const std::string&, double, double) { seen.look(); });
  alert.OnScriptError([&](const std::string&, const std::string&, const std::string&) { seen.look(); });
  for (const Bar& bar : bars) alert.AppendRecord(bar, bar.JDate);
  expectOwnNumbers(seen, [&] { alert.Evaluate("CLOSE / 3 > 0"); });
  expectOwnNumbers(seen, [&] { alert.Evaluate("NOSUCHNAME > 1"); });
}

}  // namespace
}  // namespace brindlewort

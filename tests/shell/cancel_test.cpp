// A call that another thread cancels, through the public faces. The other thread cancels over and over until
// one of its cancels has met a run, so that no test waits for a certain time.

#include <gtest/gtest.h>

#include <atomic>
#include <brindlewort/brindlewort.hpp>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

using brindlewort::Bar;

constexpr const char* kCancelled = "Error: The script was cancelled.";
constexpr const char* kScript = "SET A = SUM(CLOSE, 1500)\r\nSET B = WMA(CLOSE, 1500)\r\nA > B";

std::vector<Bar> manyBars() {
  std::vector<Bar> bars;
  for (int day = 0; day < 8000; ++day) {
    const double close = 100.0 + day % 17;
    bars.push_back({2450000.5 + day, close, close + 1, close - 1, close, 100});
  }
  return bars;
}

/// Calls `run` until it has told that it was cancelled, while another thread calls `cancel`.
void runUntilCancelled(const std::function<void()>& run, const std::function<void()>& cancel,
                       const std::string& told) {
  std::atomic<bool> done = false;
  std::thread other([&] {
    while (!done) {
      cancel();
      std::this_thread::yield();
    }
  });
  do {
    run();
  } while (told != kCancelled);
  done = true;
  other.join();
}

TEST(Cancel, EndsAnOutputAndTheHandleGoesOn) {
  brindlewort::CScriptOutput output, undisturbed;
  std::string told;
  output.OnScriptError([&](const std::string& text) { told = text; });
  for (brindlewort::CScriptOutput* each : {&output, &undisturbed}) each->AppendRecords(manyBars());
  output.Cancel();  // no call is under way
  std::optional<std::string> text;
  runUntilCancelled([&] { text = output.GetScriptOutput(kScript, 0, ""); }, [&] { output.Cancel(); }, told);
  EXPECT_EQ(text, std::nullopt);
  told.clear();
  EXPECT_EQ(output.GetScriptOutput(kScript, 0, ""), undisturbed.GetScriptOutput(kScript, 0, ""));
  EXPECT_EQ(told, "");
}

TEST(Cancel, EndsALivingOutputWhoseSeriesAreThenComputedInFull) {
  brindlewort::CScriptOutput output, undisturbed;
  std::string told;
  output.OnScriptError([&](const std::string& text) { told = text; });
  const auto setUp = [](brindlewort::CScriptOutput& each) {
    each.InitialiseTransientStore(100);
    for (const Bar& bar : manyBars()) each.AppendRecord_New(bar);
    each.ProcessScripData(kScript);
  };
  setUp(undisturbed);
  const auto run = [&] {
    // A run that was not met leaves nothing to compute for the next.
    output.ClearRecords();
    setUp(output);
    output.GetScriptOutput_New(kScript, 0, "");
  };
  runUntilCancelled(
      run, [&] { output.Cancel(); }, told);
  EXPECT_EQ(output.GetScriptOutput_New(kScript, 0, ""), undisturbed.GetScriptOutput_New(kScript, 0, ""));
}

TEST(Cancel, EndsABacktest) {
  brindlewort::CBacktest backtest;
  std::string told;
  backtest.OnScriptError([&](const std::string& text) { told = text; });
  backtest.AppendRecords(manyBars());
  const auto run = [&] {
    backtest.Backtest("SUM(CLOSE, 1500) > 0 AND CLOSE = 101", "", "CLOSE = 110", "", 0.0, "");
  };
  runUntilCancelled(
      run, [&] { backtest.Cancel(); }, told);
  told.clear();
  run();
  EXPECT_EQ(told, "");
}

TEST(Cancel, EndsAnEvaluationOfAnAlert) {
  brindlewort::CAlert alert;
  std::string told;
  alert.OnScriptError([&](const std::string&, const std::string&, const std::string& text) { told = text; });
  for (const Bar& bar : manyBars()) alert.AppendRecord(bar, 0.0);
  const auto run = [&] { alert.Evaluate("SUM(CLOSE, 1500) > 0"); };
  runUntilCancelled(
      run, [&] { alert.Cancel(); }, told);
  told.clear();
  EXPECT_TRUE(alert.Evaluate("SUM(CLOSE, 1500) > 0"));
  EXPECT_EQ(told, "");
}

TEST(Cancel, ANullHandleIsMinusOne) {
  EXPECT_EQ(bw_script_output_cancel(nullptr), -1);
  EXPECT_EQ(bw_backtest_cancel(nullptr), -1);
  EXPECT_EQ(bw_alert_cancel(nullptr), -1);
}

}  // namespace

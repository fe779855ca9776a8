// Handles on several threads at once, and handles that go from thread to thread. A program of its own, so
// that it can be built alone with the thread sanitizer.

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <latch>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/all_components.hpp"
#include "support/host_numbers.hpp"

namespace brindlewort {
namespace {

using testing::AllComponents;
using testing::kOddNumbers;
using testing::ScopedNumbers;
using testing::wanderingBars;

constexpr std::size_t kThreads = 4;

/// Does the work on so many threads, which begin together, and waits for all.
void onThreads(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::latch allAreThere(static_cast<std::ptrdiff_t>(count));
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      allAreThere.arrive_and_wait();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

/// The first calls of the program, so that what all handles share is made by several threads at once.
TEST(Threads, ComponentsOfEachThreadSayWhatOneAloneSays) {
  std::vector<std::string> said(kThreads);
  onThreads(kThreads, [&](std::size_t i) {
    AllComponents components(wanderingBars(40));
    for (int turn = 0; turn < 2; ++turn) said[i] = components.answers();
  });
  const std::string alone = AllComponents(wanderingBars(40)).answers();
  for (const std::string& text : said) EXPECT_TRUE(text == alone);
}

TEST(Threads, EachThreadKeepsItsOwnNumbers) {
  const std::string alone = AllComponents(wanderingBars(40)).answers();
  std::vector<std::string> said(std::size(kOddNumbers));
  onThreads(said.size(), [&](std::size_t i) {
    AllComponents components(wanderingBars(40));
    const ScopedNumbers numbers(kOddNumbers[i].numbers);
    said[i] = components.answers();
  });
  for (const std::string& text : said) EXPECT_TRUE(text == alone);
}

TEST(Threads, DatesAndRandomNumbers) {
  const std::string script =
      "SET H = DATEDIFF(0, 1, 3)\r\nSET D = DATEPART(0, 4)\r\nSET R = RND(1) * 0\r\nH + D + R > 0";
  const auto answer = [&] {
    CScriptOutput output;
    output.AppendRecords(wanderingBars(60));
    return output.GetScriptOutput(script, 0, "H,D,R");
  };
  std::vector<std::optional<std::string>> said(kThreads);
  onThreads(kThreads, [&](std::size_t i) { said[i] = answer(); });
  const auto alone = answer();
  ASSERT_TRUE(alone.has_value());
  for (const auto& text : said) EXPECT_EQ(text, alone);
}

/// A handle is used by one thread at a time, which need not be the one that made it.
TEST(Threads, HandlesGoFromThreadToThread) {
  const std::vector<Bar> bars = wanderingBars(40);
  const std::string script = "SET A = EMA(CLOSE, 5) / 3\r\nA > 0";
  const auto session = [&](const std::function<void(const std::function<void()>&)>& run) {
    std::optional<CScriptOutput> output;
    std::optional<CAlert> alert;
    std::size_t alerts = 0;
    run([&] {
      output.emplace();
      output->InitialiseTransientStore(250);
      output->ProcessScripData(script);
      alert.emplace();
      alert->OnAlert([&](const std::string&, const std::string&, double, double) { ++alerts; });
      alert->SetAlertScript("EMA(CLOSE, 3) > CLOSE");
      alert->InitialiseTransientStore(250);
      alert->ProcessScripData("EMA(CLOSE, 3) > CLOSE");
    });
    for (const Bar& bar : bars) {
      run([&] {
        output->AppendRecord_New(bar);
        output->GetScriptOutput_PTR(script, 0, "A");
        alert->AppendRecord_Opt(bar, bar.JDate);
      });
    }
    std::string text;
    run([&] {
      text = output->GetScriptOutput_New(script, 0, "A").value_or("(none)") + std::to_string(alerts);
      output.reset();
      alert.reset();
    });
    return text;
  };
  const std::string alone = session([](const auto& work) { work(); });
  EXPECT_NE(alone.find("2004-02-04"), std::string::npos) << alone;
  EXPECT_NE(alone.substr(alone.rfind('\n') + 1), "0") << "no alert has fired";
  EXPECT_EQ(session([](const auto& work) { std::thread(work).join(); }), alone);
}

/// Alert components are counted, over all processes.
TEST(Threads, ComponentsComeAndGo) {
  std::vector<int> fired(kThreads, 0);
  onThreads(kThreads, [&](std::size_t i) {
    for (int turn = 0; turn < 20; ++turn) {
      CAlert alert;
      alert.OnAlert([&](const std::string&, const std::string&, double, double) { ++fired[i]; });
      for (const Bar& bar : wanderingBars(8)) alert.AppendRecord(bar, bar.JDate);
      alert.Evaluate("CLOSE > 1");
      const CValidate validation;
      const CBacktest backtest;
    }
  });
  EXPECT_EQ(fired, std::vector<int>(kThreads, 20));
}

}  // namespace
}  // namespace brindlewort

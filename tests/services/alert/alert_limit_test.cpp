// The limit on live alert components.

#include <gtest/gtest.h>

#ifdef _WIN32
#include "support/windows/child_program.hpp"
#else
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <memory>

#include "functions/script_engine.hpp"
#include "services/alert/alert_support.hpp"

namespace brindlewort {
namespace {

using namespace brindlewort::testing;

const std::string kTooMany = failed("Error: You have exceeded the maximum number of alerts!");

class AlertLimit : public ::testing::Test {
 protected:
  platform::AlertCount count{"/brindlewort/count/of/the/limit"};
  std::vector<platform::AlertSeat> others;

  void haveAlerts(int number) {
    while (static_cast<int>(others.size()) < number) others.emplace_back(count, CAlert::kMostAlerts);
  }
};

TEST_F(AlertLimit, OneThousandAlertsEvaluate) {
  std::vector<std::unique_ptr<CAlert>> alerts;
  int fired = 0;
  for (int i = 0; i < 1000; ++i) {
    alerts.push_back(std::make_unique<CAlert>(count));
    alerts.back()->Alert = [&](const auto&, const auto&, double, double) { ++fired; };
    alerts.back()->setAlertScript("CLOSE > 0");
  }
  Watcher beyond(count);
  beyond.alert.setAlertScript("CLOSE > 0");
  EXPECT_EQ(beyond.take(), Events{kTooMany});
  EXPECT_EQ(beyond.alert.AlertScript(), "CLOSE > 0");
  for (int day = 1; day <= 5; ++day) {
    for (auto& alert : alerts) alert->AppendRecord(day, 1, 1, 1, 1, 1, day);
    beyond.append(day, 1);
    EXPECT_EQ(beyond.take(), Events{kTooMany}) << day;  // at the first bar, and on every bar again
  }
  EXPECT_EQ(fired, 1000);
  EXPECT_EQ(count.live(2000), 1001);
}

TEST_F(AlertLimit, TheFlagIsThatOfTheConstruction) {
  haveAlerts(1000);
  Watcher beyond(count);
  haveAlerts(1001);
  others.clear();
  beyond.alert.setAlertScript("CLOSE > 0");
  EXPECT_EQ(beyond.take(), Events{kTooMany});
  Watcher within(count);
  within.alert.setAlertScript("CLOSE > 0");
  EXPECT_EQ(within.take(), Events{});
}

TEST_F(AlertLimit, AnAlertBeyondTheLimitCountsToo) {
  haveAlerts(1000);
  const Watcher beyond(count);
  others.pop_back();
  Watcher next(count);  // 999 within the limit and one beyond it
  next.alert.setAlertScript("CLOSE > 0");
  EXPECT_EQ(next.take(), Events{kTooMany});
}

TEST_F(AlertLimit, AnEditTellsItToo) {
  haveAlerts(1000);
  Watcher beyond(count);
  beyond.append(1, 10);  // no script yet
  EXPECT_FALSE(beyond.edit(2, 11));
  EXPECT_EQ(beyond.take(), Events{});
  beyond.alert.setAlertScript("CLOSE > 0");
  EXPECT_TRUE(beyond.edit(1, 11));
  EXPECT_EQ(beyond.take(), (Events{kTooMany, kTooMany}));
  beyond.alert.setAlertScript("none");
  beyond.append(2, 10);
  EXPECT_EQ(beyond.take(), Events{});
}

TEST_F(AlertLimit, EvaluateDoesNotLookAtIt) {
  haveAlerts(1000);
  Watcher beyond(count);
  beyond.appendAll({10, 11, 12, 13, 14, 15, 16});
  EXPECT_TRUE(beyond.alert.Evaluate("CLOSE > 0"));
  EXPECT_EQ(beyond.take(), Events{fired("7.5 16")});
  beyond.append(8, 17);
  EXPECT_EQ(beyond.take(), Events{kTooMany});
}

TEST_F(AlertLimit, TheIncrementalWayTellsItAtItsStartAndGoesOn) {
  haveAlerts(1000);
  Watcher beyond(count);
  beyond.alert.InitialiseTransientStore(250);
  EXPECT_EQ(beyond.take(), Events{kTooMany});
  EXPECT_TRUE(beyond.alert.ProcessScripData("CLOSE > 15"));
  EXPECT_EQ(beyond.take(), Events{kTooMany});
  // Without a script of the host the mark of the limit stands for one.
  beyond.appendAllOpt({10, 11, 12, 13, 14, 15, 16});
  EXPECT_EQ(beyond.take(), Events{fired("7.5 16")});
  beyond.alert.setAlertScript("CLOSE > 15");
  EXPECT_EQ(beyond.take(), Events{fired("7.5 16")});
}

TEST_F(AlertLimit, WithinTheEventOfItsStartTheIncrementalWayIsNotReady) {
  haveAlerts(1000);
  Watcher beyond(count);
  std::vector<bool> ran;
  beyond.alert.ScriptError = [&](const auto&, const auto&, const auto&) {
    beyond.appendOpt(1, 1);
    ran.push_back(beyond.alert.lastEngine() != nullptr);
  };
  beyond.alert.InitialiseTransientStore(250);
  beyond.alert.ProcessScripData("CLOSE > 0");
  EXPECT_EQ(ran, (std::vector<bool>{false, false}));
  beyond.appendOpt(2, 1);
  EXPECT_NE(beyond.alert.lastEngine(), nullptr);
}

#ifndef _WIN32

TEST(AlertLimitAcrossProcesses, AlertsOfAnotherProcessCountUntilItIsKilled) {
  const std::string name = "/brindlewort-test-" + std::to_string(getpid()) + "-alerts";
  shm_unlink(name.c_str());
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    alarm(60);  // whatever becomes of the test
    platform::AlertCount own(name);
    std::vector<std::unique_ptr<CAlert>> alerts;
    for (int i = 0; i < 1000; ++i) alerts.push_back(std::make_unique<CAlert>(own));
    if (write(ready[1], "x", 1) == 1) pause();
    _exit(1);
  }
  char byte = 0;
  close(ready[1]);
  EXPECT_EQ(read(ready[0], &byte, 1), 1);
  close(ready[0]);
  platform::AlertCount count(name);
  {
    Watcher beyond(count);
    beyond.alert.setAlertScript("CLOSE > 0");
    EXPECT_EQ(beyond.take(), Events{kTooMany});
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  Watcher within(count);
  within.alert.setAlertScript("CLOSE > 0");
  within.appendAll({1, 2, 3, 4, 5});
  EXPECT_EQ(within.take(), Events{fired("5.5 5")});
  EXPECT_EQ(count.live(1000), 1);
  shm_unlink(name.c_str());
}

#else

/// The other process of the test below.
TEST(DISABLED_AlertLimitAcrossProcesses, HoldsAThousandAlerts) {
  std::vector<std::unique_ptr<CAlert>> alerts;
  for (int i = 0; i < 1000; ++i) alerts.push_back(std::make_unique<CAlert>());
  testing::ChildProgram::waitForTheEnd();
}

TEST(AlertLimitAcrossProcesses, AlertsOfAnotherProcessCountUntilItEnds) {
  platform::AlertCount& count = platform::AlertCount::ofThisMachine();
  ASSERT_EQ(count.live(1000), 0);
  testing::ChildProgram child("DISABLED_AlertLimitAcrossProcesses.HoldsAThousandAlerts");
  ASSERT_TRUE(child.isReady());
  {
    Watcher beyond(count);
    beyond.alert.setAlertScript("CLOSE > 0");
    EXPECT_EQ(beyond.take(), Events{kTooMany});
  }
  EXPECT_TRUE(child.end());
  Watcher within(count);
  within.alert.setAlertScript("CLOSE > 0");
  within.appendAll({1, 2, 3, 4, 5});
  EXPECT_EQ(within.take(), Events{fired("5.5 5")});
  EXPECT_EQ(count.live(1000), 1);
}

#endif

}  // namespace
}  // namespace brindlewort

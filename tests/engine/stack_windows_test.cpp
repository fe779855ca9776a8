// Scripts on the small stacks that threads of Windows have.

#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "functions/script_engine.hpp"
#include "support/living_script.hpp"

namespace brindlewort {
namespace {

/// Does the work on a thread with a stack of so many bytes, and waits for it. A thread that overruns its
/// stack may be ended alone, so its last step is looked at.
void onStackOf(SIZE_T bytes, const std::function<void()>& work) {
  bool done = false;
  std::function<void()> all = [&] {
    work();
    done = true;
  };
  const auto start = [](void* given) -> DWORD {
    (*static_cast<std::function<void()>*>(given))();
    return 0;
  };
  const HANDLE thread = CreateThread(nullptr, bytes, start, &all, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  ASSERT_NE(thread, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  EXPECT_TRUE(done) << "the stack was overrun";
}

std::string nested(const std::string& opening, int depth) {
  std::string text;
  for (int i = 0; i < depth; ++i) text += opening;
  return text + "CLOSE" + std::string(static_cast<std::size_t>(depth), ')');
}

std::string textOf(const std::string& script) {
  const std::vector<Bar> bars(60, Bar{2444300.5, 10, 10, 10, 10, 100});
  CScriptEngine engine;
  engine.bars.use(bars);
  return engine.RunScript(script, false, false);
}

TEST(SmallStack, TheDeepestScriptsAreTooComplex) {
  for (const SIZE_T kilobytes : {256, 512, 1024}) {
    onStackOf(kilobytes * 1024, [] {
      for (const char* opening : {"(", "SUM(", "BLAH("}) {
        EXPECT_EQ(textOf(nested(opening, 5'000)), kTooComplex) << opening;
      }
    });
  }
}

TEST(SmallStack, OnTheIncrementalWayToo) {
  onStackOf(256 * 1024, [] {
    for (const char* opening : {"(", "SUM(", "BLAH("}) {
      testing::LivingScript script(nested(opening, 5'000), 50'000);
      script.ramp(8).run();
      EXPECT_EQ(script.error, kTooComplex) << opening;
    }
  });
}

TEST(SmallStack, AMegabyteIsEnoughForFourHundredEvaluationsInsideOneAnother) {
  onStackOf(1024 * 1024, [] { EXPECT_EQ(textOf(nested("(", 400)), "ALERT"); });
}

TEST(SmallStack, TheLimitIsTheDepthWhereThereIsRoom) {
  onStackOf(8 * 1024 * 1024, [] {
    EXPECT_EQ(textOf(nested("(", 998)), "ALERT");
    EXPECT_EQ(textOf(nested("(", 1000)), kTooComplex);
  });
}

}  // namespace
}  // namespace brindlewort

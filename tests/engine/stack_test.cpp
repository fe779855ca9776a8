// Scripts on the small stacks that threads of some hosts have.

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "functions/script_engine.hpp"
#include "support/living_script.hpp"
#include "support/small_stack.hpp"

namespace brindlewort {
namespace {

void onStackOf(std::size_t bytes, const std::function<void()>& work) {
  EXPECT_TRUE(testing::doneOnStackOf(bytes, work)) << "the stack was overrun";
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
  for (const std::size_t kilobytes : {256, 512, 1024}) {
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
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer's frames are several times as large";
#endif
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

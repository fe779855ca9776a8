#include "inputs.hpp"

#include <gtest/gtest.h>

namespace brindlewort::tool {
namespace {

TEST(ScriptLineBreaks, EveryLineEndBecomesTheOneOfTheLanguage) {
  EXPECT_EQ(withScriptLineBreaks(""), "");
  EXPECT_EQ(withScriptLineBreaks("A"), "A");
  EXPECT_EQ(withScriptLineBreaks("A\nB"), "A\r\nB");
  EXPECT_EQ(withScriptLineBreaks("A\r\nB"), "A\r\nB");
  EXPECT_EQ(withScriptLineBreaks("A\rB"), "A\r\nB");
  EXPECT_EQ(withScriptLineBreaks("A\n\nB\n"), "A\r\n\r\nB\r\n");
  EXPECT_EQ(withScriptLineBreaks("A\r\r\nB\r"), "A\r\n\r\nB\r\n");
}

}  // namespace
}  // namespace brindlewort::tool

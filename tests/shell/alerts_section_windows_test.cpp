// The library as Windows loads it.

#include <gtest/gtest.h>

#include <cstdint>

#include "brindlewort/brindlewort.h"
#include "support/windows/image_sections.hpp"

namespace {

TEST(SharedLibrary, HasASectionOfAlertsThatProcessesShare) {
  ASSERT_NE(bw_version(), nullptr);
  const auto alerts = brindlewort::testing::imageSection("libbrindlewort.dll", "Alerts");
  ASSERT_TRUE(alerts.found);
  EXPECT_EQ(alerts.bytes, sizeof(std::int32_t));
  EXPECT_TRUE(alerts.isWritable);
  EXPECT_TRUE(alerts.isShared);
}

}  // namespace

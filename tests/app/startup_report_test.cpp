#include "app/startup_report.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace zb {
namespace {

TEST(StartupReport, ProcessStartLiesShortlyInThePast) {
  // A misread field of the kernel's process record gives nonsense far outside this range.
  const std::optional<double> ms = millisecondsSinceProcessStart();
  ASSERT_TRUE(ms.has_value());
  EXPECT_GE(*ms, 0);
  EXPECT_LT(*ms, 24 * 60 * 60 * 1000.0);
}

}  // namespace
}  // namespace zb

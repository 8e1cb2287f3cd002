#include "engine/random.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "engine/checked.hpp"

namespace zb {
namespace {

TEST(RandomTest, RangesAreClosedAtBothEnds) {
  Random r(1);
  std::set<int64_t> ints;
  double low = 1, high = 0;
  for (int i = 0; i < 100000; ++i) {
    ints.insert(r.uniformInt(1, 6));
    const double v = r.uniformDouble(0.4, 0.9);
    low = std::min(low, v);
    high = std::max(high, v);
  }
  EXPECT_EQ(ints, (std::set<int64_t>{1, 2, 3, 4, 5, 6}));
  EXPECT_TRUE(low >= 0.4 && low < 0.401) << low;
  EXPECT_TRUE(high <= 0.9 && high > 0.899) << high;
  EXPECT_EQ(r.uniformInt(5, 5), 5);
  EXPECT_GT(r.uniformInt(INT64_MIN + 1, INT64_MAX), INT64_MIN);
}

TEST(CheckedDeathTest, OverflowStopsTheProgram) {
  EXPECT_EQ(checkedAdd(INT64_MAX - 1, 1), INT64_MAX);
  EXPECT_EQ(checkedTruncate(-2.9), -2);
  EXPECT_DEATH(checkedAdd(INT64_MAX, 1), "");
  EXPECT_DEATH(checkedMul(INT64_MAX, 2), "");
  EXPECT_DEATH(checkedDiv(1, 0), "");
  EXPECT_DEATH(checkedTruncate(9223372036854775808.0), "");
  EXPECT_DEATH(Random(1).uniformInt(2, 1), "");
}

}  // namespace
}  // namespace zb

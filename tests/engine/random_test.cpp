#include "engine/random.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "engine/checked.hpp"

namespace zb {
namespace {

TEST(RandomTest, SameSeedSameSequence) {
  Random a(42), b(42), c(43);
  bool differs = false;
  for (int i = 0; i < 100; ++i) {
    uint64_t x = a.nextU64();
    EXPECT_EQ(x, b.nextU64());
    differs = differs || x != c.nextU64();
  }
  EXPECT_TRUE(differs);
  a.seed(7);
  b.seed(7);
  EXPECT_EQ(a.uniformInt(72, 150), b.uniformInt(72, 150));
}

TEST(RandomTest, IntegersStayInTheirClosedRangeAndCoverIt) {
  Random r(1);
  std::array<int, 6> counts{};
  for (int i = 0; i < 60000; ++i) {
    int64_t v = r.uniformInt(1, 6);
    ASSERT_GE(v, 1);
    ASSERT_LE(v, 6);
    ++counts[static_cast<std::size_t>(v - 1)];
  }
  for (int count : counts) EXPECT_NEAR(count, 10000, 500);
  EXPECT_EQ(r.uniformIndex(1), 0u);
  EXPECT_EQ(r.uniformInt(5, 5), 5);
  // The whole int64 range, and ranges wider than int64_t can hold as a difference.
  for (int i = 0; i < 100; ++i) {
    int64_t v = r.uniformInt(INT64_MIN + 1, INT64_MAX);
    EXPECT_GT(v, INT64_MIN);
    r.uniformInt(INT64_MIN, INT64_MAX);
  }
}

TEST(RandomTest, DoublesCoverTheClosedRange) {
  Random r(3);
  double low = 1, high = 0, sum = 0;
  for (int i = 0; i < 100000; ++i) {
    double v = r.uniformDouble(0.4, 0.9);
    ASSERT_GE(v, 0.4);
    ASSERT_LE(v, 0.9);
    low = std::min(low, v);
    high = std::max(high, v);
    sum += v;
  }
  EXPECT_LT(low, 0.401);
  EXPECT_GT(high, 0.899);
  EXPECT_NEAR(sum / 100000, 0.65, 0.005);
  EXPECT_EQ(r.uniformDouble(2, 2), 2);
}

TEST(RandomTest, BoolsAreRoughlyEven) {
  Random r(9);
  int trues = 0;
  for (int i = 0; i < 10000; ++i) trues += r.uniformBool() ? 1 : 0;
  EXPECT_NEAR(trues, 5000, 250);
}

TEST(CheckedTest, ArithmeticWithinRangeIsPlain) {
  EXPECT_EQ(checkedAdd(INT64_MAX - 1, 1), INT64_MAX);
  EXPECT_EQ(checkedMul(-3, 7), -21);
  EXPECT_EQ(checkedDiv(-7, 2), -3);
  EXPECT_EQ(checkedMod(-7, 2), -1);
  EXPECT_EQ(checkedMod(INT64_MIN, -1), 0);
  EXPECT_EQ(checkedTruncate(-2.9), -2);
  EXPECT_EQ(checkedTruncate(-9223372036854775808.0), INT64_MIN);
}

TEST(CheckedDeathTest, OverflowStopsTheProgram) {
  EXPECT_DEATH(checkedAdd(INT64_MAX, 1), "");
  EXPECT_DEATH(checkedSub(INT64_MIN, 1), "");
  EXPECT_DEATH(checkedDiv(INT64_MIN, -1), "");
  EXPECT_DEATH(checkedDiv(1, 0), "");
  EXPECT_DEATH(checkedTruncate(9223372036854775808.0), "");
  EXPECT_DEATH(Random(1).uniformInt(2, 1), "");
}

}  // namespace
}  // namespace zb

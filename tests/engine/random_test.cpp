#include "engine/random.hpp"

#include <gtest/gtest.h>

#include <cstdint>

#include "engine/checked.hpp"

namespace zb {
namespace {

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

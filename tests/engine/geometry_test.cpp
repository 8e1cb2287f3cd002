#include "engine/geometry.hpp"

#include <gtest/gtest.h>

namespace zb {
namespace {

TEST(RectTest, IntersectsOnlyWhenTheAreasOverlap) {
  struct Case {
    Rect other;
    bool hit;
    const char* what;
  };
  const Case cases[] = {
      {Rect::make(10, 0, 5, 5), false, "shares the right edge"},
      {Rect::make(0, 10, 5, 5), false, "shares the top edge"},
      {Rect::make(10, 10, 5, 5), false, "shares a corner"},
      {Rect::make(9.5, 9.5, 5, 5), true, "overlaps a corner"},
      {Rect::make(2, 2, 1, 1), true, "inside"},
      {Rect::make(5, 5, 0, 0), false, "empty"},
      {Rect::make(12, 12, -4, -4), true, "negative size, overlapping"},
      {Rect::make(14, 4, -4, 2), false, "negative size, touching"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Rect::make(0, 0, 10, 10).intersects(c.other), c.hit);
    EXPECT_EQ(c.other.intersects(Rect::make(0, 0, 10, 10)), c.hit);
  }
}

TEST(RectTest, NegativeSizesContainsAndUnion) {
  const Rect r = Rect::make(10, 20, -4, -6);
  EXPECT_EQ(r.standardized(), Rect::make(6, 14, 4, 6));
  EXPECT_EQ(r.midX(), 8);
  // The minimum edges belong to a rectangle, the maximum edges do not.
  EXPECT_TRUE(r.contains({6, 14}));
  EXPECT_FALSE(r.contains({10, 15}));
  EXPECT_FALSE(r.contains({7, 20}));
  EXPECT_FALSE(r.contains({5.99, 15}));
  EXPECT_EQ(Rect::make(0, 0, 2, 2).unionWith(Rect::make(5, -3, 1, 1)), Rect::make(0, -3, 6, 5));
}

}  // namespace
}  // namespace zb

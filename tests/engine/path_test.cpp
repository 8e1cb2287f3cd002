#include "engine/path.hpp"

#include <gtest/gtest.h>

namespace zb {
namespace {

// Boxes under moves and scales are worked out from remembered extremes; the memory must not outlive
// a change of the path, and must not travel wrongly with a copy.
TEST(PathBoundsTest, MovedAndScaledBoxesFollowEveryChange) {
  Path path = Path::roundedRect(Rect::make(0, 0, 10, 10), 2);
  const AffineTransform moved = AffineTransform::forNode({5, 5}, 0, 2, -1);
  EXPECT_EQ(path.boundingBox(moved), Rect::make(5, -5, 20, 10));

  const Path before = path;
  path.moveTo({-10, 20});
  path.lineTo({-10, 20});
  EXPECT_EQ(path.boundingBox(moved), Rect::make(-15, -15, 40, 20));
  EXPECT_EQ(path.boundingBox(), Rect::make(-10, 0, 20, 20));
  EXPECT_EQ(before.boundingBox(moved), Rect::make(5, -5, 20, 10));

  path.addArc({0, 30}, 5, 0, 3.14159);
  EXPECT_NEAR(path.boundingBox(moved)->minY(), 5 - 35, 1e-9);
  EXPECT_EQ(Path().boundingBox(moved), std::nullopt);
}

}  // namespace
}  // namespace zb

#include "engine/node.hpp"

#include <gtest/gtest.h>

#include "engine/path.hpp"
#include "engine/shape_node.hpp"

namespace zb {
namespace {

void expectRectNear(const Rect& actual, const Rect& expected) {
  EXPECT_NEAR(actual.minX(), expected.minX(), 1e-9);
  EXPECT_NEAR(actual.minY(), expected.minY(), 1e-9);
  EXPECT_NEAR(actual.maxX(), expected.maxX(), 1e-9);
  EXPECT_NEAR(actual.maxY(), expected.maxY(), 1e-9);
}

TEST(NodeFrameTest, StrokesRotationScaleAndChildrenShapeTheFrames) {
  // A barrel: a stroked circle with a cross of lines inside.
  ShapeNodePtr barrel = ShapeNode::withCircleOfRadius(18);
  barrel->lineWidth = 3;
  for (auto [from, to] : {std::pair{Point{-18, 0}, Point{18, 0}}, std::pair{Point{0, -18}, Point{0, 18}}}) {
    ShapeNodePtr line = ShapeNode::withPath(Path::line(from, to));
    line->lineWidth = 2;
    barrel->addChild(line);
  }
  barrel->position = {200, 68};
  EXPECT_EQ(barrel->frame(), Rect::make(180.5, 48.5, 39, 39));
  EXPECT_EQ(barrel->calculateAccumulatedFrame(), Rect::make(180.5, 48.5, 39, 39));
  barrel->xScale = barrel->yScale = 2;  // strokes scale too
  EXPECT_EQ(barrel->calculateAccumulatedFrame(), Rect::make(161, 29, 78, 78));
  barrel->xScale = barrel->yScale = 1;
  barrel->zRotation = 0.7;  // the circle keeps its size and the cross stays inside it
  expectRectNear(barrel->calculateAccumulatedFrame(), Rect::make(180.5, 48.5, 39, 39));

  ShapeNodePtr square = ShapeNode::withRectOfSize({20, 20});
  square->lineWidth = 0;
  square->xScale = 2;
  square->yScale = -0.5;
  EXPECT_EQ(square->frame(), Rect::make(-20, -5, 40, 10));

  // A plain container has a zero frame; its accumulated frame is its children's.
  auto cloud = std::make_shared<Node>();
  cloud->position = {30, 40};
  cloud->addChild(square);
  EXPECT_EQ(cloud->frame(), Rect::make(30, 40, 0, 0));
  EXPECT_EQ(cloud->calculateAccumulatedFrame(), Rect::make(10, 35, 40, 10));
}

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

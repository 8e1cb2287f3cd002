#include "engine/node.hpp"

#include <gtest/gtest.h>

#include "engine/scene.hpp"
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

TEST(NodesAtPointTest, SkipsHiddenPagesAndListsChildrenFirstThenLaterSiblings) {
  // Two overlapping pages with a button each, as the interface has them.
  auto scene = std::make_shared<Scene>(Size{800, 400});
  auto background = ShapeNode::withRect(Rect::make(0, 0, 800, 400));
  auto menu = std::make_shared<Node>(), overlay = std::make_shared<Node>();
  auto menuButton = ShapeNode::withRect(Rect::make(350, 150, 100, 40));
  auto overlayButton = ShapeNode::withRect(Rect::make(350, 150, 100, 40));
  auto badge = ShapeNode::withRect(Rect::make(0, 0, 10, 10));
  badge->position = {395, 165};
  for (const NodePtr& page : {NodePtr(background), menu, overlay}) scene->addChild(page);
  menu->addChild(menuButton);
  overlay->addChild(overlayButton);
  overlayButton->addChild(badge);

  using Hits = std::vector<Node*>;
  EXPECT_EQ(scene->nodesAtPoint({400, 170}), (Hits{badge.get(), overlayButton.get(), menuButton.get(), background.get()}));
  overlay->hidden = true;
  EXPECT_EQ(scene->nodesAtPoint({400, 170}), (Hits{menuButton.get(), background.get()}));
  EXPECT_TRUE(scene->nodesAtPoint({900, 170}).empty());
}

}  // namespace
}  // namespace zb

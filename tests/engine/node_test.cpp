#include "engine/node.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

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

ShapeNodePtr lineNode(Point from, Point to, double width) {
  ShapeNodePtr line = ShapeNode::withPath(Path::line(from, to));
  line->lineWidth = width;
  return line;
}

TEST(NodeTreeTest, AddingAChildWithAParentMovesIt) {
  auto a = std::make_shared<Node>();
  auto b = std::make_shared<Node>();
  auto child = std::make_shared<Node>();
  child->name = "kid";
  a->addChild(child);
  b->addChild(child);
  EXPECT_TRUE(a->children().empty());
  EXPECT_EQ(b->childNamed("kid"), child);
  EXPECT_EQ(child->parent(), b.get());
  child->removeFromParent();
  EXPECT_EQ(child->parent(), nullptr);
  b->addChild(child);
  b->addChild(std::make_shared<Node>());
  EXPECT_EQ(b->subtreeNodeCount(), 3u);
  b->removeAllChildren();
  EXPECT_EQ(child->parent(), nullptr);
  EXPECT_EQ(b->subtreeNodeCount(), 1u);
  // A node cannot become its own descendant.
  child->addChild(b);
  b->addChild(child);
  EXPECT_EQ(child->parent(), nullptr);
}

TEST(NodeFrameTest, StrokeRotationAndScaleWidenTheFrame) {
  ShapeNodePtr circle = ShapeNode::withCircleOfRadius(18);
  circle->lineWidth = 3;
  circle->position = {100, 68};
  EXPECT_EQ(circle->frame(), Rect::make(80.5, 48.5, 39, 39));

  ShapeNodePtr square = ShapeNode::withRectOfSize({20, 20});
  square->lineWidth = 0;
  square->zRotation = std::numbers::pi / 4;
  double half = 10 * std::numbers::sqrt2;
  expectRectNear(square->frame(), Rect::make(-half, -half, 2 * half, 2 * half));

  square->zRotation = 0;
  square->xScale = 2;
  square->yScale = -0.5;
  EXPECT_EQ(square->frame(), Rect::make(-20, -5, 40, 10));
}

TEST(NodeFrameTest, PlainNodesHaveZeroFramesAndContributeOnlyTheirChildren) {
  auto plain = std::make_shared<Node>();
  plain->position = {30, 40};
  EXPECT_EQ(plain->frame(), Rect::make(30, 40, 0, 0));
  EXPECT_EQ(plain->calculateAccumulatedFrame(), Rect::make(30, 40, 0, 0));

  // A cloud: a container without content around two puffs.
  ShapeNodePtr puff = ShapeNode::withCircleOfRadius(10);
  puff->lineWidth = 0;
  puff->position = {-5, 0};
  ShapeNodePtr other = ShapeNode::withCircleOfRadius(10);
  other->lineWidth = 0;
  other->position = {20, 5};
  plain->addChild(puff);
  plain->addChild(other);
  EXPECT_EQ(plain->frame(), Rect::make(30, 40, 0, 0));
  EXPECT_EQ(plain->calculateAccumulatedFrame(), Rect::make(15, 30, 45, 25));
}

TEST(NodeFrameTest, AccumulatedFrameOfABarrelIncludesItsSpinningCross) {
  ShapeNodePtr barrel = ShapeNode::withCircleOfRadius(18);
  barrel->lineWidth = 3;
  barrel->addChild(lineNode({-18, 0}, {18, 0}, 2));
  barrel->addChild(lineNode({0, -18}, {0, 18}, 2));
  barrel->position = {200, 68};
  EXPECT_EQ(barrel->calculateAccumulatedFrame(), Rect::make(180.5, 48.5, 39, 39));

  // Scaling scales the strokes as well.
  barrel->xScale = barrel->yScale = 2;
  EXPECT_EQ(barrel->calculateAccumulatedFrame(), Rect::make(161, 29, 78, 78));

  // Turned, the circle keeps its size and the cross stays within it.
  barrel->xScale = barrel->yScale = 1;
  barrel->zRotation = 0.7;
  expectRectNear(barrel->calculateAccumulatedFrame(), Rect::make(180.5, 48.5, 39, 39));
}

TEST(NodeConversionTest, PointsConvertBetweenAnyTwoNodesOfATree) {
  auto scene = std::make_shared<Scene>(Size{800, 400});
  auto layer = std::make_shared<Node>();
  layer->position = {100, 50};
  layer->xScale = 2;
  auto leaf = std::make_shared<Node>();
  leaf->position = {10, 10};
  leaf->zRotation = std::numbers::pi / 2;
  auto other = std::make_shared<Node>();
  other->position = {-40, 0};
  scene->addChild(layer);
  layer->addChild(leaf);
  scene->addChild(other);

  Point inScene = leaf->convertPointTo({1, 0}, *scene);
  EXPECT_NEAR(inScene.x, 120, 1e-9);
  EXPECT_NEAR(inScene.y, 61, 1e-9);
  Point inOther = leaf->convertPointTo({1, 0}, *other);
  EXPECT_NEAR(inOther.x, 160, 1e-9);
  EXPECT_NEAR(inOther.y, 61, 1e-9);
  Point back = leaf->convertPointFrom(inOther, *other);
  EXPECT_NEAR(back.x, 1, 1e-9);
  EXPECT_NEAR(back.y, 0, 1e-9);
}

// Two overlapping pages with a button each, as the interface has them.
struct Pages {
  std::shared_ptr<Scene> scene = std::make_shared<Scene>(Size{800, 400});
  NodePtr menu = std::make_shared<Node>();
  NodePtr overlay = std::make_shared<Node>();
  ShapeNodePtr background = ShapeNode::withRect(Rect::make(0, 0, 800, 400));
  ShapeNodePtr menuButton = ShapeNode::withRect(Rect::make(350, 150, 100, 40));
  ShapeNodePtr overlayButton = ShapeNode::withRect(Rect::make(350, 150, 100, 40));

  Pages() {
    scene->addChild(background);
    scene->addChild(menu);
    scene->addChild(overlay);
    menu->addChild(menuButton);
    overlay->addChild(overlayButton);
  }
};

TEST(NodesAtPointTest, HiddenPagesAndTheirButtonsAreLeftOut) {
  Pages pages;
  pages.overlay->hidden = true;
  std::vector<Node*> hits = pages.scene->nodesAtPoint({400, 170});
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0], pages.menuButton.get());
  EXPECT_EQ(hits[1], pages.background.get());  // plain pages never count themselves

  pages.overlay->hidden = false;
  pages.menuButton->hidden = true;
  hits = pages.scene->nodesAtPoint({400, 170});
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0], pages.overlayButton.get());
}

TEST(NodesAtPointTest, ChildrenComeBeforeParentsAndLaterBeforeEarlier) {
  Pages pages;
  ShapeNodePtr badge = ShapeNode::withRect(Rect::make(0, 0, 10, 10));
  badge->position = {395, 165};  // inside the overlay button, in the overlay's coordinates
  pages.overlayButton->addChild(badge);
  std::vector<Node*> hits = pages.scene->nodesAtPoint({400, 170});
  ASSERT_EQ(hits.size(), 4u);
  EXPECT_EQ(hits[0], badge.get());
  EXPECT_EQ(hits[1], pages.overlayButton.get());
  EXPECT_EQ(hits[2], pages.menuButton.get());
  EXPECT_EQ(hits[3], pages.background.get());
  EXPECT_TRUE(pages.scene->nodesAtPoint({900, 170}).empty());
}

}  // namespace
}  // namespace zb

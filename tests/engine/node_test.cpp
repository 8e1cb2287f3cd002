// The scene graph: the frames of shapes and paths, and the actions that move nodes frame by frame.
#include "engine/node.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <vector>

#include "engine/action.hpp"
#include "engine/path.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"

namespace zb {
namespace {

TEST(NodeFrameTest, StrokesScaleAndChildrenShapeTheFrames) {
  // A barrel: a stroked circle with a cross of lines inside.
  ShapeNodePtr barrel = ShapeNode::withCircleOfRadius(18);
  barrel->lineWidth = 3;
  for (auto [from, to] : {std::pair{Point{-18, 0}, Point{18, 0}}, std::pair{Point{0, -18}, Point{0, 18}}}) {
    ShapeNodePtr line = ShapeNode::withPath(Path::line(from, to));
    line->lineWidth = 2;
    barrel->addChild(line);
  }
  barrel->position = {200, 68};
  const Rect stroked = Rect::make(200 - 18 - 1.5, 68 - 18 - 1.5, 39, 39);  // half the outline outside the radius
  EXPECT_EQ(barrel->frame(), stroked);
  EXPECT_EQ(barrel->calculateAccumulatedFrame(), stroked);

  ShapeNodePtr square = ShapeNode::withRectOfSize({20, 20});
  square->lineWidth = 0;
  square->xScale = 2;
  square->yScale = -0.5;
  EXPECT_EQ(square->frame(), Rect::make(-20, -5, 40, 10));

  auto cloud = std::make_shared<Node>();
  cloud->position = {30, 40};
  cloud->addChild(square);
  EXPECT_EQ(cloud->frame(), Rect::make(30, 40, 0, 0)) << "a container's own frame is empty";
  EXPECT_EQ(cloud->calculateAccumulatedFrame(), Rect::make(10, 35, 40, 10));
}

// Transformed boxes come from remembered extremes, which must follow a change and not a copy.
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

struct Stage {
  explicit Stage(std::shared_ptr<Scene> s = std::make_shared<Scene>(Size{800, 400})) : scene(std::move(s)) {
    scene->addChild(node);
  }
  std::shared_ptr<Scene> scene;
  NodePtr node = std::make_shared<Node>();
  void frames(int n) {
    for (int i = 0; i < n; ++i) scene->stepFrame(1.0 / 60);
  }
};

TEST(ActionTimingTest, MovesAndSequencesLandWhereTheirTimingSays) {
  Stage move, shake, twoMoves;
  move.node->position = {10, 20};
  move.node->runAction(actions::moveBy(120, -30, 0.45));
  move.frames(27);
  EXPECT_EQ(move.node->position, (Point{130, -10})) << "a move ends exactly on target";
  shake.node->position = {400.3, 77.7};
  shake.node->runAction(
      actions::sequence({actions::moveBy(6, 0, 0.02), actions::moveBy(-12, 0, 0.04), actions::moveBy(6, 0, 0.02)}));
  shake.frames(6);
  EXPECT_EQ(shake.node->position, (Point{400.3, 77.7})) << "a shake returns exactly";
  // The first move ends a third into the second frame; the rest of that frame goes to the second.
  twoMoves.node->runAction(actions::sequence({actions::moveBy(30, 0, 0.025), actions::moveBy(0, 60, 0.05)}));
  twoMoves.frames(4);
  EXPECT_NEAR(twoMoves.node->position.x, 30, 1e-9);
  EXPECT_NEAR(twoMoves.node->position.y, 50, 1e-9);
}

// Between steps a node is drawn part way along its last change, from an action or a per-step write.
struct SteppedScene : Scene {
  using Scene::Scene;
  void update(double) override {
    if (perStep) perStep();
  }
  std::function<void()> perStep;
};

TEST(BetweenStepsTest, PlacementsAndOutlinesBlendWhileJumpsAndNewcomersAreDrawnWhereTheyAre) {
  auto stepped = std::make_shared<SteppedScene>(Size{800, 400});
  Stage stage(stepped);
  ShapeNodePtr limb = ShapeNode::withPath(Path::line({0, 0}, {10, -40}));
  stage.scene->addChild(limb);
  stage.frames(1);
  stage.node->runAction(actions::rotateBy(0.6, 0.1));
  stage.node->runAction(actions::fadeOut(0.1));
  stage.node->runAction(actions::moveBy(60, 0, 0.1));
  stage.frames(1);
  stepped->perStep = [&] { limb->path = Path::line({0, 0}, {-10, -40}); };
  stage.frames(1);
  stepped->perStep = nullptr;
  const NodePlacement halfway = stage.node->placementBetweenSteps(0.5);
  EXPECT_NEAR(halfway.position.x, 15, 1e-9);
  EXPECT_NEAR(halfway.zRotation, 0.15, 1e-9);
  EXPECT_NEAR(halfway.alpha, 1 - 0.25, 1e-9);
  EXPECT_EQ(stage.node->placementBetweenSteps(1), stage.node->placement()) << "1 is the last step itself";
  EXPECT_NEAR(stage.node->placementBetweenSteps(0.999).position.x, 20, 0.01);
  EXPECT_EQ(stage.node->placementBetweenSteps(0).position.x, 10) << "0 is the step before";
  const std::optional<Path> stride = limb->pathBetweenSteps(0.5);
  ASSERT_TRUE(stride);
  EXPECT_EQ(stride->elements().back().point, (Point{0, -40})) << "a pose stroke swings through";

  // Pooled, reparented, shown, marked or input-nudged nodes, and reshaped paths, are drawn where they are.
  NodePtr pooled = std::make_shared<Node>(), moved = std::make_shared<Node>(), shown = std::make_shared<Node>();
  NodePtr marked = std::make_shared<Node>(), nudged = std::make_shared<Node>();
  const std::vector<NodePtr> jumpers = {pooled, moved, shown, marked, nudged};
  for (const NodePtr& n : jumpers) stage.scene->addChild(n);
  shown->hidden = true;
  stage.frames(1);
  pooled->removeFromParent();
  stage.frames(1);
  stepped->perStep = [&] {
    for (const NodePtr& n : jumpers) n->position = {500, 5};
    stage.scene->addChild(pooled);
    stage.node->addChild(moved);
    shown->hidden = false;
    marked->placeWithoutSlide();
    limb->path = Path::circle(4);
  };
  stage.frames(1);
  stepped->perStep = nullptr;
  EXPECT_NE(nudged->placementBetweenSteps(0.5), nudged->placement()) << "it moved in the step";
  nudged->position.x += 1;
  for (const NodePtr& n : jumpers) EXPECT_EQ(n->placementBetweenSteps(0.5), n->placement());
  EXPECT_FALSE(limb->pathBetweenSteps(0.5));
  stage.frames(1);
  EXPECT_EQ(pooled->placementBetweenSteps(0.5), pooled->placement()) << "nothing moved in this step";
}

}  // namespace
}  // namespace zb

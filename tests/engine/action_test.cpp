#include "engine/action.hpp"

#include <gtest/gtest.h>

#include "engine/scene.hpp"

namespace zb {
namespace {

struct Stage {
  std::shared_ptr<Scene> scene = std::make_shared<Scene>(Size{800, 400});
  NodePtr node = std::make_shared<Node>();
  Stage() { scene->addChild(node); }
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

TEST(ActionTimingTest, ConcurrentMovesAddUpAndEachCompletesOnce) {
  Stage stage;
  int completions = 0;
  stage.node->runAction(actions::moveBy(60, 0, 0.5), [&] { ++completions; });
  stage.frames(6);
  stage.node->runAction(actions::moveBy(0, 30, 0.25), [&] { ++completions; });
  stage.node->runAction(actions::moveBy(-20, 0, 0.25), [&] { ++completions; });
  stage.frames(15);
  EXPECT_NEAR(stage.node->position.x, 60 * 0.7 - 20, 1e-9);
  EXPECT_NEAR(stage.node->position.y, 30, 1e-9);
  stage.frames(30);
  EXPECT_NEAR(stage.node->position.x, 40, 1e-9);
  EXPECT_EQ(completions, 3);
  EXPECT_FALSE(stage.node->hasActions());
}

TEST(ActionTreeTest, ActionsStopWhileTheNodeIsOutOfTheScene) {
  Stage stage;
  stage.node->runAction(actions::moveBy(60, 0, 1));
  stage.frames(6);
  stage.node->removeFromParent();
  auto detached = std::make_shared<Node>();
  detached->runAction(actions::moveBy(60, 0, 1));
  stage.frames(30);
  EXPECT_NEAR(stage.node->position.x, 6, 1e-9);
  EXPECT_EQ(detached->position.x, 0);
  stage.scene->addChild(stage.node);
  stage.scene->addChild(detached);
  stage.frames(6);
  EXPECT_NEAR(stage.node->position.x, 12, 1e-9);
  EXPECT_NEAR(detached->position.x, 6, 1e-9);
}

}  // namespace
}  // namespace zb

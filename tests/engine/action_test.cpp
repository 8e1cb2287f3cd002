#include "engine/action.hpp"

#include <gtest/gtest.h>

#include "engine/audio_node.hpp"
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
  const ActionPtr move = actions::moveBy(120, -30, 0.45);
  const ActionPtr shake =
      actions::sequence({actions::moveBy(6, 0, 0.02), actions::moveBy(-12, 0, 0.04), actions::moveBy(6, 0, 0.02)});
  const ActionPtr twoMoves = actions::sequence({actions::moveBy(30, 0, 0.025), actions::moveBy(0, 60, 0.05)});
  struct Case {
    const char* what;
    Point start;
    ActionPtr action;
    int frames;
    Point expected;
    double tolerance;
  };
  const Case cases[] = {
      {"a move ends exactly on target", {10, 20}, move, 27, {130, -10}, 0},
      {"a shake returns exactly", {400.3, 77.7}, shake, 6, {400.3, 77.7}, 0},
      // The first move ends a third into the second frame; the rest of that frame goes to the second.
      {"leftover time carries on", {0, 0}, twoMoves, 4, {30, 50}, 1e-9},
      {"a sequence ends exactly", {0, 0}, twoMoves, 5, {30, 60}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Stage stage;
    stage.node->position = c.start;
    stage.node->runAction(c.action);
    stage.frames(c.frames);
    EXPECT_NEAR(stage.node->position.x, c.expected.x, c.tolerance);
    EXPECT_NEAR(stage.node->position.y, c.expected.y, c.tolerance);
  }
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

TEST(ActionPauseTest, PausedSceneAdvancesOnlyVolumeChanges) {
  Stage stage;
  auto music = std::make_shared<AudioNode>("music.mp3");
  stage.scene->addChild(music);
  stage.scene->paused = true;
  stage.node->runAction(actions::moveBy(10, 0, 0.1));
  music->runAction(actions::changeVolumeTo(0.6f, 0.1));
  stage.frames(6);
  EXPECT_FLOAT_EQ(music->volume(), 0.6f);
  EXPECT_EQ(stage.node->position.x, 0);
  stage.scene->paused = false;
  stage.frames(6);
  EXPECT_EQ(stage.node->position.x, 10);
}

}  // namespace
}  // namespace zb

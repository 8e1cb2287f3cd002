// Attachment, detachment, the frame step and resizing, as seen from outside the scene.
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using test::SceneOptions;

TEST(Lifecycle, FullScreenTitleFollowsTheViewsWindowThroughBothNotifications) {
  AttachedScene game;
  NotificationCenter& centre = game.view->notificationCenter();
  int otherWindow = 0;
  centre.post(kWindowDidEnterFullScreenNotification, &otherWindow);
  EXPECT_EQ(game->fullscreenButton->text(), "Full Screen") << "another window's news is ignored";
  game.view->virtualWindow().toggleNow();
  EXPECT_EQ(game->fullscreenButton->text(), "Exit Full Screen");
  game.view->virtualWindow().toggleNow();
  EXPECT_EQ(game->fullscreenButton->text(), "Full Screen");
  game.view->dismissScene();
  EXPECT_EQ(centre.observerCount(), 0u);
}

TEST(Lifecycle, NothingMovesWhilePausedAndEachRunStartsAfresh) {
  AttachedScene game(SceneOptions{.size = {1000, 600}});
  GameScene& s = *game;
  game.press(keycode::space);
  game.step(30);
  game.press(keycode::p);
  game.step(30);
  EXPECT_EQ(s.score, 30) << "nothing moves while paused";
  s.obstacleSpeed = 9;
  s.playerContainer->position = {1, 2};
  game.clickOn(*s.restartButton());
  EXPECT_EQ(s.score, 0);
  EXPECT_EQ(s.obstacleSpeed, 4.0);
  EXPECT_TRUE(s.spawnTimerFrames >= 72 && s.spawnTimerFrames <= 150) << s.spawnTimerFrames;
  EXPECT_EQ(s.playerContainer->position, (Point{180, 80}));
}

TEST(Lifecycle, AResizeLaysTheInterfaceOutAtOnceAndTheGroundAtTheNextFrame) {
  AttachedScene game;
  game.view->setSize({640, 480});
  EXPECT_DOUBLE_EQ(game->layoutScale, 0.8);
  game.step();
  EXPECT_EQ(game->groundLine->path.elements()[1].point, (Point{640, 50}));
}

}  // namespace
}  // namespace zb

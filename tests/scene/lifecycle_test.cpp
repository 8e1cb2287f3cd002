// Attachment, detachment, the frame step and resizing, as seen from outside the scene.
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using GameState = GameScene::GameState;
using test::AttachedScene;
using test::SceneOptions;

TEST(Lifecycle, AttachmentBuildsTheTreeInOrder) {
  AttachedScene game;
  GameScene& s = *game;
  const auto& top = s.children();
  ASSERT_GE(top.size(), 4u);
  EXPECT_EQ(top[0], s.backgroundGroup);
  EXPECT_EQ(top[1], s.groundLine);
  EXPECT_EQ(top[2], s.playerContainer);
  EXPECT_EQ(top[3], s.uiLayer);
  const auto& background = s.backgroundGroup->children();
  ASSERT_EQ(background.size(), 3u);
  EXPECT_EQ(background[0], s.buildingGroup);
  EXPECT_EQ(background[1], s.cloudGroup);
  EXPECT_EQ(background[2], s.starGroup);
  EXPECT_TRUE(s.starGroup->children().empty());
  EXPECT_TRUE(s.userInteractionEnabled);
  // The music file exists, so the node is built, added and starts silent before the menu fades it in.
  ASSERT_NE(s.backgroundMusicNode, nullptr);
  EXPECT_EQ(s.backgroundMusicNode->parent(), &s);
  // Palette 0 is in force.
  EXPECT_EQ(s.currentPaletteIndex, 0);
  EXPECT_EQ(s.backgroundColor, s.vibrantPalettes[0].bg);
  EXPECT_EQ(s.currentPrimaryColor, s.vibrantPalettes[0].primary);
  EXPECT_EQ(s.currentSecondaryColor, s.vibrantPalettes[0].secondary);
}

TEST(Lifecycle, AttachmentReadsTheBestScoreAndSettings) {
  auto prefs = std::make_shared<MemoryPreferences>();
  prefs->setInteger(77, "quorraHighScore");
  prefs->setBool(true, "quorra_settingShowFPS");
  prefs->setBool(false, "quorra_settingMusicEnabled");
  AttachedScene game(SceneOptions{.preferences = prefs});
  EXPECT_EQ(game->highScore, 77);
  EXPECT_TRUE(game->settingShowFPS);
  EXPECT_FALSE(game->settingMusicEnabled);
  // Shown at attachment, then switched off again by the menu.
  EXPECT_FALSE(game.view->showsFPS);
  game.step(20);
  EXPECT_EQ(game->backgroundMusicNode->volume(), 0) << "music off stays silent on the menu";
}

TEST(Lifecycle, WithoutSoundFilesThereIsNoMusicAndNothingBreaks) {
  AttachedScene game(SceneOptions{.withSounds = false});
  EXPECT_EQ(game->backgroundMusicNode, nullptr);
  game.press(keycode::space);
  game.press(keycode::p);
  game.press(keycode::p);
  game->toggleMusic();
  game->volumeUp();
  game.runUntilCrash();
  EXPECT_EQ(game->gameState, GameState::gameOver);
  EXPECT_TRUE(game.sounds().empty());
}

TEST(Lifecycle, FullScreenNotificationsFromTheViewsWindowOnly) {
  AttachedScene game;
  NotificationCenter& centre = game.view->notificationCenter();
  EXPECT_EQ(centre.observerCount(), 2u);
  test::TestWindow& window = game.view->testWindow;

  window.fullScreen = true;
  int otherWindow = 0;
  centre.post(kWindowDidEnterFullScreenNotification, &otherWindow);
  EXPECT_EQ(game->fullscreenButton->text(), "Full Screen") << "another window's news is ignored";
  centre.post(kWindowDidEnterFullScreenNotification, &window);
  EXPECT_EQ(game->fullscreenButton->text(), "Exit Full Screen");
  window.fullScreen = false;
  centre.post(kWindowDidExitFullScreenNotification, &window);
  EXPECT_EQ(game->fullscreenButton->text(), "Full Screen");

  game.view->dismissScene();
  EXPECT_EQ(centre.observerCount(), 0u);
}

TEST(Lifecycle, WithoutAWindowNotificationsFromAnyObjectCount) {
  AttachedScene game(SceneOptions{.withWindow = false});
  int anything = 0;
  game.view->notificationCenter().post(kWindowDidExitFullScreenNotification, &anything);
  EXPECT_EQ(game->fullscreenButton->text(), "Full Screen");
  // The toggle has nothing to ask, but still retitles the button.
  game.press(keycode::returnKey, kOptionModifierFlag);
  EXPECT_EQ(game->fullscreenButton->text(), "Full Screen");
}

TEST(Lifecycle, TheFrameStepRunsTheRulesOnlyWhilePlaying) {
  AttachedScene game;
  GameScene& s = *game;
  s.spawnTimerFrames = 1;
  game.step(30);
  EXPECT_EQ(s.score, 0);
  EXPECT_TRUE(s.obstacleNodes.empty());
  EXPECT_EQ(s.spawnTimerFrames, 1);
  // The ground line spans the width in every state.
  const auto& ground = s.groundLine->path.elements();
  ASSERT_EQ(ground.size(), 2u);
  EXPECT_EQ(ground[0].point, (Point{0, 50}));
  EXPECT_EQ(ground[1].point, (Point{800, 50}));

  game.press(keycode::space);
  game.step(30);
  EXPECT_EQ(s.score, 30);
  game.press(keycode::p);
  game.step(30);
  EXPECT_EQ(s.score, 30) << "nothing moves while paused";
}

TEST(Lifecycle, StartingARunResetsItAndPlacesTheFigure) {
  AttachedScene game(SceneOptions{.size = {1000, 600}});
  GameScene& s = *game;
  game.press(keycode::space);
  game.step(20);
  s.obstacleSpeed = 9;
  s.playerFootAltitude = 40;
  s.playerContainer->position = {1, 2};
  s.currentPaletteIndex = 2;
  game.press(keycode::escape);
  game.press(keycode::space);
  EXPECT_EQ(s.score, 0);
  EXPECT_EQ(s.obstacleSpeed, 4.0);
  EXPECT_EQ(s.playerFootAltitude, 0);
  EXPECT_EQ(s.playerContainer->position, (Point{180, 80}));
  EXPECT_EQ(s.framesSinceLeftGround, 9999);
  EXPECT_EQ(s.currentPaletteIndex, 2) << "a run keeps the palette it starts in";
  EXPECT_EQ(s.lastPaletteChangeAtScore, 0);
}

TEST(Lifecycle, MusicFollowsTheStateChanges) {
  AttachedScene game;
  GameScene& s = *game;
  auto volume = [&] { return s.backgroundMusicNode->volume(); };
  game.step(30);
  EXPECT_FLOAT_EQ(volume(), 0.6f) << "the menu fades the music in";
  s.settingMusicVolume = 0.06f;
  game.press(keycode::space);
  game.step(30);
  EXPECT_FLOAT_EQ(volume(), 0.06f);
  game.press(keycode::p);
  game.step(30);
  EXPECT_FLOAT_EQ(volume(), 0.05f) << "paused music is halved but never below 0.05";
  game.press(keycode::p);
  game.step(30);
  EXPECT_FLOAT_EQ(volume(), 0.06f);
  game.runUntilCrash();
  game.step(30);
  EXPECT_FLOAT_EQ(volume(), 0.06f) << "game over leaves the music as it was";

  // With music off, pausing and resuming leave it silent.
  s.settingMusicEnabled = false;
  game.press(keycode::escape);
  game.clickOn(*s.menuButton);
  game.step(30);
  EXPECT_EQ(volume(), 0);
  game.press(keycode::space);
  game.press(keycode::p);
  game.step(30);
  game.press(keycode::p);
  game.step(30);
  EXPECT_EQ(volume(), 0);
}

TEST(Lifecycle, ResizingToAnySizeMidRunKeepsGoing) {
  AttachedScene game;
  game.press(keycode::space);
  for (Size size : {Size{0, 0}, Size{1, 1}, Size{100000, 80000}, Size{1e9, 3}, Size{800, 600}}) {
    game.view->setSize(size);
    EXPECT_EQ(game->size(), size);
    game.step(200);
    if (game->gameState != GameState::playing) game.press(keycode::space);
  }
  game.view->setSize({640, 480});
  EXPECT_DOUBLE_EQ(game->layoutScale, 0.8) << "a size change lays the interface out again";
  game.step();
  EXPECT_EQ(game->groundLine->path.elements()[1].point, (Point{640, 50}));
}

}  // namespace
}  // namespace zb

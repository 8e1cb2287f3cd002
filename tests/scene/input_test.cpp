// The settings buttons' arithmetic and effects, the frame-rate toggle, and how clicks find buttons.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using GameState = GameScene::GameState;
using test::AttachedScene;

TEST(Input, VolumeStepsInSinglePrecision) {
  AttachedScene game;
  GameScene& s = *game;
  const float down[] = {0.5f, 0.4f, 0.3f, 0.20000002f, 0.10000002f, 1.4901161e-08f, 0.0f, 0.0f};
  for (float expected : down) {
    s.volumeDown();
    EXPECT_EQ(s.settingMusicVolume, expected);
  }
  s.settingMusicVolume = 0.6f;
  const float up[] = {0.70000005f, 0.8000001f, 0.9000001f, 1.0f, 1.0f};
  for (float expected : up) {
    s.volumeUp();
    EXPECT_EQ(s.settingMusicVolume, expected);
  }
  // A stored value outside the range is stepped from and clamped only at the bound it crosses.
  s.settingMusicVolume = 1.5f;
  s.volumeDown();
  EXPECT_EQ(s.settingMusicVolume, 1.5f - 0.1f);
  s.volumeUp();
  EXPECT_EQ(s.settingMusicVolume, 1.0f);
  s.settingMusicVolume = std::numeric_limits<float>::quiet_NaN();
  s.volumeDown();
  EXPECT_EQ(s.settingMusicVolume, 0.0f);
  EXPECT_EQ(s.volumeLabel->text(), "Volume: 0%");
}

TEST(Input, VolumeAndMusicButtonsDriveTheMusicButDoNotSave) {
  AttachedScene game;
  GameScene& s = *game;
  game.step(30);
  s.volumeDown();
  game.step(10);
  EXPECT_FLOAT_EQ(s.backgroundMusicNode->volume(), 0.5f);
  s.toggleMusic();
  EXPECT_FALSE(s.settingMusicEnabled);
  EXPECT_EQ(s.musicToggleLabel->text(), "Music: Off");
  game.step(10);
  EXPECT_EQ(s.backgroundMusicNode->volume(), 0);
  s.volumeUp();
  game.step(10);
  EXPECT_EQ(s.backgroundMusicNode->volume(), 0) << "volume changes are silent with music off";
  s.toggleMusic();
  game.step(10);
  EXPECT_FLOAT_EQ(s.backgroundMusicNode->volume(), 0.6f);
  EXPECT_TRUE(game.preferences->dictionaryRepresentation().empty());
}

TEST(Input, FrameRateToggleSavesAllThreeAndShowsTheCounters) {
  AttachedScene game;
  GameScene& s = *game;
  game.clickOn(*s.settingsButton);
  ASSERT_EQ(s.gameState, GameState::settings);
  s.toggleMusic();
  s.volumeDown();
  s.toggleShowFPS();
  EXPECT_TRUE(game.view->showsFPS);
  EXPECT_TRUE(game.view->showsNodeCount);
  EXPECT_EQ(s.toggleFPSLabel->text(), "Show FPS: On");
  EXPECT_TRUE(game.preferences->boolForKey("quorra_settingShowFPS"));
  EXPECT_FALSE(game.preferences->boolForKey("quorra_settingMusicEnabled"));
  EXPECT_EQ(game.preferences->floatForKey("quorra_settingMusicVolume"), 0.5f);
  game.press(keycode::escape);
  EXPECT_FALSE(game.view->showsFPS) << "the menu switches the counters off again";

  // Away from any view the setting still flips and saves.
  GameScene detached(Size{800, 600});
  detached.toggleShowFPS();
  EXPECT_TRUE(detached.services().preferences->boolForKey("quorra_settingShowFPS"));
}

TEST(Input, ClicksAreConvertedIntoTheInterfaceLayer) {
  AttachedScene game;
  const Point start = game.centreOf(*game->startButton);
  // Mid-shake the interface layer is offset; the click must follow it.
  game->uiLayer->position = {40, 0};
  game.click(start);
  EXPECT_EQ(game->gameState, GameState::menu);
  game.click({start.x + 40, start.y});
  EXPECT_EQ(game->gameState, GameState::playing);
}

TEST(Input, ButtonNameComesFromTheNodeOrItsParent) {
  AttachedScene game;
  GameScene& s = *game;
  // Decorations under the Start button, away from its text.
  auto unnamed = ShapeNode::withRectOfSize({20, 20});
  unnamed->position = {0, -300};
  s.startButton->addChild(unnamed);
  auto named = ShapeNode::withRectOfSize({20, 20});
  named->name = "decor";
  named->position = {200, -300};
  s.startButton->addChild(named);
  auto unknown = ShapeNode::withRectOfSize({20, 20});
  unknown->name = "btn_unknown";
  unknown->position = {500, 100};
  s.uiLayer->addChild(unknown);

  game.click(game.centreOf(*named));
  EXPECT_EQ(s.gameState, GameState::menu) << "a named child routes by its own name";
  game.click(game.centreOf(*unknown));
  EXPECT_EQ(s.gameState, GameState::menu);
  EXPECT_TRUE(game.sounds().empty());
  game.click(game.centreOf(*unnamed));
  EXPECT_EQ(s.gameState, GameState::playing) << "an unnamed child takes its parent's name";
}

TEST(Input, ReturnWithoutOptionDoesNothing) {
  AttachedScene game;
  game.press(keycode::returnKey);
  game.press(keycode::keypadEnter, 1u << 18);  // Control, not Option
  EXPECT_EQ(game.view->testWindow.toggles, 0);
  game.press(keycode::keypadEnter, kOptionModifierFlag);
  EXPECT_EQ(game.view->testWindow.toggles, 1);
}

}  // namespace
}  // namespace zb

// The settings page's buttons: the volume's arithmetic and read-out, and what each one changes or saves.
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

TEST(Input, VolumeStepsInSinglePrecisionAndReadsOutTruncated) {
  AttachedScene game;
  GameScene& s = *game;
  game.clickOn(*s.settingsButton);
  EXPECT_EQ(s.volumeLabel->text(), "Volume: 60%");
  // Six steps down leave a float crumb above zero that still reads 0%; the seventh reaches zero and stays.
  for (int i = 0; i < 6; ++i) s.volumeDown();
  EXPECT_GT(s.settingMusicVolume, 0.0f);
  EXPECT_EQ(s.volumeLabel->text(), "Volume: 0%");
  s.volumeDown();
  s.volumeDown();
  EXPECT_EQ(s.settingMusicVolume, 0.0f);
  s.settingMusicVolume = 0.6f;
  for (int i = 0; i < 5; ++i) s.volumeUp();
  EXPECT_EQ(s.settingMusicVolume, 1.0f);
  s.volumeDown();
  s.volumeDown();
  EXPECT_EQ(s.volumeLabel->text(), "Volume: 79%");
}

TEST(Input, OnlyTheFrameRateToggleSavesAndItShowsTheCounters) {
  AttachedScene game;
  GameScene& s = *game;
  game.clickOn(*s.settingsButton);
  game.clickOn(*s.musicToggleLabel);
  game.clickOn(*s.volDownButton);
  EXPECT_EQ(s.musicToggleLabel->text(), "Music: Off");
  EXPECT_TRUE(game.preferences->dictionaryRepresentation().empty());

  game.clickOn(*s.toggleFPSLabel);
  EXPECT_EQ(s.toggleFPSLabel->text(), "Show FPS: On");
  EXPECT_TRUE(game.view->showsFPS && game.view->showsNodeCount);
  EXPECT_TRUE(game.preferences->boolForKey("quorra_settingShowFPS"));
  EXPECT_FALSE(game.preferences->boolForKey("quorra_settingMusicEnabled"));
  EXPECT_EQ(game.preferences->floatForKey("quorra_settingMusicVolume"), 0.5f);
  game.press(keycode::escape);
  EXPECT_FALSE(game.view->showsFPS) << "the menu switches the counters off again";
}

}  // namespace
}  // namespace zb

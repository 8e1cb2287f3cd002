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
  const struct {
    float volume;
    const char* readout;
  } down[] = {{0.5f, "50"},        {0.4f, "40"}, {0.3f, "30"}, {0.20000002f, "20"}, {0.10000002f, "10"},
              {1.4901161e-08f, "0"}, {0.0f, "0"},  {0.0f, "0"}};
  for (const auto& step : down) {
    s.volumeDown();
    EXPECT_EQ(s.settingMusicVolume, step.volume);
    EXPECT_EQ(s.volumeLabel->text(), std::string("Volume: ") + step.readout + "%");
  }
  s.settingMusicVolume = 0.6f;
  for (float expected : {0.70000005f, 0.8000001f, 0.9000001f, 1.0f, 1.0f}) {
    s.volumeUp();
    EXPECT_EQ(s.settingMusicVolume, expected);
  }
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

// The best score and the three settings as a launch reads them and the frame-rate toggle writes them.
// Keys are spelled out here on purpose: they are what other copies of the game read.
#include <gtest/gtest.h>

#include <bit>

#include "platform/preferences_file.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using test::SceneOptions;

TEST(Settings, ALaunchTakesStoredValuesEvenFalseAndZeroAndDefaultsForTheRest) {
  AttachedScene fresh;
  EXPECT_FALSE(fresh->settingShowFPS);
  EXPECT_TRUE(fresh->settingMusicEnabled);

  auto store = std::make_shared<MemoryPreferences>();
  store->setBool(true, "quorra_settingShowFPS");
  store->setBool(false, "quorra_settingMusicEnabled");
  store->setFloat(0.0f, "quorra_settingMusicVolume");
  AttachedScene stored(SceneOptions{.preferences = store});
  EXPECT_TRUE(stored->settingShowFPS);
  EXPECT_FALSE(stored->settingMusicEnabled);
  EXPECT_EQ(stored->settingMusicVolume, 0.0f);
  stored.step(20);
  EXPECT_EQ(stored.musicVolume(), 0) << "music off stays silent on the menu";
}

// Quit and relaunch with the real preferences file: a volume off the tenths comes back exactly.
TEST(Settings, SavingWritesTheThreeSettingsAndARelaunchReadsThemBackBitForBit) {
  const test::TempFolder folder("zb-settings");
  const auto file = folder.path() / "zindlebop" / "preferences.ini";
  {
    AttachedScene game(SceneOptions{.preferences = std::make_shared<FilePreferences>(file)});
    game->settingShowFPS = true;
    game->settingMusicEnabled = false;
    game->settingMusicVolume = 0.70000005f;
    game->highScore = 5000;
    game->saveSettings();
    auto stored = game.preferences->dictionaryRepresentation();
    EXPECT_EQ(stored.size(), 3u) << "the best score is not among them";
    EXPECT_EQ(stored["quorra_settingMusicVolume"], PreferenceValue(0.70000005f));
  }
  AttachedScene relaunched(SceneOptions{.preferences = std::make_shared<FilePreferences>(file)});
  EXPECT_TRUE(relaunched->settingShowFPS);
  EXPECT_FALSE(relaunched->settingMusicEnabled);
  EXPECT_EQ(std::bit_cast<uint32_t>(relaunched->settingMusicVolume), std::bit_cast<uint32_t>(0.70000005f));
}

}  // namespace
}  // namespace zb

// The three settings as the frame-rate toggle writes them and a relaunch reads them back. Keys are
// spelled out here on purpose: they are what other copies of the game read.
#include <gtest/gtest.h>

#include <bit>

#include "platform/preferences_file.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

// Quit and relaunch with the real preferences file: a volume off the tenths comes back exactly.
TEST(Settings, SavingWritesTheThreeSettingsAndARelaunchReadsThemBackBitForBit) {
  const test::TempFolder folder("zb-settings");
  const auto file = folder.path() / "zindlebop" / "preferences.ini";
  {
    AttachedScene game({.preferences = std::make_shared<FilePreferences>(file)});
    game->settingShowFPS = true;
    game->settingMusicEnabled = false;
    game->settingMusicVolume = 0.70000005f;
    game->highScore = 5000;
    game->saveSettings();
    EXPECT_EQ(game.preferences->dictionaryRepresentation().size(), 3u) << "the best score is not among them";
  }
  AttachedScene relaunched({.preferences = std::make_shared<FilePreferences>(file)});
  EXPECT_TRUE(relaunched->settingShowFPS);
  EXPECT_FALSE(relaunched->settingMusicEnabled);
  EXPECT_EQ(std::bit_cast<uint32_t>(relaunched->settingMusicVolume), std::bit_cast<uint32_t>(0.70000005f));
  relaunched.step(20);
  EXPECT_EQ(relaunched.musicVolume(), 0) << "music off stays silent on the menu";
}

}  // namespace
}  // namespace zb

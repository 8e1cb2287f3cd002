// The best score and the three settings as a launch reads them and the frame-rate toggle writes them.
// Keys are spelled out here on purpose: they are what other copies of the game read.
#include <gtest/gtest.h>
#include <unistd.h>

#include <bit>
#include <filesystem>

#include "platform/preferences_file.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using test::SceneOptions;

SceneOptions withStore(std::shared_ptr<MemoryPreferences> store) {
  SceneOptions options;
  options.preferences = std::move(store);
  return options;
}

TEST(Settings, AnEmptyStoreGivesTheDefaults) {
  AttachedScene game;
  EXPECT_FALSE(game->settingShowFPS);
  EXPECT_TRUE(game->settingMusicEnabled);
  EXPECT_EQ(game->settingMusicVolume, 0.6f);
  EXPECT_EQ(game->highScore, 0);
  EXPECT_EQ(game->storedHighScore(), 0);
  EXPECT_TRUE(game.preferences->dictionaryRepresentation().empty()) << "a launch writes nothing";
}

TEST(Settings, StoredValuesWinOverTheDefaultsEvenFalseAndZero) {
  auto store = std::make_shared<MemoryPreferences>();
  store->setBool(true, "quorra_settingShowFPS");
  store->setBool(false, "quorra_settingMusicEnabled");
  store->setFloat(0.0f, "quorra_settingMusicVolume");
  store->setInteger(321, "quorraHighScore");
  AttachedScene game(withStore(store));
  EXPECT_TRUE(game->settingShowFPS);
  EXPECT_FALSE(game->settingMusicEnabled);
  EXPECT_EQ(game->settingMusicVolume, 0.0f);
  EXPECT_EQ(game->highScore, 321);

  store->setInteger(400, "quorraHighScore");
  EXPECT_EQ(game->storedHighScore(), 400);
}

TEST(Settings, StoredValuesOfOtherTypesAreConvertedAndNotClamped) {
  auto store = std::make_shared<MemoryPreferences>();
  store->setObject("quorra_settingShowFPS", std::string("yes"));
  store->setInteger(0, "quorra_settingMusicEnabled");
  store->setObject("quorra_settingMusicVolume", std::string("1.5"));
  store->setObject("quorraHighScore", 99.9f);
  AttachedScene game(withStore(store));
  EXPECT_TRUE(game->settingShowFPS);
  EXPECT_FALSE(game->settingMusicEnabled);
  EXPECT_EQ(game->settingMusicVolume, 1.5f);
  EXPECT_EQ(game->highScore, 99);

  store->setInteger(1, "quorra_settingMusicVolume");
  game->loadSettings();
  EXPECT_EQ(game->settingMusicVolume, 1.0f);
}

TEST(Settings, SavingWritesAllThreeWithTheirTypesAndNothingElse) {
  AttachedScene game;
  game->settingShowFPS = true;
  game->settingMusicEnabled = false;
  game->settingMusicVolume = 0.70000005f;
  game->highScore = 5000;
  game->saveSettings();

  auto stored = game.preferences->dictionaryRepresentation();
  EXPECT_EQ(stored.size(), 3u);
  EXPECT_EQ(stored["quorra_settingShowFPS"], PreferenceValue(true));
  EXPECT_EQ(stored["quorra_settingMusicEnabled"], PreferenceValue(false));
  EXPECT_EQ(stored["quorra_settingMusicVolume"], PreferenceValue(0.70000005f));
  EXPECT_FALSE(stored.contains("quorraHighScore"));

  AttachedScene relaunched(withStore(game.preferences));
  EXPECT_TRUE(relaunched->settingShowFPS);
  EXPECT_FALSE(relaunched->settingMusicEnabled);
  EXPECT_EQ(relaunched->settingMusicVolume, 0.70000005f);
}

// Quit and relaunch with the real preferences file: a volume off the tenths comes back exactly.
TEST(Settings, SavedSettingsComeBackBitForBitFromTheFile) {
  const auto folder = std::filesystem::temp_directory_path() / ("zb-settings-" + std::to_string(::getpid()));
  const auto file = folder / "zindlebop" / "preferences.ini";
  std::filesystem::remove_all(folder);
  {
    AttachedScene game(withStore(std::make_shared<FilePreferences>(file)));
    game->settingMusicVolume = 0.70000005f;
    game->settingMusicEnabled = false;
    game->saveSettings();
  }
  AttachedScene relaunched(withStore(std::make_shared<FilePreferences>(file)));
  EXPECT_EQ(std::bit_cast<uint32_t>(relaunched->settingMusicVolume), std::bit_cast<uint32_t>(0.70000005f));
  EXPECT_FALSE(relaunched->settingMusicEnabled);
  EXPECT_FALSE(relaunched->settingShowFPS);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace zb

// Where each sound comes from, which laugh plays, and the music's volume over time.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;
using test::AttachedScene;
using Sounds = std::vector<std::string>;

// A resource folder holding a stand-in for the named sound; all of them go when the tests end.
fs::path resourcesWith(const std::string& name) {
  static const test::TempFolder root("zb-test-resources");
  return root.touch(name + "/" + name + ".mp3").parent_path();
}

TEST(Sound, EffectsAndMusicComeFromTheResourcesFirstThenTheFallbackOrNotAtAll) {
  AttachedScene both({.resources = resourcesWith("jump")});
  both->playSFX("jump", both->fallbackPath("jump.mp3"));
  EXPECT_TRUE(both.sounds().empty()) << "a resource plays through an action";
  both.step(10);
  EXPECT_EQ(both.sounds(), Sounds{"jump"});
  both->paused = true;
  both->playSFX("click", both->fallbackPath("click.mp3"));
  EXPECT_EQ(both.sounds(), Sounds{"click"}) << "a fallback file plays at once, even while paused";
  const AudioNode& music = *both->backgroundMusicNode;
  EXPECT_EQ(music.file(), test::makeSoundFolder() / "bg-music.mp3");
  EXPECT_TRUE(music.autoplayLooped && music.isPlaying());
  AttachedScene fromResources({.resources = resourcesWith("bg-music")});
  EXPECT_EQ(fromResources->backgroundMusicNode->file(), resourcesWith("bg-music") / "bg-music.mp3");

  AttachedScene none({.withSounds = false});
  EXPECT_EQ(none->backgroundMusicNode, nullptr);
  none.press(keycode::space);
  none.runUntilCrash();
  EXPECT_TRUE(none.sounds().empty());
}

TEST(Sound, TheSameLaughNeverPlaysTwiceInARow) {
  AttachedScene game;
  std::multiset<std::string> played;
  std::string previous;
  for (int draw = 0; draw < 1000; ++draw) {
    game->playRandomBabyLaugh();
    const Sounds now = game.sounds();
    ASSERT_EQ(now.size(), 1u) << "draw " << draw;
    EXPECT_NE(now[0], previous) << "draw " << draw;
    played.insert(previous = now[0]);
  }
  for (int i = 1; i <= 4; ++i) EXPECT_GT(played.count("baby-laugh-" + std::to_string(i)), 150u) << i;

  game->babyLaughResourceNames = {"baby-laugh-2"};
  game->playRandomBabyLaugh();
  game->playRandomBabyLaugh();
  EXPECT_EQ(game.sounds(), (Sounds{"baby-laugh-2", "baby-laugh-2"})) << "a lone laugh plays every time";
}

TEST(Sound, EveryVolumeChangeReachesItsTargetOverItsDuration) {
  AttachedScene game;
  game.step(6);
  EXPECT_NEAR(game.musicVolume(), 0.3f, 1e-5) << "built silent, then faded in by the menu over 0.2 s";
  game.step(6);
  EXPECT_EQ(game.musicVolume(), 0.6f);
  using Change = void (*)(GameScene&);
  const struct {
    const char* moment;
    Change change;
    float target;
    int frames;
  } rows[] = {
      {"a quiet run", [](GameScene& g) { g.settingMusicVolume = 0.06f; g.startGame(); }, 0.06f, 12},
      {"paused, never below 0.05", [](GameScene& g) { g.pauseGame(); }, 0.05f, 6},
      {"resumed louder", [](GameScene& g) { g.settingMusicVolume = 0.6f; g.resumeGame(); }, 0.6f, 6},
      {"music off", [](GameScene& g) { g.toggleMusic(); }, 0.0f, 6},
      {"music on", [](GameScene& g) { g.toggleMusic(); }, 0.6f, 6},
      {"paused at half volume", [](GameScene& g) { g.pauseGame(); }, 0.3f, 6},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.moment);
    const float from = game.musicVolume();
    row.change(*game);
    const int half = row.frames / 2;
    game.step(half);
    EXPECT_NEAR(game.musicVolume(), (from + row.target) / 2, 1e-5) << "half way at half time";
    game.step(row.frames - half - 1);
    EXPECT_NE(game.musicVolume(), row.target) << "finished early";
    game.step();
    EXPECT_EQ(game.musicVolume(), row.target);
    EXPECT_EQ(game.view->recorder().loop(*game->backgroundMusicNode)->volume, row.target) << "the output is told";
  }
  game->resumeGame();
  game.runUntilCrash();
  game.step(30);
  EXPECT_FLOAT_EQ(game.musicVolume(), 0.6f) << "game over leaves the music as it was";
  game->settingMusicEnabled = false;
  game->showMenu();
  game->startGame();
  game->pauseGame();
  game->resumeGame();
  game.step(30);
  EXPECT_EQ(game.musicVolume(), 0.0f) << "with music off, neither a run nor a pause brings it back";
}

}  // namespace
}  // namespace zb

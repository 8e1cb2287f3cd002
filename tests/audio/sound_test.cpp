// Where each sound comes from (resources, the fallback folder, nowhere), how it is played, which laugh
// plays, and the music node's volume over time.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "engine/audio_node.hpp"
#include "engine/view.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

constexpr double kFrame = View::kFrameDuration;

// Writes down every sound the scene asks its view to play.
class RecordingOutput final : public SoundOutput {
 public:
  bool playEffect(const fs::path& file) override {
    effects.push_back(file);
    return true;
  }
  void startLoop(const AudioNode& node) override { loops.push_back(node.file()); }
  void setLoopVolume(const AudioNode&, float volume) override { loopVolume = volume; }
  void stopLoop(const AudioNode&) override {}

  std::vector<fs::path> takeEffects() { return std::exchange(effects, {}); }
  std::vector<fs::path> effects;
  std::vector<fs::path> loops;
  float loopVolume = -1;
};

class RecordingView final : public View {
 public:
  RecordingView() : View(Size{800, 600}) {}
  SoundOutput& soundOutput() override { return output; }
  RecordingOutput output;
};

// A resource folder and a fallback folder of empty stand-in files, and a scene presented in a
// recording view once the test has put into them what it needs.
class SoundTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root = fs::temp_directory_path() /
           ("zb-sound-" + std::to_string(::getpid()) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root);
    resources = root / "resources";
    fallback = root / "fallback";
    fs::create_directories(resources);
    fs::create_directories(fallback / "Babylaughs");
  }
  void TearDown() override {
    view.dismissScene();
    fs::remove_all(root);
  }

  static fs::path touch(const fs::path& file) {
    std::ofstream(file) << "stand-in";
    return file;
  }

  GameServices services(bool withFallback = true) const {
    GameServices result;
    result.bundle = ResourceBundle(resources);
    if (withFallback) result.fallbackFolder = fallback;
    return result;
  }

  GameScene& present(GameServices withServices) {
    scene = std::make_shared<GameScene>(Size{800, 600});
    scene->setServices(std::move(withServices));
    scene->random().seed(3);
    view.presentScene(scene);
    return *scene;
  }
  GameScene& present() { return present(services()); }

  void step(int frames = 1) {
    for (int i = 0; i < frames; ++i) view.stepFrame();
  }
  float musicVolume() const { return scene->backgroundMusicNode->volume(); }

  fs::path root, resources, fallback;
  RecordingView view;
  std::shared_ptr<GameScene> scene;
};

TEST_F(SoundTest, AnEffectInTheResourcesPlaysThroughAnActionAtTheNextFrame) {
  const fs::path jump = touch(resources / "jump.mp3");
  touch(fallback / "jump.mp3");
  GameScene& game = present();

  game.playSFX("jump", game.fallbackPath("jump.mp3"));
  EXPECT_TRUE(view.output.effects.empty());
  step();
  EXPECT_EQ(view.output.takeEffects(), std::vector<fs::path>{jump});
  step(10);
  EXPECT_TRUE(view.output.effects.empty()) << "played once";
}

TEST_F(SoundTest, AnEffectOnlyInTheFallbackFolderPlaysAtOnceEvenWhilePaused) {
  const fs::path click = touch(fallback / "click.mp3");
  GameScene& game = present();
  EXPECT_EQ(game.fallbackPath("click.mp3"), click);

  game.paused = true;
  game.playSFX("click", game.fallbackPath("click.mp3"));
  EXPECT_EQ(view.output.takeEffects(), std::vector<fs::path>{click});
  step(5);
  EXPECT_TRUE(view.output.effects.empty());
}

TEST_F(SoundTest, AnEffectFoundNowhereIsSkippedSilently) {
  touch(fallback / "click.mp3");
  GameScene& game = present(services(/*withFallback=*/false));
  EXPECT_EQ(game.fallbackPath("click.mp3"), fs::path());

  game.playSFX("click", game.fallbackPath("click.mp3"));
  game.playSFX("click", std::nullopt);
  game.playSFX("explosion", fallback / "explosion.mp3");  // a fallback path with no file there
  game.playSFX("jump", fallback);                         // a folder is no sound
  step(3);
  EXPECT_TRUE(view.output.effects.empty());
}

TEST_F(SoundTest, TheSameLaughNeverPlaysTwiceInARowAndEachCallPlaysOne) {
  std::vector<fs::path> laughs;
  for (int i = 1; i <= 4; ++i) laughs.push_back(touch(fallback / "Babylaughs" / ("baby-laugh-" + std::to_string(i) + ".mp3")));
  GameScene& game = present();
  ASSERT_EQ(game.babyLaughResourceNames,
            (std::vector<std::string>{"baby-laugh-1", "baby-laugh-2", "baby-laugh-3", "baby-laugh-4"}));
  EXPECT_EQ(game.lastBabyLaughIndex, -1);

  std::multiset<fs::path> played;
  fs::path previous;
  for (int draw = 0; draw < 1000; ++draw) {
    game.playRandomBabyLaugh();
    std::vector<fs::path> now = view.output.takeEffects();
    ASSERT_EQ(now.size(), 1u) << "draw " << draw;
    EXPECT_NE(now[0], previous) << "draw " << draw;
    EXPECT_EQ(now[0], laughs.at(static_cast<size_t>(game.lastBabyLaughIndex)));
    previous = now[0];
    played.insert(now[0]);
  }
  for (const fs::path& laugh : laughs) EXPECT_GT(played.count(laugh), 150u) << laugh;
}

TEST_F(SoundTest, ALoneLaughPlaysEveryTimeAndNoLaughsPlaysNothing) {
  const fs::path only = touch(resources / "baby-laugh-2.mp3");
  GameScene& game = present();

  game.babyLaughResourceNames = {"baby-laugh-2"};
  for (int i = 0; i < 5; ++i) {
    game.playRandomBabyLaugh();
    step();
    EXPECT_EQ(view.output.takeEffects(), std::vector<fs::path>{only});
    EXPECT_EQ(game.lastBabyLaughIndex, 0);
  }

  game.babyLaughResourceNames = {"baby-laugh-1", "baby-laugh-3"};  // found nowhere
  game.playRandomBabyLaugh();
  step();
  EXPECT_TRUE(view.output.effects.empty());

  game.babyLaughResourceNames.clear();
  game.playRandomBabyLaugh();
  step();
  EXPECT_TRUE(view.output.effects.empty());
}

TEST_F(SoundTest, TheMusicComesFromTheResourcesFirstThenTheFallback) {
  const fs::path inResources = touch(resources / "bg-music.mp3");
  const fs::path inFallback = touch(fallback / "bg-music.mp3");
  GameScene& game = present();
  ASSERT_TRUE(game.backgroundMusicNode);
  const AudioNode& music = *game.backgroundMusicNode;
  EXPECT_EQ(music.file(), inResources);
  EXPECT_TRUE(music.autoplayLooped);
  EXPECT_FALSE(music.positional);
  EXPECT_EQ(music.parent(), &game);
  EXPECT_TRUE(music.isPlaying());
  EXPECT_EQ(view.output.loops, std::vector<fs::path>{inResources});

  // Built once: a second build keeps the node.
  game.buildMusicNode();
  EXPECT_EQ(game.backgroundMusicNode.get(), &music);

  fs::remove(inResources);
  view.dismissScene();
  GameScene& second = present();
  ASSERT_TRUE(second.backgroundMusicNode);
  EXPECT_EQ(second.backgroundMusicNode->file(), inFallback);
}

TEST_F(SoundTest, WithoutAMusicFileThereIsNoNodeAndNoVolumeChange) {
  GameScene& game = present();
  EXPECT_FALSE(game.backgroundMusicNode);
  game.fadeMusic(0.5f, 0.1);
  step(20);
  EXPECT_TRUE(view.output.loops.empty());
  EXPECT_EQ(view.output.loopVolume, -1);
}

// The node starts silent: a change to 0 over no time, due at the first frame, even before any view.
TEST_F(SoundTest, TheMusicNodeIsBuiltSilent) {
  touch(resources / "bg-music.mp3");
  GameScene game(Size{800, 600});
  game.setServices(services());
  game.buildMusicNode();
  ASSERT_TRUE(game.backgroundMusicNode);
  EXPECT_EQ(game.backgroundMusicNode->volume(), 1.0f);
  game.paused = true;  // only volume changes advance, and the game's frame step stays out of it
  game.stepFrame(kFrame);
  EXPECT_EQ(game.backgroundMusicNode->volume(), 0.0f);
}

// Each row: a volume change and how long it takes, read back from the node frame by frame.
TEST_F(SoundTest, EveryVolumeChangeReachesItsTargetOverItsDuration) {
  touch(resources / "bg-music.mp3");
  GameScene& game = present();
  ASSERT_TRUE(game.backgroundMusicNode);

  // Attachment: built at 0, then the menu fades it to the volume over 0.2 s.
  step(6);
  EXPECT_NEAR(musicVolume(), 0.3f, 1e-5);
  step(6);
  EXPECT_EQ(musicVolume(), 0.6f);
  EXPECT_EQ(view.output.loopVolume, 0.6f);

  struct Row {
    const char* moment;
    void (*change)(GameScene&);
    float target;
    int frames;  // the duration in frames
  };
  const Row rows[] = {
      {"fade helper down", [](GameScene& g) { g.fadeMusic(0.2f, 0.1); }, 0.2f, 6},
      {"fade helper, instant", [](GameScene& g) { g.fadeMusic(0.9f, 0.0); }, 0.9f, 1},
      {"start a run", [](GameScene& g) { g.startGame(); }, 0.6f, 12},
      {"pause at half volume", [](GameScene& g) { g.pauseGame(); }, 0.3f, 6},
      {"resume", [](GameScene& g) { g.resumeGame(); }, 0.6f, 6},
      {"music off", [](GameScene& g) { g.toggleMusic(); }, 0.0f, 6},
      {"music on", [](GameScene& g) { g.toggleMusic(); }, 0.6f, 6},
      {"volume down", [](GameScene& g) { g.volumeDown(); }, 0.5f, 3},
      {"pause again", [](GameScene& g) { g.pauseGame(); }, 0.25f, 6},
      {"back to the menu", [](GameScene& g) { g.showMenu(); }, 0.5f, 12},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.moment);
    const float from = musicVolume();
    row.change(game);
    const int half = row.frames / 2;
    step(half);
    if (half > 0) {
      EXPECT_NEAR(musicVolume(), from + (row.target - from) * static_cast<float>(half) / row.frames, 1e-5);
    }
    step(row.frames - half - 1);
    EXPECT_NE(musicVolume(), row.target) << "finished early";
    step();
    EXPECT_EQ(musicVolume(), row.target);
    EXPECT_EQ(view.output.loopVolume, row.target);
  }
}

// A view without a sound device plays into silence: every sound operation still runs.
TEST_F(SoundTest, EverySoundOperationRunsWithoutAnAudioDevice) {
  for (const char* name : {"jump", "click", "explosion", "bg-music", "baby-laugh-1"}) touch(resources / (std::string(name) + ".mp3"));
  for (const char* name : {"baby-laugh-2", "baby-laugh-3"}) touch(fallback / "Babylaughs" / (std::string(name) + ".mp3"));
  View silentView(Size{800, 600});
  auto game = std::make_shared<GameScene>(Size{800, 600});
  game->setServices(services());
  silentView.presentScene(game);
  ASSERT_TRUE(game->backgroundMusicNode);
  for (int i = 0; i < 20; ++i) {
    game->playSFX("jump", game->fallbackPath("jump.mp3"));
    game->playRandomBabyLaugh();
    game->fadeMusic(0.1f * static_cast<float>(i % 10), 0.05);
    silentView.stepFrame();
  }
  silentView.dismissScene();
}

}  // namespace
}  // namespace zb

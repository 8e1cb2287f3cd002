#include "platform/mixer_sound.hpp"

#include <SDL_mixer.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <memory>
#include <string>

#include "engine/audio_node.hpp"
#include "engine/resources.hpp"
#include "platform/resource_paths.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

const fs::path kSounds = fs::path(ZB_SOURCE_DIR) / "assets" / "sounds";
const char* const kSoundNames[] = {"jump",         "click",        "explosion",    "bg-music",
                                   "baby-laugh-1", "baby-laugh-2", "baby-laugh-3", "baby-laugh-4"};

// Chooses SDL's audio driver for the life of the object.
class AudioDriver {
 public:
  explicit AudioDriver(const char* name) {
    if (const char* old = std::getenv("SDL_AUDIODRIVER")) old_ = old;
    ::setenv("SDL_AUDIODRIVER", name, 1);
  }
  ~AudioDriver() {
    if (old_) {
      ::setenv("SDL_AUDIODRIVER", old_->c_str(), 1);
    } else {
      ::unsetenv("SDL_AUDIODRIVER");
    }
  }

 private:
  std::optional<std::string> old_;
};

TEST(MixerSoundOutput, OpensNothingWithoutAnAudioDevice) {
  AudioDriver driver("nonexistent");
  EXPECT_EQ(MixerSoundOutput::open(), nullptr);
  EXPECT_EQ(MixerSoundOutput::open(), nullptr);
}

TEST(MixerSoundOutput, PlaysEffectsAndSkipsFilesItCannotLoad) {
  AudioDriver driver("dummy");
  auto output = MixerSoundOutput::open();
  ASSERT_NE(output, nullptr);
  EXPECT_TRUE(output->playEffect(kSounds / "jump.mp3"));
  EXPECT_TRUE(output->playEffect(kSounds / "jump.mp3"));  // again, from the cache, on another channel
  EXPECT_TRUE(output->playEffect(kSounds / "click.mp3"));

  const fs::path notSound = fs::temp_directory_path() / ("zb-not-a-sound-" + std::to_string(::getpid()) + ".mp3");
  std::ofstream(notSound) << "this is not an mp3";
  EXPECT_FALSE(output->playEffect(notSound));
  EXPECT_FALSE(output->playEffect(fs::temp_directory_path() / "zb-no-such-sound.mp3"));
  EXPECT_FALSE(output->playEffect(kSounds));  // a folder
  fs::remove(notSound);
}

TEST(MixerSoundOutput, TheMusicLoopFollowsItsNodesVolume) {
  AudioDriver driver("dummy");
  auto output = MixerSoundOutput::open();
  ASSERT_NE(output, nullptr);
  AudioNode music(kSounds / "bg-music.mp3");
  AudioNode other(kSounds / "jump.mp3");
  music.setVolume(0.25f);

  output->startLoop(music);
  EXPECT_TRUE(Mix_PlayingMusic());
  EXPECT_EQ(Mix_VolumeMusic(-1), 32);
  output->setLoopVolume(music, 0.5f);
  EXPECT_EQ(Mix_VolumeMusic(-1), 64);
  output->setLoopVolume(other, 1.0f);  // not the loop that plays
  EXPECT_EQ(Mix_VolumeMusic(-1), 64);
  output->setLoopVolume(music, 1.5f);  // a stored volume above 1 plays at full volume
  EXPECT_EQ(Mix_VolumeMusic(-1), MIX_MAX_VOLUME);
  output->setLoopVolume(music, std::numeric_limits<float>::quiet_NaN());
  EXPECT_EQ(Mix_VolumeMusic(-1), 0);
  output->stopLoop(other);
  EXPECT_TRUE(Mix_PlayingMusic());
  output->stopLoop(music);
  EXPECT_FALSE(Mix_PlayingMusic());

  AudioNode broken(fs::temp_directory_path() / "zb-no-such-music.mp3");
  output->startLoop(broken);
  EXPECT_FALSE(Mix_PlayingMusic());
  output->setLoopVolume(broken, 0.5f);
  output->stopLoop(broken);
}

// The generated sounds, decoded the way the game decodes them.
class GeneratedSounds : public ::testing::Test {
 protected:
  void SetUp() override {
    output = MixerSoundOutput::open();
    ASSERT_NE(output, nullptr);
    ASSERT_NE(Mix_QuerySpec(&rate, &format, &channels), 0);
  }

  struct Decoded {
    double seconds = 0;
    float peak = 0;
    float seamPeak = 0;  // the loudest sample within 5 ms of either end
  };
  Decoded decode(const fs::path& file) {
    std::unique_ptr<Mix_Chunk, decltype(&Mix_FreeChunk)> chunk(Mix_LoadWAV(file.c_str()), &Mix_FreeChunk);
    EXPECT_TRUE(chunk) << file;
    if (!chunk || format != AUDIO_S16SYS) return {};
    const auto* samples = reinterpret_cast<const int16_t*>(chunk->abuf);
    const size_t count = chunk->alen / sizeof(int16_t);
    Decoded result;
    result.seconds = static_cast<double>(count / channels) / rate;
    const size_t seam = static_cast<size_t>(rate / 200 * channels);
    for (size_t i = 0; i < count; ++i) {
      float level = std::abs(samples[i]) / 32768.0f;
      result.peak = std::max(result.peak, level);
      if (i < seam || i >= count - seam) result.seamPeak = std::max(result.seamPeak, level);
    }
    return result;
  }

  AudioDriver driver{"dummy"};
  std::unique_ptr<MixerSoundOutput> output;
  int rate = 0, channels = 0;
  Uint16 format = 0;
};

TEST_F(GeneratedSounds, EveryEffectDecodesWithItsLength) {
  ASSERT_EQ(format, AUDIO_S16SYS);
  struct Expected {
    const char* name;
    double minSeconds, maxSeconds;
  };
  for (auto [name, minSeconds, maxSeconds] : {Expected{"jump", 0.15, 0.3}, Expected{"click", 0.02, 0.1},
                                              Expected{"explosion", 0.6, 1.0}, Expected{"baby-laugh-1", 0.3, 2.0},
                                              Expected{"baby-laugh-2", 0.3, 2.0}, Expected{"baby-laugh-3", 0.3, 2.0},
                                              Expected{"baby-laugh-4", 0.3, 2.0}}) {
    SCOPED_TRACE(name);
    Decoded sound = decode(kSounds / (std::string(name) + ".mp3"));
    EXPECT_GE(sound.seconds, minSeconds);
    EXPECT_LE(sound.seconds, maxSeconds);
    EXPECT_GT(sound.peak, 0.3f);  // clearly audible
    EXPECT_LT(sound.peak, 1.0f);  // and not clipped
  }
}

// Sixteen bars at 120 bpm, exactly, with no encoder gap, starting and ending at silence: the loop
// joins without a click or a pause.
TEST_F(GeneratedSounds, TheMusicLoopsWithoutASeam) {
  Decoded music = decode(kSounds / "bg-music.mp3");
  EXPECT_NEAR(music.seconds, 32.0, 0.001);
  EXPECT_LT(music.seamPeak, 0.005f);
  EXPECT_GT(music.peak, 0.3f);
}

// The build copies the sounds next to the game, and a game run from the build finds them there.
TEST(SoundResources, TheBuiltGameFindsEverySound) {
  ResourceBundle bundle(defaultResourceFolder());
  EXPECT_EQ(bundle.folder(), fs::path(ZB_BUILD_RESOURCES));
  for (const char* name : kSoundNames) {
    SCOPED_TRACE(name);
    auto found = bundle.urlForResource(name, "mp3");
    ASSERT_TRUE(found);
    EXPECT_EQ(fs::file_size(*found), fs::file_size(kSounds / (std::string(name) + ".mp3")));
  }
}

}  // namespace
}  // namespace zb

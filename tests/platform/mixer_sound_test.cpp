#include "platform/mixer_sound.hpp"

#include <SDL_mixer.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <memory>

#include "engine/audio_node.hpp"
#include "engine/resources.hpp"
#include "platform/resource_paths.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

const fs::path kSounds = fs::path(ZB_SOURCE_DIR) / "assets" / "sounds";

// Chooses SDL's audio driver for the life of the object.
struct AudioDriver {
  explicit AudioDriver(const char* name) { ::setenv("SDL_AUDIODRIVER", name, 1); }
  ~AudioDriver() { ::unsetenv("SDL_AUDIODRIVER"); }
};

TEST(MixerSoundOutput, PlaysWhatItCanLoadAndTheMusicFollowsItsOwnNodesVolume) {
  AudioDriver driver("dummy");
  auto output = MixerSoundOutput::open();
  ASSERT_NE(output, nullptr);
  EXPECT_TRUE(output->playEffect(kSounds / "jump.mp3"));
  EXPECT_TRUE(output->playEffect(kSounds / "jump.mp3"));  // again, from the cache
  const fs::path notSound = fs::temp_directory_path() / ("zb-not-a-sound-" + std::to_string(::getpid()) + ".mp3");
  std::ofstream(notSound) << "this is not an mp3";
  EXPECT_FALSE(output->playEffect(notSound));
  fs::remove(notSound);
  EXPECT_FALSE(output->playEffect(kSounds));  // a folder

  AudioNode music(kSounds / "bg-music.mp3"), other(kSounds / "jump.mp3");
  music.setVolume(0.25f);
  output->startLoop(music);
  EXPECT_EQ(Mix_VolumeMusic(-1), 32);
  output->setLoopVolume(other, 1.0f);  // not the loop that plays
  EXPECT_EQ(Mix_VolumeMusic(-1), 32);
  output->setLoopVolume(music, 1.5f);
  EXPECT_EQ(Mix_VolumeMusic(-1), MIX_MAX_VOLUME);
  output->setLoopVolume(music, std::nanf(""));
  EXPECT_EQ(Mix_VolumeMusic(-1), 0);
  output->stopLoop(other);
  EXPECT_TRUE(Mix_PlayingMusic());
  output->stopLoop(music);
  EXPECT_FALSE(Mix_PlayingMusic());
}

TEST(GeneratedSounds, TheBuiltGameFindsEachAtItsLengthAndTheMusicLoopsWithoutASeam) {
  AudioDriver driver("dummy");
  auto output = MixerSoundOutput::open();
  ASSERT_NE(output, nullptr);
  int rate = 0, channels = 0;
  Uint16 format = 0;
  ASSERT_NE(Mix_QuerySpec(&rate, &format, &channels), 0);
  ASSERT_EQ(format, AUDIO_S16SYS);
  ResourceBundle bundle(defaultResourceFolder());
  EXPECT_EQ(bundle.folder(), fs::path(ZB_BUILD_RESOURCES));
  struct Case {
    const char* name;
    double minSeconds, maxSeconds;
    float seamPeak;  // the loudest allowed within 5 ms of either end
  };
  // The music is sixteen bars at 120 bpm, exactly, starting and ending at silence.
  const Case cases[] = {{"jump", 0.15, 0.3, 1},        {"click", 0.02, 0.1, 1}, {"explosion", 0.6, 1.0, 1},
                        {"baby-laugh-3", 0.3, 2.0, 1}, {"bg-music", 31.999, 32.001, 0.005f}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const auto found = bundle.urlForResource(c.name, "mp3");
    ASSERT_TRUE(found);
    std::unique_ptr<Mix_Chunk, decltype(&Mix_FreeChunk)> chunk(Mix_LoadWAV(found->c_str()), &Mix_FreeChunk);
    ASSERT_TRUE(chunk);
    const auto* samples = reinterpret_cast<const int16_t*>(chunk->abuf);
    const size_t count = chunk->alen / sizeof(int16_t), seam = static_cast<size_t>(rate / 200 * channels);
    float seamPeak = 0;
    for (size_t i = 0; i < count; ++i) {
      if (i < seam || i >= count - seam) seamPeak = std::max(seamPeak, std::abs(samples[i]) / 32768.0f);
    }
    const double seconds = static_cast<double>(count / channels) / rate;
    EXPECT_GE(seconds, c.minSeconds);
    EXPECT_LE(seconds, c.maxSeconds);
    EXPECT_LT(seamPeak, c.seamPeak);
  }
}

}  // namespace
}  // namespace zb

// The shipped sounds as decoded by the game's mixer and measured with an EBU R128 meter, mixed as at the
// loudest crash; and the files the mixer must refuse rather than stall every jump on.
#include <SDL.h>
#include <SDL_mixer.h>
#include <ebur128.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "engine/audio_node.hpp"
#include "engine/resources.hpp"
#include "headless/headless_test_support.hpp"
#include "platform_sdl/mixer_sound.hpp"
#include "platform/resource_paths.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

const char* const kLaughs[] = {"baby-laugh-1", "baby-laugh-2", "baby-laugh-3", "baby-laugh-4"};

struct Levels {
  double momentaryMax = -HUGE_VAL;  // LUFS, the loudest 400 ms
  size_t loudestFrame = 0;          // where those 400 ms start
  double integrated = -HUGE_VAL;    // LUFS
  double truePeak = -HUGE_VAL;      // dBTP
  double dcOffset = 0;              // the larger absolute mean of the two sides, full scale = 1
};

// Interleaved stereo as a meter reads it: equal sides as one channel, padded with silence, read every 100 ms.
Levels measure(const std::vector<int16_t>& samples, int rate) {
  bool mono = true;
  for (size_t i = 0; i < samples.size() && mono; i += 2) mono = samples[i] == samples[i + 1];
  const unsigned channels = mono ? 1 : 2;
  const size_t hop = static_cast<size_t>(rate) / 10, window = hop * 4;
  std::vector<int16_t> padded(window * channels, 0);
  for (size_t i = 0; i < samples.size(); i += 2 / channels) padded.push_back(samples[i]);
  padded.resize(padded.size() + window * channels, 0);

  Levels levels;
  ebur128_state* meter = ebur128_init(channels, rate, EBUR128_MODE_I | EBUR128_MODE_M | EBUR128_MODE_TRUE_PEAK);
  for (size_t frame = 0; (frame + hop) * channels <= padded.size(); frame += hop) {
    ebur128_add_frames_short(meter, padded.data() + frame * channels, hop);
    double momentary = -HUGE_VAL;
    if (ebur128_loudness_momentary(meter, &momentary) == EBUR128_SUCCESS && momentary > levels.momentaryMax) {
      levels.momentaryMax = momentary;
      // The reading covers the 400 ms before frame + hop; in the file, that is a window earlier.
      levels.loudestFrame = frame + hop > 2 * window ? frame + hop - 2 * window : 0;
    }
  }
  ebur128_loudness_global(meter, &levels.integrated);
  for (unsigned c = 0; c < channels; ++c) {
    double peak = 0;
    ebur128_true_peak(meter, c, &peak);
    levels.truePeak = std::max(levels.truePeak, 20 * std::log10(peak));
  }
  ebur128_destroy(&meter);
  double sums[2] = {0, 0};
  for (size_t i = 0; i < samples.size(); ++i) sums[i % 2] += samples[i];
  for (double sum : sums) levels.dcOffset = std::max(levels.dcOffset, std::abs(sum * 2 / samples.size()) / 32768);
  return levels;
}

// Every shipped file decoded (16-bit stereo) by the game's own mixer on SDL's silent driver, measured once.
class SoundLevels : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ::setenv("SDL_AUDIODRIVER", "dummy", 1);
    output_ = MixerSoundOutput::open().release();
    ::unsetenv("SDL_AUDIODRIVER");
    if (!output_ || !Mix_QuerySpec(&rate_, nullptr, nullptr)) return;
    std::vector<std::string> names(std::begin(kLaughs), std::end(kLaughs));
    for (const char* name : {"jump", "click", "explosion", "bg-music"}) names.emplace_back(name);
    for (const std::string& name : names) {
      const auto file = bundle_.urlForResource(name, "mp3");
      Mix_Chunk* chunk = file ? Mix_LoadWAV(file->c_str()) : nullptr;
      if (!chunk) continue;
      const auto* data = reinterpret_cast<const int16_t*>(chunk->abuf);
      sounds_[name].assign(data, data + chunk->alen / sizeof(int16_t));
      Mix_FreeChunk(chunk);
      levels_[name] = measure(sounds_[name], rate_);
    }
  }
  static void TearDownTestSuite() { delete output_; }

  void SetUp() override {
    if (!output_) GTEST_SKIP() << "SDL's dummy audio driver did not open";
    ASSERT_EQ(sounds_.size(), 8u) << "the built game finds and decodes every shipped sound";
  }

  static inline MixerSoundOutput* output_ = nullptr;
  static inline ResourceBundle bundle_{defaultResourceFolder()};
  static inline int rate_ = 0;
  static inline std::map<std::string, std::vector<int16_t>> sounds_;
  static inline std::map<std::string, Levels> levels_;
};

TEST_F(SoundLevels, EveryFileIsCentredWithHeadroomAndTheMusicLoopsUnderTheEffectsWithoutASeam) {
  EXPECT_EQ(bundle_.folder(), fs::path(ZB_BUILD_RESOURCES)) << "where the built game looks";
  for (const auto& [name, l] : levels_) {
    SCOPED_TRACE(name);
    EXPECT_LE(l.dcOffset, 0.002);
    EXPECT_LE(l.truePeak, -1.0) << "a decibel of headroom, so nothing reaches full scale";
    if (name == "bg-music") continue;
    EXPECT_GE(l.momentaryMax, -22.0);
    EXPECT_LE(l.momentaryMax, -12.0);
    if (!name.starts_with("baby-laugh")) continue;
    EXPECT_NEAR(l.momentaryMax, levels_["explosion"].momentaryMax, 4.0) << "level with the explosion";
  }
  EXPECT_GE(levels_["bg-music"].integrated, -22.0);
  EXPECT_LE(levels_["bg-music"].integrated, -16.0);

  const std::vector<int16_t>& music = sounds_["bg-music"];
  const auto seam = static_cast<ptrdiff_t>(rate_ / 200 * 2);  // 5 ms
  const auto quieter = [](int16_t a, int16_t b) { return std::abs(a) < std::abs(b); };
  for (auto end : {music.begin(), music.end() - seam}) {  // the loop's ends meet at silence
    EXPECT_LT(std::abs(*std::max_element(end, end + seam, quieter)) / 32768.0, 0.005);
  }
}

// Adds a sound into a mix as the mixer does: scaled by a volume out of 128, clamped at full scale by SDL.
void mixIn(std::vector<int16_t>& mix, const int16_t* sound, size_t count, int volume) {
  SDL_MixAudioFormat(reinterpret_cast<Uint8*>(mix.data()), reinterpret_cast<const Uint8*>(sound), AUDIO_S16SYS,
                     static_cast<Uint32>(std::min(count, mix.size()) * sizeof(int16_t)), volume);
}

// The music follows only its own node's volume. Over its loudest 400 ms at full volume, a jump, the
// explosion and a laugh starting on one sample, each at the mixer's level, must never reach full scale.
TEST_F(SoundLevels, TheMusicFollowsItsNodeAndACrashOverItsLoudestMomentNeverReachesFullScale) {
  AudioNode music(bundle_.folder() / "bg-music.mp3"), other(bundle_.folder() / "jump.mp3");
  music.setVolume(0.25f);
  output_->startLoop(music);
  output_->setLoopVolume(music, 1.0f);
  const int musicVolume = Mix_VolumeMusic(-1);
  EXPECT_EQ(musicVolume, MIX_MAX_VOLUME) << "a later volume reaches the playing loop";
  output_->stopLoop(other);  // not the loop that plays
  EXPECT_TRUE(Mix_PlayingMusic());
  output_->stopLoop(music);
  EXPECT_FALSE(Mix_PlayingMusic());
  const int effectVolume = Mix_MasterVolume(-1) * Mix_Volume(0, -1) / MIX_MAX_VOLUME;

  const std::vector<int16_t>& loop = sounds_["bg-music"];
  const size_t loudest = levels_["bg-music"].loudestFrame, step = static_cast<size_t>(rate_) / 100;
  for (const char* laugh : kLaughs) {
    const std::vector<int16_t>* effects[] = {&sounds_["jump"], &sounds_["explosion"], &sounds_[laugh]};
    const size_t length = std::max({effects[0]->size(), effects[1]->size(), effects[2]->size()});
    int highest = 0;
    for (size_t start = loudest; start < loudest + 40 * step; start += step) {
      std::vector<int16_t> mix(length, 0);
      const size_t from = start * 2 % loop.size();
      mixIn(mix, loop.data() + from, loop.size() - from, musicVolume);
      for (const auto* effect : effects) {
        // Checked after every sound added, since SDL clamps at each step.
        mixIn(mix, effect->data(), effect->size(), effectVolume);
        for (int16_t sample : mix) highest = std::max(highest, std::abs(static_cast<int>(sample)));
      }
    }
    EXPECT_LT(highest, INT16_MAX) << laugh << ", effects at " << effectVolume;
  }
}

TEST_F(SoundLevels, HugeFilesPipesAndFailedLoadsAreRefusedWithoutHurtingOtherFiles) {
  const fs::path jump = bundle_.folder() / "jump.mp3";
  test::TempFolder folder("zb-sound-loading");
  EXPECT_TRUE(output_->playEffect(jump));
  EXPECT_TRUE(output_->playEffect(jump));  // again, from the cache

  fs::copy_file(jump, folder.path() / "huge.mp3");
  fs::resize_file(folder.path() / "huge.mp3", 64u << 20);  // sparse on disk
  EXPECT_FALSE(output_->playEffect(folder.path() / "huge.mp3"));
  // A minute at 8 kbit/s, 10 MB decoded: refused before decoding, in one line; it still streams as music.
  const fs::path minute = folder.path() / "minute.mp3";
  ASSERT_EQ(std::system(("sox -n -r 8000 -c 1 -C 8 '" + minute.string() + "' synth 60 sine 440").c_str()), 0);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(output_->playEffect(minute));
  EXPECT_FALSE(output_->playEffect(minute));
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
  EXPECT_NE(said.find("minute.mp3 lasts 60 s"), std::string::npos) << said;
  AudioNode music(minute);
  output_->startLoop(music);
  EXPECT_TRUE(Mix_PlayingMusic());
  output_->stopLoop(music);
  ASSERT_EQ(::mkfifo((folder.path() / "pipe.mp3").c_str(), 0600), 0);
  EXPECT_FALSE(output_->playEffect(folder.path() / "pipe.mp3"));  // returns instead of waiting for a writer
  EXPECT_FALSE(output_->playEffect(folder.path() / "missing.mp3"));
  EXPECT_FALSE(output_->playEffect(folder.path()));

  const fs::path broken = folder.touch("click.mp3");
  EXPECT_FALSE(output_->playEffect(broken));
  // Mending the file during the launch does not bring it back: it is not read again.
  fs::copy_file(jump, broken, fs::copy_options::overwrite_existing);
  EXPECT_FALSE(output_->playEffect(broken));
  EXPECT_TRUE(output_->playEffect(jump));
}

}  // namespace
}  // namespace zb

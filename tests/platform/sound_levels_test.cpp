// The shipped sounds as the game hears them: decoded by the mixer the game opens, measured with an
// EBU R128 meter, and mixed the way the mixer mixes them at the loudest moment a crash can make.
// Prints each file's figures, so this is also how to measure them again.
#include <SDL.h>
#include <SDL_mixer.h>
#include <ebur128.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/audio_node.hpp"
#include "platform/mixer_sound.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

const fs::path kSounds = fs::path(ZB_SOURCE_DIR) / "assets" / "sounds";
const char* const kLaughs[] = {"baby-laugh-1", "baby-laugh-2", "baby-laugh-3", "baby-laugh-4"};
constexpr int kFullScale = 32767;

// What the mixer decoded: interleaved stereo at the mixer's rate.
struct Decoded {
  std::vector<int16_t> samples;
  bool mono = true;  // both sides the same: a mono file, measured as one channel as any meter would
  size_t frames() const { return samples.size() / 2; }
};

struct Levels {
  double momentaryMax = -HUGE_VAL;  // LUFS, the loudest 400 ms with silence padded either side
  double integrated = -HUGE_VAL;    // LUFS
  double truePeak = -HUGE_VAL;      // dBTP
  double dcOffset = 0;              // the larger absolute mean of the two sides, full scale = 1
  size_t clipped = 0;               // samples at full scale
};

using Meter = std::unique_ptr<ebur128_state, void (*)(ebur128_state*)>;

Meter makeMeter(unsigned channels, unsigned long rate) {
  return Meter(ebur128_init(channels, rate, EBUR128_MODE_I | EBUR128_MODE_M | EBUR128_MODE_TRUE_PEAK),
               [](ebur128_state* state) { ebur128_destroy(&state); });
}

Levels measure(const Decoded& sound, int rate) {
  const unsigned channels = sound.mono ? 1 : 2;
  std::vector<int16_t> padded(static_cast<size_t>(rate) * 4 / 10 * channels, 0);  // 400 ms of silence
  for (size_t i = 0; i < sound.samples.size(); i += 2 / channels) padded.push_back(sound.samples[i]);
  padded.resize(padded.size() + static_cast<size_t>(rate) * 4 / 10 * channels, 0);

  Levels levels;
  Meter meter = makeMeter(channels, static_cast<unsigned long>(rate));
  // A new momentary reading every 100 ms, as loudness meters show it.
  const size_t hop = static_cast<size_t>(rate) / 10;
  for (size_t frame = 0; frame * channels < padded.size(); frame += hop) {
    const size_t count = std::min(hop, padded.size() / channels - frame);
    ebur128_add_frames_short(meter.get(), padded.data() + frame * channels, count);
    double momentary = -HUGE_VAL;
    if (count == hop && ebur128_loudness_momentary(meter.get(), &momentary) == EBUR128_SUCCESS)
      levels.momentaryMax = std::max(levels.momentaryMax, momentary);
  }
  ebur128_loudness_global(meter.get(), &levels.integrated);
  for (unsigned c = 0; c < channels; ++c) {
    double peak = 0;
    ebur128_true_peak(meter.get(), c, &peak);
    levels.truePeak = std::max(levels.truePeak, 20 * std::log10(peak));
  }
  double sums[2] = {0, 0};
  for (size_t i = 0; i < sound.samples.size(); ++i) {
    sums[i % 2] += sound.samples[i];
    if (std::abs(sound.samples[i]) >= kFullScale) ++levels.clipped;
  }
  for (double sum : sums) levels.dcOffset = std::max(levels.dcOffset, std::abs(sum / sound.frames()) / 32768);
  return levels;
}

// Opens the game's own mixer on SDL's silent driver, decodes every shipped file with it and
// measures each once for all the tests below.
class SoundLevels : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ::setenv("SDL_AUDIODRIVER", "dummy", 1);
    output_ = MixerSoundOutput::open().release();
    ::unsetenv("SDL_AUDIODRIVER");
    Uint16 format = 0;
    int channels = 0;
    if (!output_ || !Mix_QuerySpec(&rate_, &format, &channels) || format != AUDIO_S16SYS || channels != 2) return;
    for (const char* name : {"jump", "click", "explosion", "bg-music", kLaughs[0], kLaughs[1], kLaughs[2], kLaughs[3]}) {
      Mix_Chunk* chunk = Mix_LoadWAV((kSounds / (std::string(name) + ".mp3")).c_str());
      if (!chunk) continue;
      Decoded& sound = sounds_[name];
      const auto* data = reinterpret_cast<const int16_t*>(chunk->abuf);
      sound.samples.assign(data, data + chunk->alen / sizeof(int16_t));
      effectChunkVolume_ = chunk->volume;
      Mix_FreeChunk(chunk);
      for (size_t i = 0; i < sound.samples.size() && sound.mono; i += 2) sound.mono = sound.samples[i] == sound.samples[i + 1];
      levels_[name] = measure(sound, rate_);
    }
    std::printf("%-14s %8s %8s %8s %9s %7s\n", "sound", "M max", "I", "dBTP", "DC", "clipped");
    for (const auto& [name, l] : levels_)
      std::printf("%-14s %8.1f %8.1f %8.1f %9.6f %7zu\n", name.c_str(), l.momentaryMax, l.integrated, l.truePeak,
                  l.dcOffset, l.clipped);
  }
  static void TearDownTestSuite() { delete output_; }

  void SetUp() override {
    if (!output_) GTEST_SKIP() << "SDL's dummy audio driver did not open";
    ASSERT_EQ(sounds_.size(), 8u) << "every shipped sound decodes";
  }

  static inline MixerSoundOutput* output_ = nullptr;
  static inline int rate_ = 0;
  static inline int effectChunkVolume_ = MIX_MAX_VOLUME;
  static inline std::map<std::string, Decoded> sounds_;
  static inline std::map<std::string, Levels> levels_;
};

TEST_F(SoundLevels, EveryFileIsCentredUnclippedAndKeepsADecibelOfTruePeakHeadroom) {
  for (const auto& [name, l] : levels_) {
    SCOPED_TRACE(name);
    EXPECT_LE(l.dcOffset, 0.002);
    EXPECT_EQ(l.clipped, 0u);
    EXPECT_LE(l.truePeak, -1.0);
  }
}

TEST_F(SoundLevels, MusicSitsUnderTheEffectsAndEveryLaughIsHeardOverTheExplosion) {
  EXPECT_GE(levels_["bg-music"].integrated, -22.0);
  EXPECT_LE(levels_["bg-music"].integrated, -16.0);
  for (const char* effect : {"jump", "click", "explosion", kLaughs[0], kLaughs[1], kLaughs[2], kLaughs[3]}) {
    SCOPED_TRACE(effect);
    EXPECT_GE(levels_[effect].momentaryMax, -22.0);
    EXPECT_LE(levels_[effect].momentaryMax, -12.0);
  }
  for (const char* laugh : kLaughs)
    EXPECT_NEAR(levels_[laugh].momentaryMax, levels_["explosion"].momentaryMax, 4.0) << laugh;
}

// Adds a sound into a mix the way the mixer adds each playing sound into its output: scaled by a
// volume out of 128 and clamped at full scale by SDL.
void mixIn(std::vector<int16_t>& mix, const int16_t* sound, size_t count, int volume) {
  SDL_MixAudioFormat(reinterpret_cast<Uint8*>(mix.data()), reinterpret_cast<const Uint8*>(sound), AUDIO_S16SYS,
                     static_cast<Uint32>(std::min(count, mix.size()) * sizeof(int16_t)), volume);
}

// The music's loudest 400 ms, as the first frame of that window.
size_t loudestMomentStart(const Decoded& music, int rate) {
  Meter meter = makeMeter(2, static_cast<unsigned long>(rate));
  const size_t hop = static_cast<size_t>(rate) / 10, window = hop * 4;
  double loudest = -HUGE_VAL;
  size_t start = 0;
  for (size_t frame = 0; frame + hop <= music.frames(); frame += hop) {
    ebur128_add_frames_short(meter.get(), music.samples.data() + frame * 2, hop);
    double momentary = -HUGE_VAL;
    if (frame + hop >= window && ebur128_loudness_momentary(meter.get(), &momentary) == EBUR128_SUCCESS &&
        momentary > loudest) {
      loudest = momentary;
      start = frame + hop - window;
    }
  }
  return start;
}

// A crash over the music at full volume: the jump that started the run's last moment, the explosion
// and a laugh all begin on the same sample, anywhere in the music's loudest 400 ms, each at the level
// the game's mixer plays it at. The mix must never reach full scale, where SDL would clip it.
TEST_F(SoundLevels, ACrashOverTheLoudestMusicAtFullVolumeNeverReachesFullScale) {
  AudioNode music(kSounds / "bg-music.mp3");
  music.setVolume(1.0f);
  output_->startLoop(music);
  const int musicVolume = Mix_VolumeMusic(-1);
  output_->stopLoop(music);
  const int effectVolume = Mix_MasterVolume(-1) * Mix_Volume(0, -1) * effectChunkVolume_ / (MIX_MAX_VOLUME * MIX_MAX_VOLUME);
  EXPECT_EQ(musicVolume, MIX_MAX_VOLUME) << "the music at volume 1.0 plays at the mixer's full volume";

  const Decoded& loop = sounds_["bg-music"];
  const size_t loudest = loudestMomentStart(loop, rate_), step = static_cast<size_t>(rate_) / 100;
  for (const char* laugh : kLaughs) {
    const Decoded* effects[] = {&sounds_["jump"], &sounds_["explosion"], &sounds_[laugh]};
    size_t length = 0;
    for (const Decoded* effect : effects) length = std::max(length, effect->samples.size());
    int highest = 0;
    for (size_t start = loudest; start < loudest + 40 * step; start += step) {
      std::vector<int16_t> mix(length, 0);
      const size_t from = start * 2 % loop.samples.size(), run = std::min(length, loop.samples.size() - from);
      mixIn(mix, loop.samples.data() + from, run, musicVolume);
      for (const Decoded* effect : effects) {
        // Checked after every sound added, since SDL clamps at each step.
        mixIn(mix, effect->samples.data(), effect->samples.size(), effectVolume);
        for (int16_t sample : mix) highest = std::max(highest, std::abs(static_cast<int>(sample)));
      }
    }
    std::printf("crash with %s over the loudest music: peak %.2f dBFS (music at %d/128, effects at %d/128)\n",
                laugh, 20 * std::log10(highest / 32768.0), musicVolume, effectVolume);
    EXPECT_LT(highest, kFullScale) << laugh;
  }
}

}  // namespace
}  // namespace zb

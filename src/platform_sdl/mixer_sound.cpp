#include "platform_sdl/mixer_sound.hpp"

#include <SDL.h>
#include <SDL_mixer.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "engine/audio_node.hpp"
#include "platform_sdl/foreign_allocations.hpp"

namespace zb {
namespace {

constexpr int kSampleRate = 44100;
constexpr int kOutputChannels = 2;
constexpr int kBufferFrames = 1024;
constexpr int kEffectChannels = 16;
// The loop starts before the scene's first volume step reaches it; a short fade-in keeps that first
// buffer from sounding at full volume.
constexpr int kLoopFadeInMs = 60;
// Every effect plays through this master volume, out of the mixer's 128, and the music at its own
// full volume. A crash starts the jump's tail, the explosion and a laugh together; over the loudest
// bar of the music at volume 1.0 they would add up past full scale, where SDL clips, so the effects
// give up 5 dB together and keep their levels relative to each other.
constexpr int kEffectsMasterVolume = 72;

// A sound effect is decoded whole into memory when it first plays, in the middle of a frame. A long one
// would stall the game and could take gigabytes (a low-bitrate MP3 grows about 176 times), so an
// effect may last this long at most; its length is read from its headers before it is decoded.
constexpr double kMaxEffectSeconds = 10;
// Headers can lie, so the file's size is bounded too: ten seconds of uncompressed stereo at 48 kHz and
// 24 bits, which no compressed effect of that length comes near. A file refused here is not opened.
constexpr uintmax_t kMaxEffectBytes = uintmax_t{3} << 20;

// Whether the file can be handed to the decoder without blocking (a FIFO would wait for a writer)
// or decoding more than `maxBytes` of it. An empty file is no sound (and the decoder would complain).
bool isLoadable(const std::filesystem::path& file, uintmax_t maxBytes) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (error || !std::filesystem::is_regular_file(status)) return false;
  const uintmax_t size = std::filesystem::file_size(file, error);
  return !error && size > 0 && size <= maxBytes;
}

// The length in seconds that the file's headers give, read by the streaming decoder, which opens a file
// without decoding it; nothing when it cannot tell.
std::optional<double> declaredSeconds(const std::filesystem::path& file) {
  Mix_Music* music = Mix_LoadMUS(file.c_str());
  if (music == nullptr) return std::nullopt;
  const double seconds = Mix_MusicDuration(music);
  Mix_FreeMusic(music);
  if (!(seconds >= 0)) return std::nullopt;
  return seconds;
}

// Decoded bytes a second at the mixer's output format.
uintmax_t bytesPerSecondOfMixer() {
  int rate = 0, channels = 0;
  Uint16 format = 0;
  if (Mix_QuerySpec(&rate, &format, &channels) == 0) return 0;
  return static_cast<uintmax_t>(rate) * static_cast<uintmax_t>(channels) * (SDL_AUDIO_BITSIZE(format) / 8);
}

// The effect decoded, or nothing, with one line saying why when it is too long to be an effect.
Mix_Chunk* loadEffect(const std::filesystem::path& file, uintmax_t maxDecodedBytes) {
  const std::string name = file.filename().string();  // one of the game's own sound names
  if (const std::optional<double> seconds = declaredSeconds(file); seconds && *seconds > kMaxEffectSeconds) {
    std::fprintf(stderr, "zindlebop: the sound %s lasts %.0f s, longer than the %.0f s an effect may; it stays silent\n",
                 name.c_str(), *seconds, kMaxEffectSeconds);
    return nullptr;
  }
  Mix_Chunk* chunk = Mix_LoadWAV(file.c_str());
  if (chunk != nullptr && chunk->alen > maxDecodedBytes) {
    std::fprintf(stderr, "zindlebop: the sound %s decodes to more than the %.0f s an effect may; it stays silent\n",
                 name.c_str(), kMaxEffectSeconds);
    Mix_FreeChunk(chunk);
    return nullptr;
  }
  return chunk;
}

int mixerVolume(float volume) {
  if (!(volume > 0)) return 0;  // also NaN
  return static_cast<int>(std::lround(std::min(volume, 1.0f) * MIX_MAX_VOLUME));
}

}  // namespace

struct MixerSoundOutput::Impl {
  std::map<std::string, Mix_Chunk*> effects;
  // Files that did not load: each press would otherwise read them again, and fail again.
  std::set<std::string, std::less<>> failedEffects;
  Mix_Music* music = nullptr;
  const AudioNode* musicNode = nullptr;
  // The most an effect may take decoded: kMaxEffectSeconds at the mixer's format.
  uintmax_t maxDecodedEffectBytes = 0;

  void stopMusic() {
    if (!music) return;
    Mix_HaltMusic();
    Mix_FreeMusic(music);
    music = nullptr;
    musicNode = nullptr;
  }
};

std::unique_ptr<MixerSoundOutput> MixerSoundOutput::open() {
  ForeignAllocations drivers;
  if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return nullptr;
  Mix_Init(MIX_INIT_MP3);
  if (Mix_OpenAudio(kSampleRate, MIX_DEFAULT_FORMAT, kOutputChannels, kBufferFrames) != 0) {
    Mix_Quit();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    return nullptr;
  }
  Mix_AllocateChannels(kEffectChannels);
  Mix_MasterVolume(kEffectsMasterVolume);
  std::unique_ptr<MixerSoundOutput> output(new MixerSoundOutput());
  output->impl_ = std::make_unique<Impl>();
  output->impl_->maxDecodedEffectBytes =
      static_cast<uintmax_t>(kMaxEffectSeconds * static_cast<double>(bytesPerSecondOfMixer()));
  return output;
}

MixerSoundOutput::~MixerSoundOutput() {
  impl_->stopMusic();
  Mix_HaltChannel(-1);
  for (auto& [path, chunk] : impl_->effects) Mix_FreeChunk(chunk);
  Mix_CloseAudio();
  Mix_Quit();
  SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

bool MixerSoundOutput::playEffect(const std::filesystem::path& file) {
  const std::string name = file.string();
  if (impl_->failedEffects.contains(name)) return false;
  Mix_Chunk*& chunk = impl_->effects[name];
  if (!chunk && isLoadable(file, kMaxEffectBytes)) chunk = loadEffect(file, impl_->maxDecodedEffectBytes);
  if (!chunk) {
    impl_->effects.erase(name);
    impl_->failedEffects.insert(name);
    return false;
  }
  // Channels keep the mixer's full default volume; only the music follows the settings.
  return Mix_PlayChannel(-1, chunk, 0) >= 0;
}

void MixerSoundOutput::startLoop(const AudioNode& node) {
  impl_->stopMusic();
  // Music is streamed, so its size does not matter; a FIFO or a folder still must not be opened.
  if (!isLoadable(node.file(), UINTMAX_MAX)) return;
  impl_->music = Mix_LoadMUS(node.file().c_str());
  if (!impl_->music) return;
  impl_->musicNode = &node;
  Mix_VolumeMusic(mixerVolume(node.volume()));
  Mix_FadeInMusic(impl_->music, -1, kLoopFadeInMs);
}

void MixerSoundOutput::setLoopVolume(const AudioNode& node, float volume) {
  if (&node == impl_->musicNode) Mix_VolumeMusic(mixerVolume(volume));
}

void MixerSoundOutput::stopLoop(const AudioNode& node) {
  if (&node == impl_->musicNode) impl_->stopMusic();
}

}  // namespace zb

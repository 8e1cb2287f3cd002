#pragma once
// Sound through SDL2_mixer: effects on free channels at full volume, one music stream for loops.
#include <memory>

#include "engine/sound_output.hpp"

namespace zb {

class MixerSoundOutput : public SoundOutput {
 public:
  // Nothing when no audio device can be opened; the caller then stays silent.
  static std::unique_ptr<MixerSoundOutput> open();
  ~MixerSoundOutput() override;

  bool playEffect(const std::filesystem::path& file) override;
  void startLoop(const AudioNode& node) override;
  void setLoopVolume(const AudioNode& node, float volume) override;
  void stopLoop(const AudioNode& node) override;

 private:
  MixerSoundOutput() = default;
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace zb

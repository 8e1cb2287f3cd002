#pragma once
// Where sounds go: a real mixer in the window, a recorder in the headless driver, or nothing.
#include <filesystem>

namespace zb {

class AudioNode;

class SoundOutput {
 public:
  virtual ~SoundOutput() = default;
  // Plays the file once at full volume; false when it cannot be loaded (nothing plays then).
  virtual bool playEffect(const std::filesystem::path& file) = 0;
  // Starts the node's file looping at the node's volume.
  virtual void startLoop(const AudioNode& node) = 0;
  virtual void setLoopVolume(const AudioNode& node, float volume) = 0;
  virtual void stopLoop(const AudioNode& node) = 0;
};

class SilentSoundOutput final : public SoundOutput {
 public:
  bool playEffect(const std::filesystem::path&) override { return false; }
  void startLoop(const AudioNode&) override {}
  void setLoopVolume(const AudioNode&, float) override {}
  void stopLoop(const AudioNode&) override {}
};

}  // namespace zb

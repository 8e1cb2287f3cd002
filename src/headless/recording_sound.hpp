#pragma once
// The headless run's audio back end: nothing is heard, but every effect that would have played is
// written down by name, and the music loop's volume and state are kept for the dump.
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "engine/sound_output.hpp"

namespace zb {

class RecordingSoundOutput final : public SoundOutput {
 public:
  struct Loop {
    float volume = 0;
    bool playing = false;
  };

  // Records the file's stem ("jump" for .../jump.mp3) when the file exists; a missing file plays
  // nothing, as in the window.
  bool playEffect(const std::filesystem::path& file) override;
  void startLoop(const AudioNode& node) override;
  void setLoopVolume(const AudioNode& node, float volume) override;
  void stopLoop(const AudioNode& node) override;

  // Effects started since the last call, oldest first.
  std::vector<std::string> takeEffects();
  // What the output knows of the node's loop; nothing when it was never started.
  std::optional<Loop> loop(const AudioNode& node) const;

 private:
  std::vector<std::string> effects_;
  std::map<const AudioNode*, Loop> loops_;
};

}  // namespace zb

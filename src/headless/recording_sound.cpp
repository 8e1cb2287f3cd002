#include "headless/recording_sound.hpp"

#include "engine/audio_node.hpp"
#include "engine/resources.hpp"

namespace zb {

bool RecordingSoundOutput::playEffect(const std::filesystem::path& file) {
  if (!fileExistsAtPath(file)) return false;
  effects_.push_back(file.stem().string());
  return true;
}

void RecordingSoundOutput::startLoop(const AudioNode& node) {
  loops_[&node] = Loop{node.volume(), true};
}

void RecordingSoundOutput::setLoopVolume(const AudioNode& node, float volume) {
  loops_[&node].volume = volume;
}

void RecordingSoundOutput::stopLoop(const AudioNode& node) {
  auto found = loops_.find(&node);
  if (found != loops_.end()) found->second.playing = false;
}

std::vector<std::string> RecordingSoundOutput::takeEffects() {
  std::vector<std::string> taken;
  taken.swap(effects_);
  return taken;
}

std::optional<RecordingSoundOutput::Loop> RecordingSoundOutput::loop(const AudioNode& node) const {
  auto found = loops_.find(&node);
  if (found == loops_.end()) return std::nullopt;
  return found->second;
}

}  // namespace zb

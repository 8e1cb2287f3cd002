#include "engine/audio_node.hpp"

#include <utility>

#include "engine/scene.hpp"
#include "engine/view.hpp"

namespace zb {

AudioNode::AudioNode(std::filesystem::path file) : file_(std::move(file)) {}

// A playing node is always in the tree of a presented scene, whose view is still alive.
AudioNode::~AudioNode() { stopPlaying(true); }

void AudioNode::setVolume(float volume) {
  volume_ = volume;
  if (playing_ && output_) output_->setLoopVolume(*this, volume);
}

void AudioNode::didEnterScene(Scene& scene) {
  if (playing_ || !autoplayLooped || !scene.view()) return;
  output_ = &scene.view()->soundOutput();
  output_->startLoop(*this);
  playing_ = true;
}

void AudioNode::willLeaveScene(Scene&) { stopPlaying(true); }

void AudioNode::stopPlaying(bool tellOutput) {
  if (!playing_) return;
  if (tellOutput && output_) output_->stopLoop(*this);
  playing_ = false;
  output_ = nullptr;
}

}  // namespace zb

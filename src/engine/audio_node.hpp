#pragma once
// A node that plays a sound file, looped from the moment it joins a scene when autoplayLooped is set.
// The scene's view supplies the sound output; the node tells it when it starts, stops and changes volume.
#include <filesystem>
#include <memory>

#include "engine/node.hpp"

namespace zb {

class SoundOutput;

class AudioNode : public Node {
 public:
  explicit AudioNode(std::filesystem::path file);
  ~AudioNode() override;

  const std::filesystem::path& file() const { return file_; }
  bool autoplayLooped = true;
  bool positional = true;

  float volume() const { return volume_; }
  void setVolume(float volume);
  // True while the node is in a scene whose view has started it.
  bool isPlaying() const { return playing_; }

 protected:
  void didEnterScene(Scene& scene) override;
  void willLeaveScene(Scene& scene) override;

 private:
  friend class Scene;
  void stopPlaying(bool tellOutput);

  std::filesystem::path file_;
  float volume_ = 1.0f;
  bool playing_ = false;
  // The output of the view that started the loop; volume changes and the stop go there.
  SoundOutput* output_ = nullptr;
};

using AudioNodePtr = std::shared_ptr<AudioNode>;

}  // namespace zb

// Sound effects and the background music. Every file is looked up among the application's resources
// first and in the fallback folder second; a sound found in neither place is skipped without a word.
#include "engine/action.hpp"
#include "engine/view.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {

constexpr const char* kSoundExtension = "mp3";
constexpr const char* kMusicResource = "bg-music";
constexpr const char* kMusicFile = "bg-music.mp3";
constexpr const char* kLaughFolder = "Babylaughs";

// A file outside the resources plays at once and straight through the view's output, like a system
// sound made from a file: not as an action, so a paused scene does not hold it back.
void playFileDirectly(Scene& scene, const std::filesystem::path& file) {
  if (View* view = scene.view()) view->soundOutput().playEffect(file);
}

}  // namespace

void GameScene::playSFX(const std::string& resource, const std::optional<std::filesystem::path>& absolutePath) {
  if (auto file = services().bundle.urlForResource(resource, kSoundExtension)) {
    runAction(actions::playSoundFile(*file));
    return;
  }
  // An empty path is what fallbackPath gives without a fallback folder: the same as none.
  if (!absolutePath || absolutePath->empty() || !fileExistsAtPath(*absolutePath)) return;
  playFileDirectly(*this, *absolutePath);
}

void GameScene::playRandomBabyLaugh() {
  const auto count = static_cast<uint64_t>(babyLaughResourceNames.size());
  if (count == 0) return;
  // Never the same laugh twice in a row, unless there is only one.
  uint64_t index = random().uniformIndex(count);
  while (count != 1 && static_cast<int64_t>(index) == lastBabyLaughIndex) index = random().uniformIndex(count);
  lastBabyLaughIndex = static_cast<int64_t>(index);
  const std::string& name = babyLaughResourceNames[index];

  if (auto file = services().bundle.urlForResource(name, kSoundExtension)) {
    runAction(actions::playSoundFile(*file));
    return;
  }
  if (services().fallbackFolder.empty()) return;
  std::filesystem::path fallback = services().fallbackFolder / kLaughFolder / (name + "." + kSoundExtension);
  if (fileExistsAtPath(fallback)) playFileDirectly(*this, fallback);
}

std::filesystem::path GameScene::fallbackPath(const std::string& file) const {
  if (services_.fallbackFolder.empty()) return {};
  return services_.fallbackFolder / file;
}

void GameScene::buildMusicNode() {
  if (backgroundMusicNode) return;
  auto file = services().bundle.urlForResource(kMusicResource, kSoundExtension);
  if (!file) {
    std::filesystem::path fallback = fallbackPath(kMusicFile);
    if (fallback.empty() || !fileExistsAtPath(fallback)) return;
    file = fallback;
  }
  auto music = std::make_shared<AudioNode>(*file);
  music->autoplayLooped = true;
  music->positional = false;
  backgroundMusicNode = music;
  addChild(music);
  // Starts silent; the menu fades it in.
  music->runAction(actions::changeVolumeTo(0, 0));
}

void GameScene::fadeMusic(float volume, double duration) {
  if (backgroundMusicNode) backgroundMusicNode->runAction(actions::changeVolumeTo(volume, duration));
}

}  // namespace zb

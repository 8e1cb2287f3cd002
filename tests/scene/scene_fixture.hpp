#pragma once
// A seeded GameScene in the headless driver's in-memory view, driven by keys, clicks and frames.
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/input_event.hpp"
#include "engine/preferences.hpp"
#include "headless/headless_test_support.hpp"
#include "headless/virtual_view.hpp"
#include "scene/game_scene.hpp"

namespace zb::test {

// Stand-in sounds in the fallback folder (played at once); gone when the tests end.
inline std::filesystem::path makeSoundFolder() {
  static const TempFolder folder("zb-test-sounds");
  [[maybe_unused]] static const bool filled = [] {
    for (std::string name : {"jump", "click", "explosion", "bg-music", "Babylaughs/baby-laugh-1",
                             "Babylaughs/baby-laugh-2", "Babylaughs/baby-laugh-3", "Babylaughs/baby-laugh-4"}) {
      folder.touch(name + ".mp3");
    }
    return true;
  }();
  return folder.path();
}

struct SceneOptions {
  Size size{800, 600};
  uint64_t seed = 1;
  bool withSounds = true;             // the stand-in folder as the fallback folder
  std::filesystem::path resources{};  // a resource folder, searched before the fallback; empty: none
  std::shared_ptr<MemoryPreferences> preferences = std::make_shared<MemoryPreferences>();
};

class AttachedScene {
 public:
  explicit AttachedScene(SceneOptions options = {})
      : preferences(options.preferences), view(std::make_unique<VirtualView>(options.size)) {
    scene = std::make_shared<GameScene>(options.size);
    GameServices services;
    services.preferences = preferences;
    if (!options.resources.empty()) services.bundle = ResourceBundle(options.resources);
    if (options.withSounds) services.fallbackFolder = makeSoundFolder();
    scene->setServices(std::move(services));
    scene->random().seed(options.seed);
    view->presentScene(scene);
  }
  ~AttachedScene() { view->dismissScene(); }

  GameScene& operator*() const { return *scene; }
  GameScene* operator->() const { return scene.get(); }

  // As the headless driver steps: the game's own full-screen requests take effect at the next frame.
  void step(int frames = 1) {
    for (int i = 0; i < frames; ++i) {
      view->virtualWindow().finishPendingToggles();
      view->stepFrame();
    }
  }
  void press(uint16_t keyCode, uint64_t modifiers = 0) { view->keyDown(KeyEvent{keyCode, modifiers, false}); }
  void release(uint16_t keyCode) { view->keyUp(KeyEvent{keyCode, 0, false}); }
  void click(Point pointInScene) { view->mouseDown(pointInScene); }
  void clickOn(const Node& node) { click(node.parent()->convertPointTo(node.frame().center(), *scene)); }

  void runUntilCrash(int maxFrames = 5000) {
    for (int i = 0; i < maxFrames && scene->gameState == GameScene::GameState::playing; ++i) step();
  }

  std::vector<std::string> sounds() { return view->recorder().takeEffects(); }
  float musicVolume() const { return scene->backgroundMusicNode->volume(); }
  // Whether the window is full screen once the game's requests so far have taken effect.
  bool fullScreen() {
    view->virtualWindow().finishPendingToggles();
    return view->window()->isFullScreen();
  }

  std::shared_ptr<MemoryPreferences> preferences;
  std::unique_ptr<VirtualView> view;
  std::shared_ptr<GameScene> scene;
};

}  // namespace zb::test

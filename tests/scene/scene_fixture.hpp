#pragma once
// A GameScene in an in-memory view (seeded, private preferences, silent stand-in sounds): tests drive
// it by keys, clicks and frames and see what it asks of its view.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "engine/input_event.hpp"
#include "engine/preferences.hpp"
#include "engine/view.hpp"
#include "scene/game_scene.hpp"

namespace zb::test {

// A window whose full-screen state flips at once when asked.
class TestWindow final : public Window {
 public:
  bool isFullScreen() const override { return fullScreen; }
  void toggleFullScreen() override { fullScreen = !fullScreen; ++toggles; }
  bool fullScreen = false;
  int toggles = 0;
};

// Writes down the stem of every effect played ("jump", "click", ...) and the music's last volume.
class TestSoundOutput final : public SoundOutput {
 public:
  bool playEffect(const std::filesystem::path& file) override {
    effects.push_back(file.stem().string());
    return true;
  }
  void startLoop(const AudioNode&) override {}
  void setLoopVolume(const AudioNode&, float volume) override { loopVolume = volume; }
  void stopLoop(const AudioNode&) override {}
  std::vector<std::string> take() { return std::exchange(effects, {}); }
  std::vector<std::string> effects;
  float loopVolume = -1;
};

class TestView final : public View {
 public:
  explicit TestView(Size size) : View(size) {}
  Window* window() override { return hasWindow ? &testWindow : nullptr; }
  void hideCursorUntilMouseMoves() override { cursorHidden = true; }
  void unhideCursor() override { cursorHidden = false; }
  SoundOutput& soundOutput() override { return sounds; }

  TestWindow testWindow;
  TestSoundOutput sounds;
  bool hasWindow = true;
  bool cursorHidden = false;
};

// Empty stand-in sounds in the fallback folder (played at once); gone when the tests end.
inline std::filesystem::path makeSoundFolder() {
  namespace fs = std::filesystem;
  static const struct Folder {
    fs::path dir = fs::temp_directory_path() / ("zb-test-sounds-" + std::to_string(::getpid()));
    Folder() {
      fs::create_directories(dir / "Babylaughs");
      for (std::string name : {"jump", "click", "explosion", "bg-music", "Babylaughs/baby-laugh-1",
                               "Babylaughs/baby-laugh-2", "Babylaughs/baby-laugh-3", "Babylaughs/baby-laugh-4"}) {
        std::ofstream(dir / (name + ".mp3"));
      }
    }
    ~Folder() { fs::remove_all(dir); }
  } folder;
  return folder.dir;
}

struct SceneOptions {
  Size size{800, 600};
  uint64_t seed = 1;
  bool withSounds = true;             // the stand-in folder as the fallback folder
  std::filesystem::path resources{};  // a resource folder, searched before the fallback; empty: none
  bool withWindow = true;
  std::shared_ptr<MemoryPreferences> preferences = std::make_shared<MemoryPreferences>();
};

class AttachedScene {
 public:
  explicit AttachedScene(SceneOptions options = {})
      : preferences(options.preferences), view(std::make_unique<TestView>(options.size)) {
    scene = std::make_shared<GameScene>(options.size);
    GameServices services;
    services.preferences = preferences;
    if (!options.resources.empty()) services.bundle = ResourceBundle(options.resources);
    if (options.withSounds) services.fallbackFolder = makeSoundFolder();
    scene->setServices(std::move(services));
    scene->random().seed(options.seed);
    view->hasWindow = options.withWindow;
    view->presentScene(scene);
  }
  ~AttachedScene() { view->dismissScene(); }

  GameScene& operator*() const { return *scene; }
  GameScene* operator->() const { return scene.get(); }

  void step(int frames = 1) {
    for (int i = 0; i < frames; ++i) view->stepFrame();
  }
  void press(uint16_t keyCode, uint64_t modifiers = 0) { view->keyDown(KeyEvent{keyCode, modifiers, false}); }
  void release(uint16_t keyCode) { view->keyUp(KeyEvent{keyCode, 0, false}); }
  void click(Point pointInScene) { view->mouseDown(pointInScene); }
  Point centreOf(const Node& node) const { return node.parent()->convertPointTo(node.frame().center(), *scene); }
  void clickOn(const Node& node) { click(centreOf(node)); }
  Node& restartButton() const { return *scene->restartButton(); }

  // Steps until the state changes away from `playing` or the frame budget runs out.
  void runUntilCrash(int maxFrames = 5000) {
    for (int i = 0; i < maxFrames && scene->gameState == GameScene::GameState::playing; ++i) step();
  }

  std::vector<std::string> sounds() { return view->sounds.take(); }
  float musicVolume() const { return scene->backgroundMusicNode->volume(); }

  std::shared_ptr<MemoryPreferences> preferences;
  std::unique_ptr<TestView> view;
  std::shared_ptr<GameScene> scene;
};

}  // namespace zb::test

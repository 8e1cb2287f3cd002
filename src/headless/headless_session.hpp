#pragma once
// The state of one headless run: the store, the virtual view and the scene it presents, and the
// commands that act on them.
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "player/autoplay.hpp"
#include "headless/headless_driver.hpp"
#include "headless/script_command.hpp"
#include "headless/virtual_view.hpp"
#include "render/renderer.hpp"
#include "scene/game_scene.hpp"

namespace zb {

class HeadlessSession {
 public:
  HeadlessSession(const HeadlessOptions& options, std::ostream& out);
  ~HeadlessSession();

  // Runs one command; a message when it could not be carried out.
  std::optional<std::string> run(const ScriptCommand& command);

  GameScene* scene() const { return scene_.get(); }
  VirtualView& view() { return view_; }
  uint64_t frame() const { return frame_; }
  // After `quit` or Ctrl+Q: the session is over and no further command runs.
  bool hasQuit() const { return quit_; }

  // What the frame-rate counter shows in a screenshot: headless frames are exactly on time.
  static constexpr double kFramesPerSecond = 60;

 private:
  void launch();
  void relaunch();
  void quit();
  void ensureLaunched();
  void step(uint64_t frames);
  void dump();
  std::optional<std::string> screenshot(const std::string& file, double stepFraction);

  std::optional<std::string> execute(const LaunchCommand&);
  std::optional<std::string> execute(const RelaunchCommand&);
  std::optional<std::string> execute(const StepCommand&);
  std::optional<std::string> execute(const AutoplayCommand&);
  std::optional<std::string> execute(const KeyCommand&);
  std::optional<std::string> execute(const ClickCommand&);
  std::optional<std::string> execute(const MoveCommand&);
  std::optional<std::string> execute(const ResizeCommand&);
  std::optional<std::string> execute(const FullscreenCommand&);
  std::optional<std::string> execute(const PrefSetCommand&);
  std::optional<std::string> execute(const PrefRemoveCommand&);
  std::optional<std::string> execute(const DumpCommand&);
  std::optional<std::string> execute(const ScreenshotCommand&);
  std::optional<std::string> execute(const PadCommand&);
  std::optional<std::string> execute(const FocusCommand&);
  std::optional<std::string> execute(const QuitCommand&);

  std::ostream& out_;
  uint64_t seed_;
  GameServices services_;
  VirtualView view_;
  Renderer renderer_;
  std::shared_ptr<GameScene> scene_;
  Autoplayer autoplayer_;  // the player of `autoplay`, new with every scene
  uint64_t frame_ = 0;
  GamepadId nextPadId_ = 0;  // pads of `pad add`, numbered as they arrive
  bool quit_ = false;
};

}  // namespace zb

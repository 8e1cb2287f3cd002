#include "headless/headless_session.hpp"

#include "headless/dump_state.hpp"
#include "render/pango_text.hpp"
#include "platform/preferences_file.hpp"
#include "platform/resource_paths.hpp"

namespace zb {
namespace {

GameServices servicesFor(const HeadlessOptions& options) {
  GameServices services;
  if (options.prefsFile) {
    services.preferences = std::make_shared<FilePreferences>(*options.prefsFile);
  } else {
    services.preferences = std::make_shared<MemoryPreferences>();
  }
  services.bundle = ResourceBundle(options.resourceFolder ? std::filesystem::path(*options.resourceFolder)
                                                          : defaultResourceFolder());
  services.fallbackFolder = options.fallbackFolder ? std::filesystem::path(*options.fallbackFolder)
                                                   : defaultFallbackFolder();
  return services;
}

void deliverKey(View& view, const KeyEvent& event, bool down) {
  if (down) {
    view.keyDown(event);
  } else {
    view.keyUp(event);
  }
}

}  // namespace

HeadlessSession::HeadlessSession(const HeadlessOptions& options, std::ostream& out)
    : out_(out), seed_(options.seed ? *options.seed : freshSeed()), services_(servicesFor(options)),
      view_(options.size) {
  // Label frames depend on the font, so headless runs measure text with the window's font.
  installPangoText();
}

HeadlessSession::~HeadlessSession() {
  // Detach first so that the scene lets go of the view's notifications and sound output.
  if (scene_) view_.dismissScene();
}

std::optional<std::string> HeadlessSession::run(const ScriptCommand& command) {
  return std::visit([this](const auto& each) { return execute(each); }, command);
}

void HeadlessSession::launch() {
  scene_ = std::make_shared<GameScene>(view_.size());
  scene_->setServices(services_);
  scene_->random().seed(seed_);
  autoplayer_ = Autoplayer();
  frame_ = 0;
  // The same start-up settings as the window's. They are set before the scene attaches, because the
  // attachment ends on the menu, which switches the counters off until the player turns them on.
  view_.showsFPS = true;
  view_.showsNodeCount = true;
  view_.presentScene(scene_);
}

void HeadlessSession::relaunch() {
  // The file-backed store writes every change through, so a quit has nothing left to save.
  if (scene_) view_.dismissScene();
  scene_.reset();
  launch();
}

void HeadlessSession::quit() {
  // As a window's quit: the scene lets go of the view, and the store has already written every change.
  if (scene_) view_.dismissScene();
  scene_.reset();
  quit_ = true;
}

void HeadlessSession::ensureLaunched() {
  if (!scene_) launch();
}

void HeadlessSession::step(uint64_t frames) {
  ensureLaunched();
  for (uint64_t i = 0; i < frames; ++i) {
    view_.virtualWindow().finishPendingToggles();
    view_.stepFrame();
    ++frame_;
  }
}

void HeadlessSession::dump() {
  ensureLaunched();
  DumpInput input{*scene_, view_, *services_.preferences, frame_, view_.recorder().takeEffects()};
  writeDump(out_, input);
  out_.flush();
}

std::optional<std::string> HeadlessSession::screenshot(const std::string& file, double stepFraction) {
  ensureLaunched();
  // A display in step with the steps shows the last step whole; F past it, motion between the last
  // two steps is drawn F of the way along.
  const double between = stepFraction > 0 ? stepFraction : 1.0;
  const PngWrite written = renderer_.writePNG(view_, file, kFramesPerSecond, between);
  if (!written) return "screenshot: " + written.description(file);
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const LaunchCommand&) {
  ensureLaunched();
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const RelaunchCommand&) {
  relaunch();
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const StepCommand& command) {
  step(command.frames);
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const AutoplayCommand& command) {
  ensureLaunched();
  for (uint64_t i = 0; i < command.frames; ++i) {
    autoplayer_.pressKeys(*scene_, view_);
    step(1);
  }
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const KeyCommand& command) {
  ensureLaunched();
  const KeyEvent event{command.keyCode, command.modifierFlags, false};
  if (command.down && isQuitShortcut(event)) {
    quit();
    return std::nullopt;
  }
  deliverKey(view_, event, command.down);
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const ClickCommand& command) {
  ensureLaunched();
  view_.mouseDown(command.location);
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const MoveCommand&) {
  view_.mouseMoved();
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const ResizeCommand& command) {
  view_.setSize(command.size);
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const FullscreenCommand&) {
  view_.virtualWindow().toggleNow();
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const PrefSetCommand& command) {
  services_.preferences->setObject(command.key, command.value);
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const PrefRemoveCommand& command) {
  services_.preferences->removeObject(command.key);
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const DumpCommand&) {
  dump();
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const ScreenshotCommand& command) {
  return screenshot(command.file, command.stepFraction);
}

// `pad remove` unplugs the pad connected last, so a script can take away a waiting pad or, with one
// pad, the playing one. Button and axis commands come from the playing pad. Without a pad they do
// nothing, as nothing would happen at a real machine.
std::optional<std::string> HeadlessSession::execute(const PadCommand& command) {
  if (command.kind == PadCommand::Kind::add) {
    if (!view_.gamepadAdded(nextPadId_++)) return "pad: " + std::to_string(kMaxGamepads) + " pads are connected already";
    return std::nullopt;
  }
  ensureLaunched();
  const GamepadRoster& pads = view_.gamepads();
  if (command.kind == PadCommand::Kind::remove) {
    if (auto newest = pads.newestPad()) view_.gamepadRemoved(*newest);
    return std::nullopt;
  }
  const std::optional<GamepadId> playing = pads.playingPad();
  if (!playing) return std::nullopt;
  switch (command.kind) {
    case PadCommand::Kind::down: view_.gamepadButtonDown(*playing, command.button); break;
    case PadCommand::Kind::up: view_.gamepadButtonUp(*playing, command.button); break;
    case PadCommand::Kind::axis: view_.gamepadAxisMoved(*playing, command.axis, command.value); break;
    default: break;
  }
  return std::nullopt;
}

std::optional<std::string> HeadlessSession::execute(const QuitCommand&) {
  quit();
  return std::nullopt;
}

// Regaining the focus is no news to the game; the command exists so that scripts read like a session.
std::optional<std::string> HeadlessSession::execute(const FocusCommand& command) {
  ensureLaunched();
  if (command.lost) view_.windowLostFocus();
  return std::nullopt;
}

}  // namespace zb

#include "app/windowed_app.hpp"

#include <SDL.h>

#include <cstdio>
#include <memory>

#include "app/frame_report.hpp"
#include "app/startup_report.hpp"
#include "engine/random.hpp"
#include "platform/desktop_motion.hpp"
#include "platform/gamepads.hpp"
#include "platform/pango_text.hpp"
#include "platform/window_loop.hpp"
#include "platform/mixer_sound.hpp"
#include "platform/preferences_file.hpp"
#include "platform/resource_paths.hpp"
#include "platform/sdl_view.hpp"
#include "platform/sdl_window.hpp"
#include "platform/window_canvas.hpp"
#include "player/autoplay.hpp"
#include "scene/game_scene.hpp"

namespace zb {

namespace {

// SDL stays initialised exactly as long as this lives.
struct SdlVideo {
  std::string error;
  bool ok = initSdlVideo(error);
  ~SdlVideo() {
    if (ok) SDL_Quit();
  }
};

std::shared_ptr<GameScene> makeGameScene(const CommandLineOptions& options, Size size, bool reducedMotion) {
  auto scene = std::make_shared<GameScene>(size);
  GameServices services;
  services.preferences = std::make_shared<FilePreferences>(
      options.prefsFile ? std::filesystem::path(*options.prefsFile) : FilePreferences::defaultLocation());
  services.bundle = ResourceBundle(defaultResourceFolder());
  services.fallbackFolder = defaultFallbackFolder();
  services.desktopRequestsReducedMotion = reducedMotion;
  scene->setServices(std::move(services));
  scene->random().seed(options.seed ? *options.seed : freshSeed());
  return scene;
}

int failWith(const char* what, const std::string& error) {
  std::fprintf(stderr, "zindlebop: %s (SDL: %s)\n", what, error.c_str());
  return 1;
}

}  // namespace

int runWindowedGame(const CommandLineOptions& options) {
  SdlVideo video;
  if (!video.ok) {
    std::fprintf(stderr, "zindlebop: no display available (SDL: %s); set DISPLAY or use --headless\n",
                 video.error.c_str());
    return kExitNoDisplay;
  }
  std::string error;
  std::unique_ptr<SdlWindow> window = SdlWindow::open(options.size.value_or(SdlWindow::kDefaultSize), options.fullScreen, error);
  if (!window) return failWith("cannot open a window", error);
  std::unique_ptr<WindowCanvas> canvas = WindowCanvas::create(window->handle(), error);
  if (!canvas) return failWith("cannot draw into the window", error);
  window->watchNativeWindow();
  SDL_StopTextInput();  // keys only; no input-method popups over the game
  installPangoText();

  // Pads already connected are announced by SDL as arrivals once the loop starts reading events.
  SdlGamepads gamepads;
  const bool desktopWantsLessMotion = desktopRequestsReducedMotion();

  // Without an audio device the game plays silent.
  std::unique_ptr<MixerSoundOutput> sound = MixerSoundOutput::open();
  SdlView view(window->sizeInPoints(), window.get(), sound.get());
  // The counters start on but the scene's attachment ends on the menu, which switches them off, so
  // they show only once the player turns them on.
  view.showsFPS = true;
  view.showsNodeCount = true;
  const std::shared_ptr<GameScene> scene = makeGameScene(options, view.size(), desktopWantsLessMotion);
  view.presentScene(scene);
  if (reportRequested(kReportPresentVariable)) std::fprintf(stderr, "present: %s\n", canvas->description().c_str());

  FrameLoopOptions loopOptions;
  loopOptions.frameLimit = options.frameLimit;
  loopOptions.gameSpeed = scene->comfortOptions().gameSpeed;
  loopOptions.gamepads = &gamepads;
  if (firstFrameReportRequested()) loopOptions.afterFirstPresent = reportFirstFrame;
  loopOptions.tracksDamage = damageTrackingWanted();
  // The built-in player presses its keys before each step, as in the headless driver's autoplay.
  Autoplayer player;
  if (options.autoplay) {
    loopOptions.beforeStep = [&] {
      for (const KeyStroke& stroke : player.play(*scene)) {
        const KeyEvent event{stroke.keyCode, 0, false};
        if (stroke.down) {
          view.keyDown(event);
        } else {
          view.keyUp(event);
        }
      }
    };
  }
  const FrameLoopStats stats = runFrameLoop(view, *window, *canvas, loopOptions);
  int status = 0;
  if (options.screenshotFile && !canvas->writeScreenshot(*options.screenshotFile)) {
    std::fprintf(stderr, "zindlebop: cannot write the screenshot '%s'\n", options.screenshotFile->c_str());
    status = 1;
  }
  if (reportRequested(kReportFramesVariable)) std::fprintf(stderr, "%s\n", frameReportLine(stats).c_str());
  view.dismissScene();  // the music stops while the sound output still exists
  return status;
}

}  // namespace zb

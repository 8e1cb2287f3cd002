#include "app/windowed_app.hpp"

#include <SDL.h>

#include <cstdio>
#include <memory>

#include "app/frame_report.hpp"
#include "app/startup_report.hpp"
#include "engine/quoted_text.hpp"
#include "engine/random.hpp"
#include "platform/desktop_motion.hpp"
#include "platform_sdl/gamepads.hpp"
#include "render/pango_text.hpp"
#include "platform_sdl/window_loop.hpp"
#include "platform_sdl/mixer_sound.hpp"
#include "platform/preferences_file.hpp"
#include "platform/resource_paths.hpp"
#include "platform_sdl/sdl_view.hpp"
#include "platform_sdl/sdl_window.hpp"
#include "platform_sdl/canvas_factory.hpp"
#include "player/autoplay.hpp"
#include "scene/game_scene.hpp"
#include "settings/preference_keys.hpp"

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

std::shared_ptr<GameScene> makeGameScene(const CommandLineOptions& options, Size size,
                                         std::shared_ptr<Preferences> preferences, bool reducedMotion) {
  auto scene = std::make_shared<GameScene>(size);
  GameServices services;
  services.preferences = std::move(preferences);
  services.bundle = ResourceBundle(defaultResourceFolder());
  services.fallbackFolder = defaultFallbackFolder();
  services.desktopRequestsReducedMotion = reducedMotion;
  scene->setServices(std::move(services));
  scene->random().seed(options.seed ? *options.seed : freshSeed());
  return scene;
}

int failWith(const char* what, const std::string& error) {
  sayOnStandardError(std::string(what) + " (SDL: " + error + ")");
  return 1;
}

// Asks the session bus before SDL starts, since SDL would wait on a silent bus for minutes; and asks
// its portal for the desktop's wish for less motion only when the player has not chosen.
bool askDesktop(Preferences& preferences) {
  const DesktopBusAnswer answer = askDesktopBus(!preferences.objectForKey(kReducedMotionKey).has_value());
  if (answer.bus == DesktopBusAnswer::Bus::silent) {
    std::fprintf(stderr, "zindlebop: the desktop bus did not answer within %d ms; going on without it\n",
                 kDesktopQueryTimeoutMs);
    hideSilentDesktopBus();
  }
  return answer.reducedMotion;
}

}  // namespace

int runWindowedGame(const CommandLineOptions& options) {
  auto preferences = std::make_shared<FilePreferences>(
      options.prefsFile ? std::filesystem::path(*options.prefsFile) : FilePreferences::defaultLocation());
  const bool desktopWantsLessMotion = askDesktop(*preferences);
  SdlVideo video;
  if (!video.ok) {
    sayOnStandardError("no display available (SDL: " + video.error + "); set DISPLAY or use --headless");
    return kExitNoDisplay;
  }
  std::string error;
  std::unique_ptr<SdlWindow> window = SdlWindow::open(options.size.value_or(SdlWindow::kDefaultSize), options.fullScreen, error);
  if (!window) return failWith("cannot open a window", error);
  std::unique_ptr<WindowCanvas> canvas = openWindowCanvas(window->handle(), error);
  if (!canvas) return failWith("cannot draw into the window", error);
  window->watchNativeWindow();
  SDL_StopTextInput();  // keys only; no input-method popups over the game
  installPangoText();

  // Pads already connected are announced by SDL as arrivals once the loop starts reading events.
  SdlGamepads gamepads;

  // Without an audio device the game plays silent.
  std::unique_ptr<MixerSoundOutput> sound = MixerSoundOutput::open();
  SdlView view(window->sizeInPoints(), window.get(), sound.get());
  // The counters start on but the scene's attachment ends on the menu, which switches them off, so
  // they show only once the player turns them on.
  view.showsFPS = true;
  view.showsNodeCount = true;
  const std::shared_ptr<GameScene> scene = makeGameScene(options, view.size(), preferences, desktopWantsLessMotion);
  view.presentScene(scene);
  if (reportRequested(kReportPresentVariable)) std::fprintf(stderr, "present: %s\n", canvas->description().c_str());

  FrameLoopOptions loopOptions;
  loopOptions.frameLimit = options.frameLimit;
  loopOptions.gameSpeed = scene->comfortOptions().gameSpeed;
  if (firstFrameReportRequested()) loopOptions.afterFirstPresent = reportFirstFrame;
  loopOptions.tracksDamage = damageMode() != DamageMode::off;
  loopOptions.verifiesDamage = damageMode() == DamageMode::verify;
  // The built-in player presses its keys before each step, as in the headless driver's autoplay.
  Autoplayer player;
  if (options.autoplay) {
    loopOptions.beforeStep = [&] {
      player.pressKeys(*scene, view);
    };
  }
  const FrameLoopStats stats = runFrameLoop(view, *window, *canvas, loopOptions, &gamepads);
  int status = stats.damageMismatch ? 1 : 0;
  if (options.screenshotFile) {
    if (const PngWrite written = canvas->writeScreenshot(*options.screenshotFile); !written) {
      sayOnStandardError("screenshot: " + written.description(*options.screenshotFile));
      status = 1;
    }
  }
  if (reportRequested(kReportFramesVariable)) std::fprintf(stderr, "%s\n", frameReportLine(stats).c_str());
  view.dismissScene();  // the music stops while the sound output still exists
  return status;
}

}  // namespace zb

#include "platform/frame_loop.hpp"

#include <SDL.h>

#include <chrono>
#include <cmath>

#include "engine/view.hpp"
#include "platform/frame_pacer.hpp"
#include "platform/frame_rate_meter.hpp"
#include "platform/renderer.hpp"
#include "platform/sdl_events.hpp"
#include "platform/sdl_window.hpp"
#include "platform/window_canvas.hpp"

namespace zb {

namespace {

double secondsNow() {
  using Clock = std::chrono::steady_clock;
  return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

bool movedToAnotherDisplay(const SDL_Event& event) {
  return event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_DISPLAY_CHANGED;
}

// The display server may have lost the window's pixels, or the window has new ones.
bool lostPixels(const SDL_Event& event) {
  if (event.type != SDL_WINDOWEVENT) return false;
  const auto what = event.window.event;
  return what == SDL_WINDOWEVENT_EXPOSED || what == SDL_WINDOWEVENT_SIZE_CHANGED || what == SDL_WINDOWEVENT_RESTORED;
}

// Handles every waiting event; false when the game should quit.
bool drainEvents(View& view, WindowCanvas& canvas, FramePacer& pacer) {
  SDL_Event event;
  while (SDL_PollEvent(&event) != 0) {
    if (dispatchEvent(event, view) == EventOutcome::quit) return false;
    if (movedToAnotherDisplay(event)) pacer.setVsyncAt60Hz(canvas.syncToDisplay());
    if (lostPixels(event)) canvas.invalidate();
  }
  return true;
}

// Sleeps until the next step is due, waking early for input so that it is handled at once.
void waitForNextStep(double seconds) {
  const int milliseconds = static_cast<int>(std::ceil(seconds * 1000));
  if (milliseconds > 0) SDL_WaitEventTimeout(nullptr, milliseconds);
}

}  // namespace

FrameLoopStats runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options) {
  FramePacer pacer(canvas.syncToDisplay());
  FrameRateMeter meter;
  Renderer renderer;
  renderer.setTracksDamage(options.tracksDamage);
  FrameLoopStats stats;
  const double start = secondsNow();
  int64_t frames = 0;
  bool presented = false;
  while (drainEvents(view, canvas, pacer)) {
    window.postFullScreenChanges(view.notificationCenter());
    const double now = secondsNow();
    const int steps = pacer.stepsDue(now);
    if (steps == 0) {
      waitForNextStep(pacer.secondsUntilNextStep(now));
      continue;
    }
    for (int i = 0; i < steps; ++i) {
      if (options.beforeStep) options.beforeStep();
      view.stepFrame();
    }
    stats.steps += steps;
    if (!window.isMinimized() && canvas.drawFrame(renderer, view, meter.framesPerSecond())) {
      ++stats.framesDrawn;
      meter.frameDrawn(secondsNow());
      if (!presented && options.afterFirstPresent) options.afterFirstPresent();
      presented = true;
    }
    if (options.frameLimit && ++frames >= *options.frameLimit) break;
  }
  stats.seconds = secondsNow() - start;
  return stats;
}

}  // namespace zb

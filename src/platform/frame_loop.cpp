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

// Handles every waiting event; false when the game should quit. A window another program destroyed
// ends the game as a close does.
bool drainEvents(View& view, SdlWindow& window, WindowCanvas& canvas, FramePacer& pacer) {
  SDL_Event event;
  while (SDL_PollEvent(&event) != 0) {
    if (window.destroyedFromOutside(event)) return false;
    if (dispatchEvent(event, view) == EventOutcome::quit) return false;
    if (movedToAnotherDisplay(event)) pacer.setVsyncAt60Hz(canvas.syncToDisplay());
  }
  return true;
}

// The scene fills the window whatever the events said: a window manager may refuse a size, and no
// event at all comes for some changes.
void followWindowSize(View& view, const SdlWindow& window) {
  const Size size = window.sizeInPoints();
  if (size.width > 0 && size.height > 0 && size != view.size()) view.setSize(size);
}

// Sleeps until the next step is due, waking early for input so that it is handled at once.
void waitForNextStep(double seconds) {
  const int milliseconds = static_cast<int>(std::ceil(seconds * 1000));
  if (milliseconds > 0) SDL_WaitEventTimeout(nullptr, milliseconds);
}

void drawFrame(View& view, WindowCanvas& canvas, Renderer& renderer, double framesPerSecond) {
  cairo_t* cr = canvas.beginFrame();
  if (cr == nullptr) return;
  renderer.draw(cr, view, canvas.pixelScale(), framesPerSecond);
  canvas.endFrame(cr);
}

}  // namespace

void runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options) {
  FramePacer pacer(canvas.syncToDisplay());
  FrameRateMeter meter;
  Renderer renderer;
  int64_t frames = 0;
  bool presented = false;
  while (drainEvents(view, window, canvas, pacer)) {
    window.postFullScreenChanges(view.notificationCenter());
    followWindowSize(view, window);
    const double now = secondsNow();
    const int steps = pacer.stepsDue(now);
    if (steps == 0) {
      waitForNextStep(pacer.secondsUntilNextStep(now));
      continue;
    }
    for (int i = 0; i < steps; ++i) view.stepFrame();
    if (!window.isMinimized()) {
      drawFrame(view, canvas, renderer, meter.framesPerSecond());
      meter.frameDrawn(secondsNow());
      if (!presented && options.afterFirstPresent) options.afterFirstPresent();
      presented = true;
    }
    if (options.frameLimit && ++frames >= *options.frameLimit) break;
  }
}

}  // namespace zb

#include "platform/window_loop.hpp"

#include <SDL.h>

#include <chrono>
#include <cmath>

#include "engine/view.hpp"
#include "platform/frame_pacer.hpp"
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

// Handles every waiting event; false when the game should quit. A window another program destroyed
// ends the game as a close does.
bool drainEvents(View& view, SdlWindow& window, WindowCanvas& canvas, FramePacer& pacer, SdlGamepads* gamepads) {
  SDL_Event event;
  while (SDL_PollEvent(&event) != 0) {
    if (window.destroyedFromOutside(event)) return false;
    const EventOutcome outcome = gamepads ? dispatchEvent(event, view, *gamepads) : dispatchEvent(event, view);
    if (outcome == EventOutcome::quit) return false;
    if (movedToAnotherDisplay(event)) pacer.setVsyncAt60Hz(canvas.syncToDisplay());
    if (lostPixels(event)) canvas.invalidate();
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

class WindowHost final : public FrameLoopHost {
 public:
  WindowHost(View& view, SdlWindow& window, WindowCanvas& canvas, FramePacer& pacer, SdlGamepads* gamepads)
      : view_(view), window_(window), canvas_(canvas), pacer_(pacer), gamepads_(gamepads) {}

  bool handleEvents() override {
    if (!drainEvents(view_, window_, canvas_, pacer_, gamepads_)) return false;
    window_.postFullScreenChanges(view_.notificationCenter());
    followWindowSize(view_, window_);
    return true;
  }
  double now() override { return secondsNow(); }
  void waitFor(double seconds) override { waitForNextStep(seconds); }
  bool minimized() override { return window_.isMinimized(); }
  double vblankPeriod() override { return canvas_.vblankPeriod(); }
  bool draw(double framesPerSecond, double stepFraction) override {
    return canvas_.drawFrame(renderer_, view_, framesPerSecond, stepFraction);
  }
  Renderer& renderer() { return renderer_; }

 private:
  View& view_;
  SdlWindow& window_;
  WindowCanvas& canvas_;
  FramePacer& pacer_;
  SdlGamepads* gamepads_;
  Renderer renderer_;
};

}  // namespace

FrameLoopStats runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options) {
  FramePacer pacer(canvas.syncToDisplay());
  pacer.setSpeed(options.gameSpeed);
  WindowHost host(view, window, canvas, pacer, options.gamepads);
  host.renderer().setTracksDamage(options.tracksDamage);
  return runFrames(view, pacer, host, options);
}

}  // namespace zb

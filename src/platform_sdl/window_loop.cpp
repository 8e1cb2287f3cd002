#include "platform_sdl/window_loop.hpp"

#include <SDL.h>

#include <chrono>
#include <cmath>
#include <cstdio>

#include "engine/view.hpp"
#include "platform/frame_pacer.hpp"
#include "render/renderer.hpp"
#include "platform_sdl/sdl_events.hpp"
#include "platform_sdl/sdl_window.hpp"
#include "platform_sdl/window_canvas.hpp"

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
    if (mismatch_) return false;
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
    if (!canvas_.drawFrame(renderer_, view_, framesPerSecond, stepFraction)) return false;
    ++framesDrawn_;
    if (const int64_t differing = renderer_.mismatchedPixels(); differing > 0 && !mismatch_) {
      mismatch_ = true;
      std::fprintf(stderr, "zindlebop: frame %lld drawn from its changes differs from a full redraw in %lld pixels\n",
                   static_cast<long long>(framesDrawn_), static_cast<long long>(differing));
    }
    return true;
  }
  Renderer& renderer() { return renderer_; }
  bool mismatch() const { return mismatch_; }

 private:
  View& view_;
  SdlWindow& window_;
  WindowCanvas& canvas_;
  FramePacer& pacer_;
  SdlGamepads* gamepads_;
  Renderer renderer_;
  int64_t framesDrawn_ = 0;
  bool mismatch_ = false;
};

}  // namespace

FrameLoopStats runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options,
                            SdlGamepads* gamepads) {
  FramePacer pacer(canvas.syncToDisplay());
  pacer.setSpeed(options.gameSpeed);
  WindowHost host(view, window, canvas, pacer, gamepads);
  host.renderer().setTracksDamage(options.tracksDamage);
  host.renderer().setVerifies(options.verifiesDamage);
  FrameLoopStats stats = runFrames(view, pacer, host, options);
  stats.damageMismatch = host.mismatch();
  return stats;
}

}  // namespace zb

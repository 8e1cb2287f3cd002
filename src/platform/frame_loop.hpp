#pragma once
// The game's main loop without the window: events, simulation steps at 60 a second as the pacer
// decides, a draw after every pass that stepped (unless the window is minimised), and the frame limit.
// The outside world comes through a host, so the loop runs the same against a fake clock.
#include <cstdint>
#include <functional>
#include <optional>

namespace zb {

class View;
class FramePacer;
class SdlGamepads;

struct FrameLoopOptions {
  // Stop after this many frames (a frame is one pass that steps the simulation); none means until the
  // window closes.
  std::optional<int64_t> frameLimit;
  // Called once, right after the first frame is put on screen.
  std::function<void()> afterFirstPresent;
  // Simulation steps per second are 60 x this (0.5 to 1); each step is still 1/60 s of game time.
  double gameSpeed = 1.0;
  // Where gamepad events go; none means pads are not watched.
  SdlGamepads* gamepads = nullptr;
};

class FrameLoopHost {
 public:
  virtual ~FrameLoopHost() = default;
  // Handles every waiting event; false when the game should quit.
  virtual bool handleEvents() = 0;
  // The monotonic time in seconds.
  virtual double now() = 0;
  // Sleeps up to `seconds`, waking early for input.
  virtual void waitFor(double seconds) = 0;
  virtual bool minimized() = 0;
  virtual void draw(double framesPerSecond) = 0;
};

// Runs until the host says quit (or the frame limit is reached).
void runFrames(View& view, FramePacer& pacer, FrameLoopHost& host, const FrameLoopOptions& options);

}  // namespace zb

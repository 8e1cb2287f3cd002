#pragma once
// The windowed game's main loop: events, simulation steps at 60 a second, drawing, full-screen news.
#include <cstdint>
#include <functional>
#include <optional>

namespace zb {

class View;
class SdlWindow;
class WindowCanvas;
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

// Runs until the window is closed or SDL is asked to quit (or the frame limit is reached).
void runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options);

}  // namespace zb

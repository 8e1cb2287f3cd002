#pragma once
// The windowed game's main loop: events, simulation steps at 60 a second, drawing, full-screen news.
#include <cstdint>
#include <functional>
#include <optional>

namespace zb {

class View;
class SdlWindow;
class WindowCanvas;

struct FrameLoopOptions {
  // Stop after this many frames (a frame is one pass that steps the simulation); none means until the
  // window closes.
  std::optional<int64_t> frameLimit;
  // Called once, right after the first frame is put on screen.
  std::function<void()> afterFirstPresent;
  // Called before every simulation step (the built-in player presses its keys here).
  std::function<void()> beforeStep;
  // Off: every frame is redrawn whole, for comparisons.
  bool tracksDamage = true;
};

// What a run of the loop did, for the frame report.
struct FrameLoopStats {
  int64_t framesDrawn = 0;
  int64_t steps = 0;
  double seconds = 0;
};

// Runs until the window is closed or SDL is asked to quit (or the frame limit is reached).
FrameLoopStats runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options);

}  // namespace zb

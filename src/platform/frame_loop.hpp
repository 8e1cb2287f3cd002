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
};

// Runs until the window is closed or SDL is asked to quit (or the frame limit is reached).
void runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options);

}  // namespace zb

#pragma once
// The windowed game's main loop: the frame loop with SDL's events, clock and window, cairo drawing
// into the window's canvas, and full-screen news.
#include "platform/frame_loop.hpp"

namespace zb {

class SdlGamepads;
class SdlWindow;
class WindowCanvas;

// Runs until the window is closed or SDL is asked to quit (or the frame limit is reached). Gamepad
// events go to `gamepads`; without them pads are not watched.
FrameLoopStats runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options,
                            SdlGamepads* gamepads = nullptr);

}  // namespace zb

#pragma once
// The windowed game's main loop: the frame loop with SDL's events, clock and window, cairo drawing
// into the window's canvas, and full-screen news.
#include "platform/frame_loop.hpp"

namespace zb {

class SdlWindow;
class WindowCanvas;

// Runs until the window is closed or SDL is asked to quit (or the frame limit is reached).
FrameLoopStats runFrameLoop(View& view, SdlWindow& window, WindowCanvas& canvas, const FrameLoopOptions& options);

}  // namespace zb

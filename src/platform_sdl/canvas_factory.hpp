#pragma once
// Chooses how a window's frames reach the screen and opens that canvas. Kept apart from the canvas
// interface so that the interface knows none of its implementations.
#include <memory>
#include <string>

#include "platform_sdl/window_canvas.hpp"

struct SDL_Window;

namespace zb {

// The path ZINDLEBOP_PRESENT asks for, else GL on a hardware driver, else the framebuffer. Nothing
// when the window can be drawn on neither way; `error` then says why.
std::unique_ptr<WindowCanvas> openWindowCanvas(SDL_Window* window, std::string& error);

}  // namespace zb

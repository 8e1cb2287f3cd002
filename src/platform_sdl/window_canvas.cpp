#include "platform_sdl/window_canvas.hpp"

#include <SDL.h>

namespace zb {

double pixelScaleOf(SDL_Window* window, int pixelWidth) {
  int pointWidth = 0, pointHeight = 0;
  SDL_GetWindowSize(window, &pointWidth, &pointHeight);
  if (pointWidth <= 0 || pixelWidth <= 0) return 1;
  return static_cast<double>(pixelWidth) / pointWidth;
}

}  // namespace zb

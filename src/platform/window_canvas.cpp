#include "platform/window_canvas.hpp"

#include <SDL.h>

#include <cstdlib>

#include "engine/quoted_text.hpp"
#include "platform/framebuffer_canvas.hpp"
#include "platform/gl_canvas.hpp"

namespace zb {

std::unique_ptr<WindowCanvas> WindowCanvas::create(SDL_Window* window, std::string& error) {
  std::string complaint;
  const std::optional<PresentPath> requested = requestedPresentPath(std::getenv(kPresentVariable), complaint);
  if (!complaint.empty()) sayOnStandardError(complaint + "; choosing on its own");

  if (requested == PresentPath::gl || (!requested && hasGraphicsDevice())) {
    // Asked for, GL is used whatever the driver; chosen on our own, only on a hardware one.
    std::unique_ptr<WindowCanvas> gl = GlCanvas::create(window, !requested.has_value(), error);
    if (gl) return gl;
    if (requested) sayOnStandardError("no GL presentation (SDL: " + error + "); using the framebuffer");
  }
  if (std::unique_ptr<WindowCanvas> framebuffer = FramebufferCanvas::create(window, error)) return framebuffer;
  // Video drivers without a framebuffer of their own (SDL2 on Wayland) still have a renderer.
  return GlCanvas::create(window, false, error);
}

double pixelScaleOf(SDL_Window* window, int pixelWidth) {
  int pointWidth = 0, pointHeight = 0;
  SDL_GetWindowSize(window, &pointWidth, &pointHeight);
  if (pointWidth <= 0 || pixelWidth <= 0) return 1;
  return static_cast<double>(pixelWidth) / pointWidth;
}

}  // namespace zb

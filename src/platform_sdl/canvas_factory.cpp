#include "platform_sdl/canvas_factory.hpp"

#include <cstdlib>

#include "engine/quoted_text.hpp"
#include "platform_sdl/framebuffer_canvas.hpp"
#include "platform_sdl/gl_canvas.hpp"

namespace zb {

std::unique_ptr<WindowCanvas> openWindowCanvas(SDL_Window* window, std::string& error) {
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

}  // namespace zb

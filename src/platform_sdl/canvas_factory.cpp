#include "platform_sdl/canvas_factory.hpp"

#include <cstdio>
#include <cstdlib>

#include "platform_sdl/framebuffer_canvas.hpp"
#include "platform_sdl/gl_canvas.hpp"

namespace zb {

std::unique_ptr<WindowCanvas> openWindowCanvas(SDL_Window* window, std::string& error) {
  std::string complaint;
  const std::optional<PresentPath> requested = requestedPresentPath(std::getenv(kPresentVariable), complaint);
  if (!complaint.empty()) std::fprintf(stderr, "zindlebop: %s; choosing on its own\n", complaint.c_str());

  if (requested == PresentPath::gl || (!requested && hasGraphicsDevice())) {
    // Asked for, GL is used whatever the driver; chosen on our own, only on a hardware one.
    std::unique_ptr<WindowCanvas> gl = GlCanvas::create(window, !requested.has_value(), error);
    if (gl) return gl;
    if (requested) std::fprintf(stderr, "zindlebop: no GL presentation (SDL: %s); using the framebuffer\n", error.c_str());
  }
  if (std::unique_ptr<WindowCanvas> framebuffer = FramebufferCanvas::create(window, error)) return framebuffer;
  // Video drivers without a framebuffer of their own (SDL2 on Wayland) still have a renderer.
  return GlCanvas::create(window, false, error);
}

}  // namespace zb

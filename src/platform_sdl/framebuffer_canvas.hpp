#pragma once
// The framebuffer path: cairo draws into the window's own surface, and only the redrawn boxes are sent
// to the display server. A timer paces the loop.
#include <memory>
#include <vector>

#include "platform_sdl/window_canvas.hpp"

struct SDL_Surface;
typedef struct _cairo_surface cairo_surface_t;

namespace zb {

class FramebufferCanvas final : public WindowCanvas {
 public:
  // Nothing when SDL has no framebuffer for the window; `error` then says why.
  static std::unique_ptr<WindowCanvas> create(SDL_Window* window, std::string& error);
  ~FramebufferCanvas() override;

  PresentPath path() const override { return PresentPath::framebuffer; }
  std::string description() const override;
  bool syncToDisplay() override { return false; }
  double vblankPeriod() const override { return 0; }
  bool drawFrame(Renderer& renderer, const View& view, double framesPerSecond, double stepFraction) override;
  void invalidate() override { kept_ = false; }
  PngWrite writeScreenshot(const std::filesystem::path& file) override;

 private:
  explicit FramebufferCanvas(SDL_Window* window) : window_(window) {}
  // Points cairo at the window's current surface; false when there is none to draw on.
  bool fitSurface();

  SDL_Window* window_;
  SDL_Surface* surface_ = nullptr;   // owned by SDL; replaced when the window changes size
  cairo_surface_t* pixels_ = nullptr;  // cairo's view of the surface's pixels, or an image of its own
  // Only for a window surface whose pixels cairo cannot draw on directly: cairo draws here and the
  // boxes are converted into the surface.
  bool converts_ = false;
  bool kept_ = false;
};

}  // namespace zb

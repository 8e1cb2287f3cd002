#pragma once
// The GL path: cairo draws into an image kept between frames, the redrawn boxes are uploaded into a
// streaming texture of an accelerated SDL renderer, and presenting waits for the vertical blank.
#include <memory>

#include "platform_sdl/window_canvas.hpp"

struct SDL_Renderer;
struct SDL_Texture;
typedef struct _cairo_surface cairo_surface_t;

namespace zb {

class GlCanvas final : public WindowCanvas {
 public:
  // Nothing when there is no accelerated renderer, or, with `hardwareOnly`, when the GL driver draws
  // on the processor; `error` then says why.
  static std::unique_ptr<WindowCanvas> create(SDL_Window* window, bool hardwareOnly, std::string& error);
  ~GlCanvas() override;

  PresentPath path() const override { return PresentPath::gl; }
  std::string description() const override { return description_; }
  bool syncToDisplay() override;
  double vblankPeriod() const override { return vblankPeriod_; }
  bool drawFrame(Renderer& renderer, const View& view, double framesPerSecond, double stepFraction) override;
  void invalidate() override { kept_ = false; }
  PngWrite writeScreenshot(const std::filesystem::path& file) override;

 private:
  GlCanvas(SDL_Window* window, SDL_Renderer* renderer, std::string description)
      : window_(window), renderer_(renderer), description_(std::move(description)) {}
  // Makes the texture and the image match the drawable's size; false when they cannot.
  bool fitDrawable(int width, int height);

  SDL_Window* window_;
  SDL_Renderer* renderer_;
  std::string description_;
  SDL_Texture* texture_ = nullptr;
  cairo_surface_t* image_ = nullptr;
  bool kept_ = false;
  bool saidNoPixels_ = false;  // since the last size that worked
  double vblankPeriod_ = 0;
};

}  // namespace zb

#include "platform/window_canvas.hpp"
#include "platform/foreign_allocations.hpp"

#include <SDL.h>
#include <cairo.h>

namespace zb {

namespace {

constexpr int kVsyncRateLow = 59;  // 59.94 Hz panels report 59 or 60
constexpr int kVsyncRateHigh = 61;

bool refreshesAt60Hz(SDL_Window* window) {
  SDL_DisplayMode mode;
  const int display = SDL_GetWindowDisplayIndex(window);
  if (display < 0 || SDL_GetCurrentDisplayMode(display, &mode) != 0) return false;
  return mode.refresh_rate >= kVsyncRateLow && mode.refresh_rate <= kVsyncRateHigh;
}

}  // namespace

// Cairo draws the frame on the processor, so putting it on screen needs no graphics driver: the
// software renderer copies it into the window's own framebuffer. An accelerated renderer would load
// the system's GL driver (with Mesa, its shader compiler: tens of megabytes and a good part of the
// start-up) for one texture upload a frame. It stays the fallback for video drivers without a
// framebuffer of their own.
std::unique_ptr<WindowCanvas> WindowCanvas::create(SDL_Window* window, std::string& error) {
  ForeignAllocations drivers;
  // Otherwise SDL would back the window's framebuffer with a GL texture after all. The environment
  // variable of the same name still wins.
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  SDL_Renderer* renderer = SDL_CreateRenderer(window, -1, SDL_RENDERER_SOFTWARE);
  if (renderer == nullptr) renderer = SDL_CreateRenderer(window, -1, SDL_RENDERER_ACCELERATED);
  if (renderer == nullptr) {
    error = SDL_GetError();
    return nullptr;
  }
  return std::unique_ptr<WindowCanvas>(new WindowCanvas(window, renderer));
}

WindowCanvas::~WindowCanvas() {
  if (image_ != nullptr) cairo_surface_destroy(image_);
  if (texture_ != nullptr) SDL_DestroyTexture(texture_);
  SDL_DestroyRenderer(renderer_);
}

bool WindowCanvas::syncToDisplay() {
  const bool wanted = refreshesAt60Hz(window_);
  const bool granted = SDL_RenderSetVSync(renderer_, wanted ? 1 : 0) == 0;
  return wanted && granted;
}

bool WindowCanvas::fitDrawable(int width, int height) {
  if (texture_ != nullptr && width == width_ && height == height_) return true;
  if (image_ != nullptr) cairo_surface_destroy(image_);
  if (texture_ != nullptr) SDL_DestroyTexture(texture_);
  image_ = nullptr;
  width_ = height_ = 0;
  // Both are 32-bit native-endian pixels with the top byte unused, so the image uploads as it is.
  texture_ = SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING, width, height);
  if (texture_ == nullptr) return false;
  image_ = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (cairo_surface_status(image_) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(image_);
    image_ = nullptr;
    SDL_DestroyTexture(texture_);
    texture_ = nullptr;
    return false;
  }
  width_ = width;
  height_ = height;
  return true;
}

cairo_t* WindowCanvas::beginFrame() {
  int pixelWidth = 0, pixelHeight = 0, pointWidth = 0, pointHeight = 0;
  if (SDL_GetRendererOutputSize(renderer_, &pixelWidth, &pixelHeight) != 0) return nullptr;
  SDL_GetWindowSize(window_, &pointWidth, &pointHeight);
  if (pixelWidth <= 0 || pixelHeight <= 0 || pointWidth <= 0) return nullptr;
  if (!fitDrawable(pixelWidth, pixelHeight)) return nullptr;
  pixelScale_ = static_cast<double>(pixelWidth) / pointWidth;
  return cairo_create(image_);
}

void WindowCanvas::endFrame(cairo_t* cr) {
  cairo_destroy(cr);
  cairo_surface_flush(image_);
  SDL_UpdateTexture(texture_, nullptr, cairo_image_surface_get_data(image_), cairo_image_surface_get_stride(image_));
  SDL_RenderCopy(renderer_, texture_, nullptr, nullptr);
  SDL_RenderPresent(renderer_);
}

}  // namespace zb

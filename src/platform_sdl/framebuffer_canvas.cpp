#include "platform_sdl/framebuffer_canvas.hpp"

#include <SDL.h>
#include <cairo.h>

#include <vector>

#include "platform_sdl/foreign_allocations.hpp"
#include "render/renderer.hpp"

namespace zb {

namespace {

// Cairo's RGB24 is 32-bit native-endian pixels with the top byte unused: SDL's RGB888, and ARGB8888
// read without its alpha.
bool cairoDrawsOn(const SDL_Surface& surface) {
  return surface.format->format == SDL_PIXELFORMAT_RGB888 || surface.format->format == SDL_PIXELFORMAT_ARGB8888;
}

std::vector<SDL_Rect> sdlRects(const std::vector<PixelRect>& boxes) {
  std::vector<SDL_Rect> rects;
  rects.reserve(boxes.size());
  for (const PixelRect& box : boxes) rects.push_back({box.x, box.y, box.width, box.height});
  return rects;
}

}  // namespace

std::unique_ptr<WindowCanvas> FramebufferCanvas::create(SDL_Window* window, std::string& error) {
  ForeignAllocations drivers;
  // Otherwise SDL would back the window's framebuffer with a GL texture after all. The environment
  // variable of the same name still wins.
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  if (SDL_GetWindowSurface(window) == nullptr) {
    error = SDL_GetError();
    return nullptr;
  }
  return std::unique_ptr<WindowCanvas>(new FramebufferCanvas(window));
}

FramebufferCanvas::~FramebufferCanvas() {
  if (pixels_ != nullptr) cairo_surface_destroy(pixels_);
}

std::string FramebufferCanvas::description() const {
  const char* driver = SDL_GetCurrentVideoDriver();
  return std::string("framebuffer (") + (driver != nullptr ? driver : "?") + ", no vsync)";
}

bool FramebufferCanvas::fitSurface() {
  // SDL hands out a new surface after the window changes size; its pixels start undefined.
  SDL_Surface* surface = SDL_GetWindowSurface(window_);
  if (surface == nullptr || surface->w <= 0 || surface->h <= 0) return false;
  // A surface made anew may sit at the old address, so its size and pixels are compared as well.
  const bool same = surface == surface_ && pixels_ != nullptr && cairo_image_surface_get_width(pixels_) == surface->w &&
                    cairo_image_surface_get_height(pixels_) == surface->h &&
                    (converts_ || cairo_image_surface_get_data(pixels_) == surface->pixels);
  if (same) return true;
  if (pixels_ != nullptr) cairo_surface_destroy(pixels_);
  surface_ = surface;
  kept_ = false;
  converts_ = !cairoDrawsOn(*surface);
  pixels_ = converts_ ? cairo_image_surface_create(CAIRO_FORMAT_RGB24, surface->w, surface->h)
                      : cairo_image_surface_create_for_data(static_cast<unsigned char*>(surface->pixels),
                                                            CAIRO_FORMAT_RGB24, surface->w, surface->h, surface->pitch);
  if (cairo_surface_status(pixels_) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(pixels_);
    pixels_ = nullptr;
    return false;
  }
  return true;
}

bool FramebufferCanvas::drawFrame(Renderer& renderer, const View& view, double framesPerSecond, double stepFraction) {
  if (!fitSurface()) return false;
  const PixelSize size{surface_->w, surface_->h};
  cairo_t* cr = cairo_create(pixels_);
  const std::vector<PixelRect>& boxes =
      renderer.drawChanges(cr, size, view, pixelScaleOf(window_, size.width), framesPerSecond, kept_, stepFraction);
  cairo_destroy(cr);
  cairo_surface_flush(pixels_);
  kept_ = true;
  if (boxes.empty()) return true;
  const std::vector<SDL_Rect> rects = sdlRects(boxes);
  if (converts_) {
    const unsigned char* data = cairo_image_surface_get_data(pixels_);
    const int stride = cairo_image_surface_get_stride(pixels_);
    const int bytes = surface_->format->BytesPerPixel;
    for (const SDL_Rect& r : rects) {
      SDL_ConvertPixels(r.w, r.h, SDL_PIXELFORMAT_RGB888, data + r.y * stride + r.x * 4, stride,
                        surface_->format->format,
                        static_cast<unsigned char*>(surface_->pixels) + r.y * surface_->pitch + r.x * bytes,
                        surface_->pitch);
    }
  }
  SDL_UpdateWindowSurfaceRects(window_, rects.data(), static_cast<int>(rects.size()));
  return true;
}

PngWrite FramebufferCanvas::writeScreenshot(const std::filesystem::path& file) {
  SDL_Surface* surface = SDL_GetWindowSurface(window_);
  if (surface == nullptr) return PngWrite{PngWrite::cannotWrite, SDL_GetError()};
  // Read back what the window's surface holds now, stale pixels and all.
  cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, surface->w, surface->h);
  if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(image);
    return PngWrite{PngWrite::noMemory, {}};
  }
  cairo_surface_flush(image);
  SDL_ConvertPixels(surface->w, surface->h, surface->format->format, surface->pixels, surface->pitch,
                    SDL_PIXELFORMAT_RGB888, cairo_image_surface_get_data(image), cairo_image_surface_get_stride(image));
  cairo_surface_mark_dirty(image);
  const PngWrite written = writePngFile(image, file);
  cairo_surface_destroy(image);
  return written;
}

}  // namespace zb

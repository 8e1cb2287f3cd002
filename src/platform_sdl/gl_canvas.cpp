#include "platform_sdl/gl_canvas.hpp"

#include <SDL.h>
#include <cairo.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "platform_sdl/foreign_allocations.hpp"
#include "render/renderer.hpp"

namespace zb {

namespace {

constexpr int kVsyncRateLow = 59;  // 59.94 Hz panels report 59 or 60
constexpr int kVsyncRateHigh = 61;
constexpr unsigned kGlRenderer = 0x1F01;  // GL_RENDERER, without pulling in the GL headers

// A display that does not say its refresh rate is taken for the common 60 Hz one.
constexpr int kAssumedRefreshRate = 60;

// The refresh rate of the window's display in Hz; 0 when it cannot be asked.
int refreshRateOf(SDL_Window* window) {
  SDL_DisplayMode mode;
  const int display = SDL_GetWindowDisplayIndex(window);
  if (display < 0 || SDL_GetCurrentDisplayMode(display, &mode) != 0) return 0;
  return mode.refresh_rate;
}

// The driver's own name for the device, from the context SDL's renderer made current; empty when SDL
// renders without GL.
std::string glRendererString() {
  using GetString = const unsigned char* (*)(unsigned);
  auto getString = reinterpret_cast<GetString>(SDL_GL_GetProcAddress("glGetString"));
  if (SDL_GL_GetCurrentContext() == nullptr || getString == nullptr) return {};
  const unsigned char* name = getString(kGlRenderer);
  return name != nullptr ? reinterpret_cast<const char*>(name) : std::string();
}

}  // namespace

std::unique_ptr<WindowCanvas> GlCanvas::create(SDL_Window* window, bool hardwareOnly, std::string& error) {
  ForeignAllocations drivers;
  SDL_Renderer* renderer = SDL_CreateRenderer(window, -1, SDL_RENDERER_ACCELERATED | SDL_RENDERER_PRESENTVSYNC);
  if (renderer == nullptr) {
    error = SDL_GetError();
    return nullptr;
  }
  SDL_RendererInfo info;
  SDL_GetRendererInfo(renderer, &info);
  const std::string device = glRendererString();
  if (hardwareOnly && isSoftwareGlRenderer(device)) {
    SDL_DestroyRenderer(renderer);
    error = "the GL driver '" + device + "' draws on the processor";
    return nullptr;
  }
  const std::string description = std::string("gl (") + info.name + ", " + (device.empty() ? "?" : device) + ")";
  return std::unique_ptr<WindowCanvas>(new GlCanvas(window, renderer, description));
}

GlCanvas::~GlCanvas() {
  if (image_ != nullptr) cairo_surface_destroy(image_);
  if (texture_ != nullptr) SDL_DestroyTexture(texture_);
  SDL_DestroyRenderer(renderer_);
}

bool GlCanvas::syncToDisplay() {
  // Vsync stays on everywhere; only at 60 Hz is the vertical blank also the step clock. Other displays
  // get a frame every vertical blank, drawn between steps.
  SDL_RenderSetVSync(renderer_, 1);
  const int rate = refreshRateOf(window_);
  vblankPeriod_ = 1.0 / (rate > 0 ? rate : kAssumedRefreshRate);
  return rate >= kVsyncRateLow && rate <= kVsyncRateHigh;
}

bool GlCanvas::fitDrawable(int width, int height) {
  if (texture_ != nullptr && image_ != nullptr && width == cairo_image_surface_get_width(image_) &&
      height == cairo_image_surface_get_height(image_)) {
    return true;
  }
  if (image_ != nullptr) cairo_surface_destroy(image_);
  if (texture_ != nullptr) SDL_DestroyTexture(texture_);
  image_ = nullptr;
  kept_ = false;
  // Both are 32-bit native-endian pixels with the top byte unused, so the image uploads as it is.
  // Without either the window shows nothing new: said once, until a later try succeeds.
  texture_ = SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING, width, height);
  if (texture_ == nullptr) {
    if (!saidNoPixels_) std::fprintf(stderr, "zindlebop: cannot make a %dx%d texture for the window (SDL: %s); "
                                             "the window is not redrawn\n", width, height, SDL_GetError());
    saidNoPixels_ = true;
    return false;
  }
  image_ = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (cairo_surface_status(image_) != CAIRO_STATUS_SUCCESS) {
    if (!saidNoPixels_) std::fprintf(stderr, "zindlebop: no memory for a %dx%d picture of the window; "
                                             "the window is not redrawn\n", width, height);
    saidNoPixels_ = true;
    cairo_surface_destroy(image_);
    image_ = nullptr;
    return false;
  }
  saidNoPixels_ = false;
  return true;
}

bool GlCanvas::drawFrame(Renderer& renderer, const View& view, double framesPerSecond, double stepFraction) {
  int width = 0, height = 0;
  if (SDL_GetRendererOutputSize(renderer_, &width, &height) != 0 || width <= 0 || height <= 0) return false;
  if (!fitDrawable(width, height)) return false;
  cairo_t* cr = cairo_create(image_);
  const std::vector<PixelRect>& boxes =
      renderer.drawChanges(cr, {width, height}, view, pixelScaleOf(window_, width), framesPerSecond, kept_, stepFraction);
  cairo_destroy(cr);
  cairo_surface_flush(image_);
  kept_ = true;
  const unsigned char* data = cairo_image_surface_get_data(image_);
  const int stride = cairo_image_surface_get_stride(image_);
  for (const PixelRect& box : boxes) {
    const SDL_Rect rect{box.x, box.y, box.width, box.height};
    SDL_UpdateTexture(texture_, &rect, data + box.y * stride + box.x * 4, stride);
  }
  // The back buffer's old contents are undefined after a swap, so the whole texture is drawn each time;
  // on the graphics card that costs next to nothing.
  SDL_RenderCopy(renderer_, texture_, nullptr, nullptr);
  SDL_RenderPresent(renderer_);
  return true;
}

PngWrite GlCanvas::writeScreenshot(const std::filesystem::path& file) {
  int width = 0, height = 0;
  if (texture_ == nullptr || SDL_GetRendererOutputSize(renderer_, &width, &height) != 0) {
    return PngWrite{PngWrite::cannotWrite, "nothing drawn yet"};
  }
  // Draw the frame once more into the back buffer and read it from there: what the window would show.
  SDL_RenderCopy(renderer_, texture_, nullptr, nullptr);
  cairo_surface_t* shot = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  PngWrite written{PngWrite::noMemory, {}};
  if (cairo_surface_status(shot) == CAIRO_STATUS_SUCCESS) {
    cairo_surface_flush(shot);
    const bool read = SDL_RenderReadPixels(renderer_, nullptr, SDL_PIXELFORMAT_RGB888, cairo_image_surface_get_data(shot),
                                           cairo_image_surface_get_stride(shot)) == 0;
    cairo_surface_mark_dirty(shot);
    written = read ? writePngFile(shot, file) : PngWrite{PngWrite::cannotWrite, SDL_GetError()};
  }
  cairo_surface_destroy(shot);
  return written;
}

}  // namespace zb

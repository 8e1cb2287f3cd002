#include "platform_sdl/window_identity.hpp"

#include <SDL.h>
#include <cairo.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace zb {

namespace {

struct PngReader {
  const unsigned char* next;
  std::size_t left;
};

cairo_status_t readPng(void* closure, unsigned char* data, unsigned int length) {
  auto* reader = static_cast<PngReader*>(closure);
  if (length > reader->left) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(data, reader->next, length);
  reader->next += length;
  reader->left -= length;
  return CAIRO_STATUS_SUCCESS;
}

// cairo keeps colour multiplied by alpha; X11 and Wayland icons want it plain, else the icon's soft
// edges come out darker than in the installed picture.
void unpremultiply(cairo_surface_t* image) {
  unsigned char* data = cairo_image_surface_get_data(image);
  const int stride = cairo_image_surface_get_stride(image);
  for (int y = 0; y < cairo_image_surface_get_height(image); ++y) {
    auto* row = reinterpret_cast<std::uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
    for (int x = 0; x < cairo_image_surface_get_width(image); ++x) {
      const std::uint32_t pixel = row[x];
      const std::uint32_t alpha = pixel >> 24;
      if (alpha == 0 || alpha == 255) continue;
      auto plain = [&](int shift) { return ((((pixel >> shift) & 0xff) * 255 + alpha / 2) / alpha) << shift; };
      row[x] = (alpha << 24) | plain(16) | plain(8) | plain(0);
    }
  }
}

}  // namespace

void announceWindowClass() {
  setenv("SDL_VIDEO_X11_WMCLASS", ZB_APP_ID, 0);
  setenv("SDL_VIDEO_WAYLAND_WMCLASS", ZB_APP_ID, 0);
}

void setWindowIcon(SDL_Window* window) {
  PngReader reader{kWindowIconPng, kWindowIconPngSize};
  cairo_surface_t* image = cairo_image_surface_create_from_png_stream(readPng, &reader);
  if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
    cairo_surface_flush(image);
    unpremultiply(image);
    // cairo's ARGB32 is one native-endian word a pixel, which is SDL's ARGB8888.
    SDL_Surface* icon = SDL_CreateRGBSurfaceWithFormatFrom(
        cairo_image_surface_get_data(image), cairo_image_surface_get_width(image),
        cairo_image_surface_get_height(image), 32, cairo_image_surface_get_stride(image), SDL_PIXELFORMAT_ARGB8888);
    if (icon != nullptr) {
      SDL_SetWindowIcon(window, icon);
      SDL_FreeSurface(icon);
    }
  }
  cairo_surface_destroy(image);
}

}  // namespace zb

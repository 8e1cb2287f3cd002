#pragma once
// The pixels behind the window: a cairo image the size of the window's drawable, handed to SDL's
// renderer as a texture once it is drawn. Vsync is asked for only on displays that refresh at 60 Hz,
// where the presented frame can be the game's clock.
#include <memory>
#include <string>

struct SDL_Window;
struct SDL_Renderer;
struct SDL_Texture;
typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace zb {

class WindowCanvas {
 public:
  // Nothing when SDL has no renderer for the window; `error` then says why.
  static std::unique_ptr<WindowCanvas> create(SDL_Window* window, std::string& error);
  ~WindowCanvas();
  WindowCanvas(const WindowCanvas&) = delete;
  WindowCanvas& operator=(const WindowCanvas&) = delete;

  // Looks at the display the window is on, turns vsync on there only at 60 Hz, and says whether
  // presenting now waits for a 60 Hz vertical blank.
  bool syncToDisplay();

  // A cairo context over the whole drawable in pixels, or nullptr when there is nothing to draw on
  // (a zero-sized window). Pair with endFrame.
  cairo_t* beginFrame();
  // Pixels per point of the frame begun last.
  double pixelScale() const { return pixelScale_; }
  // Puts the drawn frame on screen and releases the context.
  void endFrame(cairo_t* cr);

 private:
  WindowCanvas(SDL_Window* window, SDL_Renderer* renderer) : window_(window), renderer_(renderer) {}
  // Makes the texture and the image match the drawable's size; false when they cannot.
  bool fitDrawable(int width, int height);

  SDL_Window* window_;
  SDL_Renderer* renderer_;
  SDL_Texture* texture_ = nullptr;
  cairo_surface_t* image_ = nullptr;
  int width_ = 0;
  int height_ = 0;
  double pixelScale_ = 1;
};

}  // namespace zb

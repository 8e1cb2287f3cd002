#pragma once
// The pixels behind the window and the way they reach the screen (see present_path.hpp). Each frame
// the renderer redraws only what changed into pixels that keep the previous frame, and only those
// boxes travel on.
#include <filesystem>
#include <string>

#include "platform/present_path.hpp"
#include "render/renderer.hpp"

struct SDL_Window;

namespace zb {

class Renderer;
class View;

class WindowCanvas {
 public:
  // Opened by openWindowCanvas (canvas_factory.hpp), which chooses the path.
  virtual ~WindowCanvas() = default;

  virtual PresentPath path() const = 0;
  // What presents the frames, for the start-up line (the GL renderer string, or the framebuffer's).
  virtual std::string description() const = 0;

  // Looks at the display the window is on and says whether presenting now waits for a 60 Hz vertical
  // blank, which then is the game's clock.
  virtual bool syncToDisplay() = 0;
  // The display's refresh period in seconds when presenting waits for its vertical blank; 0 without vsync.
  virtual double vblankPeriod() const = 0;

  // Draws the view's frame, `stepFraction` of the way between the last two steps, with `renderer` and
  // puts it on screen; false when there was nothing to draw on (a zero-sized window).
  virtual bool drawFrame(Renderer& renderer, const View& view, double framesPerSecond, double stepFraction) = 0;

  // The window's pixels were lost or moved (exposed, resized): the next frame is drawn and sent whole.
  virtual void invalidate() = 0;

  // Writes a PNG of what the window shows, read back from where it is shown from (see writePngFile).
  virtual PngWrite writeScreenshot(const std::filesystem::path& file) = 0;

 protected:
  WindowCanvas() = default;
  WindowCanvas(const WindowCanvas&) = delete;
  WindowCanvas& operator=(const WindowCanvas&) = delete;
};

// Pixels per point of the window, whose drawable is `pixelWidth` pixels wide.
double pixelScaleOf(SDL_Window* window, int pixelWidth);

}  // namespace zb

#pragma once
// Draws any scene with cairo: nodes by accumulated z position alone (ties in tree order), alpha
// multiplied down the tree, hidden subtrees skipped, y up, and the view's frame-rate and node-count
// counters in a corner while their flags are on.
#include <filesystem>

#include "engine/view.hpp"

typedef struct _cairo cairo_t;

namespace zb {

// How a picture write went; true when it was written.
struct PngWrite {
  enum Failure { none, noMemory, cannotWrite } failure = none;
  explicit operator bool() const { return failure == none; }
};

class Renderer {
 public:
  // Draws the view's scene into `cr`, whose device covers the view at `pixelScale` pixels per point.
  // `framesPerSecond` is what the frame-rate counter shows.
  void draw(cairo_t* cr, const View& view, double pixelScale, double framesPerSecond);
  // Writes a PNG of what the window would show now, at the scene's size in points (scale 1).
  PngWrite writePNG(const View& view, const std::filesystem::path& file, double framesPerSecond);
};

}  // namespace zb

#pragma once
// Draws any scene with cairo and pixman: nodes by accumulated z position alone (ties in tree order), alpha
// multiplied down the tree, hidden subtrees skipped, y up, and the view's frame-rate and node-count
// counters in a corner while their flags are on.
//
// Every item is drawn as coverage masks kept from frame to frame (see item_stamps.hpp). In a window
// most pixels stay the same from one frame to the next, so drawChanges redraws only the boxes where
// the frame can differ from the previous one, over that previous frame, with exactly the pixels a
// full redraw would give.
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "engine/view.hpp"
#include "render/damage_region.hpp"
#include "render/item_stamps.hpp"
#include "render/stamp_cache.hpp"

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace zb {

// How a picture write went; true when it was written.
struct PngWrite {
  enum Failure { none, noMemory, cannotWrite } failure = none;
  std::string reason;  // why it could not be written: "it is not a regular file", "No space left on device"
  explicit operator bool() const { return failure == none; }
  // What went wrong with the picture for `file`, for a message: "cannot write 'shot.png': ...".
  std::string description(const std::filesystem::path& file) const;
};

// Writes `image` as a PNG through a new file beside `file` and a rename (see file_replace.hpp): a
// FIFO or device there is refused, and a failed write leaves an old file as it was.
PngWrite writePngFile(cairo_surface_t* image, const std::filesystem::path& file);

class Renderer {
 public:
  Renderer();
  ~Renderer();
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  // Draws the view's scene into `cr`'s target, whose pixels cover the view at `pixelScale` pixels per
  // point, whatever `cr`'s own matrix and clip.
  // `framesPerSecond` is what the frame-rate counter shows. `stepFraction` places the frame between
  // the last two steps: nodes that moved in the last step are drawn that far along their move, and 1
  // draws the last step as it is (see Node::placementBetweenSteps).
  void draw(cairo_t* cr, const View& view, double pixelScale, double framesPerSecond, double stepFraction = 1);

  // Like draw, into an image of `target` pixels that still holds the frame drawn by the previous call
  // when `targetKept` (false for a new or lost surface). Returns the boxes it redrew, in pixels: the
  // whole frame, some parts of it, or none when nothing changed.
  const std::vector<PixelRect>& drawChanges(cairo_t* cr, PixelSize target, const View& view, double pixelScale,
                                            double framesPerSecond, bool targetKept, double stepFraction = 1);

  // With tracking off every drawChanges redraws the whole frame (for comparisons).
  void setTracksDamage(bool on) { tracksDamage_ = on; }
  bool tracksDamage() const { return tracksDamage_; }

  // With verification on, every frame drawChanges draws is drawn whole once more, from no kept masks,
  // by a renderer of its own, and the two are compared pixel by pixel.
  void setVerifies(bool on);
  // The pixels where the last frame drawChanges drew differs from that full redraw; 0 when not verifying.
  int64_t mismatchedPixels() const { return mismatchedPixels_; }

  // The masks kept between frames, for measurements.
  const StampCache& masks() const { return masks_; }

  // Writes a PNG of what the window would show now, at the scene's size in points (scale 1).
  PngWrite writePNG(const View& view, const std::filesystem::path& file, double framesPerSecond,
                    double stepFraction = 1);

 private:
  // Masks beyond this many bytes per pixel of the frame are let go, least recently used first. A mask
  // is one byte a pixel and its item's size grows with the frame, so the budget grows with the frame's
  // area; four bytes a pixel (2 MiB at the 960 x 540 window) holds every item of a running game at the
  // few places within a pixel where it keeps coming back.
  static constexpr std::size_t kMaskBytesPerPixel = 4;
  static constexpr std::size_t kKeptColors = 32;

  // Fills items_ and stamps_ with the frame's stamped items, the counters last.
  void stampItems(const View& view, double pixelScale, double framesPerSecond, double stepFraction, PixelSize target);
  // The mask of one of an item's stamps, found or drawn now; nullptr, said once, when memory runs out.
  pixman_image_t* maskOf(const StampedItem& item, const Stamp& stamp);
  // Draws the frame whole into an image of its own and counts the pixels where `drawn` differs.
  int64_t pixelsUnlikeFullRedraw(pixman_image_t* drawn, const View& view, double pixelScale, double framesPerSecond,
                                 double stepFraction);
  // Paints the background and every item into `target`, inside `boxes` only.
  void paint(pixman_image_t* target, const Scene* scene, const std::vector<PixelRect>& boxes);
  void paintBox(pixman_image_t* target, const Scene* scene, const PixelRect& box);
  // A source of one colour for pixman, kept for the next frames: a palette has a handful of colours.
  pixman_image_t* solidOf(const Color& color);

  struct Scratch;

  StampCache masks_;
  std::unique_ptr<Scratch> scratch_;
  bool tracksDamage_ = true;
  bool hasPrevious_ = false;
  uint64_t previousBackdrop_ = 0;
  std::vector<Path> pathsBetweenSteps_;  // outlines of this frame that lie between two steps
  std::vector<StampedItem> items_;
  std::vector<Stamp> stamps_;  // the items' stamps, in drawing order
  std::vector<pixman_image_t*> stampMasks_;  // each stamp's mask once looked up this frame
  std::vector<std::pair<pixman_color_t, pixman_image_t*>> solids_;  // oldest first
  std::vector<DrawRecord> previous_;
  std::vector<DrawRecord> records_;
  std::vector<PixelRect> damage_;
  std::unique_ptr<Renderer> reference_;  // draws every frame whole, when verifying
  int64_t mismatchedPixels_ = 0;
  bool maskFailed_ = false;    // ever: said once
  bool missingMasks_ = false;  // in the frame being drawn
};

}  // namespace zb

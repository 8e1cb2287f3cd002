#pragma once
// Draws any scene with cairo and pixman: nodes by accumulated z position alone (ties in tree order), alpha
// multiplied down the tree, hidden subtrees skipped, y up, and the view's frame-rate and node-count
// counters in a corner while their flags are on.
//
// Every item is drawn as coverage masks kept from frame to frame (see item_stamps.hpp). In a window
// most pixels stay the same from one frame to the next, so drawChanges redraws only the boxes where
// the frame can differ from the previous one, over that previous frame, with exactly the pixels a
// full redraw would give.
#include <filesystem>
#include <vector>

#include "engine/view.hpp"
#include "platform/damage_region.hpp"
#include "platform/item_stamps.hpp"
#include "platform/stamp_cache.hpp"

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace zb {

// How a picture write went; true when it was written.
struct PngWrite {
  enum Failure { none, noMemory, cannotWrite } failure = none;
  explicit operator bool() const { return failure == none; }
};

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

  // The masks kept between frames, for measurements.
  const StampCache& masks() const { return masks_; }

  // Writes a PNG of what the window would show now, at the scene's size in points (scale 1).
  PngWrite writePNG(const View& view, const std::filesystem::path& file, double framesPerSecond,
                    double stepFraction = 1);

 private:
  // Masks beyond this many bytes are let go, least recently used first: enough for every item of a
  // running game at the places within a pixel where it keeps coming back.
  static constexpr std::size_t kMaskBudgetBytes = std::size_t{2} << 20;
  static constexpr std::size_t kKeptColors = 32;

  // Fills items_ and stamps_ with the frame's stamped items, the counters last.
  void stampItems(const View& view, double pixelScale, double framesPerSecond, double stepFraction, PixelSize target);
  // The mask of one of an item's stamps, found or drawn now; nullptr when memory runs out.
  pixman_image_t* maskOf(const StampedItem& item, const Stamp& stamp);
  // Paints the background and every item into `target`, inside `boxes` only.
  void paint(pixman_image_t* target, const Scene* scene, const std::vector<PixelRect>& boxes);
  void paintBox(pixman_image_t* target, const Scene* scene, const PixelRect& box);
  // A source of one colour for pixman, kept for the next frames: a palette has a handful of colours.
  pixman_image_t* solidOf(const Color& color);

  StampCache masks_;
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
};

}  // namespace zb

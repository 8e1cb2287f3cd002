#pragma once
// Which pixels of a frame can differ from the frame before: every drawn item leaves a record (its
// pixel box and a fingerprint of everything that decides its look), and comparing two frames' records
// gives the boxes to redraw. The renderer fills the records; this part knows nothing of cairo.
#include <cstdint>
#include <vector>

namespace zb {

struct PixelRect {
  int x = 0, y = 0, width = 0, height = 0;

  bool isEmpty() const { return width <= 0 || height <= 0; }
  int64_t area() const { return isEmpty() ? 0 : int64_t{width} * height; }
  bool intersects(const PixelRect& other) const;
  PixelRect unionWith(const PixelRect& other) const;
  PixelRect intersection(const PixelRect& other) const;
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

// An upright rectangle in pixels that paints the same colour all over its inside and along each side:
// when it only moves, its pixels change only near its sides.
struct SlidingRect {
  uint64_t look = 0;  // the record's look without its place; 0 for anything else
  double left = 0, top = 0, right = 0, bottom = 0;
  double reach = 0;   // how far its pixels reach beyond the sides (stroke, antialiasing)
};

// One drawn item of a frame, in drawing order.
struct DrawRecord {
  uint64_t look = 0;       // the same value exactly when the item would paint the same pixels
  PixelRect box;           // every pixel the item can touch, antialiasing included
  SlidingRect sliding;
};

// The damaged boxes between two frames of the same size and background, in no particular order and
// overlapping freely: items that appeared or vanished (both boxes when one changed its look), and
// items drawn in a different order relative to the others.
std::vector<PixelRect> damageBetween(const std::vector<DrawRecord>& before, const std::vector<DrawRecord>& after);

// Clips the boxes to `frame` and merges them into at most `maxRects` boxes that cover them all,
// joining boxes that overlap or lie so close that one box costs less than two.
std::vector<PixelRect> mergeDamage(std::vector<PixelRect> rects, const PixelRect& frame, std::size_t maxRects);

}  // namespace zb

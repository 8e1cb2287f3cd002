#pragma once
// What each drawn item puts on the frame, and its damage record.
//
// Every item is drawn as coverage masks ("stamps": a shape's fill and its stroke, or each glyph of a
// label's text), each composited in its colour onto a box of whole pixels. A stamp's key holds
// everything that decides the mask's pixels: the outline or the glyph, the size and turn, the position
// within a pixel (snapped to a quarter of a pixel) and the part of it that lies on the frame.
// Equal keys always mean equal masks, and compositing a mask gives each pixel a value that depends on
// nothing but the mask and what lies below. That is what lets the renderer redraw any part of a frame,
// clipped, with exactly the pixels of a full redraw, and keep masks from one frame to the next.
#include <cairo.h>

#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/color.hpp"
#include "engine/geometry.hpp"
#include "render/damage_region.hpp"
#include "render/pango_text.hpp"

namespace zb {

class Node;
class Scene;
class ShapeNode;
class LabelNode;
class Path;

struct PixelSize {
  int width = 0, height = 0;
};

// A 64-bit fingerprint built a word at a time (the mixing step of xxHash64): two looks would have to
// agree on every field, or collide by chance one time in 2^64.
class LookHash {
 public:
  LookHash& add(uint64_t word) {
    hash_ = std::rotl(hash_ ^ (std::rotl(word * kPrime2, 31) * kPrime1), 27) * kPrime1 + kPrime4;
    return *this;
  }
  LookHash& add(double value) { return add(std::bit_cast<uint64_t>(value)); }
  LookHash& add(int value) { return add(static_cast<uint64_t>(static_cast<uint32_t>(value))); }
  LookHash& add(const void* pointer) { return add(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(pointer))); }
  LookHash& add(const Color& c) { return add(c.r).add(c.g).add(c.b).add(c.a); }
  LookHash& add(std::string_view text);
  LookHash& add(const PixelRect& r) { return add(r.x).add(r.y).add(r.width).add(r.height); }
  uint64_t value() const { return hash_; }

 private:
  static constexpr uint64_t kPrime1 = 0x9E3779B185EBCA87ULL;
  static constexpr uint64_t kPrime2 = 0xC2B2AE3D27D4EB4FULL;
  static constexpr uint64_t kPrime4 = 0x85EBCA77C2B2AE63ULL;
  uint64_t hash_ = 0x27D4EB2F165667C5ULL;
};

// A solid stamp needs no mask: it covers every pixel of its box whole (see stampShape).
enum class StampLayer : uint8_t { fill, stroke, glyph, solid };

// One mask composited in one colour at one place.
struct Stamp {
  StampLayer layer = StampLayer::fill;
  uint64_t key = 0;         // names the mask
  Color color;              // what the mask is composited in, the item's opacity included
  PixelRect box;            // the part of the frame it paints; empty when none of it shows
  PixelRect maskBox;        // where the whole mask lies, in the frame's pixels
  cairo_matrix_t toMask{};  // the stamp's own coordinates to the mask's pixels
  void* font = nullptr;     // for a glyph: its font and glyph (see LabelGlyph)
  uint32_t glyph = 0;
};

// A drawn item: a shape's fill and stroke, or each glyph of a label's text, as stamps in drawing order.
struct StampedItem {
  const Node* node = nullptr;
  const Path* path = nullptr;  // a shape's outline as drawn in this frame
  std::size_t firstStamp = 0;  // its stamps in the frame's list of stamps
  std::size_t stampCount = 0;
  DrawRecord record;  // the box of all its stamps and a fingerprint of every pixel they paint
};

// An upright rectangle's fill takes a solid stamp, without a mask, for the pixels it covers whole, and
// masks only along its sides where they cross pixels: its mask would be wholly on inside, so a plain
// fill paints the same pixels there for nothing (a window-sized dimming rectangle would be a
// window-sized mask).
// `toDevice` maps the node's own coordinates to the frame's pixels, `alpha` is its accumulated
// opacity and `frame` the frame's pixels. The item's stamps are appended to `stamps`; a label lists
// its glyphs in `glyphs`, reused from label to label. A shape is drawn with `outline` (its path, or
// the path between two steps), which must outlive the frame.
StampedItem stampShape(const ShapeNode& shape, const Path& outline, const cairo_matrix_t& toDevice, double alpha,
                       const PixelRect& frame, std::vector<Stamp>& stamps);
StampedItem stampLabel(const LabelNode& label, const cairo_matrix_t& toDevice, double alpha, const PixelRect& frame,
                       std::vector<Stamp>& stamps, std::vector<LabelGlyph>& glyphs);

// Draws a stamp's mask into `cr`, whose target is a clear A8 image of the stamp's mask box size.
void rasterizeStamp(cairo_t* cr, const StampedItem& item, const Stamp& stamp);

// What lies under every item: the background colour and the frame's size and scale. When it changes,
// every pixel may.
uint64_t backdropLook(const Scene* scene, PixelSize target, double pixelScale, Size viewSize);

}  // namespace zb

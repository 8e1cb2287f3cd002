#pragma once
// What each drawn item puts on the frame, and its damage record.
//
// Every item is drawn as up to two coverage masks ("stamps": a shape's fill and its stroke, or a
// label's text), each composited in its colour onto a box of whole pixels. A stamp's key holds
// everything that decides the mask's pixels: the outline or the text, the size and turn, the position
// within a pixel (snapped to a quarter of a pixel) and the part of the item that lies on the frame.
// Equal keys always mean equal masks, and compositing a mask gives each pixel a value that depends on
// nothing but the mask and what lies below. That is what lets the renderer redraw any part of a frame,
// clipped, with exactly the pixels of a full redraw, and keep masks from one frame to the next.
#include <cairo.h>

#include <array>
#include <bit>
#include <cstdint>
#include <string_view>

#include "engine/color.hpp"
#include "engine/geometry.hpp"
#include "platform/damage_region.hpp"

namespace zb {

class Node;
class Scene;
class ShapeNode;
class LabelNode;

struct PixelSize {
  int width = 0, height = 0;
};

// FNV-1a over 64-bit words: fast, and a collision would need two looks to agree on every field.
class LookHash {
 public:
  LookHash& add(uint64_t word) {
    for (int i = 0; i < 8; ++i) {
      hash_ ^= (word >> (8 * i)) & 0xff;
      hash_ *= 1099511628211ULL;
    }
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
  uint64_t hash_ = 14695981039346656037ULL;
};

enum class StampLayer : uint8_t { fill, stroke, text };

struct Stamp {
  StampLayer layer = StampLayer::fill;
  uint64_t key = 0;  // names the mask
  Color color;       // what the mask is composited in, the item's opacity included
};

struct StampedItem {
  const Node* node = nullptr;
  cairo_matrix_t toMask{};  // the node's own coordinates to its masks' pixels
  PixelRect box;            // where the masks land on the frame; empty when none of it shows
  std::array<Stamp, 2> stamps{};
  int stampCount = 0;
  DrawRecord record;  // the box and a fingerprint of every pixel the item paints
};

// `toDevice` maps the node's own coordinates to the frame's pixels, `alpha` is its accumulated
// opacity and `frame` the frame's pixels.
StampedItem stampShape(const ShapeNode& shape, const cairo_matrix_t& toDevice, double alpha, const PixelRect& frame);
StampedItem stampLabel(const LabelNode& label, const cairo_matrix_t& toDevice, double alpha, const PixelRect& frame);

// Draws one of the item's masks into `cr`, whose target is a clear A8 image of the box's size.
void rasterizeStamp(cairo_t* cr, const StampedItem& item, StampLayer layer);

// What lies under every item: the background colour and the frame's size and scale. When it changes,
// every pixel may.
uint64_t backdropLook(const Scene* scene, PixelSize target, double pixelScale, Size viewSize);

}  // namespace zb

#pragma once
// The damage record of each thing the renderer draws: the pixel box it can touch and a fingerprint
// of its look, so that two frames' records say where their pixels can differ.
#include <cairo.h>

#include <cstdint>
#include <string_view>

#include "engine/color.hpp"
#include "engine/geometry.hpp"
#include "platform/damage_region.hpp"

namespace zb {

class Scene;
class ShapeNode;
class LabelNode;

struct PixelSize {
  int width = 0, height = 0;
};

// `toDevice` maps the node's own coordinates to pixels; `alpha` is its accumulated opacity.
DrawRecord shapeRecord(const ShapeNode& shape, const cairo_matrix_t& toDevice, double alpha);
DrawRecord labelRecord(const LabelNode& label, const cairo_matrix_t& toDevice, double alpha);
// The counters' backdrop `box` in scene points and the text of their lines.
DrawRecord counterRecord(const Rect& box, std::string_view texts, const cairo_matrix_t& sceneToDevice);

// What lies under every item: the background colour and the frame's size and scale. When it changes,
// every pixel may.
uint64_t backdropLook(const Scene* scene, PixelSize target, double pixelScale, Size viewSize);

}  // namespace zb

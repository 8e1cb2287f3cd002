#pragma once
// The baseline for the renderer: a scene's drawing flattened once into cairo paths and pango
// layouts, then replayed with plain cairo and pango calls and nothing else. The flattening walks
// the tree by the renderer's rules (depth order with ties in tree order, alpha multiplied down the
// tree, hidden and transparent subtrees skipped), so both draw the same pixels.
#include <cstddef>
#include <vector>

#include <cairo.h>

#include "engine/color.hpp"
#include "engine/label_node.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"

typedef struct _PangoLayout PangoLayout;

namespace zb::bench {

class PlainCairoFrame {
 public:
  // `viewSize` is the size in points of the view the scene is shown in, drawn at one pixel a point.
  PlainCairoFrame(const Scene& scene, Size viewSize);
  ~PlainCairoFrame();
  PlainCairoFrame(const PlainCairoFrame&) = delete;
  PlainCairoFrame& operator=(const PlainCairoFrame&) = delete;

  void draw(cairo_t* cr) const;

  std::size_t shapeCount() const;
  std::size_t textCount() const;

 private:
  struct Item {
    cairo_matrix_t toDevice;
    cairo_path_t* path = nullptr;       // a shape's outline in its own coordinates
    PangoLayout* layout = nullptr;      // or a text, laid out once
    Color fill = Color::clear();        // alpha already multiplied in
    Color stroke = Color::clear();
    double lineWidth = 0;
    cairo_line_cap_t cap = CAIRO_LINE_CAP_BUTT;
  };
  void addShape(const ShapeNode& shape, const cairo_matrix_t& toDevice, double alpha);
  void addText(const LabelNode& label, const cairo_matrix_t& toDevice, double alpha);

  Color background_;
  std::vector<Item> items_;
  cairo_surface_t* scratchSurface_;
  cairo_t* scratch_;  // builds the paths
};

}  // namespace zb::bench

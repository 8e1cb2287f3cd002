#include "plain_cairo_frame.hpp"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "render/pango_text.hpp"

namespace zb::bench {

namespace {

// The renderer's and the labels' own limits, so that both sides skip and clamp the same things.
constexpr double kMaxFontSize = 10000;
constexpr double kMaxWrapWidth = 1e6;
constexpr double kMinDeterminant = 1e-12;

struct Placed {
  const Node* node;
  double z;
  double alpha;
  cairo_matrix_t toScene;
};

cairo_matrix_t placementOf(const Node& node) {
  if (node.zRotation == 0) return {node.xScale, 0, 0, node.yScale, node.position.x, node.position.y};
  const double c = std::cos(node.zRotation);
  const double s = std::sin(node.zRotation);
  return {c * node.xScale, s * node.xScale, -s * node.yScale, c * node.yScale, node.position.x, node.position.y};
}

bool isInvertible(const cairo_matrix_t& m) {
  const double det = m.xx * m.yy - m.xy * m.yx;
  return std::isfinite(det) && std::abs(det) > kMinDeterminant && std::isfinite(m.x0) && std::isfinite(m.y0);
}

void collect(const Node& parent, const cairo_matrix_t& parentToScene, double parentAlpha, double parentZ,
             std::vector<Placed>& out) {
  for (const NodePtr& child : parent.children()) {
    if (child->hidden) continue;
    const double alpha = parentAlpha * child->alpha;
    if (!(alpha > 0)) continue;
    const double z = parentZ + (std::isfinite(child->zPosition) ? child->zPosition : 0);
    const cairo_matrix_t local = placementOf(*child);
    cairo_matrix_t toScene;
    cairo_matrix_multiply(&toScene, &local, &parentToScene);
    if (!isInvertible(toScene)) continue;
    out.push_back({child.get(), z, alpha, toScene});
    collect(*child, toScene, alpha, z, out);
  }
}

// The game's own pango context: the same fonts, hinting and glyph positions as its labels.
PangoContext* textContext() { return sharedTextContext(); }

double points(int pangoUnits) { return static_cast<double>(pangoUnits) / PANGO_SCALE; }

Color withAlpha(const Color& c, double alpha) { return c.withAlpha(std::clamp(c.a * alpha, 0.0, 1.0)); }

}  // namespace

PlainCairoFrame::PlainCairoFrame(const Scene& scene, Size viewSize)
    : background_(scene.backgroundColor),
      scratchSurface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1)),
      scratch_(cairo_create(scratchSurface_)) {
  // Device space has y down; the scene's points have y up.
  cairo_matrix_t sceneToDevice;
  cairo_matrix_init(&sceneToDevice, 1, 0, 0, -1, 0, viewSize.height);
  cairo_matrix_t identity;
  cairo_matrix_init_identity(&identity);
  std::vector<Placed> placed;
  collect(scene, identity, std::isfinite(scene.alpha) ? scene.alpha : 1.0, 0, placed);
  std::stable_sort(placed.begin(), placed.end(), [](const Placed& a, const Placed& b) { return a.z < b.z; });

  for (const Placed& p : placed) {
    cairo_matrix_t toDevice;
    cairo_matrix_multiply(&toDevice, &p.toScene, &sceneToDevice);
    if (const auto* shape = dynamic_cast<const ShapeNode*>(p.node)) addShape(*shape, toDevice, p.alpha);
    if (const auto* label = dynamic_cast<const LabelNode*>(p.node)) addText(*label, toDevice, p.alpha);
  }
}

PlainCairoFrame::~PlainCairoFrame() {
  for (Item& item : items_) {
    if (item.path != nullptr) cairo_path_destroy(item.path);
    if (item.layout != nullptr) g_object_unref(item.layout);
  }
  cairo_destroy(scratch_);
  cairo_surface_destroy(scratchSurface_);
}

void PlainCairoFrame::addShape(const ShapeNode& shape, const cairo_matrix_t& toDevice, double alpha) {
  const bool fills = shape.fillColor.a > 0;
  const bool strokes = shape.strokeColor.a > 0 && shape.lineWidth > 0;
  if (shape.path.isEmpty() || (!fills && !strokes)) return;
  cairo_set_matrix(scratch_, &toDevice);
  cairo_new_path(scratch_);
  for (const Path::Element& e : shape.path.elements()) {
    switch (e.kind) {
      case Path::Kind::moveTo: cairo_move_to(scratch_, e.point.x, e.point.y); break;
      case Path::Kind::lineTo: cairo_line_to(scratch_, e.point.x, e.point.y); break;
      case Path::Kind::arc: cairo_arc(scratch_, e.center.x, e.center.y, e.radius, e.startAngle, e.endAngle); break;
      case Path::Kind::close: cairo_close_path(scratch_); break;
    }
  }
  Item item;
  item.toDevice = toDevice;
  item.path = cairo_copy_path(scratch_);
  if (fills) item.fill = withAlpha(shape.fillColor, alpha);
  if (strokes) item.stroke = withAlpha(shape.strokeColor, alpha);
  item.lineWidth = shape.lineWidth;
  item.cap = shape.lineCap == LineCap::round    ? CAIRO_LINE_CAP_ROUND
             : shape.lineCap == LineCap::square ? CAIRO_LINE_CAP_SQUARE
                                                : CAIRO_LINE_CAP_BUTT;
  items_.push_back(item);
}

void PlainCairoFrame::addText(const LabelNode& label, const cairo_matrix_t& toDevice, double alpha) {
  const double size = label.fontSize();
  if (label.text().empty() || !std::isfinite(size) || size <= 0) return;
  PangoLayout* layout = pango_layout_new(textContext());
  PangoFontDescription* font = pango_font_description_new();
  pango_font_description_set_family(font, label.fontName().c_str());
  pango_font_description_set_absolute_size(font, std::min(size, kMaxFontSize) * PANGO_SCALE);
  pango_layout_set_font_description(layout, font);
  pango_font_description_free(font);
  const HorizontalAlignment alignment = label.horizontalAlignment;
  pango_layout_set_alignment(layout, alignment == HorizontalAlignment::left    ? PANGO_ALIGN_LEFT
                                     : alignment == HorizontalAlignment::right ? PANGO_ALIGN_RIGHT
                                                                                : PANGO_ALIGN_CENTER);
  const double wrapWidth = std::min(label.preferredMaxLayoutWidth(), kMaxWrapWidth);
  const bool wraps = wrapWidth > 0;
  if (wraps) {
    pango_layout_set_width(layout, static_cast<int>(wrapWidth * PANGO_SCALE));
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  }
  pango_layout_set_text(layout, label.text().data(), static_cast<int>(label.text().size()));
  const int maxLines = label.numberOfLines();
  if (maxLines > 0 && pango_layout_get_line_count(layout) > maxLines) {
    const PangoLayoutLine* last = pango_layout_get_line_readonly(layout, maxLines - 1);
    const std::string kept(label.text(), 0, static_cast<std::size_t>(last->start_index + last->length));
    pango_layout_set_text(layout, kept.data(), static_cast<int>(kept.size()));
  }

  // The label's position is the first baseline; the alignment picks which end of the text sits there.
  PangoRectangle logical;
  pango_layout_get_extents(layout, nullptr, &logical);
  const double left = wraps ? 0 : points(logical.x);
  const double width = wraps ? wrapWidth : points(logical.width);
  double x = -left;
  if (alignment == HorizontalAlignment::center) x -= width / 2;
  if (alignment == HorizontalAlignment::right) x -= width;
  cairo_matrix_t toLayout;
  cairo_matrix_init(&toLayout, 1, 0, 0, -1, x, points(pango_layout_get_baseline(layout)));

  Item item;
  cairo_matrix_multiply(&item.toDevice, &toLayout, &toDevice);
  item.layout = layout;
  item.fill = label.fontColor.withAlpha(label.fontColor.a * alpha);
  items_.push_back(item);
}

void PlainCairoFrame::draw(cairo_t* cr) const {
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  if (background_.a >= 1) {
    cairo_set_source_rgb(cr, background_.r, background_.g, background_.b);
    cairo_paint(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
  } else {
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_paint(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    cairo_set_source_rgba(cr, background_.r, background_.g, background_.b, background_.a);
    cairo_paint(cr);
  }
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  for (const Item& item : items_) {
    cairo_set_matrix(cr, &item.toDevice);
    const Color& fill = item.fill;
    if (item.layout != nullptr) {
      cairo_set_source_rgba(cr, fill.r, fill.g, fill.b, fill.a);
      cairo_move_to(cr, 0, 0);
      pango_cairo_show_layout(cr, item.layout);
      cairo_new_path(cr);
      continue;
    }
    cairo_append_path(cr, item.path);
    const bool strokes = item.stroke.a > 0;
    if (fill.a > 0) {
      cairo_set_source_rgba(cr, fill.r, fill.g, fill.b, fill.a);
      if (strokes) {
        cairo_fill_preserve(cr);
      } else {
        cairo_fill(cr);
      }
    }
    if (strokes) {
      cairo_set_source_rgba(cr, item.stroke.r, item.stroke.g, item.stroke.b, item.stroke.a);
      cairo_set_line_width(cr, item.lineWidth);
      cairo_set_line_cap(cr, item.cap);
      cairo_stroke(cr);
    }
  }
}

std::size_t PlainCairoFrame::shapeCount() const {
  return static_cast<std::size_t>(std::count_if(items_.begin(), items_.end(), [](const Item& i) { return i.path; }));
}

std::size_t PlainCairoFrame::textCount() const { return items_.size() - shapeCount(); }

}  // namespace zb::bench

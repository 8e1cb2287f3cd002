#include "platform/renderer.hpp"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "engine/label_node.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"
#include "platform/draw_records.hpp"
#include "platform/pango_text.hpp"

namespace zb {

namespace {

constexpr double kCounterFontSize = 11;
constexpr double kCounterMargin = 4;
constexpr double kCounterPadding = 4;
constexpr double kCounterLineSpacing = 1.3;  // line advance, in font sizes
constexpr Color kCounterTextColor = Color::white();
constexpr Color kCounterBackdropColor = Color::rgba(0, 0, 0, 0.55);
// Transforms whose determinant is smaller than this squash a subtree to nothing.
constexpr double kMinDeterminant = 1e-12;

enum class DrawKind : uint8_t { shape, label };

struct DrawItem {
  const Node* node;
  DrawKind kind;
  double z;          // accumulated through the parents
  double alpha;      // multiplied down the tree
  uint32_t order;    // position in the tree walk, to keep ties stable
  cairo_matrix_t toScene;
};

// Damage boxes beyond this many are merged: each box costs a copy and an upload of its own.
constexpr std::size_t kMaxDamageRects = 32;

// Reused from frame to frame, so collecting the draw list allocates only when the scene grows.
thread_local std::vector<DrawItem> tDrawList;

cairo_matrix_t placementOf(const Node& node) {
  if (node.zRotation == 0) return {node.xScale, 0, 0, node.yScale, node.position.x, node.position.y};
  const double c = std::cos(node.zRotation);
  const double s = std::sin(node.zRotation);
  // Scale, then rotate counter-clockwise, then translate.
  return {c * node.xScale, s * node.xScale, -s * node.yScale, c * node.yScale, node.position.x, node.position.y};
}

bool isDrawableTransform(const cairo_matrix_t& m) {
  const double det = m.xx * m.yy - m.xy * m.yx;
  return std::isfinite(det) && std::abs(det) > kMinDeterminant && std::isfinite(m.x0) && std::isfinite(m.y0);
}

void collectDrawables(const Node& parent, const cairo_matrix_t& parentToScene, double parentAlpha,
                      double parentZ, std::vector<DrawItem>& out) {
  for (const NodePtr& childPtr : parent.children()) {
    const Node& child = *childPtr;
    if (child.hidden) continue;
    const double alpha = parentAlpha * child.alpha;
    if (!(alpha > 0)) continue;  // a transparent node hides its whole subtree, NaN included
    const double z = parentZ + (std::isfinite(child.zPosition) ? child.zPosition : 0);
    const cairo_matrix_t local = placementOf(child);
    cairo_matrix_t toScene;
    cairo_matrix_multiply(&toScene, &local, &parentToScene);
    if (!isDrawableTransform(toScene)) continue;

    if (dynamic_cast<const ShapeNode*>(&child) != nullptr) {
      out.push_back({&child, DrawKind::shape, z, alpha, static_cast<uint32_t>(out.size()), toScene});
    } else if (dynamic_cast<const LabelNode*>(&child) != nullptr) {
      out.push_back({&child, DrawKind::label, z, alpha, static_cast<uint32_t>(out.size()), toScene});
    }
    collectDrawables(child, toScene, alpha, z, out);
  }
}

void setSource(cairo_t* cr, const Color& color, double alpha) {
  cairo_set_source_rgba(cr, color.r, color.g, color.b, std::clamp(color.a * alpha, 0.0, 1.0));
}

void appendPath(cairo_t* cr, const Path& path) {
  cairo_new_path(cr);
  for (const Path::Element& e : path.elements()) {
    switch (e.kind) {
      case Path::Kind::moveTo:
        cairo_move_to(cr, e.point.x, e.point.y);
        break;
      case Path::Kind::lineTo:
        cairo_line_to(cr, e.point.x, e.point.y);
        break;
      case Path::Kind::arc:
        // User space is y-up here, so increasing angles run counter-clockwise on screen.
        cairo_arc(cr, e.center.x, e.center.y, e.radius, e.startAngle, e.endAngle);
        break;
      case Path::Kind::close:
        cairo_close_path(cr);
        break;
    }
  }
}

cairo_line_cap_t cairoCap(LineCap cap) {
  switch (cap) {
    case LineCap::round:
      return CAIRO_LINE_CAP_ROUND;
    case LineCap::square:
      return CAIRO_LINE_CAP_SQUARE;
    case LineCap::butt:
      break;
  }
  return CAIRO_LINE_CAP_BUTT;
}

void drawShape(cairo_t* cr, const ShapeNode& shape, double alpha) {
  const bool fills = shape.fillColor.a > 0;
  const bool strokes = shape.strokeColor.a > 0 && shape.lineWidth > 0;
  if (shape.path.isEmpty() || (!fills && !strokes)) return;
  appendPath(cr, shape.path);
  if (fills) {
    setSource(cr, shape.fillColor, alpha);
    cairo_fill_preserve(cr);
  }
  if (strokes) {
    setSource(cr, shape.strokeColor, alpha);
    cairo_set_line_width(cr, shape.lineWidth);
    cairo_set_line_cap(cr, cairoCap(shape.lineCap));
    cairo_stroke_preserve(cr);
  }
  cairo_new_path(cr);
}

// The scene's drawable items in drawing order, in a list reused from frame to frame.
std::vector<DrawItem>& sortedDrawables(const Scene& scene) {
  std::vector<DrawItem>& items = tDrawList;
  items.clear();
  cairo_matrix_t identity;
  cairo_matrix_init_identity(&identity);
  collectDrawables(scene, identity, std::isfinite(scene.alpha) ? scene.alpha : 1.0, 0, items);

  const auto byDepth = [](const DrawItem& a, const DrawItem& b) {
    return a.z < b.z || (a.z == b.z && a.order < b.order);
  };
  if (!std::is_sorted(items.begin(), items.end(), byDepth)) std::sort(items.begin(), items.end(), byDepth);
  return items;
}

void drawItem(cairo_t* cr, const DrawItem& item, const cairo_matrix_t& sceneToDevice) {
  cairo_matrix_t toDevice;
  cairo_matrix_multiply(&toDevice, &item.toScene, &sceneToDevice);
  cairo_set_matrix(cr, &toDevice);
  if (item.kind == DrawKind::shape) {
    drawShape(cr, static_cast<const ShapeNode&>(*item.node), item.alpha);
  } else {
    drawLabelText(cr, static_cast<const LabelNode&>(*item.node), item.alpha);
  }
}

struct CounterBox {
  std::array<LabelNode*, 2> lines{};
  std::size_t lineCount = 0;
  Rect box;  // the backdrop, in scene points
};

// The two counter lines, kept between frames so that their text is laid out again only on change.
struct CounterLabels {
  CounterLabels() {
    for (LabelNode* label : {&fps, &nodes}) {
      label->setFontSize(kCounterFontSize);
      label->fontColor = kCounterTextColor;
      label->horizontalAlignment = HorizontalAlignment::right;
    }
  }
  LabelNode fps;
  LabelNode nodes;
};

void setTextIfChanged(LabelNode& label, const std::string& text) {
  if (label.text() != text) label.setText(text);
}

// The counters sit in the lower-right corner on a dark backdrop, frame rate on the bottom line.
// Nothing when neither counter is on.
std::optional<CounterBox> layoutCounters(const View& view, double framesPerSecond) {
  thread_local CounterLabels counters;
  CounterBox result;
  if (view.showsFPS) {
    const long rounded = std::isfinite(framesPerSecond) ? std::lround(std::max(0.0, framesPerSecond)) : 0;
    setTextIfChanged(counters.fps, std::to_string(rounded) + " fps");
    result.lines[result.lineCount++] = &counters.fps;
  }
  if (view.showsNodeCount) {
    const std::size_t count = view.scene() != nullptr ? view.scene()->nodeCount() : 0;
    setTextIfChanged(counters.nodes, std::to_string(count) + " nodes");
    result.lines[result.lineCount++] = &counters.nodes;
  }

  const std::span<LabelNode*> lines(result.lines.data(), result.lineCount);
  const double right = view.size().width - kCounterMargin - kCounterPadding;
  double baseline = kCounterMargin + kCounterPadding;
  std::optional<Rect> backdrop;
  for (LabelNode* label : lines) {
    const std::optional<Rect> bounds = label->contentBounds();
    if (!bounds) continue;
    if (label == lines.front()) baseline -= bounds->minY();  // lift the descenders off the margin
    label->position = {right, baseline};
    const Rect placed = Rect::make(bounds->minX() + right, bounds->minY() + baseline, bounds->width(), bounds->height());
    backdrop = backdrop ? backdrop->unionWith(placed) : placed;
    baseline += kCounterFontSize * kCounterLineSpacing;
  }
  if (!backdrop) return std::nullopt;
  result.box = backdrop->insetBy(-kCounterPadding, -kCounterPadding);
  return result;
}

void drawCounters(cairo_t* cr, const CounterBox& counters, const cairo_matrix_t& sceneToDevice) {
  cairo_set_matrix(cr, &sceneToDevice);
  cairo_rectangle(cr, counters.box.minX(), counters.box.minY(), counters.box.width(), counters.box.height());
  setSource(cr, kCounterBackdropColor, 1);
  cairo_fill(cr);
  for (std::size_t i = 0; i < counters.lineCount; ++i) {
    const LabelNode& label = *counters.lines[i];
    cairo_matrix_t toDevice;
    const cairo_matrix_t placement = placementOf(label);
    cairo_matrix_multiply(&toDevice, &placement, &sceneToDevice);
    cairo_set_matrix(cr, &toDevice);
    drawLabelText(cr, label, 1);
  }
}

// Whole pixels covering a length in points, at least one and within what cairo can allocate.
int pixelExtent(double points) {
  if (!std::isfinite(points)) return 1;
  return static_cast<int>(std::ceil(std::clamp(points, 1.0, 32767.0)));
}

// Everything a frame draws, worked out before any pixel is touched.
struct FramePlan {
  cairo_matrix_t sceneToDevice;
  const Scene* scene = nullptr;
  std::vector<DrawItem>* items = nullptr;
  std::optional<CounterBox> counters;
};

FramePlan planFrame(const View& view, double pixelScale, double framesPerSecond) {
  FramePlan plan;
  // Scene points have y up: flip once here, every node draws in its own y-up coordinates.
  cairo_matrix_init_scale(&plan.sceneToDevice, pixelScale, -pixelScale);
  plan.sceneToDevice.y0 = view.size().height * pixelScale;
  plan.scene = view.scene();
  if (plan.scene != nullptr) plan.items = &sortedDrawables(*plan.scene);
  if (view.showsFPS || view.showsNodeCount) plan.counters = layoutCounters(view, framesPerSecond);
  return plan;
}

void paintBackground(cairo_t* cr, const Scene* scene) {
  // The window starts black; a translucent background shows that black through. An opaque one
  // replaces it in a single pass.
  const bool opaqueBackground = scene != nullptr && scene->backgroundColor.a >= 1;
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  if (opaqueBackground) {
    setSource(cr, scene->backgroundColor, 1);
  } else {
    cairo_set_source_rgb(cr, 0, 0, 0);
  }
  cairo_paint(cr);
  cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
  if (scene != nullptr && !opaqueBackground) {
    setSource(cr, scene->backgroundColor, 1);
    cairo_paint(cr);
  }
}

// Paints the planned frame; with `boxes`, only the background of the boxes in `only` and the items
// whose box meets one of them.
void paintFrame(cairo_t* cr, const FramePlan& plan, const std::vector<PixelRect>* boxes,
                const std::vector<PixelRect>* only) {
  cairo_save(cr);
  cairo_save(cr);
  if (only != nullptr) {
    cairo_new_path(cr);
    for (const PixelRect& r : *only) cairo_rectangle(cr, r.x, r.y, r.width, r.height);
    cairo_clip(cr);  // whole pixels: the background is a flat colour, the same under any clip
  }
  paintBackground(cr, plan.scene);
  cairo_restore(cr);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  const auto wanted = [&](std::size_t i) {
    if (boxes == nullptr) return true;
    return std::any_of(only->begin(), only->end(), [&](const PixelRect& r) { return r.intersects((*boxes)[i]); });
  };
  const std::size_t itemCount = plan.items != nullptr ? plan.items->size() : 0;
  for (std::size_t i = 0; i < itemCount; ++i) {
    if (wanted(i)) drawItem(cr, (*plan.items)[i], plan.sceneToDevice);
  }
  if (plan.counters && wanted(itemCount)) drawCounters(cr, *plan.counters, plan.sceneToDevice);
  cairo_restore(cr);
}

DrawRecord recordOf(const DrawItem& item, const cairo_matrix_t& sceneToDevice) {
  cairo_matrix_t toDevice;
  cairo_matrix_multiply(&toDevice, &item.toScene, &sceneToDevice);
  if (item.kind == DrawKind::shape) return shapeRecord(static_cast<const ShapeNode&>(*item.node), toDevice, item.alpha);
  return labelRecord(static_cast<const LabelNode&>(*item.node), toDevice, item.alpha);
}

DrawRecord recordOfCounters(const CounterBox& counters, const cairo_matrix_t& sceneToDevice) {
  std::string texts;
  for (std::size_t i = 0; i < counters.lineCount; ++i) texts += counters.lines[i]->text() + "\n";
  return counterRecord(counters.box, texts, sceneToDevice);
}

// Copies the box's pixels from `from` into `to`, both images of the same size and format, row by row.
void copyBox(cairo_surface_t* from, cairo_surface_t* to, const PixelRect& box) {
  const unsigned char* source = cairo_image_surface_get_data(from);
  unsigned char* target = cairo_image_surface_get_data(to);
  const int sourceStride = cairo_image_surface_get_stride(from);
  const int targetStride = cairo_image_surface_get_stride(to);
  const std::size_t rowBytes = static_cast<std::size_t>(box.width) * 4;
  for (int y = box.y; y < box.y + box.height; ++y) {
    std::memcpy(target + static_cast<std::ptrdiff_t>(y) * targetStride + box.x * 4,
                source + static_cast<std::ptrdiff_t>(y) * sourceStride + box.x * 4, rowBytes);
  }
  cairo_surface_mark_dirty_rectangle(to, box.x, box.y, box.width, box.height);
}

}  // namespace

void Renderer::draw(cairo_t* cr, const View& view, double pixelScale, double framesPerSecond) {
  if (!(pixelScale > 0) || !std::isfinite(pixelScale)) pixelScale = 1;
  paintFrame(cr, planFrame(view, pixelScale, framesPerSecond), nullptr, nullptr);
}

const std::vector<PixelRect>& Renderer::drawChanges(cairo_t* cr, PixelSize target, const View& view, double pixelScale,
                                                    double framesPerSecond, bool targetKept) {
  if (!(pixelScale > 0) || !std::isfinite(pixelScale)) pixelScale = 1;
  const FramePlan plan = planFrame(view, pixelScale, framesPerSecond);
  records_.clear();
  boxes_.clear();
  const std::size_t itemCount = plan.items != nullptr ? plan.items->size() : 0;
  for (std::size_t i = 0; i < itemCount; ++i) {
    const DrawItem& item = (*plan.items)[i];
    records_.push_back(recordOf(item, plan.sceneToDevice));
  }
  if (plan.counters) records_.push_back(recordOfCounters(*plan.counters, plan.sceneToDevice));
  for (const DrawRecord& record : records_) boxes_.push_back(record.box);

  const PixelRect frame{0, 0, target.width, target.height};
  const uint64_t backdrop = backdropLook(plan.scene, target, pixelScale, view.size());
  const bool wholeFrame = !targetKept || !tracksDamage_ || !hasPrevious_ || backdrop != previousBackdrop_;
  if (wholeFrame) {
    damage_.assign(1, frame);
  } else {
    damage_ = mergeDamage(damageBetween(previous_, records_), frame, kMaxDamageRects);
  }
  std::swap(previous_, records_);
  previousBackdrop_ = backdrop;
  hasPrevious_ = true;

  if (damage_.empty()) return damage_;
  if (wholeFrame) {
    paintFrame(cr, plan, nullptr, nullptr);
    return damage_;
  }
  // The changed items are drawn whole into a scratch frame over the boxes' background, and only the
  // boxes are copied over. Clipping them instead would take other paths through cairo and pixman,
  // whose rounding differs from a full redraw's by a shade here and there.
  if (!fitScratch(target)) {
    paintFrame(cr, plan, nullptr, nullptr);
    damage_.assign(1, frame);
    return damage_;
  }
  cairo_t* scratch = cairo_create(scratch_);
  paintFrame(scratch, plan, &boxes_, &damage_);
  cairo_destroy(scratch);
  cairo_surface_flush(scratch_);
  cairo_surface_t* frameSurface = cairo_get_target(cr);
  if (cairo_surface_get_type(frameSurface) != CAIRO_SURFACE_TYPE_IMAGE ||
      cairo_image_surface_get_format(frameSurface) != CAIRO_FORMAT_RGB24 ||
      cairo_image_surface_get_width(frameSurface) != target.width ||
      cairo_image_surface_get_height(frameSurface) != target.height) {
    paintFrame(cr, plan, nullptr, nullptr);  // not pixels this renderer can copy into
    damage_.assign(1, frame);
    return damage_;
  }
  cairo_surface_flush(frameSurface);
  for (const PixelRect& box : damage_) copyBox(scratch_, frameSurface, box);
  return damage_;
}

Renderer::~Renderer() {
  if (scratch_ != nullptr) cairo_surface_destroy(scratch_);
}

bool Renderer::fitScratch(PixelSize size) {
  if (scratch_ != nullptr && cairo_image_surface_get_width(scratch_) == size.width &&
      cairo_image_surface_get_height(scratch_) == size.height) {
    return true;
  }
  if (scratch_ != nullptr) cairo_surface_destroy(scratch_);
  scratch_ = cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.width, size.height);
  if (cairo_surface_status(scratch_) == CAIRO_STATUS_SUCCESS) return true;
  cairo_surface_destroy(scratch_);
  scratch_ = nullptr;
  return false;
}

PngWrite Renderer::writePNG(const View& view, const std::filesystem::path& file, double framesPerSecond) {
  const Size size = view.scene() != nullptr ? view.scene()->size() : view.size();
  const int width = pixelExtent(size.width);
  const int height = pixelExtent(size.height);
  // A huge scene needs gigabytes of pixels; running out of them is worth telling apart from a bad path.
  auto failure = [](cairo_status_t status) {
    return PngWrite{status == CAIRO_STATUS_NO_MEMORY ? PngWrite::noMemory : PngWrite::cannotWrite};
  };
  // The window's pixels are opaque, so the picture is too.
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (const cairo_status_t status = cairo_surface_status(surface); status != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(surface);
    return failure(status);
  }
  cairo_t* cr = cairo_create(surface);
  draw(cr, view, 1.0, framesPerSecond);
  const cairo_status_t drawn = cairo_status(cr);
  cairo_destroy(cr);
  if (drawn != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(surface);
    return failure(drawn);
  }
  cairo_surface_flush(surface);
  const cairo_status_t status = cairo_surface_write_to_png(surface, file.c_str());
  cairo_surface_destroy(surface);
  return status == CAIRO_STATUS_SUCCESS ? PngWrite{} : failure(status);
}

}  // namespace zb

#include "platform/draw_records.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <optional>

#include "engine/label_node.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"
#include "engine/label_node.hpp"

namespace zb {

namespace {

// Antialiasing reaches into the pixel next to an edge; a second pixel absorbs rounding in the boxes.
constexpr double kAntialiasPixels = 2;
// Glyphs may reach beyond the text's logical extent (accents, italics, wide strokes): this much of
// the font size is added on every side.
constexpr double kGlyphOverhang = 0.5;
// Pixel coordinates are kept well inside int; anything farther out is off the frame anyway.
constexpr double kFarPixels = 1 << 24;

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
  LookHash& add(const void* pointer) { return add(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(pointer))); }
  LookHash& add(const Color& c) { return add(c.r).add(c.g).add(c.b).add(c.a); }
  LookHash& add(std::string_view text) { return add(static_cast<uint64_t>(std::hash<std::string_view>{}(text))).add(uint64_t{text.size()}); }
  LookHash& add(const cairo_matrix_t& m) { return add(m.xx).add(m.yx).add(m.xy).add(m.yy).add(m.x0).add(m.y0); }
  uint64_t value() const { return hash_; }

 private:
  uint64_t hash_ = 14695981039346656037ULL;
};

AffineTransform affineOf(const cairo_matrix_t& m) { return {m.xx, m.yx, m.xy, m.yy, m.x0, m.y0}; }

// The whole pixels covering `r`, widened for antialiasing; the whole plane when `r` is unknown.
PixelRect pixelBox(const std::optional<Rect>& r) {
  const bool finite = r && std::isfinite(r->minX()) && std::isfinite(r->maxX()) && std::isfinite(r->minY()) &&
                      std::isfinite(r->maxY());
  const auto clamp = [](double v) { return std::clamp(v, -kFarPixels, kFarPixels); };
  if (!finite) {
    const int far = static_cast<int>(kFarPixels);
    return {-far, -far, 2 * far, 2 * far};
  }
  const int left = static_cast<int>(std::floor(clamp(r->minX() - kAntialiasPixels)));
  const int top = static_cast<int>(std::floor(clamp(r->minY() - kAntialiasPixels)));
  const int right = static_cast<int>(std::ceil(clamp(r->maxX() + kAntialiasPixels)));
  const int bottom = static_cast<int>(std::ceil(clamp(r->maxY() + kAntialiasPixels)));
  return {left, top, right - left, bottom - top};
}

void addPath(LookHash& hash, const Path& path) {
  hash.add(uint64_t{path.elements().size()});
  for (const Path::Element& e : path.elements()) {
    hash.add(static_cast<uint64_t>(e.kind)).add(e.point.x).add(e.point.y);
    if (e.kind == Path::Kind::arc) hash.add(e.center.x).add(e.center.y).add(e.radius).add(e.startAngle).add(e.endAngle);
  }
}

// Four sides along the axes, closed: what Path::rect and the rect-shaped factories make.
bool isUprightRectangle(const Path& path, const cairo_matrix_t& toDevice) {
  if (toDevice.xy != 0 || toDevice.yx != 0) return false;
  const auto& e = path.elements();
  if (e.size() != 5 || e[0].kind != Path::Kind::moveTo || e[4].kind != Path::Kind::close) return false;
  for (std::size_t i = 1; i < 4; ++i) {
    if (e[i].kind != Path::Kind::lineTo) return false;
    const Point a = e[i - 1].point, b = e[i].point;
    // Sides alternate between horizontal and vertical, whichever comes first.
    const bool horizontal = a.y == b.y, vertical = a.x == b.x;
    if (horizontal == vertical) return false;
    if (i > 1 && horizontal == (e[i - 2].point.y == a.y)) return false;
  }
  return e[3].point.x == e[0].point.x || e[3].point.y == e[0].point.y;
}

}  // namespace

DrawRecord shapeRecord(const ShapeNode& shape, const cairo_matrix_t& toDevice, double alpha) {
  LookHash hash;
  hash.add(&shape).add(uint64_t{1}).add(toDevice).add(alpha).add(shape.fillColor).add(shape.strokeColor);
  hash.add(shape.lineWidth).add(static_cast<uint64_t>(shape.lineCap));
  addPath(hash, shape.path);
  // A full line width on every side covers square caps at any angle; joins are round.
  const double reach = std::isfinite(shape.lineWidth) ? std::max(0.0, shape.lineWidth) : 0;
  std::optional<Rect> bounds = shape.path.boundingBox();
  if (bounds) bounds = affineOf(toDevice).apply(bounds->insetBy(-reach, -reach));
  if (shape.path.isEmpty()) bounds = Rect{};
  DrawRecord record{hash.value(), pixelBox(bounds), {}};
  const std::optional<Rect> sides = shape.path.boundingBox();
  if (sides && isUprightRectangle(shape.path, toDevice) && std::isfinite(reach)) {
    // The same look without the place: a scrolling building differs from its last frame only there.
    LookHash slide;
    slide.add(&shape).add(uint64_t{4}).add(toDevice.xx).add(toDevice.yy).add(alpha).add(shape.fillColor);
    slide.add(shape.strokeColor).add(shape.lineWidth).add(static_cast<uint64_t>(shape.lineCap));
    addPath(slide, shape.path);
    const Rect placed = affineOf(toDevice).apply(*sides);
    const double scale = std::max(std::abs(toDevice.xx), std::abs(toDevice.yy));
    record.sliding = {slide.value(), placed.minX(), placed.minY(), placed.maxX(), placed.maxY(), reach * scale + kAntialiasPixels};
  }
  return record;
}

DrawRecord labelRecord(const LabelNode& label, const cairo_matrix_t& toDevice, double alpha) {
  LookHash hash;
  hash.add(&label).add(uint64_t{2}).add(toDevice).add(alpha).add(label.fontColor);
  hash.add(std::string_view(label.text())).add(std::string_view(label.fontName())).add(label.fontSize());
  hash.add(static_cast<uint64_t>(label.numberOfLines())).add(label.preferredMaxLayoutWidth());
  hash.add(static_cast<uint64_t>(label.horizontalAlignment)).add(static_cast<uint64_t>(label.layoutRevision()));
  std::optional<Rect> bounds = label.contentBounds();
  if (!bounds) return {hash.value(), {}, {}};
  const double overhang = std::isfinite(label.fontSize()) ? std::abs(label.fontSize()) * kGlyphOverhang : 0;
  return {hash.value(), pixelBox(affineOf(toDevice).apply(bounds->insetBy(-overhang, -overhang))), {}};
}

DrawRecord counterRecord(const Rect& box, std::string_view texts, const cairo_matrix_t& sceneToDevice) {
  LookHash hash;
  hash.add(uint64_t{3}).add(texts).add(box.minX()).add(box.minY()).add(box.width()).add(box.height()).add(sceneToDevice);
  // The backdrop covers the text, whose glyphs may still poke out a little.
  return {hash.value(), pixelBox(affineOf(sceneToDevice).apply(box.insetBy(-box.height(), -box.height()))), {}};
}

uint64_t backdropLook(const Scene* scene, PixelSize target, double pixelScale, Size viewSize) {
  LookHash hash;
  hash.add(static_cast<uint64_t>(target.width)).add(static_cast<uint64_t>(target.height)).add(pixelScale);
  hash.add(viewSize.width).add(viewSize.height).add(uint64_t{scene != nullptr});
  if (scene != nullptr) hash.add(scene->backgroundColor);
  return hash.value();
}

}  // namespace zb

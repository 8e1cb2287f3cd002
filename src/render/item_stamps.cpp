#include "render/item_stamps.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>

#include "engine/label_node.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"
#include "render/pango_text.hpp"

namespace zb {

namespace {

// Antialiasing reaches into the pixel next to an edge; a second pixel absorbs rounding in the boxes.
constexpr double kAntialiasPixels = 2;
// Pixel coordinates are kept well inside int; anything farther out is off the frame anyway.
constexpr double kFarPixels = 1 << 24;
// Positions within a pixel are snapped to this many steps, so that an item moving by fractions of a
// pixel finds its masks again. A quarter of a pixel is finer than the eye follows.
constexpr double kSubpixelSteps = 4;
// Cairo puts glyphs on whole pixels on images anyway; snapping them there first keeps one mask a glyph.
constexpr double kGlyphSubpixelSteps = 1;
// Items up to this many pixels, and this long on either side, are rasterized whole (a quarter of a
// megabyte of mask at most, and well within the sides cairo can allocate).
constexpr int64_t kWholeMaskPixels = 512 * 512;
constexpr int kWholeMaskSide = 4096;

// Tags that keep the kinds of key apart.
enum class KeyKind : uint64_t { fill = 1, stroke, glyph, shapeRecord, labelRecord, slide, solid };
// A side this close to a pixel edge is on it: cairo rounds outlines to 1/256 of a pixel first.
constexpr double kOnPixelEdge = 1e-6;

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

// A coordinate split into whole pixels and a snapped fraction of one. Far off the frame the
// coordinate is kept as it is.
struct Snapped {
  int whole = 0;
  double fraction = 0;
};

Snapped snapToSubpixel(double v, double steps) {
  if (!(std::abs(v) < kFarPixels)) return {0, v};
  double whole = std::floor(v);
  double fraction = std::round((v - whole) * steps) / steps;
  if (fraction >= 1) {
    whole += 1;
    fraction = 0;
  }
  return {static_cast<int>(whole), fraction};
}

// The part of a mask's key that its place decides: the turn and scale, the place within a pixel, and
// the mask's box relative to the item's whole-pixel place.
uint64_t maskPlaceKey(const cairo_matrix_t& phased, const Snapped& x, const Snapped& y, const PixelRect& local) {
  return LookHash().add(phased.xx).add(phased.yx).add(phased.xy).add(phased.yy).add(x.fraction).add(y.fraction)
      .add(local).value();
}

// Where an item with these bounds (in its own coordinates) lands: its box on the frame, the matrix
// into its masks and the part of the masks' key that the placement decides.
struct Placement {
  cairo_matrix_t toMask;
  PixelRect box;
  PixelRect maskBox;
  uint64_t key;
};

Placement place(const cairo_matrix_t& toDevice, const std::optional<Rect>& bounds, const PixelRect& frame,
                double steps = kSubpixelSteps) {
  const Snapped x = snapToSubpixel(toDevice.x0, steps);
  const Snapped y = snapToSubpixel(toDevice.y0, steps);
  cairo_matrix_t phased = toDevice;
  phased.x0 = x.fraction;
  phased.y0 = y.fraction;
  const PixelRect reach = pixelBox(bounds ? std::optional<Rect>(affineOf(phased).apply(*bounds)) : std::nullopt);
  const PixelRect whole{reach.x + x.whole, reach.y + y.whole, reach.width, reach.height};
  const PixelRect box = whole.intersection(frame);
  // A mask holds all of a small item, so that it is found again while the item crosses the frame's
  // edge; of a large one only the part on the frame is rasterized. Either way the mask is named
  // relative to the item's whole-pixel place.
  const bool small = whole.area() <= kWholeMaskPixels && whole.width <= kWholeMaskSide && whole.height <= kWholeMaskSide;
  const PixelRect maskBox = small ? whole : box;
  const PixelRect local{maskBox.x - x.whole, maskBox.y - y.whole, maskBox.width, maskBox.height};
  Placement p{phased, box, maskBox, 0};
  p.toMask.x0 -= local.x;
  p.toMask.y0 -= local.y;
  p.key = maskPlaceKey(phased, x, y, local);
  return p;
}

Color times(const Color& c, double alpha) {
  const double a = c.a * alpha;
  return {c.r, c.g, c.b, a > 0 ? std::min(a, 1.0) : 0};
}

uint64_t pathLook(const Path& path) {
  LookHash hash;
  hash.add(uint64_t{path.elements().size()});
  for (const Path::Element& e : path.elements()) {
    hash.add(static_cast<uint64_t>(e.kind)).add(e.point.x).add(e.point.y);
    if (e.kind == Path::Kind::arc) hash.add(e.center.x).add(e.center.y).add(e.radius).add(e.startAngle).add(e.endAngle);
  }
  return hash.value();
}

// Completes the item's record from its stamps: the box of them all and the fingerprint of what they
// paint: their masks, colours, the part of the frame they cover and where each mask lies. A mask's
// key names its pixels relative to the item, not its place, and an item wider than the frame covers
// the same part of it wherever it moves.
void recordStamps(StampedItem& item, KeyKind kind, const std::vector<Stamp>& stamps) {
  LookHash hash;
  hash.add(item.node).add(static_cast<uint64_t>(kind));
  PixelRect box;
  for (std::size_t i = item.firstStamp; i < item.firstStamp + item.stampCount; ++i) {
    hash.add(stamps[i].key).add(stamps[i].color).add(stamps[i].box).add(stamps[i].maskBox);
    box = box.unionWith(stamps[i].box);
  }
  item.record.look = hash.value();
  item.record.box = box;
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

// An upright rectangle's fill, placed as its mask would be: the pixels it covers whole take a solid
// stamp, and only the pixels its sides cross take masks, thin ones along the sides. False when the
// shape is no upright rectangle, or lies within one pixel column or row.
bool stampUprightFill(const Path& path, const cairo_matrix_t& toDevice, const Color& fill, uint64_t outline,
                      const PixelRect& frame, std::vector<Stamp>& stamps) {
  if (!isUprightRectangle(path, toDevice)) return false;
  const Snapped x = snapToSubpixel(toDevice.x0, kSubpixelSteps);
  const Snapped y = snapToSubpixel(toDevice.y0, kSubpixelSteps);
  cairo_matrix_t phased = toDevice;
  phased.x0 = x.fraction;
  phased.y0 = y.fraction;
  const std::optional<Rect> placed = path.boundingBox(affineOf(phased));
  if (!placed) return false;
  // Each side between the pixel edges just inside and just outside it (one edge when it lies on one),
  // relative to the item's whole-pixel place: left, top, right, bottom.
  const std::array<double, 4> sides{placed->minX(), placed->minY(), placed->maxX(), placed->maxY()};
  std::array<int, 4> inner{}, outer{};
  for (std::size_t i = 0; i < sides.size(); ++i) {
    if (!(std::abs(sides[i]) < kFarPixels)) return false;
    const double nearest = std::round(sides[i]);
    const double side = std::abs(sides[i] - nearest) <= kOnPixelEdge ? nearest : sides[i];
    const bool leftOrTop = i < 2;
    inner[i] = static_cast<int>(leftOrTop ? std::ceil(side) : std::floor(side));
    outer[i] = static_cast<int>(leftOrTop ? std::floor(side) : std::ceil(side));
  }
  if (inner[0] > inner[2] || inner[1] > inner[3]) return false;
  const auto local = [](int left, int top, int right, int bottom) {
    return PixelRect{left, top, right - left, bottom - top};
  };
  const auto onFrame = [&](const PixelRect& r) { return PixelRect{r.x + x.whole, r.y + y.whole, r.width, r.height}; };

  const PixelRect inside = onFrame(local(inner[0], inner[1], inner[2], inner[3]));
  if (const PixelRect box = inside.intersection(frame); !box.isEmpty()) {
    stamps.push_back({StampLayer::solid, LookHash().add(static_cast<uint64_t>(KeyKind::solid)).add(inside).value(),
                      fill, box, box, {}});
  }
  // Columns the full height at the left and right sides, rows between them at the top and bottom: the
  // side pixels once each.
  const std::array<PixelRect, 4> strips{local(outer[0], outer[1], inner[0], outer[3]),
                                        local(inner[2], outer[1], outer[2], outer[3]),
                                        local(inner[0], outer[1], inner[2], inner[1]),
                                        local(inner[0], inner[3], inner[2], outer[3])};
  for (const PixelRect& strip : strips) {
    const PixelRect whole = onFrame(strip);
    const PixelRect box = whole.intersection(frame);
    if (box.isEmpty()) continue;
    const bool small = whole.area() <= kWholeMaskPixels && whole.width <= kWholeMaskSide && whole.height <= kWholeMaskSide;
    const PixelRect maskBox = small ? whole : box;
    const PixelRect maskLocal{maskBox.x - x.whole, maskBox.y - y.whole, maskBox.width, maskBox.height};
    cairo_matrix_t toMask = phased;
    toMask.x0 -= maskLocal.x;
    toMask.y0 -= maskLocal.y;
    // Keyed as any fill's mask of that box: the same outline rasterized into the same pixels.
    const uint64_t key = LookHash().add(static_cast<uint64_t>(KeyKind::fill)).add(outline)
                             .add(maskPlaceKey(phased, x, y, maskLocal)).value();
    stamps.push_back({StampLayer::fill, key, fill, box, maskBox, toMask});
  }
  return true;
}

// The same look without the place: a scrolling building differs from its last frame only near its sides.
SlidingRect slidingOf(const ShapeNode& shape, const Path& path, const cairo_matrix_t& toDevice, const Stamp* stamps, std::size_t count,
                      uint64_t outline, double reach) {
  const std::optional<Rect> sides = path.boundingBox();
  if (!sides || !isUprightRectangle(path, toDevice)) return {};
  LookHash slide;
  slide.add(&shape).add(static_cast<uint64_t>(KeyKind::slide)).add(toDevice.xx).add(toDevice.yy).add(outline);
  slide.add(shape.lineWidth).add(static_cast<uint64_t>(shape.lineCap));
  for (std::size_t i = 0; i < count; ++i) slide.add(static_cast<uint64_t>(stamps[i].layer)).add(stamps[i].color);
  const Rect placed = affineOf(toDevice).apply(*sides);
  const double scale = std::max(std::abs(toDevice.xx), std::abs(toDevice.yy));
  // Snapping moves the sides by up to half a step, well within the antialiasing allowance.
  return {slide.value(), placed.minX(), placed.minY(), placed.maxX(), placed.maxY(), reach * scale + kAntialiasPixels};
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

}  // namespace

LookHash& LookHash::add(std::string_view text) {
  return add(static_cast<uint64_t>(std::hash<std::string_view>{}(text))).add(uint64_t{text.size()});
}

StampedItem stampShape(const ShapeNode& shape, const Path& drawnPath, const cairo_matrix_t& toDevice, double alpha,
                       const PixelRect& frame, std::vector<Stamp>& stamps) {
  StampedItem item{&shape, &drawnPath, stamps.size(), 0, {}};
  const Color fill = times(shape.fillColor, alpha);
  const Color stroke = times(shape.strokeColor, alpha);
  const bool fills = fill.a > 0;
  const bool strokes = stroke.a > 0 && shape.lineWidth > 0 && std::isfinite(shape.lineWidth);
  if (!drawnPath.isEmpty() && (fills || strokes)) {
    // A full line width on every side covers square caps at any angle; joins are round.
    const double reach = strokes ? shape.lineWidth : 0;
    std::optional<Rect> bounds = drawnPath.boundingBox();
    if (bounds) bounds = bounds->insetBy(-reach, -reach);
    const Placement placement = place(toDevice, bounds, frame);
    const uint64_t outline = pathLook(drawnPath);
    if (fills && !stampUprightFill(drawnPath, toDevice, fill, outline, frame, stamps)) {
      const uint64_t key = LookHash().add(static_cast<uint64_t>(KeyKind::fill)).add(outline).add(placement.key).value();
      stamps.push_back({StampLayer::fill, key, fill, placement.box, placement.maskBox, placement.toMask});
    }
    if (strokes) {
      LookHash key;
      key.add(static_cast<uint64_t>(KeyKind::stroke)).add(outline).add(shape.lineWidth);
      key.add(static_cast<uint64_t>(shape.lineCap)).add(placement.key);
      stamps.push_back({StampLayer::stroke, key.value(), stroke, placement.box, placement.maskBox, placement.toMask});
    }
    item.stampCount = stamps.size() - item.firstStamp;
    // An upright rectangle wholly off the frame may leave no stamps at all.
    item.record.sliding =
        slidingOf(shape, drawnPath, toDevice, stamps.data() + item.firstStamp, item.stampCount, outline, reach);
  }
  recordStamps(item, KeyKind::shapeRecord, stamps);
  return item;
}

StampedItem stampLabel(const LabelNode& label, const cairo_matrix_t& toDevice, double alpha, const PixelRect& frame,
                       std::vector<Stamp>& stamps, std::vector<LabelGlyph>& glyphs) {
  StampedItem item{&label, nullptr, stamps.size(), 0, {}};
  const Color color = times(label.fontColor, alpha);
  if (color.a > 0) {
    labelGlyphs(label, glyphs);
    for (const LabelGlyph& g : glyphs) {
      // Glyphs are drawn y down from their origin.
      cairo_matrix_t upright;
      cairo_matrix_init(&upright, 1, 0, 0, -1, g.origin.x, g.origin.y);
      cairo_matrix_t glyphToDevice;
      cairo_matrix_multiply(&glyphToDevice, &upright, &toDevice);
      const Placement placement = place(glyphToDevice, g.ink, frame, kGlyphSubpixelSteps);
      if (placement.box.isEmpty()) continue;
      LookHash key;
      key.add(static_cast<uint64_t>(KeyKind::glyph)).add(g.fontKey).add(uint64_t{g.glyph}).add(placement.key);
      stamps.push_back(
          {StampLayer::glyph, key.value(), color, placement.box, placement.maskBox, placement.toMask, g.font, g.glyph});
    }
    item.stampCount = stamps.size() - item.firstStamp;
  }
  recordStamps(item, KeyKind::labelRecord, stamps);
  return item;
}

void rasterizeStamp(cairo_t* cr, const StampedItem& item, const Stamp& stamp) {
  cairo_set_matrix(cr, &stamp.toMask);
  if (stamp.layer == StampLayer::glyph) {
    showGlyph(cr, stamp.font, stamp.glyph);
    return;
  }
  const ShapeNode& shape = static_cast<const ShapeNode&>(*item.node);
  appendPath(cr, *item.path);
  if (stamp.layer == StampLayer::fill) {
    cairo_fill(cr);
    return;
  }
  cairo_set_line_width(cr, shape.lineWidth);
  cairo_set_line_cap(cr, cairoCap(shape.lineCap));
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  cairo_stroke(cr);
}

uint64_t backdropLook(const Scene* scene, PixelSize target, double pixelScale, Size viewSize) {
  LookHash hash;
  hash.add(target.width).add(target.height).add(pixelScale);
  hash.add(viewSize.width).add(viewSize.height).add(uint64_t{scene != nullptr});
  if (scene != nullptr) hash.add(scene->backgroundColor);
  return hash.value();
}

}  // namespace zb

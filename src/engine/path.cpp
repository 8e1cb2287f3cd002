#include "engine/path.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zb {

namespace {

constexpr double kQuarterTurn = std::numbers::pi / 2;
constexpr double kFullTurn = 2 * std::numbers::pi;

Point pointOnCircle(Point center, double radius, double angle) {
  return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
}

// Angle in [start, start + 2pi) that is equivalent to `angle`.
double angleFrom(double start, double angle) {
  double offset = std::fmod(angle - start, kFullTurn);
  if (offset < 0) offset += kFullTurn;
  return start + offset;
}

// The bounding box of transformed path geometry.
class Extent {
 public:
  explicit Extent(const AffineTransform& t) : t_(t) {}

  bool empty() const { return empty_; }
  // No point added so far had an infinite or undefined coordinate.
  bool finite() const { return finite_; }
  Rect rect() const { return Rect::make(x0_, y0_, x1_ - x0_, y1_ - y0_); }
  Point lowest() const { return {x0_, y0_}; }
  Point highest() const { return {x1_, y1_}; }

  void add(Point p) {
    Point q = t_.apply(p);
    finite_ = finite_ && std::isfinite(q.x) && std::isfinite(q.y);
    if (empty_) {
      x0_ = x1_ = q.x;
      y0_ = y1_ = q.y;
      empty_ = false;
      return;
    }
    x0_ = std::min(x0_, q.x);
    x1_ = std::max(x1_, q.x);
    y0_ = std::min(y0_, q.y);
    y1_ = std::max(y1_, q.y);
  }

  // The arc's end points plus every extreme its counter-clockwise sweep passes.
  void addArc(const Path::Element& e) {
    double start = e.startAngle;
    double end = e.endAngle;
    if (end < start) end = angleFrom(start, end);
    if (end - start >= kFullTurn) end = start + kFullTurn;
    add(pointOnCircle(e.center, e.radius, start));
    add(pointOnCircle(e.center, e.radius, end));
    if (t_.b == 0 && t_.c == 0) {
      addAxisPoints(e, start, end);
      return;
    }
    // Under a turning transform the extremes lie where the transformed circle's tangent is vertical
    // (for x) or horizontal (for y).
    const double xExtreme = std::atan2(t_.c, t_.a);
    const double yExtreme = std::atan2(t_.d, t_.b);
    for (double angle : {xExtreme, xExtreme + std::numbers::pi, yExtreme, yExtreme + std::numbers::pi}) {
      double inSweep = angleFrom(start, angle);
      if (inSweep <= end) add(pointOnCircle(e.center, e.radius, inSweep));
    }
  }

 private:
  // Exact axis points, so that a circle's box is exactly its radius wide on each side.
  void addAxisPoints(const Path::Element& e, double start, double end) {
    for (double k = std::ceil(start / kQuarterTurn); k * kQuarterTurn <= end; k += 1) {
      switch (static_cast<long>(std::fmod(std::fmod(k, 4) + 4, 4))) {
        case 0: add({e.center.x + e.radius, e.center.y}); break;
        case 1: add({e.center.x, e.center.y + e.radius}); break;
        case 2: add({e.center.x - e.radius, e.center.y}); break;
        default: add({e.center.x, e.center.y - e.radius}); break;
      }
    }
  }

  AffineTransform t_;
  bool empty_ = true;
  bool finite_ = true;
  double x0_ = 0, y0_ = 0, x1_ = 0, y1_ = 0;
};

void addGeometry(const std::vector<Path::Element>& elements, Extent& extent) {
  for (const Path::Element& e : elements) {
    switch (e.kind) {
      case Path::Kind::moveTo:
      case Path::Kind::lineTo: extent.add(e.point); break;
      case Path::Kind::arc: extent.addArc(e); break;
      case Path::Kind::close: break;
    }
  }
}

bool isFinite(const AffineTransform& t) {
  return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
         std::isfinite(t.tx) && std::isfinite(t.ty);
}

}  // namespace

Path Path::line(Point from, Point to) { return polyline({from, to}); }

Path Path::polyline(const std::vector<Point>& points) {
  Path p;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i == 0) {
      p.moveTo(points[i]);
    } else {
      p.lineTo(points[i]);
    }
  }
  return p;
}

Path Path::rect(const Rect& r) {
  Path p;
  p.moveTo({r.minX(), r.minY()});
  p.lineTo({r.maxX(), r.minY()});
  p.lineTo({r.maxX(), r.maxY()});
  p.lineTo({r.minX(), r.maxY()});
  p.closeSubpath();
  return p;
}

Path Path::rectCentered(Size size) { return rect(Rect::make(-size.width / 2, -size.height / 2, size.width, size.height)); }

Path Path::roundedRect(const Rect& r, double cornerRadius) {
  double radius = std::min({cornerRadius, r.width() / 2, r.height() / 2});
  if (radius <= 0) return rect(r);
  double x0 = r.minX(), y0 = r.minY(), x1 = r.maxX(), y1 = r.maxY();
  Path p;
  p.moveTo({x0 + radius, y0});
  p.lineTo({x1 - radius, y0});
  p.addArc({x1 - radius, y0 + radius}, radius, -kQuarterTurn, 0);
  p.lineTo({x1, y1 - radius});
  p.addArc({x1 - radius, y1 - radius}, radius, 0, kQuarterTurn);
  p.lineTo({x0 + radius, y1});
  p.addArc({x0 + radius, y1 - radius}, radius, kQuarterTurn, 2 * kQuarterTurn);
  p.lineTo({x0, y0 + radius});
  p.addArc({x0 + radius, y0 + radius}, radius, 2 * kQuarterTurn, 3 * kQuarterTurn);
  p.closeSubpath();
  return p;
}

Path Path::circle(double radius) {
  Path p;
  p.addArc({0, 0}, std::fabs(radius), 0, kFullTurn);
  p.closeSubpath();
  return p;
}

void Path::moveTo(Point p) {
  elements_.push_back({Kind::moveTo, p, {}, 0, 0, 0});
  extremesKnown_ = false;
}
void Path::lineTo(Point p) {
  elements_.push_back({Kind::lineTo, p, {}, 0, 0, 0});
  extremesKnown_ = false;
}
void Path::addArc(Point center, double radius, double startAngle, double endAngle) {
  elements_.push_back({Kind::arc, {}, center, radius, startAngle, endAngle});
  extremesKnown_ = false;
}
void Path::closeSubpath() { elements_.push_back({Kind::close, {}, {}, 0, 0, 0}); }

std::optional<Rect> Path::boundingBox() const { return boundingBox(AffineTransform::identity()); }

std::optional<Rect> Path::strokedBoundingBox(double lineWidth) const {
  return strokedBoundingBox(lineWidth, AffineTransform::identity());
}

std::optional<Rect> Path::boundingBox(const AffineTransform& t) const {
  // Without rotation or shear, x and y map on their own and keep their order, so the extremes of
  // finite geometry under a finite transform are the transformed extremes, to the last bit.
  if (t.b == 0 && t.c == 0 && isFinite(t)) {
    const std::optional<Extremes>& known = extremes();
    if (!known) return std::nullopt;
    if (known->finite) {
      Extent extent(t);
      extent.add(known->lowest);
      extent.add(known->highest);
      return extent.rect();
    }
  }
  Extent extent(t);
  addGeometry(elements_, extent);
  if (extent.empty()) return std::nullopt;
  return extent.rect();
}

const std::optional<Path::Extremes>& Path::extremes() const {
  if (!extremesKnown_) {
    Extent extent(AffineTransform::identity());
    addGeometry(elements_, extent);
    extremes_.reset();
    if (!extent.empty()) extremes_ = Extremes{extent.lowest(), extent.highest(), extent.finite()};
    extremesKnown_ = true;
  }
  return extremes_;
}

std::optional<Rect> Path::strokedBoundingBox(double lineWidth, const AffineTransform& t) const {
  std::optional<Rect> box = boundingBox(t);
  if (!box || lineWidth <= 0) return box;
  // The transformed round pen is an ellipse; these are its half extents along x and y.
  double half = lineWidth / 2;
  return box->insetBy(-half * std::hypot(t.a, t.c), -half * std::hypot(t.b, t.d));
}

std::optional<Path> Path::between(const Path& from, const Path& to, double fraction) {
  if (from.elements_.size() != to.elements_.size()) return std::nullopt;
  const auto mix = [fraction](double a, double b) { return a + (b - a) * fraction; };
  const auto mixPoints = [&mix](Point a, Point b) { return Point{mix(a.x, b.x), mix(a.y, b.y)}; };
  Path out;
  out.elements_.reserve(to.elements_.size());
  for (std::size_t i = 0; i < to.elements_.size(); ++i) {
    const Element& a = from.elements_[i];
    const Element& b = to.elements_[i];
    if (a.kind != b.kind) return std::nullopt;
    out.elements_.push_back({b.kind, mixPoints(a.point, b.point), mixPoints(a.center, b.center), mix(a.radius, b.radius),
                             mix(a.startAngle, b.startAngle), mix(a.endAngle, b.endAngle)});
  }
  return out;
}

}  // namespace zb

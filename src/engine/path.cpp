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

struct Extent {
  bool empty = true;
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;

  void add(Point p) {
    if (empty) {
      x0 = x1 = p.x;
      y0 = y1 = p.y;
      empty = false;
      return;
    }
    x0 = std::min(x0, p.x);
    x1 = std::max(x1, p.x);
    y0 = std::min(y0, p.y);
    y1 = std::max(y1, p.y);
  }

  // The arc's end points plus every axis extreme its counter-clockwise sweep passes.
  void addArc(const Path::Element& e) {
    double start = e.startAngle;
    double end = e.endAngle;
    while (end < start) end += kFullTurn;
    if (end - start >= kFullTurn) end = start + kFullTurn;
    add(pointOnCircle(e.center, e.radius, start));
    add(pointOnCircle(e.center, e.radius, end));
    for (double k = std::ceil(start / kQuarterTurn); k * kQuarterTurn <= end; k += 1) {
      // Exact axis points, so that a circle's box is exactly its radius wide on each side.
      switch (static_cast<long>(std::fmod(std::fmod(k, 4) + 4, 4))) {
        case 0: add({e.center.x + e.radius, e.center.y}); break;
        case 1: add({e.center.x, e.center.y + e.radius}); break;
        case 2: add({e.center.x - e.radius, e.center.y}); break;
        default: add({e.center.x, e.center.y - e.radius}); break;
      }
    }
  }
};

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

void Path::moveTo(Point p) { elements_.push_back({Kind::moveTo, p, {}, 0, 0, 0}); }
void Path::lineTo(Point p) { elements_.push_back({Kind::lineTo, p, {}, 0, 0, 0}); }
void Path::addArc(Point center, double radius, double startAngle, double endAngle) {
  elements_.push_back({Kind::arc, {}, center, radius, startAngle, endAngle});
}
void Path::closeSubpath() { elements_.push_back({Kind::close, {}, {}, 0, 0, 0}); }

std::optional<Rect> Path::boundingBox() const {
  Extent extent;
  for (const Element& e : elements_) {
    switch (e.kind) {
      case Kind::moveTo:
      case Kind::lineTo: extent.add(e.point); break;
      case Kind::arc: extent.addArc(e); break;
      case Kind::close: break;
    }
  }
  if (extent.empty) return std::nullopt;
  return Rect::make(extent.x0, extent.y0, extent.x1 - extent.x0, extent.y1 - extent.y0);
}

std::optional<Rect> Path::strokedBoundingBox(double lineWidth) const {
  std::optional<Rect> box = boundingBox();
  if (!box || lineWidth <= 0) return box;
  return box->insetBy(-lineWidth / 2, -lineWidth / 2);
}

}  // namespace zb

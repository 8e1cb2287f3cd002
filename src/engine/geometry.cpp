#include "engine/geometry.hpp"

#include <algorithm>
#include <cmath>

namespace zb {

Rect Rect::make(double x, double y, double width, double height) { return {{x, y}, {width, height}}; }

Rect Rect::standardized() const {
  Rect r = *this;
  if (r.size.width < 0) {
    r.origin.x += r.size.width;
    r.size.width = -r.size.width;
  }
  if (r.size.height < 0) {
    r.origin.y += r.size.height;
    r.size.height = -r.size.height;
  }
  return r;
}

double Rect::minX() const { return std::min(origin.x, origin.x + size.width); }
double Rect::minY() const { return std::min(origin.y, origin.y + size.height); }
double Rect::maxX() const { return std::max(origin.x, origin.x + size.width); }
double Rect::maxY() const { return std::max(origin.y, origin.y + size.height); }
double Rect::midX() const { return origin.x + size.width / 2; }
double Rect::midY() const { return origin.y + size.height / 2; }
double Rect::width() const { return std::fabs(size.width); }
double Rect::height() const { return std::fabs(size.height); }
Point Rect::center() const { return {midX(), midY()}; }

bool Rect::intersects(const Rect& other) const {
  return std::max(minX(), other.minX()) < std::min(maxX(), other.maxX()) &&
         std::max(minY(), other.minY()) < std::min(maxY(), other.maxY());
}

bool Rect::contains(Point p) const { return minX() <= p.x && p.x < maxX() && minY() <= p.y && p.y < maxY(); }

Rect Rect::unionWith(const Rect& other) const {
  double x0 = std::min(minX(), other.minX());
  double y0 = std::min(minY(), other.minY());
  double x1 = std::max(maxX(), other.maxX());
  double y1 = std::max(maxY(), other.maxY());
  return make(x0, y0, x1 - x0, y1 - y0);
}

Rect Rect::insetBy(double dx, double dy) const {
  Rect r = standardized();
  // An inset larger than the rectangle collapses it onto its centre line instead of turning it inside out.
  double w = r.size.width - 2 * dx;
  double h = r.size.height - 2 * dy;
  double x = w >= 0 ? r.origin.x + dx : r.midX();
  double y = h >= 0 ? r.origin.y + dy : r.midY();
  return make(x, y, std::max(w, 0.0), std::max(h, 0.0));
}

AffineTransform AffineTransform::identity() { return {}; }

AffineTransform AffineTransform::forNode(Point position, double rotation, double xScale, double yScale) {
  double cs = rotation == 0 ? 1.0 : std::cos(rotation);
  double sn = rotation == 0 ? 0.0 : std::sin(rotation);
  return {cs * xScale, sn * xScale, -sn * yScale, cs * yScale, position.x, position.y};
}

Point AffineTransform::apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }

Rect AffineTransform::apply(const Rect& r) const {
  const Point corners[4] = {
      apply(Point{r.minX(), r.minY()}), apply(Point{r.maxX(), r.minY()}),
      apply(Point{r.minX(), r.maxY()}), apply(Point{r.maxX(), r.maxY()})};
  double x0 = corners[0].x, x1 = corners[0].x, y0 = corners[0].y, y1 = corners[0].y;
  for (const Point& p : corners) {
    x0 = std::min(x0, p.x);
    x1 = std::max(x1, p.x);
    y0 = std::min(y0, p.y);
    y1 = std::max(y1, p.y);
  }
  return Rect::make(x0, y0, x1 - x0, y1 - y0);
}

AffineTransform AffineTransform::concat(const AffineTransform& o) const {
  return {a * o.a + c * o.b, b * o.a + d * o.b, a * o.c + c * o.d,
          b * o.c + d * o.d, a * o.tx + c * o.ty + tx, b * o.tx + d * o.ty + ty};
}

AffineTransform AffineTransform::inverted() const {
  double det = a * d - b * c;
  if (det == 0 || !std::isfinite(det)) return identity();
  return {d / det, -b / det, -c / det, a / det, (c * ty - d * tx) / det, (b * tx - a * ty) / det};
}

}  // namespace zb

#pragma once
// Points, sizes, rectangles and affine transforms in scene points, origin at the lower left, y up.
// Rectangle rules follow the usual 2D-graphics conventions: negative sizes are standardised before
// any test, intersection needs a positive overlap, and containment includes the minimum edges only.

namespace zb {

struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;
  double height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  Point origin;
  Size size;

  static Rect make(double x, double y, double width, double height);

  // Same rectangle with a non-negative width and height.
  Rect standardized() const;
  double minX() const;
  double minY() const;
  double maxX() const;
  double maxY() const;
  double midX() const;
  double midY() const;
  double width() const;   // always non-negative
  double height() const;  // always non-negative
  Point center() const;

  // True only for a positive overlap: rectangles that merely touch along an edge do not intersect.
  bool intersects(const Rect& other) const;
  // minX <= x < maxX and minY <= y < maxY.
  bool contains(Point p) const;
  Rect unionWith(const Rect& other) const;
  Rect insetBy(double dx, double dy) const;

  friend bool operator==(const Rect&, const Rect&) = default;
};

// x' = a*x + c*y + tx, y' = b*x + d*y + ty
struct AffineTransform {
  double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

  static AffineTransform identity();
  // A node's own placement in its parent: scale, then rotate (counter-clockwise radians), then translate.
  static AffineTransform forNode(Point position, double rotation, double xScale, double yScale);

  Point apply(Point p) const;
  // The bounding box of the four transformed corners.
  Rect apply(const Rect& r) const;
  // this after other: first `other`, then `this`.
  AffineTransform concat(const AffineTransform& other) const;
  AffineTransform inverted() const;  // the identity when not invertible (zero scale)
};

}  // namespace zb

#pragma once
// Vector paths for shape nodes: open polylines, rectangles, rounded rectangles and circles.
#include <optional>
#include <vector>

#include "engine/geometry.hpp"

namespace zb {

class Path {
 public:
  enum class Kind { moveTo, lineTo, arc, close };
  struct Element {
    Kind kind = Kind::moveTo;
    Point point;       // moveTo, lineTo
    Point center;      // arc
    double radius = 0; // arc
    double startAngle = 0;  // arc, radians, drawn counter-clockwise to endAngle
    double endAngle = 0;
    friend bool operator==(const Element&, const Element&) = default;
  };

  Path() = default;

  static Path line(Point from, Point to);
  static Path polyline(const std::vector<Point>& points);
  static Path rect(const Rect& r);
  // A rectangle of the given size centred on the origin.
  static Path rectCentered(Size size);
  static Path roundedRect(const Rect& r, double cornerRadius);
  // A circle of the given radius centred on the origin.
  static Path circle(double radius);

  void moveTo(Point p);
  void lineTo(Point p);
  void addArc(Point center, double radius, double startAngle, double endAngle);
  void closeSubpath();

  bool isEmpty() const { return elements_.empty(); }
  const std::vector<Element>& elements() const { return elements_; }

  // The path `fraction` of the way from `from` to `to`, point by point; nothing unless both are made of
  // the same kinds of element in the same order.
  static std::optional<Path> between(const Path& from, const Path& to, double fraction);

  // Bounding box of the geometry itself; nothing for an empty path.
  std::optional<Rect> boundingBox() const;
  // Bounding box including a stroke of the given width (round caps and joins).
  std::optional<Rect> strokedBoundingBox(double lineWidth) const;
  // The same boxes of the path after a transform, computed from the transformed geometry itself
  // rather than from a transformed box, so that a turning circle keeps its size.
  std::optional<Rect> boundingBox(const AffineTransform& t) const;
  std::optional<Rect> strokedBoundingBox(double lineWidth, const AffineTransform& t) const;

 private:
  // The untransformed geometry's extremes, found on first use and kept until the path changes: a
  // shape that only moves is asked for its frame every frame.
  struct Extremes {
    Point lowest;   // the least x and the least y
    Point highest;  // the greatest x and the greatest y
    bool finite;    // every coordinate of the geometry is finite
  };
  const std::optional<Extremes>& extremes() const;

  std::vector<Element> elements_;
  mutable std::optional<Extremes> extremes_;
  mutable bool extremesKnown_ = false;
};

}  // namespace zb

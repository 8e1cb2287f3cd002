#pragma once
// A node that strokes and fills a path.
#include <memory>

#include "engine/color.hpp"
#include "engine/node.hpp"
#include "engine/path.hpp"

namespace zb {

enum class LineCap { butt, round, square };

class ShapeNode : public Node {
 public:
  Path path;
  Color strokeColor = Color::white();
  Color fillColor = Color::clear();
  double lineWidth = 1.0;
  LineCap lineCap = LineCap::butt;

  static std::shared_ptr<ShapeNode> withPath(Path p);
  static std::shared_ptr<ShapeNode> withRect(const Rect& r, double cornerRadius = 0);
  static std::shared_ptr<ShapeNode> withRectOfSize(Size size);
  static std::shared_ptr<ShapeNode> withCircleOfRadius(double radius);

  // The path's bounding box widened by half the line width on every side, whatever the colours.
  std::optional<Rect> contentBounds() const override;

  // The outline a frame `fraction` of the way from the previous step to the last one draws (1: the
  // last step's): a path whose points moved in the step (the figure's strokes) slides too, when it
  // kept its kinds of element. Nothing when the path itself is drawn.
  std::optional<Path> pathBetweenSteps(double fraction) const;

 protected:
  std::optional<Rect> contentFrame(const AffineTransform& toTarget) const override;
  void recordStepStart(bool inSight) override;
  void recordStepEnd(bool inSight) override;

 private:
  Path stepStartPath_;
  bool pathSlides_ = false;
};

using ShapeNodePtr = std::shared_ptr<ShapeNode>;

}  // namespace zb

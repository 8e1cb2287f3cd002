#include "engine/shape_node.hpp"

#include <algorithm>
#include <utility>

namespace zb {

std::shared_ptr<ShapeNode> ShapeNode::withPath(Path p) {
  auto node = std::make_shared<ShapeNode>();
  node->path = std::move(p);
  return node;
}

std::shared_ptr<ShapeNode> ShapeNode::withRect(const Rect& r, double cornerRadius) {
  return withPath(cornerRadius > 0 ? Path::roundedRect(r, cornerRadius) : Path::rect(r));
}

std::shared_ptr<ShapeNode> ShapeNode::withRectOfSize(Size size) { return withPath(Path::rectCentered(size)); }

std::shared_ptr<ShapeNode> ShapeNode::withCircleOfRadius(double radius) { return withPath(Path::circle(radius)); }

std::optional<Rect> ShapeNode::contentBounds() const { return path.strokedBoundingBox(lineWidth); }

std::optional<Rect> ShapeNode::contentFrame(const AffineTransform& toTarget) const {
  return path.strokedBoundingBox(lineWidth, toTarget);
}

std::optional<Path> ShapeNode::pathBetweenSteps(double fraction) const {
  if (!pathSlides_ || !steadyThroughStep() || !(fraction < 1)) return std::nullopt;
  return Path::between(stepStartPath_, path, std::max(fraction, 0.0));
}

void ShapeNode::recordStepStart(bool inSight) {
  Node::recordStepStart(inSight);
  stepStartPath_ = path;
}

void ShapeNode::recordStepEnd(bool inSight) {
  Node::recordStepEnd(inSight);
  pathSlides_ = steadyThroughStep() && stepStartPath_.elements() != path.elements();
}

}  // namespace zb

#pragma once
// The scene-graph node: a named element with a placement in its parent, ordered children, and timed
// actions. Shape, label and audio nodes derive from it; the scene is the root.
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/geometry.hpp"

namespace zb {

class Action;
class Scene;
class Node;
using NodePtr = std::shared_ptr<Node>;
using ActionPtr = std::shared_ptr<const Action>;

// Where a node is drawn in its parent: what a frame between two steps blends.
struct NodePlacement {
  Point position;
  double zRotation = 0;
  double xScale = 1;
  double yScale = 1;
  double alpha = 1;
  friend bool operator==(const NodePlacement&, const NodePlacement&) = default;
};

// `from` where `fraction` is 0, `to` where it is 1.
NodePlacement blend(const NodePlacement& from, const NodePlacement& to, double fraction);

class Node : public std::enable_shared_from_this<Node> {
 public:
  Node();
  virtual ~Node();
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  std::string name;
  Point position;
  double zPosition = 0;
  double zRotation = 0;  // radians, counter-clockwise
  double xScale = 1;
  double yScale = 1;
  double alpha = 1;
  bool hidden = false;

  Node* parent() const { return parent_; }
  // The scene at the root of this node's tree, or nullptr when the tree is not a scene.
  Scene* scene() const;
  const std::vector<NodePtr>& children() const { return children_; }

  // A child that already has a parent is first removed from it.
  void addChild(NodePtr child);
  void removeFromParent();
  void removeAllChildren();
  // First direct child with that name, or nullptr.
  NodePtr childNamed(std::string_view childName) const;

  // True when this node or any ancestor is hidden.
  bool isHiddenInTree() const;

  // The node's own drawn extent in its own coordinates, strokes included; nothing for a plain node.
  virtual std::optional<Rect> contentBounds() const;
  // The content's bounding box in the parent's coordinates (rotation and scale applied); a node
  // without content has a zero-sized frame at its position.
  Rect frame() const;
  // The frame united with the accumulated frames of all descendants, in the parent's coordinates.
  Rect calculateAccumulatedFrame() const;
  // This node's placement in its parent.
  AffineTransform transformToParent() const;
  // From this node's coordinates into `other`'s; both must be in the same tree.
  Point convertPointTo(Point p, const Node& other) const;
  Point convertPointFrom(Point p, const Node& other) const;
  // Descendants whose frame contains the point (given in this node's coordinates), leaving out hidden
  // nodes and everything under a hidden node. Children come before their parents, later children
  // before earlier ones.
  std::vector<Node*> nodesAtPoint(Point p) const;

  // Starts an action on this node. Several actions run side by side. The completion runs once, right
  // after the action finishes. Actions advance only while the node is in a scene's tree.
  void runAction(ActionPtr action, std::function<void()> completion = {});
  bool hasActions() const;

  // Number of nodes in this subtree, this node included.
  std::size_t subtreeNodeCount() const;

  NodePlacement placement() const { return {position, zRotation, xScale, yScale, alpha}; }
  // Where a frame shown `fraction` of the way from the previous step to the last one draws the node
  // (1: the last step itself). Only a node that stayed in place in the tree and in sight through the
  // last step, and was not changed since, moves between the two; anything else is drawn where it is.
  NodePlacement placementBetweenSteps(double fraction) const;
  // The node jumped in this step (it wrapped round, it was put somewhere new): the frames up to the
  // next step draw it where it is instead of sliding it across.
  void placeWithoutSlide() { slidesSinceStepStart_ = steady_ = slides_ = false; }
  // True when the frames before the next step move the node between its last two placements.
  bool slidesBetweenSteps() const { return slides_; }

 protected:
  // The content's bounding box after `toTarget` (this node's coordinates into some ancestor's); by
  // default the transformed contentBounds box. Shapes compute it from their transformed path.
  virtual std::optional<Rect> contentFrame(const AffineTransform& toTarget) const;
  // Called on every node of a scene's tree as a step starts and as it ends, with whether the node is
  // in sight then; shapes keep their outline too.
  virtual void recordStepStart(bool inSight);
  virtual void recordStepEnd(bool inSight);
  // Whether the node stayed in sight, in its parent and unjumped through the last step.
  bool steadyThroughStep() const { return steady_; }
  // Called when the node (or an ancestor) joins or leaves a scene's tree.
  virtual void didEnterScene(Scene& scene);
  virtual void willLeaveScene(Scene& scene);

 private:
  friend class Scene;
  struct RunningAction;
  void notifyEnter(Scene& scene);
  void notifyLeave(Scene& scene);
  void registerForActions();
  // Advances this node's own actions by dt; completions of finished actions run afterwards.
  void stepActions(double dt, bool pausedOnly);
  AffineTransform transformToRoot() const;
  // The accumulated frame after `toTarget`, without the zero-sized stand-in for content-less nodes.
  std::optional<Rect> accumulatedFrameIn(const AffineTransform& toTarget) const;
  void collectNodesAt(Point p, std::vector<Node*>& out) const;

  Node* parent_ = nullptr;
  std::vector<NodePtr> children_;
  std::vector<std::unique_ptr<RunningAction>> actions_;
  // The scene whose action registry lists this node; only compared, never dereferenced.
  const Scene* actionRegistry_ = nullptr;
  // The placements at the start and at the end of the last step; whether the node was in sight at
  // the start and has not jumped or changed parent since, and whether it slides until the next step.
  NodePlacement stepStart_;
  NodePlacement stepEnd_;
  bool slidesSinceStepStart_ = false;
  bool steady_ = false;
  bool slides_ = false;
};

}  // namespace zb

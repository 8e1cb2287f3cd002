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

 protected:
  // The content's bounding box after `toTarget` (this node's coordinates into some ancestor's); by
  // default the transformed contentBounds box. Shapes compute it from their transformed path.
  virtual std::optional<Rect> contentFrame(const AffineTransform& toTarget) const;
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
};

}  // namespace zb

#include "engine/node.hpp"

#include <algorithm>
#include <utility>

#include "engine/action.hpp"
#include "engine/scene.hpp"

namespace zb {

struct Node::RunningAction {
  ActionPtr action;
  // Created at the first step, so that an action starts from the node's state at that moment.
  std::unique_ptr<Action::Run> run;
  std::function<void()> completion;
};

NodePlacement blend(const NodePlacement& from, const NodePlacement& to, double fraction) {
  const auto mix = [fraction](double a, double b) { return a + (b - a) * fraction; };
  return {{mix(from.position.x, to.position.x), mix(from.position.y, to.position.y)},
          mix(from.zRotation, to.zRotation),
          mix(from.xScale, to.xScale),
          mix(from.yScale, to.yScale),
          mix(from.alpha, to.alpha)};
}

Node::Node() = default;

Node::~Node() {
  for (const NodePtr& child : children_) child->parent_ = nullptr;
}

Scene* Node::scene() const {
  const Node* root = this;
  while (root->parent_) root = root->parent_;
  return dynamic_cast<Scene*>(const_cast<Node*>(root));
}

void Node::addChild(NodePtr child) {
  if (!child || child.get() == this) return;
  // Adding an ancestor would make a cycle.
  for (const Node* n = parent_; n; n = n->parent_) {
    if (n == child.get()) return;
  }
  if (child->parent_) child->removeFromParent();
  // A node that joins a tree, from a pool or from another parent, appears where it is put.
  child->placeWithoutSlide();
  children_.push_back(child);
  child->parent_ = this;
  if (Scene* s = scene()) child->notifyEnter(*s);
}

void Node::removeFromParent() {
  if (!parent_) return;
  // The parent may hold the last reference; keep this node alive until the function is done.
  NodePtr self = shared_from_this();
  if (Scene* s = scene()) notifyLeave(*s);
  Node* parent = parent_;
  if (!parent) return;  // a leave hook already detached it
  auto it = std::find(parent->children_.begin(), parent->children_.end(), self);
  if (it != parent->children_.end()) parent->children_.erase(it);
  parent_ = nullptr;
  placeWithoutSlide();
}

void Node::removeAllChildren() {
  if (Scene* s = scene()) {
    for (std::size_t i = 0; i < children_.size(); ++i) children_[i]->notifyLeave(*s);
  }
  std::vector<NodePtr> removed = std::move(children_);
  children_.clear();
  for (const NodePtr& child : removed) {
    child->parent_ = nullptr;
    child->placeWithoutSlide();
  }
}

NodePtr Node::childNamed(std::string_view childName) const {
  for (const NodePtr& child : children_) {
    if (child->name == childName) return child;
  }
  return nullptr;
}

bool Node::isHiddenInTree() const {
  for (const Node* n = this; n; n = n->parent_) {
    if (n->hidden) return true;
  }
  return false;
}

std::optional<Rect> Node::contentBounds() const { return std::nullopt; }

std::optional<Rect> Node::contentFrame(const AffineTransform& toTarget) const {
  std::optional<Rect> content = contentBounds();
  if (!content) return std::nullopt;
  return toTarget.apply(*content);
}

Rect Node::frame() const { return contentFrame(transformToParent()).value_or(Rect{position, {}}); }

std::optional<Rect> Node::accumulatedFrameIn(const AffineTransform& toTarget) const {
  std::optional<Rect> result = contentFrame(toTarget);
  for (const NodePtr& child : children_) {
    std::optional<Rect> childFrame = child->accumulatedFrameIn(toTarget.concat(child->transformToParent()));
    if (!childFrame) continue;
    result = result ? result->unionWith(*childFrame) : *childFrame;
  }
  return result;
}

Rect Node::calculateAccumulatedFrame() const {
  return accumulatedFrameIn(transformToParent()).value_or(Rect{position, {}});
}

AffineTransform Node::transformToParent() const {
  return AffineTransform::forNode(position, zRotation, xScale, yScale);
}

AffineTransform Node::transformToRoot() const {
  AffineTransform t = AffineTransform::identity();
  for (const Node* n = this; n->parent_; n = n->parent_) t = n->transformToParent().concat(t);
  return t;
}

Point Node::convertPointTo(Point p, const Node& other) const {
  return other.transformToRoot().inverted().apply(transformToRoot().apply(p));
}

Point Node::convertPointFrom(Point p, const Node& other) const { return other.convertPointTo(p, *this); }

std::vector<Node*> Node::nodesAtPoint(Point p) const {
  std::vector<Node*> found;
  collectNodesAt(p, found);
  return found;
}

// `p` is in this node's coordinates; children are searched last-added first, each before its parent.
void Node::collectNodesAt(Point p, std::vector<Node*>& out) const {
  for (auto it = children_.rbegin(); it != children_.rend(); ++it) {
    const Node& child = **it;
    if (child.hidden) continue;
    child.collectNodesAt(child.transformToParent().inverted().apply(p), out);
    std::optional<Rect> frame = child.contentFrame(child.transformToParent());
    if (frame && frame->contains(p)) out.push_back(it->get());
  }
}

void Node::runAction(ActionPtr action, std::function<void()> completion) {
  if (!action) return;
  actions_.push_back(std::make_unique<RunningAction>(RunningAction{std::move(action), nullptr, std::move(completion)}));
  registerForActions();
}

bool Node::hasActions() const { return !actions_.empty(); }

std::size_t Node::subtreeNodeCount() const {
  std::size_t count = 1;
  for (const NodePtr& child : children_) count += child->subtreeNodeCount();
  return count;
}

NodePlacement Node::placementBetweenSteps(double fraction) const {
  const NodePlacement now = placement();
  if (!slides_ || !(fraction < 1) || now != stepEnd_) return now;
  return blend(stepStart_, stepEnd_, std::max(fraction, 0.0));
}

void Node::recordStepStart(bool inSight) {
  stepStart_ = placement();
  slidesSinceStepStart_ = inSight;
}

void Node::recordStepEnd(bool inSight) {
  stepEnd_ = placement();
  steady_ = slidesSinceStepStart_ && inSight;
  slides_ = steady_ && stepStart_ != stepEnd_;
}

void Node::didEnterScene(Scene&) {}
void Node::willLeaveScene(Scene&) {}

void Node::notifyEnter(Scene& s) {
  if (!actions_.empty()) registerForActions();
  didEnterScene(s);
  for (std::size_t i = 0; i < children_.size(); ++i) {
    NodePtr child = children_[i];
    child->notifyEnter(s);
  }
}

void Node::notifyLeave(Scene& s) {
  willLeaveScene(s);
  for (std::size_t i = 0; i < children_.size(); ++i) {
    NodePtr child = children_[i];
    child->notifyLeave(s);
  }
}

void Node::registerForActions() {
  Scene* s = scene();
  // The scene steps its own actions directly.
  if (!s || s == this || actionRegistry_ == s) return;
  s->actionNodes_.push_back(weak_from_this());
  actionRegistry_ = s;
}

void Node::stepActions(double dt, bool pausedOnly) {
  // Completions run only after every action has stepped: they may change this node's actions and the
  // tree freely.
  std::vector<std::function<void()>> completions;
  bool anyFinished = false;
  const std::size_t count = actions_.size();
  for (std::size_t i = 0; i < count && i < actions_.size(); ++i) {
    std::unique_ptr<RunningAction>& running = actions_[i];
    if (!running || (pausedOnly && !running->action->runsWhilePaused())) continue;
    if (!running->run) running->run = running->action->start(*this);
    if (running->run->step(*this, dt) < 0) continue;
    if (running->completion) completions.push_back(std::move(running->completion));
    running.reset();
    anyFinished = true;
  }
  if (anyFinished) std::erase(actions_, nullptr);
  for (std::function<void()>& completion : completions) completion();
}

}  // namespace zb

#include "engine/scene.hpp"

#include <algorithm>

#include "engine/audio_node.hpp"

namespace zb {

namespace {

template <typename F>
void forEachAudioNode(Node& node, const F& f) {
  if (auto* audio = dynamic_cast<AudioNode*>(&node)) f(*audio);
  for (std::size_t i = 0; i < node.children().size(); ++i) {
    NodePtr child = node.children()[i];
    forEachAudioNode(*child, f);
  }
}

}  // namespace

Scene::Scene(Size size) : size_(size) {}

Scene::~Scene() {
  for (const std::weak_ptr<Node>& entry : actionNodes_) {
    if (NodePtr node = entry.lock(); node && node->actionRegistry_ == this) node->actionRegistry_ = nullptr;
  }
}

void Scene::setSize(Size size) {
  if (size == size_) return;
  Size old = size_;
  size_ = size;
  didChangeSize(old);
}

void Scene::stepFrame(double dt) {
  // Whatever changed since the last step (input, a resize) is where this step starts, not a motion.
  recordStep(*this, !hidden, true);
  time_ += dt;
  if (!paused) update(time_);
  // The update may have paused the scene; from then on only pause-proof actions advance.
  runActions(dt, paused);
  recordStep(*this, !hidden, false);
}

void Scene::recordStep(Node& node, bool inSight, bool atStart) {
  for (std::size_t i = 0; i < node.children_.size(); ++i) {
    Node& child = *node.children_[i];
    const bool childInSight = inSight && !child.hidden;
    if (atStart) {
      child.recordStepStart(childInSight);
    } else {
      child.recordStepEnd(childInSight);
    }
    recordStep(child, childInSight, atStart);
  }
}

void Scene::runActions(double dt, bool pausedOnly) {
  stepActions(dt, pausedOnly);
  // Entries added by completions during this pass wait for the next one.
  const std::size_t count = actionNodes_.size();
  bool anyDropped = false;
  for (std::size_t i = 0; i < count; ++i) {
    NodePtr node = actionNodes_[i].lock();
    if (!node) {
      anyDropped = true;
      continue;
    }
    if (node->scene() != this || !node->hasActions()) {
      if (node->actionRegistry_ == this) node->actionRegistry_ = nullptr;
      actionNodes_[i].reset();
      anyDropped = true;
      continue;
    }
    node->stepActions(dt, pausedOnly);
  }
  if (anyDropped) std::erase_if(actionNodes_, [](const std::weak_ptr<Node>& entry) { return entry.expired(); });
}

void Scene::startAudio() {
  forEachAudioNode(*this, [this](AudioNode& audio) { audio.didEnterScene(*this); });
}

void Scene::stopAudio(bool tellOutput) {
  forEachAudioNode(*this, [tellOutput](AudioNode& audio) { audio.stopPlaying(tellOutput); });
}

void Scene::didMoveToView(View&) {}
void Scene::willMoveFromView(View&) {}
void Scene::update(double) {}
void Scene::didChangeSize(Size) {}
void Scene::keyDown(const KeyEvent&) {}
void Scene::keyUp(const KeyEvent&) {}
void Scene::mouseDown(const MouseEvent&) {}

}  // namespace zb

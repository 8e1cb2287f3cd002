#include "engine/view.hpp"

#include <utility>

#include "engine/scene.hpp"

namespace zb {

View::View(Size size) : size_(size) {}

View::~View() {
  // The derived view, and the sound output it owned, are gone by now: only let go of the scene.
  if (scene_) {
    scene_->stopAudio(false);
    scene_->view_ = nullptr;
  }
}

void View::presentScene(std::shared_ptr<Scene> scene) {
  if (scene == scene_) return;
  dismissScene();
  if (!scene) return;
  scene_ = std::move(scene);
  scene_->setSize(size_);
  scene_->view_ = this;
  scene_->startAudio();
  scene_->didMoveToView(*this);
}

void View::dismissScene() {
  if (!scene_) return;
  std::shared_ptr<Scene> old = std::move(scene_);
  scene_.reset();
  old->willMoveFromView(*this);
  old->stopAudio(true);
  old->view_ = nullptr;
}

void View::setSize(Size size) {
  size_ = size;
  if (scene_) scene_->setSize(size);
}

void View::stepFrame() {
  if (scene_) scene_->stepFrame(kFrameDuration);
}

void View::keyDown(const KeyEvent& event) {
  if (scene_) scene_->keyDown(event);
}

void View::keyUp(const KeyEvent& event) {
  if (scene_) scene_->keyUp(event);
}

void View::mouseDown(Point locationInView) {
  // The scene always fills the view at the view's size, so view points are scene points.
  if (scene_) scene_->mouseDown(MouseEvent{locationInView});
}

void View::mouseMoved() {
  if (scene_) scene_->mouseMoved();
  cursorMoved();
}

void View::gamepadRemoved(GamepadId id) {
  const bool wasPlaying = gamepads_.playingPad() == id;
  std::optional<GamepadRoster::Leftovers> leftovers = gamepads_.disconnect(id);
  if (!leftovers || !wasPlaying || !scene_) return;
  for (GamepadButton button : leftovers->buttons) scene_->gamepadButtonUp(button);
  for (GamepadAxis axis : leftovers->axes) scene_->gamepadAxisMoved(axis, 0);
  scene_->gamepadDisconnected();
}

void View::gamepadButtonDown(GamepadId id, GamepadButton button) {
  if (gamepads_.press(id, button) && scene_) scene_->gamepadButtonDown(button);
}

void View::gamepadButtonUp(GamepadId id, GamepadButton button) {
  if (gamepads_.release(id, button) && scene_) scene_->gamepadButtonUp(button);
}

void View::gamepadAxisMoved(GamepadId id, GamepadAxis axis, double value) {
  if (gamepads_.moveAxis(id, axis, value) && scene_) scene_->gamepadAxisMoved(axis, value);
}

void View::windowLostFocus() {
  if (scene_) scene_->windowDidLoseFocus();
}

}  // namespace zb

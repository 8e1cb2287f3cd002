#pragma once
// What a scene needs of the view that presents it and of that view's window. The platform layer
// derives the real window and the headless virtual view from these.
#include <cstdint>
#include <memory>

#include "engine/gamepad_roster.hpp"
#include "engine/geometry.hpp"
#include "engine/input_event.hpp"
#include "engine/notification_center.hpp"
#include "engine/sound_output.hpp"

namespace zb {

// A view's width or height in points as a person may ask for one, on the command line or in a script:
// beyond this it is a typing mistake, and a picture of it would take gigabytes.
inline constexpr uint64_t kMaxViewExtent = 16384;

class Scene;

class Window {
 public:
  virtual ~Window() = default;
  virtual bool isFullScreen() const = 0;
  // Asks for the full-screen state to flip. The change, and its notification, may come later.
  virtual void toggleFullScreen() = 0;
};

class View {
 public:
  explicit View(Size size);
  virtual ~View();
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  // Detaches the current scene (willMoveFromView), gives the new one the view's size (resize-fill),
  // sets its view and attaches it (didMoveToView).
  void presentScene(std::shared_ptr<Scene> scene);
  // Detaches the current scene, leaving the view empty.
  void dismissScene();
  Scene* scene() const { return scene_.get(); }

  Size size() const { return size_; }
  // The presented scene's size follows (and its size-change hook runs).
  void setSize(Size size);

  bool showsFPS = false;
  bool showsNodeCount = false;

  // One displayed frame: the scene's clock advances by 1/60 s, then the update and the actions due.
  void stepFrame();
  void keyDown(const KeyEvent& event);
  void keyUp(const KeyEvent& event);
  // `locationInView` is in view points, origin at the lower left; converted to scene coordinates.
  void mouseDown(Point locationInView);
  // Tells the scene, then unhides a cursor that was hidden until the mouse moves.
  void mouseMoved();

  // Gamepads: only the playing pad reaches the scene, and only with news (see GamepadRoster). When
  // the playing pad goes, the scene first hears it let go of everything it held.
  // False when the roster is full and the pad was not taken.
  bool gamepadAdded(GamepadId id) { return gamepads_.connect(id); }
  void gamepadRemoved(GamepadId id);
  void gamepadButtonDown(GamepadId id, GamepadButton button);
  void gamepadButtonUp(GamepadId id, GamepadButton button);
  void gamepadAxisMoved(GamepadId id, GamepadAxis axis, double value);
  const GamepadRoster& gamepads() const { return gamepads_; }

  // The window lost the keyboard focus or was minimised. Regaining it is no news to the scene.
  void windowLostFocus();

  virtual Window* window() { return nullptr; }
  virtual void hideCursorUntilMouseMoves() {}
  virtual void unhideCursor() {}
  // The cursor's part of a mouse move.
  virtual void cursorMoved() {}
  virtual SoundOutput& soundOutput() { return silent_; }
  NotificationCenter& notificationCenter() { return notifications_; }

  static constexpr double kFrameDuration = 1.0 / 60.0;

 private:
  Size size_;
  std::shared_ptr<Scene> scene_;
  NotificationCenter notifications_;
  SilentSoundOutput silent_;
  GamepadRoster gamepads_;
};

}  // namespace zb

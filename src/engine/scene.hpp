#pragma once
// The root of a node tree: size, background colour, pause flag, clock and random source, plus the
// hooks through which the view drives it.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/color.hpp"
#include "engine/gamepad_event.hpp"
#include "engine/input_event.hpp"
#include "engine/node.hpp"
#include "engine/random.hpp"

namespace zb {

class View;

class Scene : public Node {
 public:
  explicit Scene(Size size = {});
  ~Scene() override;

  Size size() const { return size_; }
  // Runs didChangeSize with the old size whenever the size actually changes.
  void setSize(Size size);

  Color backgroundColor = Color::rgba(0.15, 0.15, 0.15, 1);
  bool paused = false;

  View* view() const { return view_; }
  double currentTime() const { return time_; }
  Random& random() { return random_; }

  // One frame: the clock advances by dt; unless paused, update() runs and then every action due at the
  // new time. While paused only actions that run while paused (volume changes) advance.
  void stepFrame(double dt);
  // Runs the actions of every node in the tree by dt seconds (used by stepFrame).
  void runActions(double dt, bool pausedOnly);

  // Every node in the tree, the scene included.
  std::size_t nodeCount() const { return subtreeNodeCount(); }

  // Hooks.
  virtual void didMoveToView(View& view);
  virtual void willMoveFromView(View& view);
  virtual void update(double currentTime);
  virtual void didChangeSize(Size oldSize);
  virtual void keyDown(const KeyEvent& event);
  virtual void keyUp(const KeyEvent& event);
  virtual void mouseDown(const MouseEvent& event);
  virtual void mouseMoved() {}
  // From the playing gamepad only; a removal of that pad comes after the releases of what it held.
  virtual void gamepadButtonDown(GamepadButton /*button*/) {}
  virtual void gamepadButtonUp(GamepadButton /*button*/) {}
  virtual void gamepadAxisMoved(GamepadAxis /*axis*/, double /*value*/) {}
  virtual void gamepadDisconnected() {}
  // The window lost the keyboard focus or was minimised.
  virtual void windowDidLoseFocus() {}

 private:
  friend class View;
  friend class Node;
  // Starts the looped audio of the tree when a view arrives, and marks it stopped when the view goes.
  void startAudio();
  void stopAudio(bool tellOutput);
  // Every node below `node` notes its placement as a step starts or ends, for the frames in between.
  static void recordStep(Node& node, bool inSight, bool atStart);

  Size size_;
  View* view_ = nullptr;
  double time_ = 0;
  Random random_;
  // Nodes that may have running actions, so that a frame does not walk the whole tree.
  std::vector<std::weak_ptr<Node>> actionNodes_;
};

}  // namespace zb

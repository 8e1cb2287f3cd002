#pragma once
// Timed actions. Each action maps a normalised time t in [0, 1] onto its effect with linear timing; a
// sequence splits its duration among its parts; a move-by applies only the change since its last
// step, so that moves running side by side on one node add up. Instant actions take effect at the
// next action step of the scene after they are run.
#include <filesystem>
#include <memory>
#include <vector>

#include "engine/node.hpp"

namespace zb {

class Action {
 public:
  virtual ~Action() = default;
  // Seconds; 0 for instant actions, infinite for repeat-forever.
  virtual double duration() const = 0;
  // True for actions that keep running while the scene is paused (volume changes, and sequences and
  // repeats made only of them).
  virtual bool runsWhilePaused() const { return false; }

  // Runtime state of one run of an action on one node.
  class Run {
   public:
    virtual ~Run() = default;
    // Advances by dt seconds; returns the time left over after the action finished (or a negative
    // number while it is still running).
    virtual double step(Node& target, double dt) = 0;
  };
  virtual std::unique_ptr<Run> start(Node& target) const = 0;
};

namespace actions {
ActionPtr moveBy(double dx, double dy, double duration);
ActionPtr moveToX(double x, double duration);
ActionPtr fadeOut(double duration);
ActionPtr rotateBy(double angle, double duration);
// Only for audio nodes; on other nodes it just takes its time.
ActionPtr changeVolumeTo(float volume, double duration);
// Plays the file once through the scene's sound output.
ActionPtr playSoundFile(std::filesystem::path file);
ActionPtr removeFromParent();
ActionPtr sequence(std::vector<ActionPtr> parts);
ActionPtr repeatForever(ActionPtr action);
}  // namespace actions

}  // namespace zb

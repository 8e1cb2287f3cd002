#pragma once
// The built-in player's judgement: given what is in sight, when to press the jump key and when to
// hold the duck key so that the figure's box clears every obstacle. The planner knows how the
// figure's own body moves (gravity, jump, coyote time, jump buffer) the way a practised player
// does, and nothing about obstacles beyond what can be seen of them.
#include <cstdint>
#include <vector>

#include "gameplay/runner_body.hpp"

namespace zb {

// The figure's vertical state as the player tracks it: the game's own body motion.
using Body = RunnerBody;

// One frame of the body; `pressJump` is a press of the jump key just before the frame.
void stepBody(Body& body, bool pressJump);

// An obstacle as seen: its horizontal extent in scene x and its vertical extent above the ground.
struct Sighting {
  double minX = 0;
  double maxX = 0;
  double bottom = 0;
  double top = 0;
};

struct Situation {
  Body body;
  double playerX = 0;  // centre of the figure's box
  double speed = 0;    // leftward motion of the obstacles in the coming frame
  // The motion speeds up by `speedUp` each time the score reaches a multiple of `speedUpEvery`.
  int64_t score = 0;
  int64_t speedUpEvery = 1;
  double speedUp = 0;
  std::vector<Sighting> obstacles;
};

// Key presses for the coming frames, as offsets from now (0 is the coming frame), ascending.
struct Plan {
  std::vector<int64_t> jumps;
  std::vector<int64_t> ducks;
  // Frames the plan looks ahead: after these, every obstacle in sight has passed.
  int64_t horizon = 0;
  // Whether the figure clears everything in sight; if not, the plan survives as long as it can.
  bool clears = true;
};

Plan planJumps(const Situation& situation);

}  // namespace zb

#include "gameplay/runner_body.hpp"

#include "engine/checked.hpp"
#include "scene/game_scene.hpp"

namespace zb {

bool isGrounded(const RunnerBody& body) { return body.footAltitude <= kGroundedEpsilon; }

double heightOf(const RunnerBody& body) {
  return isGrounded(body) && body.ducking ? kPlayerHeightDucking : kPlayerHeightStanding;
}

void stepRunnerBody(RunnerBody& body, int64_t coyoteTimeFrames) {
  body.velocityY += kGravity;
  body.footAltitude += body.velocityY;
  if (body.footAltitude < 0) {
    body.footAltitude = 0;
    body.velocityY = 0;
  }
  const bool grounded = isGrounded(body);
  body.framesSinceLeftGround = grounded ? 0 : checkedAdd(body.framesSinceLeftGround, 1);
  if (body.bufferedJumpFrames < 1) return;
  if (grounded || coyoteTimeFrames >= body.framesSinceLeftGround) {
    body.velocityY = kJumpVelocity;
    body.bufferedJumpFrames = 0;
  } else {
    body.bufferedJumpFrames = checkedSub(body.bufferedJumpFrames, 1);
  }
}

}  // namespace zb

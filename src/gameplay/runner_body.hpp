#pragma once
// The runner's vertical motion as plain numbers, one step per frame: gravity, the ground clamp, a
// buffered jump granted on the ground or within the coyote time, and the standing or ducking height.
// The scene moves its figure with it and the built-in player predicts flights with it, so what the
// player expects is always what the figure does.
#include <cstdint>

namespace zb {

struct RunnerBody {
  double footAltitude = 0;  // feet above the ground line, in points
  double velocityY = 0;     // points per frame, up positive
  int64_t framesSinceLeftGround = 0;
  int64_t bufferedJumpFrames = 0;  // frames a pressed jump stays pending
  bool ducking = false;
};

bool isGrounded(const RunnerBody& body);
// A duck lowers the body only on the ground.
double heightOf(const RunnerBody& body);
// One frame. A pending jump is granted on the ground, or in the air while `coyoteTimeFrames` lasts;
// otherwise it waits, counting down only while airborne, and may still be granted on the landing step.
void stepRunnerBody(RunnerBody& body, int64_t coyoteTimeFrames);

}  // namespace zb

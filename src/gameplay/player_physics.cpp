// The figure's vertical motion, one step per frame: gravity, the ground clamp, a buffered jump with
// coyote time, the standing or ducking height, and the choice of pose. Nothing is scaled by time.
#include "engine/checked.hpp"
#include "gameplay/runner_body.hpp"
#include "scene/game_scene.hpp"

namespace zb {

namespace {

constexpr int64_t kRunPoseFrames = 7;  // frames each run pose is held
constexpr int64_t kRunPoseCount = 4;

}  // namespace

RunnerBody GameScene::runnerBody() const {
  return {playerFootAltitude, playerVelocityY, framesSinceLeftGround, bufferedJumpFramesRemaining, isDucking};
}

bool GameScene::isPlayerGrounded() const { return isGrounded(runnerBody()); }

double GameScene::currentPlayerHeight() const { return heightOf(runnerBody()); }

void GameScene::updatePlayer() {
  RunnerBody body = runnerBody();
  stepRunnerBody(body, coyoteTimeFrames);
  playerFootAltitude = body.footAltitude;
  playerVelocityY = body.velocityY;
  framesSinceLeftGround = body.framesSinceLeftGround;
  bufferedJumpFramesRemaining = body.bufferedJumpFrames;
  const bool grounded = isGrounded(body);

  const double height = currentPlayerHeight();
  playerContainer->position.y = groundHeightFromBottom + height * 0.5 + playerFootAltitude;

  if (gameState == GameState::playing && grounded && !isDucking) {
    advanceRunCycle();
  } else if (grounded && isDucking) {
    applyDuckPose(height);
  } else {
    applyAirPose();
  }
}

// The pose on screen changes only when the counter comes round, so right after a landing the air
// pose lingers for a few frames.
void GameScene::advanceRunCycle() {
  runAnimationFrameCounter = checkedAdd(runAnimationFrameCounter, 1);
  if (runAnimationFrameCounter < kRunPoseFrames) return;
  runAnimationFrameCounter = 0;
  runAnimationFrameIndex = checkedMod(checkedAdd(runAnimationFrameIndex, 1), kRunPoseCount);
  applyRunPose(runAnimationFrameIndex);
}

}  // namespace zb

// The figure's vertical motion, one step per frame: gravity, the ground clamp, a buffered jump with
// coyote time, the standing or ducking height, and the choice of pose. Nothing is scaled by time.
#include "engine/checked.hpp"
#include "scene/game_scene.hpp"

namespace zb {

namespace {

constexpr int64_t kRunPoseFrames = 7;  // frames each run pose is held
constexpr int64_t kRunPoseCount = 4;

}  // namespace

bool GameScene::isPlayerGrounded() const { return playerFootAltitude <= kGroundedEpsilon; }

double GameScene::currentPlayerHeight() const {
  return isPlayerGrounded() && isDucking ? kPlayerHeightDucking : kPlayerHeightStanding;
}

void GameScene::updatePlayer() {
  playerVelocityY += kGravity;
  playerFootAltitude += playerVelocityY;
  if (playerFootAltitude < 0) {
    playerFootAltitude = 0;
    playerVelocityY = 0;
  }

  // A request is granted on the ground, or in the air while the coyote time lasts; otherwise it
  // waits, counting down only while airborne, and may still be granted on the landing step.
  const bool grounded = isPlayerGrounded();
  if (grounded) {
    framesSinceLeftGround = 0;
  } else {
    framesSinceLeftGround = checkedAdd(framesSinceLeftGround, 1);
  }
  if (bufferedJumpFramesRemaining >= 1) {
    if (grounded || coyoteTimeFrames >= framesSinceLeftGround) {
      playerVelocityY = kJumpVelocity;
      bufferedJumpFramesRemaining = 0;
    } else {
      bufferedJumpFramesRemaining = checkedSub(bufferedJumpFramesRemaining, 1);
    }
  }

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

// The player's idea of the figure's flight must be the flight the figure flies, presses and all.
#include "player/jump_planner.hpp"

#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

TEST(JumpPlanner, PredictsTheFigureFrameForFrameThroughTakeOffCoyoteTimeBufferAndLanding) {
  test::AttachedScene game;
  game.press(keycode::space);
  Body predicted;
  // A take-off, a second press inside the coyote time, a late one held in the buffer, one on the ground.
  for (int frame = 0; frame < 120; ++frame) {
    const bool press = frame == 0 || frame == 5 || frame == 70 || frame == 100;
    if (press) game->requestJump();
    game->updatePlayer();
    stepBody(predicted, press);
    ASSERT_EQ(predicted.footAltitude, game->playerFootAltitude) << "frame " << frame;
    ASSERT_EQ(predicted.velocityY, game->playerVelocityY) << "frame " << frame;
    ASSERT_EQ(predicted.bufferedJumpFrames, game->bufferedJumpFramesRemaining) << "frame " << frame;
  }
}

}  // namespace
}  // namespace zb

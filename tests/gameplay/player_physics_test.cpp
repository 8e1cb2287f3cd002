// The figure's vertical motion step by step: jump arc, coyote time, the jump buffer, ducking height
// and the run cycle.
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using GameState = GameScene::GameState;
using test::AttachedScene;

// A running game whose physics the test steps by hand, so nothing else moves in between.
struct Runner {
  Runner() { game.press(keycode::space); }
  void step(int n = 1) {
    for (int i = 0; i < n; ++i) game->updatePlayer();
  }
  GameScene& s() { return *game; }
  AttachedScene game;
};

TEST(PlayerPhysics, StandingStillStaysOnTheGround) {
  Runner r;
  r.step();
  EXPECT_EQ(r.s().playerFootAltitude, 0);
  EXPECT_EQ(r.s().playerVelocityY, 0);
  EXPECT_EQ(r.s().framesSinceLeftGround, 0);
  EXPECT_EQ(r.s().playerContainer->position.y, 80) << "centre of a standing figure: 50 + 30";
}

TEST(PlayerPhysics, JumpArcPeaksAt114AndLandsOnThe39thStep) {
  Runner r;
  r.s().requestJump();
  r.step();  // take-off: only the velocity changes
  EXPECT_EQ(r.s().playerVelocityY, 12.0);
  EXPECT_EQ(r.s().playerFootAltitude, 0);
  EXPECT_EQ(r.s().bufferedJumpFramesRemaining, 0);
  r.step();
  EXPECT_DOUBLE_EQ(r.s().playerFootAltitude, 11.4);
  r.step(17);
  EXPECT_LT(r.s().playerFootAltitude, 114 - 0.5);
  r.step();
  EXPECT_NEAR(r.s().playerFootAltitude, 114, 1e-9) << "apex after 19 steps";
  EXPECT_NEAR(r.s().playerContainer->position.y, 80 + 114, 1e-9);
  r.step(19);
  EXPECT_GT(r.s().playerFootAltitude, 1.0) << "still airborne after 38 steps";
  EXPECT_EQ(r.s().framesSinceLeftGround, 38);
  r.step();
  EXPECT_LE(r.s().playerFootAltitude, kGroundedEpsilon) << "the 39th step lands";
  EXPECT_EQ(r.s().framesSinceLeftGround, 0);
  r.step();
  EXPECT_EQ(r.s().playerFootAltitude, 0);
  EXPECT_EQ(r.s().playerVelocityY, 0);
}

// Takes off, then spends `airborne` steps in the air, then asks for a jump and steps once more.
void requestAfterAirborneSteps(Runner& r, int airborne) {
  r.s().requestJump();
  r.step();
  r.step(airborne - 1);
  r.s().requestJump();
  r.step();
}

TEST(PlayerPhysics, CoyoteTimeGrantsAJumpUpToTheNinthAirborneStep) {
  Runner granted;
  requestAfterAirborneSteps(granted, 9);
  EXPECT_EQ(granted.s().framesSinceLeftGround, 9);
  EXPECT_EQ(granted.s().playerVelocityY, 12.0) << "ascent restarts at full speed";
  EXPECT_EQ(granted.s().bufferedJumpFramesRemaining, 0);

  Runner held;
  requestAfterAirborneSteps(held, 10);
  EXPECT_EQ(held.s().framesSinceLeftGround, 10);
  EXPECT_NE(held.s().playerVelocityY, 12.0);
  EXPECT_EQ(held.s().bufferedJumpFramesRemaining, 8) << "held and counted down";
}

TEST(PlayerPhysics, BufferedRequestIsGrantedOnTheLandingStepOrLost) {
  // Take-off, then a request before airborne step 31: eight airborne steps leave it at 1 on landing.
  Runner granted;
  requestAfterAirborneSteps(granted, 31);
  EXPECT_EQ(granted.s().bufferedJumpFramesRemaining, 8);
  granted.step(7);
  EXPECT_EQ(granted.s().bufferedJumpFramesRemaining, 1);
  granted.step();  // the landing step
  EXPECT_EQ(granted.s().framesSinceLeftGround, 0);
  EXPECT_EQ(granted.s().playerVelocityY, 12.0);
  EXPECT_EQ(granted.s().bufferedJumpFramesRemaining, 0);
  granted.step();
  EXPECT_NEAR(granted.s().playerFootAltitude, 11.4, 1e-9);

  // One step earlier, nine airborne steps use the request up before the ground is reached.
  Runner lost;
  requestAfterAirborneSteps(lost, 30);
  lost.step(8);
  EXPECT_EQ(lost.s().bufferedJumpFramesRemaining, 0);
  lost.step();  // landing, nothing pending
  EXPECT_EQ(lost.s().framesSinceLeftGround, 0);
  lost.step();
  EXPECT_EQ(lost.s().playerFootAltitude, 0);
}

TEST(PlayerPhysics, DuckingLowersTheFigureOnlyOnTheGround) {
  Runner r;
  r.s().isDucking = true;
  r.step();
  EXPECT_EQ(r.s().playerContainer->position.y, 68) << "50 + 18";
  r.s().isDucking = false;
  r.s().requestJump();
  r.step(3);
  r.s().isDucking = true;
  r.step();
  const double altitude = r.s().playerFootAltitude;
  EXPECT_GT(altitude, 0);
  EXPECT_DOUBLE_EQ(r.s().playerContainer->position.y, 80 + altitude) << "standing height in the air";
}

TEST(PlayerPhysics, RunCycleAdvancesEverySevenGroundedStepsWhilePlaying) {
  Runner r;
  r.step(6);
  EXPECT_EQ(r.s().runAnimationFrameIndex, 0);
  r.step();
  EXPECT_EQ(r.s().runAnimationFrameIndex, 1);
  EXPECT_EQ(r.s().runAnimationFrameCounter, 0);
  r.step(21);
  EXPECT_EQ(r.s().runAnimationFrameIndex, 0) << "a full cycle is 28 steps";

  // Off the run, the counters keep their values.
  r.step(3);
  r.game.press(keycode::escape);
  const int64_t counter = r.s().runAnimationFrameCounter;
  r.step(20);
  EXPECT_EQ(r.s().runAnimationFrameCounter, counter);
}

TEST(PlayerPhysics, AirborneCounterOverflowTraps) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        Runner r;
        r.s().playerFootAltitude = 50;
        r.s().framesSinceLeftGround = INT64_MAX;
        r.step();
      },
      "");
}

}  // namespace
}  // namespace zb

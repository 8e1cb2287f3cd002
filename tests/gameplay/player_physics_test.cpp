// The figure's vertical motion step by step: the jump arc, coyote time and the jump buffer.
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

// A running game whose physics the test steps by hand, so nothing else moves in between.
struct Runner {
  Runner() { game.press(keycode::space); }
  void step(int n = 1) {
    for (int i = 0; i < n; ++i) game->updatePlayer();
  }
  // Takes off, spends `airborne` steps in the air, then asks for a jump and steps once more.
  void requestAfterAirborneSteps(int airborne) {
    game->requestJump();
    step(airborne);
    game->requestJump();
    step();
  }
  test::AttachedScene game;
  GameScene& s = *game;
};

TEST(PlayerPhysics, JumpArcPeaksAt114AfterStep19AndLandsOnStep39) {
  Runner r;
  r.step();
  EXPECT_EQ(r.s.playerContainer->position.y, 80) << "standing still: 50 + 30";
  r.s.requestJump();
  r.step();  // take-off: only the velocity changes
  EXPECT_EQ(r.s.playerFootAltitude, 0);
  r.step(19);
  EXPECT_NEAR(r.s.playerFootAltitude, 114, 1e-9) << "apex";
  EXPECT_NEAR(r.s.playerContainer->position.y, 80 + 114, 1e-9);
  r.step(19);
  EXPECT_GT(r.s.playerFootAltitude, 1.0) << "still airborne after 38 steps";
  r.step();
  EXPECT_LE(r.s.playerFootAltitude, kGroundedEpsilon) << "the 39th step lands";
  EXPECT_EQ(r.s.framesSinceLeftGround, 0);
}

TEST(PlayerPhysics, CoyoteTimeGrantsAJumpOnAirborneStep9NotOn10) {
  for (int airborne : {9, 10}) {
    SCOPED_TRACE(airborne);
    Runner r;
    r.requestAfterAirborneSteps(airborne);
    EXPECT_EQ(r.s.framesSinceLeftGround, airborne);
    EXPECT_EQ(r.s.playerVelocityY == 12.0, airborne == 9) << "a granted jump restarts the ascent at full speed";
    EXPECT_EQ(r.s.bufferedJumpFramesRemaining, airborne == 9 ? 0 : 8) << "a refused one is held and counted down";
  }
}

TEST(PlayerPhysics, BufferedRequestIsGrantedOnTheLandingStepOrLost) {
  // A request made at airborne step 31 has one frame left when the 39th step lands; one made at 30 has none.
  for (int airborne : {31, 30}) {
    SCOPED_TRACE(airborne);
    Runner r;
    r.requestAfterAirborneSteps(airborne);
    r.step(38 - airborne);
    EXPECT_EQ(r.s.bufferedJumpFramesRemaining, airborne == 31 ? 1 : 0);
    r.step();  // the landing step
    EXPECT_EQ(r.s.framesSinceLeftGround, 0);
    r.step();
    EXPECT_EQ(r.s.playerFootAltitude > 11, airborne == 31) << "off again at once, or still on the ground";
  }
}

}  // namespace
}  // namespace zb

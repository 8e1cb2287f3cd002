#include "platform/frame_pacer.hpp"
#include "platform/frame_rate_meter.hpp"

#include <gtest/gtest.h>

namespace zb {
namespace {

// Other refresh rates without vsync, and slower game speeds, are covered with the game speed option;
// stalls and waits with the frame loop.
TEST(FramePacer, AtSixtyHertzEachFrameTakesExactlyOneStepDespiteJitter) {
  FramePacer pacer(true);
  double now = 100;
  pacer.stepsDue(now);  // starts the clock
  for (int i = 0; i < 600; ++i) {
    now += 1.0 / 60 + (i % 2 == 0 ? 0.004 : -0.004);  // alternately early and late
    EXPECT_EQ(pacer.stepsDue(now), 1) << "frame " << i;
  }
}

// What the frame-rate counter shows follows the frames actually drawn.
TEST(FrameRateMeter, ReportsFramesPerSecondOverHalfSecondWindows) {
  FrameRateMeter meter;
  for (int i = 0; i <= 60; ++i) meter.frameDrawn(i / 60.0);
  EXPECT_NEAR(meter.framesPerSecond(), 60, 0.5);
  for (int i = 1; i <= 30; ++i) meter.frameDrawn(1 + i / 30.0);
  EXPECT_NEAR(meter.framesPerSecond(), 30, 0.5);
}

}  // namespace
}  // namespace zb

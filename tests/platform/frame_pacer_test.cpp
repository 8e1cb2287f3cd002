#include "platform/frame_pacer.hpp"
#include "platform/frame_rate_meter.hpp"

#include <gtest/gtest.h>

namespace zb {
namespace {

// The steps taken over `seconds` of frames at `hz` with vsync, each frame alternately early and late.
int stepsAt(double hz, double jitter, double seconds) {
  FramePacer pacer(true);
  double now = 100;
  pacer.stepsDue(now);  // starts the clock
  int steps = 0;
  for (int i = 0; i < static_cast<int>(seconds * hz + 0.5); ++i) {
    now += 1 / hz + (i % 2 == 0 ? jitter : -jitter);
    const int due = pacer.stepsDue(now);
    EXPECT_LE(due, 1) << "two steps in one pass at " << hz << " Hz";
    steps += due;
  }
  return steps;
}

// Other refresh rates without vsync, and slower game speeds, are covered with the game speed option;
// stalls and waits with the frame loop.
TEST(FramePacer, SixtyStepsASecondAtAnyRefreshRateNeverTwoInOnePass) {
  EXPECT_EQ(stepsAt(60, 0.004, 10), 600) << "exactly one step per frame despite jitter";
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

#include "platform/frame_pacer.hpp"

#include <gtest/gtest.h>

#include "platform/frame_rate_meter.hpp"

namespace zb {
namespace {

TEST(FramePacer, SixtyStepsASecondAtAnyRefreshRateNeverTwoInOnePass) {
  // Other refresh rates without vsync, and slower game speeds, are covered with the game speed option.
  struct Case {
    double hz, jitter, seconds;
    int steps, tolerance;
  };
  const Case cases[] = {
      {60, 0.004, 10, 600, 0},  // exactly one step per frame despite jitter
      {59.94, 0, 60, 3596, 0},  // and despite a panel's drift
      {1000, 0, 5, 300, 2},     // a vsync that stops blocking, e.g. a minimised window
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hz);
    FramePacer pacer(true);
    double now = 100;
    pacer.stepsDue(now);  // starts the clock
    int steps = 0;
    for (int i = 0; i < static_cast<int>(c.seconds * c.hz + 0.5); ++i) {
      now += 1 / c.hz + (i % 2 == 0 ? c.jitter : -c.jitter);
      const int due = pacer.stepsDue(now);
      EXPECT_LE(due, 1) << "pass " << i;
      steps += due;
    }
    EXPECT_NEAR(steps, c.steps, c.tolerance);
  }
}

TEST(FramePacer, ShortStallsAreCaughtUpLongOnesDroppedAndBackwardClocksIgnored) {
  FramePacer pacer(false);
  EXPECT_EQ(pacer.stepsDue(0), 1);
  EXPECT_NEAR(pacer.secondsUntilNextStep(0.01), 1.0 / 60 - 0.01, 1e-9);
  EXPECT_EQ(pacer.stepsDue(3.0 / 60 + 0.001), 3);
  EXPECT_EQ(pacer.stepsDue(3.0 / 60 + 2.0), FramePacer::kMaxCatchUpSteps);
  EXPECT_EQ(pacer.stepsDue(3.0 / 60 + 2.001), 0);
  EXPECT_EQ(pacer.stepsDue(1), 0);
  EXPECT_EQ(pacer.stepsDue(1 + 1.0 / 60 + 1e-6), 1);
}

TEST(FrameRateMeter, ReportsFramesPerSecondOverHalfSecondWindows) {
  FrameRateMeter meter;
  for (int i = 0; i <= 60; ++i) meter.frameDrawn(i / 60.0);
  EXPECT_NEAR(meter.framesPerSecond(), 60, 0.5);
  for (int i = 1; i <= 30; ++i) meter.frameDrawn(1 + i / 30.0);
  EXPECT_NEAR(meter.framesPerSecond(), 30, 0.5);
}

}  // namespace
}  // namespace zb

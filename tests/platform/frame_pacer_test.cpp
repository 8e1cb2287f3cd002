#include "platform/frame_pacer.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/frame_rate_meter.hpp"

namespace zb {
namespace {

struct Tally {
  int steps = 0;
  int maxPerPass = 0;
  int passesWithoutStep = 0;
};

// Runs passes `interval` seconds apart (plus `jitter` alternating in sign) for `seconds` of real time.
Tally run(FramePacer& pacer, double interval, double seconds, double jitter = 0) {
  Tally tally;
  double now = 100;
  pacer.stepsDue(now);  // starts the clock
  const int passes = static_cast<int>(seconds / interval + 0.5);
  for (int i = 0; i < passes; ++i) {
    now += interval + (i % 2 == 0 ? jitter : -jitter);
    const int steps = pacer.stepsDue(now);
    tally.steps += steps;
    tally.maxPerPass = std::max(tally.maxPerPass, steps);
    tally.passesWithoutStep += steps == 0;
  }
  return tally;
}

TEST(FramePacer, HighRefreshDisplaysStillGetSixtyStepsASecond) {
  for (double hz : {120.0, 144.0, 240.0, 75.0}) {
    FramePacer pacer(false);
    const Tally tally = run(pacer, 1.0 / hz, 10);
    EXPECT_NEAR(tally.steps, 600, 1) << hz << " Hz";
    EXPECT_EQ(tally.maxPerPass, 1) << hz << " Hz";
  }
}

TEST(FramePacer, VsyncAtSixtyHertzStepsExactlyOncePerFrameDespiteJitterAndDrift) {
  FramePacer pacer(true);
  const Tally jittery = run(pacer, 1.0 / 60, 10, 0.004);
  EXPECT_EQ(jittery.steps, 600);
  EXPECT_EQ(jittery.passesWithoutStep, 0);
  FramePacer ntsc(true);
  const Tally drifting = run(ntsc, 1.0 / 59.94, 60);
  EXPECT_EQ(drifting.passesWithoutStep, 0);
  EXPECT_EQ(drifting.maxPerPass, 1);
}

TEST(FramePacer, VsyncThatStopsBlockingDoesNotSpeedTheGameUp) {
  FramePacer pacer(true);
  const Tally tally = run(pacer, 0.001, 5);  // presents return at once, e.g. a minimised window
  EXPECT_NEAR(tally.steps, 300, 2);
}

TEST(FramePacer, ShortStallsAreCaughtUpAndLongOnesDropped) {
  FramePacer pacer(false);
  pacer.stepsDue(0);
  EXPECT_EQ(pacer.stepsDue(3.0 / 60 + 0.001), 3);
  EXPECT_EQ(pacer.stepsDue(3.0 / 60 + 2.0), FramePacer::kMaxCatchUpSteps);
  // The backlog is gone: the next pass a moment later has nothing to do.
  EXPECT_EQ(pacer.stepsDue(3.0 / 60 + 2.001), 0);
  EXPECT_GT(pacer.secondsUntilNextStep(3.0 / 60 + 2.001), 0);
}

TEST(FramePacer, SaysHowLongToWaitForTheNextStep) {
  FramePacer pacer(false);
  EXPECT_EQ(pacer.stepsDue(10), 1);
  EXPECT_NEAR(pacer.secondsUntilNextStep(10), 1.0 / 60, 1e-9);
  EXPECT_NEAR(pacer.secondsUntilNextStep(10 + 0.01), 1.0 / 60 - 0.01, 1e-9);
  EXPECT_EQ(pacer.secondsUntilNextStep(10 + 0.02), 0);
  EXPECT_EQ(pacer.stepsDue(10 + 0.02), 1);
}

TEST(FramePacer, ClockGoingBackwardsCountsAsNoTime) {
  FramePacer pacer(false);
  pacer.stepsDue(50);
  EXPECT_EQ(pacer.stepsDue(40), 0);
  EXPECT_EQ(pacer.stepsDue(40 + 1.0 / 60 + 1e-6), 1);
}

TEST(FrameRateMeter, ReportsFramesPerSecondOverHalfSecondWindows) {
  FrameRateMeter meter;
  EXPECT_EQ(meter.framesPerSecond(), 0);
  for (int i = 0; i <= 60; ++i) meter.frameDrawn(i / 60.0);
  EXPECT_NEAR(meter.framesPerSecond(), 60, 0.5);
  for (int i = 1; i <= 30; ++i) meter.frameDrawn(1 + i / 30.0);
  EXPECT_NEAR(meter.framesPerSecond(), 30, 0.5);
}

}  // namespace
}  // namespace zb

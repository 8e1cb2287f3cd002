// The main loop against a fake clock: stutter, a frozen picture or a game racing to catch up after a stall.
#include "platform/frame_loop.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "display_motion.hpp"
#include "engine/view.hpp"
#include "platform/frame_pacer.hpp"

namespace zb {
namespace {

// Before each pass the clock moves by the next advance. The log: 's' a step, 'd' a draw, 'w' a wait of
// at most a step, '?' any other wait.
struct FakeHost : FrameLoopHost {
  bool handleEvents() override {
    if (pass == advances.size()) return false;
    clock += advances[pass++];
    return true;
  }
  double now() override { return clock; }
  void waitFor(double seconds) override { log += seconds > 0 && seconds <= 1.0 / 60 ? 'w' : '?'; }
  bool minimized() override { return isMinimized; }
  bool draw(double, double stepFraction) override {
    log += 'd';
    fractions.push_back(stepFraction);
    return true;
  }
  double vblankPeriod() override { return vblank; }
  std::vector<double> advances, fractions;
  std::string log;
  bool isMinimized = false;
  double vblank = 0, clock = 0;
  size_t pass = 0;
};

// The host after the loop has run through `advances`, with vertical blanks every `vblank` if given.
FakeHost run(std::vector<double> advances, bool minimized = false, std::optional<int64_t> frameLimit = {},
             double vblank = 0) {
  FrameLoopOptions options;
  options.frameLimit = frameLimit;
  FakeHost host;
  host.advances = std::move(advances);
  host.isMinimized = minimized;
  host.vblank = vblank;
  options.beforeStep = [&] { host.log += 's'; };
  View view(Size{100, 100});
  FramePacer pacer;
  runFrames(view, pacer, host, options);
  return host;
}

TEST(FrameLoop, EachDrawFollowsAStepNoneComesWithoutOneOrWhenMinimisedAndAStallIsCaughtUpALittle) {
  const double onTime = 1.001 / 60;
  EXPECT_EQ(run({0, onTime, onTime, onTime}, false, 2).log, "sdsd") << "stops at the frame limit";
  // A pass that comes too early waits instead of drawing the same picture again.
  EXPECT_EQ(run({0, onTime / 10, onTime}).log, "sdwsd");
  EXPECT_EQ(run({0, onTime, onTime}, true).log, "sss") << "a minimised window keeps time without drawing";
  // A short stall is made up, a second's stall is not raced through, and only its last step is drawn.
  EXPECT_EQ(run({0, 3.001 / 60}).log, "sdsssd");
  EXPECT_EQ(run({0, 1.0}).log, "sd" + std::string(FramePacer::kMaxCatchUpSteps, 's') + "d");
}

// Counted on a fake clock: every frame moves the obstacle on (F = 0), and by nearly the same distance
// (R <= 1.25), where steps and vertical blanks do not line up and at half the game's speed.
TEST(FrameLoop, MotionIsEvenOnA144HzDisplayAndAtHalfSpeedOnEitherPath) {
  // The last case wakes up to 2 ms after each vertical blank, differently every time.
  const bench::DisplayCase cases[] = {{144, 1.0}, {60, 0.5}, {0, 0.5}, {75, 0.75}, {144, 1.0, 0.002}};
  for (const bench::DisplayCase display : cases) {
    const bench::MotionTally tally = bench::measureMotion(display, 20, Size{800, 600}, 5);
    const double expectedFrames = display.hz > 0 ? display.hz : 60;
    SCOPED_TRACE(std::to_string(display.hz) + " Hz at speed " + std::to_string(display.speed));
    EXPECT_NEAR(tally.framesDrawn, 20 * expectedFrames, 2) << "a frame at every vertical blank or timer tick";
    EXPECT_NEAR(tally.steps, 20 * 60 * display.speed, 2) << "the game keeps its own pace";
    EXPECT_GT(tally.frames, 5 * expectedFrames) << "the run must see obstacles scroll";
    EXPECT_EQ(tally.still, 0);
    EXPECT_LE(tally.stepRatio(), 1.25);
  }
}

TEST(FrameLoop, BetweenStepsAFrameNeverTakesTwoStepsAndAStopShowsTheLastStepWhole) {
  const FakeHost host = run(std::vector<double>(40, 1 / 144.0), false, 10, 1 / 144.0);
  EXPECT_EQ(host.log.find("ss"), std::string::npos) << host.log;
  EXPECT_NE(host.log.find("dd"), std::string::npos) << "frames come between steps: " << host.log;
  ASSERT_FALSE(host.fractions.empty());
  EXPECT_EQ(host.fractions.back(), 1.0) << "the frame limit's last picture is the last step itself";
  for (double f : host.fractions) EXPECT_TRUE(f >= 0 && f <= 1) << f;
}

}  // namespace
}  // namespace zb

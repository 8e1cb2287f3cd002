// The main loop against a fake clock: stutter, a frozen picture or a game racing to catch up after a stall.
#include "platform/frame_loop.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

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
  bool draw(double, double) override {
    log += 'd';
    return true;
  }
  std::vector<double> advances;
  bool isMinimized = false;
  std::string log;
  size_t pass = 0;
  double clock = 0;
};

std::string run(std::vector<double> advances, bool minimized = false, std::optional<int64_t> frameLimit = {}) {
  FrameLoopOptions options;
  options.frameLimit = frameLimit;
  FakeHost host;
  host.advances = std::move(advances);
  host.isMinimized = minimized;
  options.beforeStep = [&] { host.log += 's'; };
  View view(Size{100, 100});
  FramePacer pacer;
  runFrames(view, pacer, host, options);
  return host.log;
}

TEST(FrameLoop, EachDrawFollowsAStepNoneComesWithoutOneOrWhenMinimisedAndAStallIsCaughtUpALittle) {
  const double onTime = 1.001 / 60;
  EXPECT_EQ(run({0, onTime, onTime, onTime}, false, 2), "sdsd") << "stops at the frame limit";
  // A pass that comes too early waits instead of drawing the same picture again.
  EXPECT_EQ(run({0, onTime / 10, onTime}), "sdwsd");
  EXPECT_EQ(run({0, onTime, onTime}, true), "sss") << "a minimised window keeps time without drawing";
  // A short stall is made up, a second's stall is not raced through, and only its last step is drawn.
  EXPECT_EQ(run({0, 3.001 / 60}), "sdsssd");
  EXPECT_EQ(run({0, 1.0}), "sd" + std::string(FramePacer::kMaxCatchUpSteps, 's') + "d");
}

}  // namespace
}  // namespace zb

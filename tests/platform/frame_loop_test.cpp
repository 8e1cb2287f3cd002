// The main loop against a fake clock: what a player would see as stutter, a frozen picture or a game
// racing to catch up after a stall.
#include "platform/frame_loop.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/scene.hpp"
#include "engine/view.hpp"
#include "platform/frame_pacer.hpp"

namespace zb {
namespace {

constexpr double kStep = 1.0 / 60.0;

// Writes 's' for every simulation step it sees.
class LoggingScene : public Scene {
 public:
  explicit LoggingScene(std::string& log) : Scene(Size{100, 100}), log_(log) {}
  void update(double) override { log_ += 's'; }

 private:
  std::string& log_;
};

// Before each pass the clock moves by the next advance; 'd' is a draw, 'w' a wait for the next step.
class FakeHost : public FrameLoopHost {
 public:
  FakeHost(std::vector<double> advances, bool minimized) : advances_(std::move(advances)), minimized_(minimized) {}
  bool handleEvents() override {
    if (pass_ == advances_.size()) return false;
    clock_ += advances_[pass_++];
    return true;
  }
  double now() override { return clock_; }
  void waitFor(double) override { log += 'w'; }
  bool minimized() override { return minimized_; }
  bool draw(double) override {
    log += 'd';
    return true;
  }
  std::string log;

 private:
  std::vector<double> advances_;
  bool minimized_;
  size_t pass_ = 0;
  double clock_ = 0;
};

std::string run(std::vector<double> advances, bool minimized = false, FrameLoopOptions options = {}) {
  FakeHost host(std::move(advances), minimized);
  View view(Size{100, 100});
  view.presentScene(std::make_shared<LoggingScene>(host.log));
  host.log.clear();  // attaching may already update
  FramePacer pacer;
  runFrames(view, pacer, host, options);
  return host.log;
}

TEST(FrameLoop, EachDrawFollowsAStepAndNothingIsDrawnWithoutOneOrWhenMinimised) {
  const double onTime = kStep * 1.001;
  int presents = 0;
  FrameLoopOptions options;
  options.frameLimit = 2;
  options.afterFirstPresent = [&] { ++presents; };
  EXPECT_EQ(run({0, onTime, onTime, onTime}, false, options), "sdsd") << "stops at the frame limit";
  EXPECT_EQ(presents, 1);
  // A pass that comes too early waits instead of drawing the same picture again.
  EXPECT_EQ(run({0, kStep / 10, onTime}), "sdwsd");
  EXPECT_EQ(run({0, onTime, onTime}, true), "sss") << "a minimised window keeps time without drawing";
}

TEST(FrameLoop, AStallIsCaughtUpOnlyALittleThenDrawnOnce) {
  // A short stall is made up, a second's stall is not raced through, and only its last step is drawn.
  EXPECT_THAT(run({0, 1.0}), testing::MatchesRegex("sds{2,9}d"));
}

}  // namespace
}  // namespace zb

// The main loop against a fake clock: what a player would see as stutter, a frozen picture or a game
// racing to catch up after a stall.
#include "platform/frame_loop.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
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
  FakeHost(std::vector<double> advances, std::string& log) : advances_(std::move(advances)), log_(log) {}
  bool handleEvents() override {
    if (pass_ == advances_.size()) return false;
    clock_ += advances_[pass_++];
    return true;
  }
  double now() override { return clock_; }
  void waitFor(double) override { log_ += 'w'; }
  bool minimized() override { return minimized_; }
  bool draw(double) override {
    log_ += 'd';
    return true;
  }
  bool minimized_ = false;

 private:
  std::vector<double> advances_;
  size_t pass_ = 0;
  double clock_ = 0;
  std::string& log_;
};

std::string run(std::vector<double> advances, bool minimized = false, FrameLoopOptions options = {}) {
  std::string log;
  View view(Size{100, 100});
  view.presentScene(std::make_shared<LoggingScene>(log));
  log.clear();  // attaching may already update
  FakeHost host(std::move(advances), log);
  host.minimized_ = minimized;
  FramePacer pacer;
  runFrames(view, pacer, host, options);
  view.dismissScene();
  return log;
}

TEST(FrameLoop, EachDrawFollowsAStepAndNothingIsDrawnWithoutOneOrWhenMinimised) {
  const double onTime = kStep * 1.001;
  EXPECT_EQ(run({0, onTime, onTime}), "sdsdsd");
  // A pass that comes too early waits instead of drawing the same picture again.
  EXPECT_EQ(run({0, kStep / 10, onTime}), "sdwsd");
  EXPECT_EQ(run({0, onTime, onTime}, true), "sss") << "a minimised window keeps time without drawing";
}

TEST(FrameLoop, AStallIsCaughtUpOnlyALittleThenDrawnOnce) {
  const std::string log = run({0, 1.0});
  ASSERT_EQ(log.substr(0, 2), "sd");
  const std::string afterStall = log.substr(2);
  EXPECT_EQ(afterStall.back(), 'd');
  EXPECT_EQ(std::count(afterStall.begin(), afterStall.end(), 'd'), 1);
  const auto steps = std::count(afterStall.begin(), afterStall.end(), 's');
  EXPECT_GT(steps, 1) << "a short stall is made up";
  EXPECT_LT(steps, 10) << "a second's stall is not raced through";
}

TEST(FrameLoop, StopsAtTheFrameLimitAndReportsTheFirstPresentOnce) {
  int presents = 0;
  FrameLoopOptions options;
  options.frameLimit = 2;
  options.afterFirstPresent = [&] { ++presents; };
  EXPECT_EQ(run({0, kStep * 1.001, kStep * 1.001, kStep * 1.001}, false, options), "sdsd");
  EXPECT_EQ(presents, 1);
}

}  // namespace
}  // namespace zb

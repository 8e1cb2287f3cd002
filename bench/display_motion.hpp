#pragma once
// The real frame loop against a fake display: a game in play, the built-in player at the keys, and a
// clock that moves only when the loop waits or a present waits for the next vertical blank. Each
// drawn frame notes where the oldest obstacle is drawn, to tell how evenly motion reaches the screen.
// The motion benchmark prints its table from this; a test holds a few of its cases to the targets.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "engine/input_event.hpp"
#include "engine/view.hpp"
#include "platform/frame_loop.hpp"
#include "platform/frame_pacer.hpp"
#include "player/autoplay.hpp"
#include "scene/game_scene.hpp"

namespace zb::bench {

// A display presenting at every vertical blank of `hz`, or, at 0 Hz, frames paced by the loop's timer
// (the framebuffer path).
struct DisplayCase {
  double hz = 60;
  double speed = 1;
  // The loop wakes up to this long after each vertical blank, a different share of it every frame.
  double wakeJitter = 0;
};

// Over the frames drawn while a run went on and the same obstacle was on screen in the frame before.
// Moves are in steps of the obstacles' speed at the time.
struct MotionTally {
  int64_t frames = 0;
  int64_t still = 0;  // frames in which the obstacle was drawn where it was in the frame before
  double smallestMove = std::numeric_limits<double>::infinity();
  double largestMove = 0;
  std::vector<double> frameIntervals;  // seconds between consecutive presents, every frame
  int64_t framesDrawn = 0;
  int64_t steps = 0;

  double stepRatio() const { return frames > 0 && smallestMove > 0 ? largestMove / smallestMove : 0; }
};

// Called after each frame is drawn, with how far between the last two steps it was drawn.
using FrameHook = std::function<void(View&, double stepFraction)>;

class FakeDisplay final : public FrameLoopHost {
 public:
  FakeDisplay(DisplayCase display, double seconds, GameScene& scene, FrameHook hook)
      : display_(display), seconds_(seconds), scene_(scene), hook_(std::move(hook)) {}

  bool handleEvents() override { return clock_ < seconds_ && ++passes_ < kMaxPasses; }
  double now() override { return clock_; }
  // A real wait lasts a little at least; a clock that never moved would spin the loop.
  void waitFor(double seconds) override { clock_ += std::max(seconds, kShortestWait); }
  bool minimized() override { return false; }
  double vblankPeriod() override { return display_.hz > 0 ? 1 / display_.hz : 0; }

  bool draw(double, double stepFraction) override {
    if (hook_) hook_(*scene_.view(), stepFraction);
    noteObstacle(stepFraction);
    if (display_.hz > 0) {
      // Presenting waits for the next vertical blank, and the loop wakes a little after it.
      const double period = 1 / display_.hz;
      clock_ = (std::floor(clock_ / period + kClockSlack) + 1) * period;
      clock_ += display_.wakeJitter * static_cast<double>(++presents_ * kJitterStride % kJitterSteps) / kJitterSteps;
    }
    if (lastPresent_ >= 0) tally_.frameIntervals.push_back(clock_ - lastPresent_);
    lastPresent_ = clock_;
    return true;
  }

  MotionTally& tally() { return tally_; }
  // Before each step: the speed the step moves the obstacles by.
  void stepping() {
    lastStepSpeed_ = stepSpeed_;
    stepSpeed_ = scene_.obstacleSpeed;
    moveSpeed_ = lastStepSpeed_ == stepSpeed_ ? stepSpeed_ : 0;
  }

 private:
  static constexpr int64_t kMaxPasses = 10'000'000;
  static constexpr double kClockSlack = 1e-9;
  static constexpr double kShortestWait = 1e-6;
  // The wake-up delays run through this many evenly spaced values in a scrambled order.
  static constexpr int64_t kJitterSteps = 11;
  static constexpr int64_t kJitterStride = 7;

  void noteObstacle(double stepFraction) {
    const bool running = scene_.gameState == GameScene::GameState::playing && !scene_.obstacleNodes.empty();
    const Node* obstacle = running ? scene_.obstacleNodes.front().get() : nullptr;
    // Only an obstacle on screen counts: one waiting beyond the right edge is not seen to stand still.
    if (obstacle && !(obstacle->frame().minX() < scene_.size().width)) obstacle = nullptr;
    const double x = obstacle ? obstacle->placementBetweenSteps(stepFraction).position.x : 0;
    if (obstacle && obstacle == lastObstacle_) {
      const double move = lastX_ - x;
      ++tally_.frames;
      if (move == 0) ++tally_.still;
      // The speed grows during a run: a frame whose move spans a change of speed is no measure of
      // evenness. Moves are compared in steps of the speed.
      if (moveSpeed_ == lastMoveSpeed_ && moveSpeed_ > 0) {
        tally_.smallestMove = std::min(tally_.smallestMove, move / moveSpeed_);
        tally_.largestMove = std::max(tally_.largestMove, move / moveSpeed_);
      }
    }
    lastObstacle_ = obstacle;
    lastX_ = x;
    lastMoveSpeed_ = moveSpeed_;
  }

  DisplayCase display_;
  double seconds_;
  GameScene& scene_;
  FrameHook hook_;
  MotionTally tally_;
  double clock_ = 0;
  double lastPresent_ = -1;
  int64_t passes_ = 0;
  int64_t presents_ = 0;
  const Node* lastObstacle_ = nullptr;
  double lastX_ = 0;
  // The speed of the last two steps' moves, and that of the frames' moves (0 while it changes).
  double stepSpeed_ = 0;
  double lastStepSpeed_ = 0;
  double moveSpeed_ = 0;
  double lastMoveSpeed_ = 0;
};

// Plays `seconds` of display time at `display` and tallies the obstacle's motion on screen.
inline MotionTally measureMotion(DisplayCase display, double seconds, Size size, uint64_t seed, FrameHook hook = {}) {
  View view(size);
  auto scene = std::make_shared<GameScene>(size);
  scene->random().seed(seed);
  view.presentScene(scene);
  Autoplayer player;
  FrameLoopOptions options;
  options.gameSpeed = display.speed;
  FramePacer pacer(display.hz >= 59 && display.hz <= 61);
  pacer.setSpeed(display.speed);
  FakeDisplay host(display, seconds, *scene, std::move(hook));
  options.beforeStep = [&] {
    host.stepping();
    player.pressKeys(*scene, view);
  };
  const FrameLoopStats stats = runFrames(view, pacer, host, options);
  view.dismissScene();
  host.tally().framesDrawn = stats.framesDrawn;
  host.tally().steps = stats.steps;
  return host.tally();
}

}  // namespace zb::bench

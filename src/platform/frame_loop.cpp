#include "platform/frame_loop.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "engine/view.hpp"
#include "platform/frame_pacer.hpp"
#include "platform/frame_rate_meter.hpp"

namespace zb {

namespace {

// The timer's frame rate when it paces frames between steps: the most common display's.
constexpr double kTimerFrameSeconds = 1.0 / 60.0;
// A present that returns sooner than this share of a refresh did not wait for the vertical blank
// (a minimised window, a compositor that drops vsync): the loop then waits on its own.
constexpr double kShortPresentShare = 0.5;
// A present within this share of a refresh of the expected vertical blank keeps the beat, and moves
// the beat by this share of its offset (a display's true rate is a hair off its nominal one).
constexpr double kInBeatShare = 0.25;
constexpr double kBeatPull = 0.1;

// When the frame about to be drawn reaches the screen, and when frames follow the display.
class FrameClock {
 public:
  // The display time of a frame drawn now: the next vertical blank, or the timer's due time. Nothing
  // while the timer's next frame is not due yet.
  std::optional<double> nextDisplayTime(double now, double vblankPeriod) {
    if (vblankPeriod > 0) {
      if (!lastPresent_) return now + vblankPeriod;
      // A late frame misses the vertical blank it was meant for and shows at the one after.
      const double late = std::max(0.0, now - *lastPresent_);
      return *lastPresent_ + vblankPeriod * std::max(1.0, std::ceil(late / vblankPeriod));
    }
    if (!timerDue_ || now - *timerDue_ > kTimerFrameSeconds) timerDue_ = now;  // a start, or a stall
    if (now < *timerDue_) return std::nullopt;
    const double due = *timerDue_;
    *timerDue_ += kTimerFrameSeconds;
    return due;
  }
  double secondsUntilTimerFrame(double now) const { return timerDue_ ? std::max(0.0, *timerDue_ - now) : 0; }
  // A frame was presented at `now`. Returns how long to wait when the present came back sooner than
  // a vertical blank can follow the previous one.
  double presented(double now, double vblankPeriod) {
    const std::optional<double> previous = lastPresent_;
    lastPresent_ = now;
    if (vblankPeriod <= 0 || !previous) return 0;
    if (now - *previous < vblankPeriod * kShortPresentShare) {
      lastPresent_ = *previous + vblankPeriod;
      return *lastPresent_ - now;
    }
    // The loop wakes a little after each vertical blank, by a different little each time: the clock
    // follows the blanks' steady beat and lets each wake-up pull it only slightly.
    const double blanks = std::max(1.0, std::round((now - *previous) / vblankPeriod));
    const double expected = *previous + blanks * vblankPeriod;
    if (std::abs(now - expected) < vblankPeriod * kInBeatShare) lastPresent_ = expected + (now - expected) * kBeatPull;
    return 0;
  }

 private:
  std::optional<double> lastPresent_;
  std::optional<double> timerDue_;
};

struct Loop {
  Loop(View& v, FramePacer& p, FrameLoopHost& h, const FrameLoopOptions& o) : view(v), pacer(p), host(h), options(o) {}

  View& view;
  FramePacer& pacer;
  FrameLoopHost& host;
  const FrameLoopOptions& options;
  FrameRateMeter meter;
  FrameLoopStats stats;
  FrameClock clock;
  bool presented = false;
  double lastFraction = 1;

  void step(int steps) {
    for (int i = 0; i < steps; ++i) {
      if (options.beforeStep) options.beforeStep();
      view.stepFrame();
    }
    stats.steps += steps;
  }

  void draw(double stepFraction, double vblankPeriod = 0) {
    // A minimised window is not drawn, but its game keeps time.
    if (host.minimized() || !host.draw(meter.framesPerSecond(), stepFraction)) return;
    ++stats.framesDrawn;
    lastFraction = stepFraction;
    const double now = host.now();
    meter.frameDrawn(now);
    if (const double wait = clock.presented(now, vblankPeriod); wait > 0) host.waitFor(wait);
    if (!presented && options.afterFirstPresent) options.afterFirstPresent();
    presented = true;
  }

  // Frames and steps coincide: a frame after every step, showing it as it is. Returns the steps run.
  int passInStep(double now) {
    const int steps = pacer.stepsDue(now);
    if (steps == 0) {
      host.waitFor(pacer.secondsUntilNextStep(now));
      return 0;
    }
    step(steps);
    draw(1);
    return steps;
  }

  // Frames at the display's pace, each after at most one step (a slow display may need more),
  // showing the world where it is at the frame's display time.
  int passBetweenSteps(double now, double vblankPeriod) {
    const std::optional<double> displayTime = clock.nextDisplayTime(now, vblankPeriod);
    if (!displayTime) {
      host.waitFor(clock.secondsUntilTimerFrame(now));
      return 0;
    }
    const bool slowDisplay = vblankPeriod > FramePacer::kStepSeconds;
    const int steps = pacer.stepsDue(*displayTime, slowDisplay ? FramePacer::kMaxCatchUpSteps : 1);
    step(steps);
    if (host.minimized()) {
      host.waitFor(pacer.secondsUntilNextStep(now));
    } else {
      draw(pacer.stepFraction(), vblankPeriod);
    }
    return steps;
  }
};

}  // namespace

FrameLoopStats runFrames(View& view, FramePacer& pacer, FrameLoopHost& host, const FrameLoopOptions& options) {
  Loop loop{view, pacer, host, options};
  const double start = host.now();
  int64_t frames = 0;
  while (host.handleEvents()) {
    const double now = host.now();
    const double vblankPeriod = host.vblankPeriod();
    const bool inStep = pacer.lockedToVsync() || (vblankPeriod <= 0 && pacer.speed() >= 1);
    const int steps = inStep ? loop.passInStep(now) : loop.passBetweenSteps(now, vblankPeriod);
    if (steps > 0 && options.frameLimit && ++frames >= *options.frameLimit) {
      if (loop.lastFraction < 1) loop.draw(1);
      break;
    }
  }
  loop.stats.seconds = host.now() - start;
  return loop.stats;
}

}  // namespace zb

#include "platform/frame_pacer.hpp"

#include <algorithm>
#include <cmath>

namespace zb {

namespace {
// With vsync the step happens once the frame is at least half a step old, and the accumulator stays
// within half a step of the frame clock: jitter of up to half a frame never doubles or skips a step.
constexpr double kVsyncThresholdSteps = 0.5;
constexpr double kVsyncDriftLimitSteps = 0.5;
}  // namespace

double FramePacer::threshold() const { return lockedToVsync() ? kVsyncThresholdSteps : 1.0; }

void FramePacer::setSpeed(double speed) {
  // The game keeps the speed in its range; here only a speed that would stop or race the game is refused.
  speed_ = speed > 0 && speed <= kFullSpeed ? speed : kFullSpeed;
}

int FramePacer::stepsDue(double now, int maxSteps) {
  if (!started_) {
    started_ = true;
    lastTime_ = now;
    pendingSteps_ = 0;
    return 1;
  }
  const double elapsed = now - lastTime_;
  lastTime_ = now;
  // A clock that jumps backwards or stops counts as no time; a NaN as well.
  if (elapsed > 0) pendingSteps_ += elapsed * speed_ / kStepSeconds;

  if (lockedToVsync()) maxSteps = 1;
  int steps = 0;
  while (steps < maxSteps && pendingSteps_ >= threshold()) {
    pendingSteps_ -= 1.0;
    ++steps;
  }
  if (lockedToVsync()) {
    pendingSteps_ = std::clamp(pendingSteps_, -kVsyncDriftLimitSteps, kVsyncDriftLimitSteps);
  } else if (pendingSteps_ >= 1.0) {
    pendingSteps_ = std::fmod(pendingSteps_, 1.0);  // a backlog beyond the catch-up is dropped
  }
  return steps;
}

double FramePacer::stepFraction() const { return std::clamp(pendingSteps_, 0.0, 1.0); }

double FramePacer::secondsUntilNextStep(double now) const {
  if (!started_) return 0;
  const double elapsedSteps = std::max(0.0, now - lastTime_) * speed_ / kStepSeconds;
  const double missing = threshold() - (pendingSteps_ + elapsedSteps);
  return missing > 0 ? missing * kStepSeconds / speed_ : 0;
}

}  // namespace zb

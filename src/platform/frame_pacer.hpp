#pragma once
// Decides how many simulation steps each pass of the frame loop runs, so that the game advances 60
// steps a second of real time whatever the display's refresh rate.
//
// On a 60 Hz display with vsync the presented frame is the clock: exactly one step per frame, with a
// real-time accumulator that only guards against a vsync that stops blocking (a minimised window, a
// compositor that drops it) and otherwise absorbs jitter and the slight drift of 59.94 Hz panels.
// Everywhere else (120 Hz, 144 Hz, no vsync) the loop runs a fixed 1/60 s timestep: real time
// accumulates and each full 1/60 s runs one step; the time left over, as a fraction of a step, is
// how far a frame shown then lies between the last two steps.
// A short stall (a window drag, a slow frame) is caught up with a few extra steps; anything longer is
// dropped, so the game slows down for a moment instead of racing to catch up.
namespace zb {

class FramePacer {
 public:
  static constexpr double kStepSeconds = 1.0 / 60.0;
  static constexpr int kMaxCatchUpSteps = 4;

  explicit FramePacer(bool vsyncAt60Hz = false) : vsyncAt60Hz_(vsyncAt60Hz) {}

  // Switching modes (the window moved to another display) keeps the accumulated time.
  void setVsyncAt60Hz(bool on) { vsyncAt60Hz_ = on; }
  bool vsyncAt60Hz() const { return vsyncAt60Hz_; }

  // A slower game (a comfort option): 60 x speed steps a second of real time, for a speed above 0 and
  // at most 1 (anything else runs at full speed). Below full speed the frame clock no longer matches the steps, so the fixed timestep runs
  // even on a 60 Hz display with vsync.
  void setSpeed(double speed);
  double speed() const { return speed_; }

  bool lockedToVsync() const { return vsyncAt60Hz_ && speed_ == kFullSpeed; }

  // Steps to run now, given the monotonic time in seconds; the first call starts the clock and runs one.
  // At most `maxSteps` run in one call, however late it comes.
  int stepsDue(double now, int maxSteps = kMaxCatchUpSteps);
  // With the fixed timestep, how far the time last given to stepsDue lies past the last step's due
  // time, in steps (0 up to 1); a frame shown then is drawn that far between the last two steps.
  double stepFraction() const;
  // How long the loop may wait before a step is due; 0 when one is due already.
  double secondsUntilNextStep(double now) const;

 private:
  // The accumulated time, in steps, at which the next step runs.
  double threshold() const;
  static constexpr double kFullSpeed = 1.0;

  bool vsyncAt60Hz_;
  double speed_ = kFullSpeed;
  bool started_ = false;
  double lastTime_ = 0;
  double pendingSteps_ = 0;  // real time not yet simulated, in steps
};

}  // namespace zb

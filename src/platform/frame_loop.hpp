#pragma once
// The game's main loop, apart from any window: events, simulation steps at 60 a second (or the game's
// speed), drawing. A host supplies the events, the clock and the drawing, so tests can fake them.
//
// Where frames and steps coincide (vsync at 60 Hz, or the timer at full speed) each frame follows a
// step and shows it as it is. Everywhere else frames come at the display's own pace (every vertical
// blank, or 60 a second from the timer at a slower game speed), each after at most one step, and
// show the world between the last two steps at the fraction of a step that has passed when the frame
// reaches the screen, so that motion is even at any refresh rate and any speed.
#include <cstdint>
#include <functional>
#include <optional>

namespace zb {

class View;
class FramePacer;

struct FrameLoopOptions {
  // Stop after this many frames (a frame is one pass that steps the simulation); none means until the
  // window closes. The last picture then shows the last step as it is.
  std::optional<int64_t> frameLimit;
  // Called once, right after the first frame is put on screen.
  std::function<void()> afterFirstPresent;
  // Called before every simulation step (the built-in player presses its keys here).
  std::function<void()> beforeStep;
  // Off: every frame is redrawn whole, for comparisons.
  bool tracksDamage = true;
  // On: every frame is also drawn whole and compared; the loop stops at the first difference.
  bool verifiesDamage = false;
  // Simulation steps per second are 60 x this (0.5 to 1); each step is still 1/60 s of game time.
  double gameSpeed = 1.0;
};

// What a run of the loop did, for the frame report.
struct FrameLoopStats {
  int64_t framesDrawn = 0;
  int64_t steps = 0;
  double seconds = 0;
  bool damageMismatch = false;  // stopped because a frame drawn from its changes differed
};

class FrameLoopHost {
 public:
  virtual ~FrameLoopHost() = default;
  // Handles every waiting event; false when the game should quit.
  virtual bool handleEvents() = 0;
  // The monotonic time in seconds.
  virtual double now() = 0;
  // Sleeps up to `seconds`, waking early for input.
  virtual void waitFor(double seconds) = 0;
  virtual bool minimized() = 0;
  // The display's refresh period in seconds when presenting a frame waits for its vertical blank; 0
  // when frames are paced by a timer.
  virtual double vblankPeriod() { return 0; }
  // Draws and presents a frame `stepFraction` of the way between the last two steps (1: the last step
  // as it is); false when there was nothing to draw on.
  virtual bool draw(double framesPerSecond, double stepFraction) = 0;
};

// Runs until the host says quit (or the frame limit is reached).
FrameLoopStats runFrames(View& view, FramePacer& pacer, FrameLoopHost& host, const FrameLoopOptions& options);

}  // namespace zb

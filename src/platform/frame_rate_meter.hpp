#pragma once
// Counts drawn frames and reports them per second, refreshed twice a second so the counter stays
// readable instead of flickering with every frame.
namespace zb {

class FrameRateMeter {
 public:
  static constexpr double kWindowSeconds = 0.5;

  // One frame drawn at the monotonic time `now` in seconds.
  void frameDrawn(double now);
  // Frames per second over the last complete window; 0 before the first one completes.
  double framesPerSecond() const { return framesPerSecond_; }

 private:
  bool started_ = false;
  double windowStart_ = 0;
  int framesInWindow_ = 0;
  double framesPerSecond_ = 0;
};

}  // namespace zb

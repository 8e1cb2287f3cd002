#include "platform/frame_rate_meter.hpp"

namespace zb {

void FrameRateMeter::frameDrawn(double now) {
  if (!started_) {
    started_ = true;
    windowStart_ = now;
    framesInWindow_ = 0;
    return;
  }
  ++framesInWindow_;
  const double elapsed = now - windowStart_;
  if (elapsed >= kWindowSeconds) {
    framesPerSecond_ = framesInWindow_ / elapsed;
    windowStart_ = now;
    framesInWindow_ = 0;
  }
}

}  // namespace zb

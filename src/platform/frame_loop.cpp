#include "platform/frame_loop.hpp"

#include "engine/view.hpp"
#include "platform/frame_pacer.hpp"
#include "platform/frame_rate_meter.hpp"

namespace zb {

FrameLoopStats runFrames(View& view, FramePacer& pacer, FrameLoopHost& host, const FrameLoopOptions& options) {
  FrameRateMeter meter;
  FrameLoopStats stats;
  const double start = host.now();
  int64_t frames = 0;
  bool presented = false;
  while (host.handleEvents()) {
    const double now = host.now();
    const int steps = pacer.stepsDue(now);
    if (steps == 0) {
      host.waitFor(pacer.secondsUntilNextStep(now));
      continue;
    }
    for (int i = 0; i < steps; ++i) {
      if (options.beforeStep) options.beforeStep();
      view.stepFrame();
    }
    stats.steps += steps;
    // A minimised window is not drawn, but its game keeps time.
    if (!host.minimized() && host.draw(meter.framesPerSecond())) {
      ++stats.framesDrawn;
      meter.frameDrawn(host.now());
      if (!presented && options.afterFirstPresent) options.afterFirstPresent();
      presented = true;
    }
    if (options.frameLimit && ++frames >= *options.frameLimit) break;
  }
  stats.seconds = host.now() - start;
  return stats;
}

}  // namespace zb

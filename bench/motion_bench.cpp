// How evenly motion reaches the screen: the real frame loop against a fake display at common refresh
// rates and game speeds, one line a case:
//   motion: H Hz speed S: still F of N frames, step ratio R
// F counts frames in which the oldest obstacle on screen was drawn where it was in the frame before
// while the run went on; R is the largest over the smallest move per frame (targets: F = 0, R <= 1.25).
// "timer" stands for the framebuffer path, whose frames a timer paces at 60 a second; "woken up to 1 ms
// late" for a loop that wakes after each vertical blank by a varying delay.
// With ZINDLEBOP_REPORT_FRAMES=1 each line adds the median and 99th percentile frame interval.
// A last line gives the processor time per drawn frame at 144 Hz, every frame drawn at 1920x1080.
#include <cairo.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "app/frame_report.hpp"
#include "display_motion.hpp"
#include "render/pango_text.hpp"
#include "render/renderer.hpp"

namespace {

// The common rates, and the ends of the range the loop is meant for.
constexpr double kRefreshRates[] = {48, 60, 75, 90, 120, 144, 165, 240, 360};
constexpr double kGameSpeeds[] = {0.5, 0.75, 1.0};
constexpr double kDisplaySeconds = 60;
constexpr double kWakeJitter = 0.001;
constexpr double kCostSeconds = 20;
constexpr zb::Size kMotionSize{800, 600};
constexpr zb::Size kCostSize{1920, 1080};
constexpr uint64_t kSeed = 7;

double processorSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// The value below which `share` of the sorted values lie.
double percentile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const auto index = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5);
  return values[index];
}

void printCase(const std::string& display, double speed, const zb::bench::MotionTally& tally, bool intervals) {
  std::printf("motion: %s speed %.2g: still %lld of %lld frames, step ratio %.3f", display.c_str(), speed,
              static_cast<long long>(tally.still), static_cast<long long>(tally.frames), tally.stepRatio());
  if (intervals) {
    std::printf(", frame interval median %.2f ms, 99th percentile %.2f ms", percentile(tally.frameIntervals, 0.5) * 1e3,
                percentile(tally.frameIntervals, 0.99) * 1e3);
  }
  std::printf("\n");
}

// Steps and draws as the window does (only the changes, over the kept frame) at 144 Hz; for
// comparison, also with every frame drawn whole.
void printCostAt144Hz(bool tracksDamage) {
  cairo_surface_t* image = cairo_image_surface_create(
      CAIRO_FORMAT_RGB24, static_cast<int>(kCostSize.width), static_cast<int>(kCostSize.height));
  zb::Renderer renderer;
  renderer.setTracksDamage(tracksDamage);
  bool kept = false;
  const auto drawFrame = [&](zb::View& view, double stepFraction) {
    cairo_t* cr = cairo_create(image);
    renderer.drawChanges(cr, {cairo_image_surface_get_width(image), cairo_image_surface_get_height(image)}, view, 1.0,
                         144, kept, stepFraction);
    cairo_destroy(cr);
    kept = true;
  };
  const double start = processorSeconds();
  const zb::bench::MotionTally tally = zb::bench::measureMotion({144, 1.0}, kCostSeconds, kCostSize, kSeed, drawFrame);
  const double seconds = processorSeconds() - start;
  cairo_surface_destroy(image);
  std::printf("cost: 144 Hz speed 1 at %gx%g, %s: %.3f ms of processor per drawn frame over %lld frames\n",
              kCostSize.width, kCostSize.height, tracksDamage ? "changes only" : "whole frames", seconds * 1e3 / static_cast<double>(std::max<int64_t>(tally.framesDrawn, 1)),
              static_cast<long long>(tally.framesDrawn));
}

}  // namespace

int main() {
  zb::installPangoText();
  const bool intervals = zb::reportRequested(zb::kReportFramesVariable);
  for (double hz : kRefreshRates) {
    for (double speed : kGameSpeeds) {
      char display[32];
      std::snprintf(display, sizeof display, "%g Hz", hz);
      printCase(display, speed, zb::bench::measureMotion({hz, speed}, kDisplaySeconds, kMotionSize, kSeed), intervals);
    }
  }
  // A real loop wakes a little after each vertical blank; the frames' clock keeps to the blanks' beat.
  for (double hz : kRefreshRates) {
    char display[64];
    std::snprintf(display, sizeof display, "%g Hz woken up to %g ms late", hz, kWakeJitter * 1e3);
    printCase(display, 1.0, zb::bench::measureMotion({hz, 1.0, kWakeJitter}, kDisplaySeconds, kMotionSize, kSeed), intervals);
  }
  for (double speed : kGameSpeeds) {
    printCase("timer", speed, zb::bench::measureMotion({0, speed}, kDisplaySeconds, kMotionSize, kSeed), intervals);
  }
  std::fflush(stdout);
  printCostAt144Hz(true);
  printCostAt144Hz(false);
  return 0;
}

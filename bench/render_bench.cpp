// One drawn frame of a scene in play, through the game's renderer and through the plain-cairo
// baseline, at three window sizes (one pixel a point). Both draw the same frozen frame into an
// image the size of the window, alternating so that both see the same machine load. The time
// column is the renderer's; the counters give both medians and their ratio.
#include <chrono>

#include <benchmark/benchmark.h>
#include <cairo.h>

#include "frame_stats.hpp"
#include "plain_cairo_frame.hpp"
#include "render/renderer.hpp"
#include "scene_in_play.hpp"

namespace zb::bench {
namespace {

using Clock = std::chrono::steady_clock;

// The window shows whole frames: a fresh context over the image each time, as the window's canvas does.
template <typename Draw>
std::chrono::nanoseconds timeFrame(cairo_surface_t* surface, Draw&& draw) {
  const Clock::time_point start = Clock::now();
  cairo_t* cr = cairo_create(surface);
  draw(cr);
  cairo_destroy(cr);
  cairo_surface_flush(surface);
  return Clock::now() - start;
}

// Pixels that differ between two images of the same size.
long differingPixels(cairo_surface_t* a, cairo_surface_t* b) {
  const int width = cairo_image_surface_get_width(a);
  const int height = cairo_image_surface_get_height(a);
  const int stride = cairo_image_surface_get_stride(a);
  const unsigned char* pa = cairo_image_surface_get_data(a);
  const unsigned char* pb = cairo_image_surface_get_data(b);
  long differing = 0;
  for (int y = 0; y < height; ++y) {
    const auto* rowA = reinterpret_cast<const uint32_t*>(pa + y * stride);
    const auto* rowB = reinterpret_cast<const uint32_t*>(pb + y * stride);
    for (int x = 0; x < width; ++x) differing += ((rowA[x] ^ rowB[x]) & 0xFFFFFF) != 0;
  }
  return differing;
}

void BM_DrawFrame(benchmark::State& state) {
  const Size size{static_cast<double>(state.range(0)), static_cast<double>(state.range(1))};
  SceneInPlay game(size);
  const PlainCairoFrame baseline(game.scene(), size);
  Renderer renderer;
  const double framesPerSecond = 60;
  const auto ours = [&](cairo_t* cr) { renderer.draw(cr, game.view(), 1.0, framesPerSecond); };
  const auto plain = [&](cairo_t* cr) { baseline.draw(cr); };

  cairo_surface_t* oursImage = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(size.width),
                                                          static_cast<int>(size.height));
  cairo_surface_t* plainImage = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(size.width),
                                                           static_cast<int>(size.height));
  // Also warms both: fonts loaded, glyphs cached, layouts built.
  timeFrame(oursImage, ours);
  timeFrame(plainImage, plain);
  const long differing = differingPixels(oursImage, plainImage);

  FrameSamples oursSamples, plainSamples;
  oursSamples.reserve(static_cast<std::size_t>(state.max_iterations));
  plainSamples.reserve(static_cast<std::size_t>(state.max_iterations));
  bool oursFirst = true;
  for (auto _ : state) {
    std::chrono::nanoseconds oursTime{}, plainTime{};
    if (oursFirst) {
      oursTime = timeFrame(oursImage, ours);
      plainTime = timeFrame(plainImage, plain);
    } else {
      plainTime = timeFrame(plainImage, plain);
      oursTime = timeFrame(oursImage, ours);
    }
    oursFirst = !oursFirst;
    state.SetIterationTime(std::chrono::duration<double>(oursTime).count());
    oursSamples.add(oursTime);
    plainSamples.add(plainTime);
  }
  cairo_surface_destroy(oursImage);
  cairo_surface_destroy(plainImage);

  const double oursMedian = oursSamples.median();
  const double plainMedian = plainSamples.median();
  state.counters["ours_us"] = microseconds(oursMedian);
  state.counters["cairo_us"] = microseconds(plainMedian);
  state.counters["ratio"] = benchmark::Counter(plainMedian > 0 ? oursMedian / plainMedian : 0);
  state.counters["shapes"] = benchmark::Counter(static_cast<double>(baseline.shapeCount()));
  state.counters["texts"] = benchmark::Counter(static_cast<double>(baseline.textCount()));
  state.counters["differing_px"] = benchmark::Counter(static_cast<double>(differing));
}
BENCHMARK(BM_DrawFrame)
    ->Args({800, 600})
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zb::bench

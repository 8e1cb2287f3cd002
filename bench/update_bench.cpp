// The per-frame cost of a scene in play with obstacles on screen: update() alone, and the whole
// frame step of the view (clock, update, actions). Times are per frame; the built-in player's key
// presses and the frames off the run after a crash are left out of the timing.
#include <chrono>

#include <benchmark/benchmark.h>

#include "frame_stats.hpp"
#include "scene_in_play.hpp"

namespace zb::bench {
namespace {

using Clock = std::chrono::steady_clock;

void BM_SceneUpdate(benchmark::State& state) {
  SceneInPlay game({800, 600});
  FrameSamples samples;
  samples.reserve(static_cast<std::size_t>(state.max_iterations));
  for (auto _ : state) {
    game.prepareFrame();
    game.view().stepFrame();
    const std::chrono::nanoseconds elapsed = game.scene().lastUpdateTime;
    state.SetIterationTime(std::chrono::duration<double>(elapsed).count());
    samples.add(elapsed);
  }
  state.counters["median_us"] = microseconds(samples.median());
}
BENCHMARK(BM_SceneUpdate)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_ViewStepFrame(benchmark::State& state) {
  SceneInPlay game({800, 600});
  FrameSamples samples;
  samples.reserve(static_cast<std::size_t>(state.max_iterations));
  for (auto _ : state) {
    game.prepareFrame();
    const Clock::time_point start = Clock::now();
    game.view().stepFrame();
    const std::chrono::nanoseconds elapsed = Clock::now() - start;
    state.SetIterationTime(std::chrono::duration<double>(elapsed).count());
    samples.add(elapsed);
  }
  state.counters["median_us"] = microseconds(samples.median());
}
BENCHMARK(BM_ViewStepFrame)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zb::bench

// Headless throughput: a long run through the headless driver, script in and dumps out through
// string streams, with no drawing. The counter is frames per second of processor time.
#include <cstdint>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "app/headless_driver.hpp"

namespace zb::bench {
namespace {

constexpr uint64_t kFrames = 100000;
// Space every so many frames: jumps while running, and a new run right after a crash.
constexpr uint64_t kFramesBetweenPresses = 25;

std::string pressingScript() {
  std::string script = "launch\n";
  for (uint64_t frame = 0; frame < kFrames; frame += kFramesBetweenPresses) {
    script += "key down space\nkey up space\nstep " + std::to_string(kFramesBetweenPresses) + "\n";
  }
  return script;
}

void BM_HeadlessRun(benchmark::State& state) {
  const std::string script = pressingScript();
  HeadlessOptions options;
  options.seed = 7;
  for (auto _ : state) {
    std::istringstream in(script);
    std::ostringstream out, err;
    if (runHeadless(options, in, out, err) != 0) state.SkipWithError(err.str().c_str());
  }
  state.counters["frames_per_second"] =
      benchmark::Counter(static_cast<double>(kFrames), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_HeadlessRun)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zb::bench

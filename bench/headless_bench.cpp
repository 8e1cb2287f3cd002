// Headless throughput: a long session of the built-in player through the headless driver, script
// in and output out through string streams, with no drawing. The counter is frames per second of
// processor time. And a script that only plugs pads in and out, in lines per second.
#include <cstdint>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "engine/gamepad_roster.hpp"
#include "headless/headless_driver.hpp"

namespace zb::bench {
namespace {

constexpr uint64_t kFrames = 100000;

// Runs the script through the headless driver once per iteration, seeded alike every time.
void runScriptEachIteration(benchmark::State& state, const std::string& script) {
  HeadlessOptions options;
  options.seed = 7;
  for (auto _ : state) {
    std::istringstream in(script);
    std::ostringstream out, err;
    if (runHeadless(options, in, out, err) != 0) {
      state.SkipWithError(err.str().c_str());
      break;
    }
  }
}

void BM_HeadlessAutoplay(benchmark::State& state) {
  const std::string script = "launch\nautoplay " + std::to_string(kFrames) + "\n";
  runScriptEachIteration(state, script);
  state.counters["frames_per_second"] =
      benchmark::Counter(static_cast<double>(kFrames), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_HeadlessAutoplay)->Unit(benchmark::kMillisecond);

// Pads plugged in and out with the roster full: a line's cost must not grow with the script's length,
// so lines per second stay the same for both lengths.
void BM_HeadlessPadChurn(benchmark::State& state) {
  std::string script;
  for (size_t i = 1; i < kMaxGamepads; ++i) script += "pad add\n";
  for (int64_t i = 0; i < state.range(0); ++i) script += "pad add\npad remove\n";
  runScriptEachIteration(state, script);
  state.counters["lines_per_second"] =
      benchmark::Counter(static_cast<double>(2 * state.range(0)), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_HeadlessPadChurn)->Arg(10000)->Arg(500000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zb::bench

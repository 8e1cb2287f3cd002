// Headless throughput: a long session of the built-in player through the headless driver, script
// in and output out through string streams, with no drawing. The counter is frames per second of
// processor time.
#include <cstdint>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "headless/headless_driver.hpp"

namespace zb::bench {
namespace {

constexpr uint64_t kFrames = 100000;

void BM_HeadlessAutoplay(benchmark::State& state) {
  const std::string script = "launch\nautoplay " + std::to_string(kFrames) + "\n";
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
  state.counters["frames_per_second"] =
      benchmark::Counter(static_cast<double>(kFrames), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_HeadlessAutoplay)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zb::bench

// What an effect costs the frame it first plays in: the shipped jump, decoded whole, and five minutes
// of 8 kbps MP3 (300 kB on disk, 53 MB decoded), which is refused from its headers (`played` 0).
// Each iteration opens a fresh mixer on SDL's silent driver, so nothing comes from a cache.
#include <cstdlib>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "engine/resources.hpp"
#include "platform_sdl/mixer_sound.hpp"
#include "platform/resource_paths.hpp"

namespace zb::bench {
namespace {

void playFirstTime(benchmark::State& state, const std::filesystem::path& file) {
  ::setenv("SDL_AUDIODRIVER", "dummy", 1);
  std::unique_ptr<MixerSoundOutput> output;
  int64_t played = 0;
  for (auto _ : state) {
    state.PauseTiming();
    output.reset();  // closing the device waits for its thread
    output = MixerSoundOutput::open();
    state.ResumeTiming();
    if (!output) {
      state.SkipWithError("no mixer on SDL's silent driver");
      break;
    }
    played += output->playEffect(file);
  }
  state.counters["played"] = benchmark::Counter(static_cast<double>(played), benchmark::Counter::kAvgIterations);
}

void BM_FirstPlayOfTheJump(benchmark::State& state) {
  playFirstTime(state, defaultResourceFolder() / "jump.mp3");
}
// Opening and closing the device takes far longer than what is timed: a fixed count keeps the run short.
BENCHMARK(BM_FirstPlayOfTheJump)->Unit(benchmark::kMillisecond)->Iterations(20);

void BM_FirstPlayOfFiveMinutes(benchmark::State& state) {
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "zb-bench-five-minutes.mp3";
  const std::string make = "sox -n -r 8000 -c 1 -C 8 '" + file.string() + "' synth 300 sine 440";
  if (!std::filesystem::exists(file) && std::system(make.c_str()) != 0) {
    state.SkipWithError("sox could not make the file");
    return;
  }
  playFirstTime(state, file);
}
BENCHMARK(BM_FirstPlayOfFiveMinutes)->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace zb::bench

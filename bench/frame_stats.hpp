#pragma once
// Per-frame samples gathered inside a benchmark loop, reduced to the figures the table shows.
#include <algorithm>
#include <chrono>
#include <vector>

#include <benchmark/benchmark.h>

namespace zb::bench {

class FrameSamples {
 public:
  void reserve(std::size_t count) { samples_.reserve(count); }
  void add(std::chrono::nanoseconds time) { samples_.push_back(std::chrono::duration<double>(time).count()); }

  // The middle sample in seconds (the upper middle for an even count); 0 without samples.
  double median() {
    if (samples_.empty()) return 0;
    auto middle = samples_.begin() + static_cast<std::ptrdiff_t>(samples_.size() / 2);
    std::nth_element(samples_.begin(), middle, samples_.end());
    return *middle;
  }

 private:
  std::vector<double> samples_;
};

// Microseconds, as a plain counter (not divided by iterations).
inline benchmark::Counter microseconds(double seconds) { return benchmark::Counter(seconds * 1e6); }

}  // namespace zb::bench

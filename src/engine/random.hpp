#pragma once
// The one seedable random source. Every random draw of the game goes through an instance owned by the
// scene, so the same seed and the same input give the same game.
#include <cstdint>

namespace zb {

class Random {
 public:
  explicit Random(uint64_t seed = 0);
  void seed(uint64_t seed);

  uint64_t nextU64();
  // Uniform index in [0, n) without modulo bias: the high half of the 128-bit product r*n, with the
  // draw rejected and repeated while the low half is below (2^64 - n) mod n. n == 0 traps.
  uint64_t uniformIndex(uint64_t n);
  // Uniform integer in the closed range [lo, hi]; lo > hi traps.
  int64_t uniformInt(int64_t lo, int64_t hi);
  // Uniform double in the closed range [lo, hi]: both ends can come out.
  double uniformDouble(double lo, double hi);
  bool uniformBool();

 private:
  uint64_t state_[4] = {};
};

// A seed drawn from the operating system, for runs that were not given one.
uint64_t freshSeed();

}  // namespace zb

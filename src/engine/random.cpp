#include "engine/random.hpp"

#include <chrono>
#include <random>

namespace zb {

namespace {

__extension__ typedef unsigned __int128 Product;

uint64_t splitmix64(uint64_t& state) {
  uint64_t z = (state += 0x9e3779b97f4a7c15ull);
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
  return z ^ (z >> 31);
}

uint64_t rotl(uint64_t x, int k) { return (x << k) | (x >> (64 - k)); }

// 2^53 - 1: the largest 53-bit draw, which maps onto the upper end of a closed range.
constexpr double kMax53 = 9007199254740991.0;

}  // namespace

Random::Random(uint64_t seed) { this->seed(seed); }

void Random::seed(uint64_t seed) {
  uint64_t s = seed;
  for (uint64_t& word : state_) word = splitmix64(s);
}

// xoshiro256**
uint64_t Random::nextU64() {
  uint64_t result = rotl(state_[1] * 5, 7) * 9;
  uint64_t t = state_[1] << 17;
  state_[2] ^= state_[0];
  state_[3] ^= state_[1];
  state_[1] ^= state_[2];
  state_[0] ^= state_[3];
  state_[2] ^= t;
  state_[3] = rotl(state_[3], 45);
  return result;
}

uint64_t Random::uniformIndex(uint64_t n) {
  if (n == 0) __builtin_trap();
  Product m = static_cast<Product>(nextU64()) * n;
  uint64_t low = static_cast<uint64_t>(m);
  if (low < n) {
    uint64_t threshold = (0 - n) % n;  // (2^64 - n) mod n
    while (low < threshold) {
      m = static_cast<Product>(nextU64()) * n;
      low = static_cast<uint64_t>(m);
    }
  }
  return static_cast<uint64_t>(m >> 64);
}

int64_t Random::uniformInt(int64_t lo, int64_t hi) {
  if (lo > hi) __builtin_trap();
  uint64_t width = static_cast<uint64_t>(hi) - static_cast<uint64_t>(lo);
  // The full int64 range has 2^64 values: every draw is one of them.
  uint64_t offset = width == UINT64_MAX ? nextU64() : uniformIndex(width + 1);
  return static_cast<int64_t>(static_cast<uint64_t>(lo) + offset);
}

double Random::uniformDouble(double lo, double hi) {
  uint64_t draw = nextU64() >> 11;
  if (draw == (uint64_t{1} << 53) - 1) return hi;
  double u = static_cast<double>(draw) / kMax53;
  double v = lo + (hi - lo) * u;
  // Rounding must not step outside the range.
  if (lo <= hi) return v < lo ? lo : (v > hi ? hi : v);
  return v > lo ? lo : (v < hi ? hi : v);
}

bool Random::uniformBool() { return (nextU64() >> 63) != 0; }

uint64_t freshSeed() {
  try {
    std::random_device device;
    return (static_cast<uint64_t>(device()) << 32) ^ device();
  } catch (...) {
    // No entropy source: the clock still differs from run to run.
    return static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
           static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
  }
}

}  // namespace zb

#include "engine/checked.hpp"

#include <cmath>

namespace zb {

void trapOverflow() { __builtin_trap(); }

int64_t checkedDiv(int64_t a, int64_t b) {
  if (b == 0 || (a == INT64_MIN && b == -1)) trapOverflow();
  return a / b;
}

int64_t checkedMod(int64_t a, int64_t b) {
  if (b == 0) trapOverflow();
  if (b == -1) return 0;  // INT64_MIN % -1 is undefined in C++ although the answer is 0
  return a % b;
}

bool truncatesToInt64(double v) {
  // -2^63 is representable; 2^63 is the first double above the int64 range.
  constexpr double kLimit = 9223372036854775808.0;
  return std::isfinite(v) && v < kLimit && v >= -kLimit;
}

int64_t checkedTruncate(double v) {
  if (!truncatesToInt64(v)) trapOverflow();
  return static_cast<int64_t>(v);
}

}  // namespace zb

#pragma once
// Signed 64-bit arithmetic that stops the program on overflow instead of wrapping.
#include <cstdint>

namespace zb {

[[noreturn]] void trapOverflow();

inline int64_t checkedAdd(int64_t a, int64_t b) {
  int64_t r;
  if (__builtin_add_overflow(a, b, &r)) trapOverflow();
  return r;
}
inline int64_t checkedSub(int64_t a, int64_t b) {
  int64_t r;
  if (__builtin_sub_overflow(a, b, &r)) trapOverflow();
  return r;
}
inline int64_t checkedMul(int64_t a, int64_t b) {
  int64_t r;
  if (__builtin_mul_overflow(a, b, &r)) trapOverflow();
  return r;
}
// Truncating division; division by zero and INT64_MIN / -1 trap.
int64_t checkedDiv(int64_t a, int64_t b);
// Remainder with the sign of the dividend; a zero divisor traps.
int64_t checkedMod(int64_t a, int64_t b);
// Whether a double truncates to an int64 (finite and inside the range).
bool truncatesToInt64(double v);
// Truncation of a double toward zero; NaN, infinities and values outside int64 trap.
int64_t checkedTruncate(double v);

}  // namespace zb

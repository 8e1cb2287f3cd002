#pragma once
// RGBA colours with components from 0 to 1, and the named colours the game uses.

namespace zb {

struct Color {
  double r = 0;
  double g = 0;
  double b = 0;
  double a = 1;

  static constexpr Color rgba(double r, double g, double b, double a) { return {r, g, b, a}; }
  static constexpr Color black() { return {0, 0, 0, 1}; }
  static constexpr Color white() { return {1, 1, 1, 1}; }
  static constexpr Color clear() { return {0, 0, 0, 0}; }
  static constexpr Color darkGray() { return {1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0, 1}; }
  static constexpr Color lightGray() { return {2.0 / 3.0, 2.0 / 3.0, 2.0 / 3.0, 1}; }

  constexpr Color withAlpha(double alpha) const { return {r, g, b, alpha}; }
  friend bool operator==(const Color&, const Color&) = default;
};

}  // namespace zb

#pragma once
// Keyboard and mouse events as the scene receives them. Key codes are layout-independent virtual key
// codes; the platform layer maps its own keys onto them.
#include <cstdint>

#include "engine/geometry.hpp"

namespace zb {

namespace keycode {
inline constexpr uint16_t space = 49;
inline constexpr uint16_t p = 35;
inline constexpr uint16_t returnKey = 36;
inline constexpr uint16_t keypadEnter = 76;
inline constexpr uint16_t escape = 53;
inline constexpr uint16_t downArrow = 125;
inline constexpr uint16_t upArrow = 126;
inline constexpr uint16_t leftArrow = 123;
inline constexpr uint16_t rightArrow = 124;
}  // namespace keycode

// The Option (Alt) bit of the modifier flags.
inline constexpr uint64_t kOptionModifierFlag = 1u << 19;

struct KeyEvent {
  uint16_t keyCode = 0;
  uint64_t modifierFlags = 0;
  bool isRepeat = false;
};

struct MouseEvent {
  Point locationInScene;  // scene coordinates, origin at the lower left
};

}  // namespace zb

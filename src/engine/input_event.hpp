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
inline constexpr uint16_t tab = 48;
inline constexpr uint16_t q = 12;
}  // namespace keycode

// Bits of the modifier flags: Shift, Control and Option (Alt).
inline constexpr uint64_t kShiftModifierFlag = 1u << 17;
inline constexpr uint64_t kControlModifierFlag = 1u << 18;
inline constexpr uint64_t kOptionModifierFlag = 1u << 19;

struct KeyEvent {
  uint16_t keyCode = 0;
  uint64_t modifierFlags = 0;
  bool isRepeat = false;
};

// Ctrl+Q ends the game from any page, as closing the window does.
inline bool isQuitShortcut(const KeyEvent& event) {
  return event.keyCode == keycode::q && (event.modifierFlags & kControlModifierFlag) != 0;
}

struct MouseEvent {
  Point locationInScene;  // scene coordinates, origin at the lower left
};

}  // namespace zb

#pragma once
// Gamepad buttons and axes as the scene receives them, named by their place on the common pad layout
// (A is the bottom face button whatever the pad prints on it). The platform layer maps its own
// controller codes onto these.
#include <cstdint>

namespace zb {

enum class GamepadButton : uint8_t {
  a, b, x, y, back, guide, start, leftStick, rightStick, leftShoulder, rightShoulder,
  dpadUp, dpadDown, dpadLeft, dpadRight,
};
inline constexpr int kGamepadButtonCount = 15;

// Stick axes run from -1 to 1 with y growing downwards, as pads report it; triggers from 0 to 1.
enum class GamepadAxis : uint8_t { leftX, leftY, rightX, rightY, leftTrigger, rightTrigger };
inline constexpr int kGamepadAxisCount = 6;

// A pad's identity for as long as it stays connected; never reused for another connection.
using GamepadId = int64_t;

}  // namespace zb

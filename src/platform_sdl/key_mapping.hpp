#pragma once
// Maps SDL keys and key names onto the layout-independent virtual key codes the scene understands.
// Physical positions (scancodes) decide, so a key keeps its code whatever the keyboard layout.
#include <SDL_scancode.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/key_names.hpp"

namespace zb {

// Keys without a virtual code of their own land here, above every code the game reacts to.
inline constexpr uint16_t kUnmappedKeyCodeBase = 0x8000;

// The virtual code of a physical key; unknown keys get kUnmappedKeyCodeBase + scancode.
uint16_t keyCodeForScancode(SDL_Scancode scancode);

// The modifier flags of a key event: Alt becomes the Option bit, Shift and Ctrl their own bits.
uint64_t modifierFlagsFor(uint16_t sdlKeymod);

// keyCodeForName, for the names scripts use, comes with engine/key_names.hpp.

}  // namespace zb

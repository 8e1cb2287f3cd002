#pragma once
// The layout-independent virtual key codes of the letter and digit keys, and key names as scripts
// write them. No SDL here: the headless driver names keys without a keyboard.
#include <cstdint>
#include <optional>
#include <string_view>

namespace zb {

// The virtual code of the letter key 'a' to 'z'.
uint16_t letterKeyCode(char letter);
// The virtual code of the digit-row key 0 to 9.
uint16_t digitKeyCode(int digit);

// The virtual code for a key name: "space", "p", "return", "enter" (keypad), "escape", "down", "up",
// "left", "right", a letter "a"-"z" or a digit "0"-"9". Nothing for any other name.
std::optional<uint16_t> keyCodeForName(std::string_view name);

}  // namespace zb

#pragma once
// The names of keys as scripts and the preferences file write them, and the virtual codes of the
// letter and digit keys. Naming lives here, away from any platform, so that the game can read
// remapped keys from its preferences.
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zb {

// Virtual codes of the ANSI letter keys, a to z.
inline constexpr std::array<uint16_t, 26> kLetterKeyCodes = {
    0,  11, 8,  2,  14, 3,  5,  4,  34, 38, 40, 37, 46,  // a-m
    45, 31, 35, 12, 15, 1,  17, 32, 9,  13, 7,  16, 6,   // n-z
};

// Virtual codes of the digit row, 0 to 9.
inline constexpr std::array<uint16_t, 10> kDigitKeyCodes = {29, 18, 19, 20, 21, 23, 22, 26, 28, 25};

// The virtual code for a key name: "space", "p", "return", "enter" (keypad), "escape", "tab", "down",
// "up", "left", "right", a letter "a"-"z" or a digit "0"-"9". Nothing for any other name.
std::optional<uint16_t> keyCodeForName(std::string_view name);

}  // namespace zb

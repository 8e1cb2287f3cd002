#include "platform/key_names.hpp"

#include <array>

#include "engine/input_event.hpp"

namespace zb {

namespace {

// Virtual codes of the ANSI letter keys, a to z.
constexpr std::array<uint16_t, 26> kLetterCodes = {
    0,  11, 8,  2,  14, 3,  5,  4,  34, 38, 40, 37, 46,  // a-m
    45, 31, 35, 12, 15, 1,  17, 32, 9,  13, 7,  16, 6,   // n-z
};

// Virtual codes of the digit row, 0 to 9.
constexpr std::array<uint16_t, 10> kDigitCodes = {29, 18, 19, 20, 21, 23, 22, 26, 28, 25};

struct NamedKey {
  std::string_view name;
  uint16_t code;
};

constexpr std::array<NamedKey, 8> kNamedKeys = {{
    {"space", keycode::space},
    {"return", keycode::returnKey},
    {"enter", keycode::keypadEnter},
    {"escape", keycode::escape},
    {"down", keycode::downArrow},
    {"up", keycode::upArrow},
    {"left", keycode::leftArrow},
    {"right", keycode::rightArrow},
}};

}  // namespace

uint16_t letterKeyCode(char letter) { return kLetterCodes.at(static_cast<std::size_t>(letter - 'a')); }

uint16_t digitKeyCode(int digit) { return kDigitCodes.at(static_cast<std::size_t>(digit)); }

std::optional<uint16_t> keyCodeForName(std::string_view name) {
  if (name.size() == 1) {
    const char c = name[0];
    if (c >= 'a' && c <= 'z') return letterKeyCode(c);
    if (c >= '0' && c <= '9') return digitKeyCode(c - '0');
    return std::nullopt;
  }
  for (const NamedKey& key : kNamedKeys) {
    if (key.name == name) return key.code;
  }
  return std::nullopt;
}

}  // namespace zb

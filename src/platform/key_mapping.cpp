#include "platform/key_mapping.hpp"

#include <SDL_keycode.h>

#include <algorithm>
#include <array>
#include <utility>

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
  SDL_Scancode scancode;
};

constexpr std::array<NamedKey, 9> kNamedKeys = {{
    {"space", keycode::space, SDL_SCANCODE_SPACE},
    {"return", keycode::returnKey, SDL_SCANCODE_RETURN},
    {"enter", keycode::keypadEnter, SDL_SCANCODE_KP_ENTER},
    {"escape", keycode::escape, SDL_SCANCODE_ESCAPE},
    {"down", keycode::downArrow, SDL_SCANCODE_DOWN},
    {"up", keycode::upArrow, SDL_SCANCODE_UP},
    {"left", keycode::leftArrow, SDL_SCANCODE_LEFT},
    {"right", keycode::rightArrow, SDL_SCANCODE_RIGHT},
    // The second Return some keyboards have behaves like the main one.
    {"", keycode::returnKey, SDL_SCANCODE_RETURN2},
}};

}  // namespace

uint16_t keyCodeForScancode(SDL_Scancode scancode) {
  if (scancode >= SDL_SCANCODE_A && scancode <= SDL_SCANCODE_Z) return kLetterCodes[scancode - SDL_SCANCODE_A];
  // SDL orders the digit row 1..9, then 0.
  if (scancode >= SDL_SCANCODE_1 && scancode <= SDL_SCANCODE_9) return kDigitCodes[scancode - SDL_SCANCODE_1 + 1];
  if (scancode == SDL_SCANCODE_0) return kDigitCodes[0];
  for (const NamedKey& key : kNamedKeys) {
    if (key.scancode == scancode) return key.code;
  }
  const int unmapped = kUnmappedKeyCodeBase + static_cast<int>(scancode);
  return static_cast<uint16_t>(std::clamp(unmapped, int{kUnmappedKeyCodeBase}, 0xFFFF));
}

uint64_t modifierFlagsFor(uint16_t sdlKeymod) {
  return (sdlKeymod & KMOD_ALT) != 0 ? kOptionModifierFlag : 0;
}

std::optional<uint16_t> keyCodeForName(std::string_view name) {
  if (name.size() == 1) {
    const char c = name[0];
    if (c >= 'a' && c <= 'z') return kLetterCodes[c - 'a'];
    if (c >= '0' && c <= '9') return kDigitCodes[c - '0'];
    return std::nullopt;
  }
  for (const NamedKey& key : kNamedKeys) {
    if (!key.name.empty() && key.name == name) return key.code;
  }
  return std::nullopt;
}

}  // namespace zb

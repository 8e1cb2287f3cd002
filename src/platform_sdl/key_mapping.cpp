#include "platform_sdl/key_mapping.hpp"

#include <SDL_keycode.h>

#include <algorithm>
#include <array>
#include <utility>

#include "engine/input_event.hpp"
#include "engine/key_names.hpp"

namespace zb {

namespace {

struct ScancodeKey {
  SDL_Scancode scancode;
  uint16_t code;
};

constexpr std::array<ScancodeKey, 10> kScancodeKeys = {{
    {SDL_SCANCODE_SPACE, keycode::space},
    {SDL_SCANCODE_RETURN, keycode::returnKey},
    {SDL_SCANCODE_KP_ENTER, keycode::keypadEnter},
    {SDL_SCANCODE_ESCAPE, keycode::escape},
    {SDL_SCANCODE_DOWN, keycode::downArrow},
    {SDL_SCANCODE_UP, keycode::upArrow},
    {SDL_SCANCODE_LEFT, keycode::leftArrow},
    {SDL_SCANCODE_RIGHT, keycode::rightArrow},
    {SDL_SCANCODE_TAB, keycode::tab},
    // The second Return some keyboards have behaves like the main one.
    {SDL_SCANCODE_RETURN2, keycode::returnKey},
}};

}  // namespace

uint16_t keyCodeForScancode(SDL_Scancode scancode) {
  if (scancode >= SDL_SCANCODE_A && scancode <= SDL_SCANCODE_Z) return kLetterKeyCodes[scancode - SDL_SCANCODE_A];
  // SDL orders the digit row 1..9, then 0.
  if (scancode >= SDL_SCANCODE_1 && scancode <= SDL_SCANCODE_9) return kDigitKeyCodes[scancode - SDL_SCANCODE_1 + 1];
  if (scancode == SDL_SCANCODE_0) return kDigitKeyCodes[0];
  for (const ScancodeKey& key : kScancodeKeys) {
    if (key.scancode == scancode) return key.code;
  }
  const int unmapped = kUnmappedKeyCodeBase + static_cast<int>(scancode);
  return static_cast<uint16_t>(std::clamp(unmapped, int{kUnmappedKeyCodeBase}, 0xFFFF));
}

uint64_t modifierFlagsFor(uint16_t sdlKeymod) {
  uint64_t flags = 0;
  if ((sdlKeymod & KMOD_ALT) != 0) flags |= kOptionModifierFlag;
  if ((sdlKeymod & KMOD_SHIFT) != 0) flags |= kShiftModifierFlag;
  if ((sdlKeymod & KMOD_CTRL) != 0) flags |= kControlModifierFlag;
  return flags;
}

}  // namespace zb

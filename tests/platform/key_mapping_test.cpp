#include "platform/key_mapping.hpp"
#include "engine/key_names.hpp"

#include <SDL_keycode.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "engine/input_event.hpp"

namespace zb {
namespace {

TEST(KeyMapping, NamesAndScancodesGiveTheGameKeysTheirVirtualCodes) {
  struct Case {
    const char* name;
    SDL_Scancode scancode;
    uint16_t code;
  };
  const Case cases[] = {
      {"space", SDL_SCANCODE_SPACE, keycode::space},         {"p", SDL_SCANCODE_P, keycode::p},
      {"return", SDL_SCANCODE_RETURN2, keycode::returnKey},  {"enter", SDL_SCANCODE_KP_ENTER, keycode::keypadEnter},
      {"escape", SDL_SCANCODE_ESCAPE, keycode::escape},      {"down", SDL_SCANCODE_DOWN, keycode::downArrow},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(keyCodeForName(c.name), c.code);
    EXPECT_EQ(keyCodeForScancode(c.scancode), c.code);
  }
  EXPECT_EQ(modifierFlagsFor(KMOD_RALT | KMOD_LSHIFT), kOptionModifierFlag);
  EXPECT_EQ(modifierFlagsFor(KMOD_SHIFT | KMOD_CTRL | KMOD_GUI), 0u);
}

TEST(KeyMapping, EveryLetterAndDigitHasItsOwnCodeAndOtherKeysNone) {
  std::set<uint16_t> codes;
  for (char c : std::string("abcdefghijklmnopqrstuvwxyz0123456789")) codes.insert(*keyCodeForName(std::string(1, c)));
  for (const char* name : {"space", "return", "enter", "escape", "down", "up", "left", "right"}) {
    codes.insert(*keyCodeForName(name));
  }
  EXPECT_EQ(codes.size(), 44u);
  for (const char* name : {"", "P", "Space", "f1", "10", "enter "}) EXPECT_FALSE(keyCodeForName(name)) << name;
  EXPECT_GE(keyCodeForScancode(SDL_SCANCODE_F1), kUnmappedKeyCodeBase);
}

}  // namespace
}  // namespace zb

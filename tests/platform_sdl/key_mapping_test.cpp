#include "platform_sdl/key_mapping.hpp"
#include "engine/key_names.hpp"

#include <SDL_keycode.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "engine/input_event.hpp"

namespace zb {
namespace {

TEST(KeyMapping, NamesAndScancodesGiveEachKeyItsOwnVirtualCodeAndOtherKeysNone) {
  // The main Return, Space and the arrows reach the scene in the event tests; here the other Returns.
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_RETURN2), keycode::returnKey);
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_KP_ENTER), keycode::keypadEnter);
  EXPECT_EQ(keyCodeForName("enter"), keycode::keypadEnter);
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_TAB), keycode::tab);
  EXPECT_EQ(modifierFlagsFor(KMOD_RALT | KMOD_LSHIFT), kOptionModifierFlag | kShiftModifierFlag);
  EXPECT_EQ(modifierFlagsFor(KMOD_RCTRL | KMOD_GUI | KMOD_NUM), kControlModifierFlag);

  std::set<uint16_t> codes;
  for (char c : std::string("abcdefghijklmnopqrstuvwxyz0123456789")) codes.insert(*keyCodeForName(std::string(1, c)));
  EXPECT_EQ(codes.size(), 36u);
  for (const char* name : {"", "P", "Space", "f1", "10", "enter "}) EXPECT_FALSE(keyCodeForName(name)) << name;
  EXPECT_GE(keyCodeForScancode(SDL_SCANCODE_F1), kUnmappedKeyCodeBase);
}

}  // namespace
}  // namespace zb

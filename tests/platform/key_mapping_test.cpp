#include "platform/key_mapping.hpp"

#include <SDL_keycode.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "engine/input_event.hpp"

namespace zb {
namespace {

TEST(KeyMapping, NamesGiveTheGameKeysTheirVirtualCodes) {
  EXPECT_EQ(keyCodeForName("space"), keycode::space);
  EXPECT_EQ(keyCodeForName("p"), keycode::p);
  EXPECT_EQ(keyCodeForName("return"), keycode::returnKey);
  EXPECT_EQ(keyCodeForName("enter"), keycode::keypadEnter);
  EXPECT_EQ(keyCodeForName("escape"), keycode::escape);
  EXPECT_EQ(keyCodeForName("down"), keycode::downArrow);
  EXPECT_EQ(keyCodeForName("up"), keycode::upArrow);
  EXPECT_EQ(keyCodeForName("left"), keycode::leftArrow);
  EXPECT_EQ(keyCodeForName("right"), keycode::rightArrow);
  EXPECT_EQ(keyCodeForName("a"), 0);
  EXPECT_EQ(keyCodeForName("z"), 6);
  EXPECT_EQ(keyCodeForName("q"), 12);
  EXPECT_EQ(keyCodeForName("0"), 29);
  EXPECT_EQ(keyCodeForName("5"), 23);
  EXPECT_EQ(keyCodeForName("9"), 25);
}

TEST(KeyMapping, LettersAndDigitsAllHaveDistinctCodesApartFromTheNamedKeys) {
  std::set<uint16_t> codes;
  for (char c = 'a'; c <= 'z'; ++c) codes.insert(*keyCodeForName(std::string(1, c)));
  for (char c = '0'; c <= '9'; ++c) codes.insert(*keyCodeForName(std::string(1, c)));
  EXPECT_EQ(codes.size(), 36u);
  for (const char* name : {"space", "return", "enter", "escape", "down", "up", "left", "right"}) {
    EXPECT_EQ(codes.count(*keyCodeForName(name)), 0u) << name;
  }
}

TEST(KeyMapping, UnknownNamesHaveNoCode) {
  for (const char* name : {"", "P", "Space", "f1", "tab", "10", "-", "spacebar", "enter "}) {
    EXPECT_FALSE(keyCodeForName(name).has_value()) << '"' << name << '"';
  }
}

TEST(KeyMapping, ScancodesMatchTheNamesOfTheSameKeys) {
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_SPACE), keyCodeForName("space"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_P), keyCodeForName("p"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_RETURN), keyCodeForName("return"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_RETURN2), keyCodeForName("return"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_KP_ENTER), keyCodeForName("enter"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_ESCAPE), keyCodeForName("escape"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_DOWN), keyCodeForName("down"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_UP), keyCodeForName("up"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_LEFT), keyCodeForName("left"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_RIGHT), keyCodeForName("right"));
  for (int i = 0; i < 26; ++i) {
    const auto scancode = static_cast<SDL_Scancode>(SDL_SCANCODE_A + i);
    EXPECT_EQ(keyCodeForScancode(scancode), keyCodeForName(std::string(1, static_cast<char>('a' + i))));
  }
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_0), keyCodeForName("0"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_1), keyCodeForName("1"));
  EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_9), keyCodeForName("9"));
}

TEST(KeyMapping, OtherKeysStillArriveWithCodesTheGameDoesNotUse) {
  const uint16_t f1 = keyCodeForScancode(SDL_SCANCODE_F1);
  const uint16_t tab = keyCodeForScancode(SDL_SCANCODE_TAB);
  EXPECT_GE(f1, kUnmappedKeyCodeBase);
  EXPECT_NE(f1, tab);
  EXPECT_GE(keyCodeForScancode(static_cast<SDL_Scancode>(SDL_NUM_SCANCODES - 1)), kUnmappedKeyCodeBase);
}

TEST(KeyMapping, AltIsTheOptionBitAndOtherModifiersAddNothing) {
  EXPECT_EQ(modifierFlagsFor(KMOD_LALT), kOptionModifierFlag);
  EXPECT_EQ(modifierFlagsFor(KMOD_RALT | KMOD_LSHIFT | KMOD_CTRL), kOptionModifierFlag);
  EXPECT_EQ(modifierFlagsFor(KMOD_SHIFT | KMOD_CTRL | KMOD_GUI | KMOD_NUM), 0u);
  EXPECT_EQ(modifierFlagsFor(KMOD_NONE), 0u);
}

}  // namespace
}  // namespace zb

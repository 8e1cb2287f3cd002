#include "platform_sdl/sdl_events.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "engine/key_names.hpp"
#include "engine/scene.hpp"
#include "platform_sdl/key_mapping.hpp"
#include "platform_sdl/sdl_view.hpp"

namespace zb {
namespace {

using Key = std::tuple<uint16_t, uint64_t, bool>;  // code, modifier flags, repeat

class RecordingScene : public Scene {
 public:
  std::vector<Key> downs, ups;
  std::vector<Point> clicks;
  void keyDown(const KeyEvent& e) override { downs.emplace_back(e.keyCode, e.modifierFlags, e.isRepeat); }
  void keyUp(const KeyEvent& e) override { ups.emplace_back(e.keyCode, e.modifierFlags, e.isRepeat); }
  void mouseDown(const MouseEvent& e) override { clicks.push_back(e.locationInScene); }
};

TEST(SdlEvents, KeysClicksAndResizesReachTheSceneAndAQuitRequestQuits) {
  SdlView view({400, 300}, nullptr, nullptr);
  auto scene = std::make_shared<RecordingScene>();
  view.presentScene(scene);
  // Each event as SDL fills it, every field in SDL's order.
  const auto key = [&](Uint32 type, SDL_Scancode code, Uint16 mod, Uint8 repeat = 0) {
    return dispatchEvent(SDL_Event{.key = {type, 0, 0, 0, repeat, 0, 0, {code, 0, mod, 0}}}, view);
  };
  const auto click = [&](Uint8 button, int x, int y) {
    dispatchEvent(SDL_Event{.button = {SDL_MOUSEBUTTONDOWN, 0, 0, 0, button, SDL_PRESSED, 1, 0, x, y}}, view);
  };
  key(SDL_KEYDOWN, SDL_SCANCODE_RETURN, KMOD_LALT, 0);
  key(SDL_KEYDOWN, SDL_SCANCODE_SPACE, KMOD_NONE, 1);  // automatic repeats arrive as presses
  key(SDL_KEYUP, SDL_SCANCODE_DOWN, KMOD_NONE, 0);
  const std::vector<Key> downs = {{keycode::returnKey, kOptionModifierFlag, false}, {keycode::space, 0, true}};
  EXPECT_EQ(scene->downs, downs);
  EXPECT_EQ(scene->ups, (std::vector<Key>{{keycode::downArrow, 0, false}}));

  click(SDL_BUTTON_LEFT, 10, 20);
  click(SDL_BUTTON_RIGHT, 50, 50);
  const SDL_Event resize{.window = {SDL_WINDOWEVENT, 0, 0, SDL_WINDOWEVENT_SIZE_CHANGED, 0, 0, 0, 800, 450}};
  EXPECT_EQ(dispatchEvent(resize, view), EventOutcome::handled);
  EXPECT_EQ(scene->size(), (Size{800, 450}));
  click(SDL_BUTTON_LEFT, 0, 0);
  EXPECT_EQ(scene->clicks, (std::vector<Point>{{10, 280}, {0, 450}})) << "y up, the left button only";
  EXPECT_EQ(dispatchEvent(SDL_Event{.type = SDL_QUIT}, view), EventOutcome::quit);
  // Ctrl+Q quits before the scene hears of it; a plain Q is an ordinary key.
  EXPECT_EQ(key(SDL_KEYDOWN, SDL_SCANCODE_Q, KMOD_LCTRL), EventOutcome::quit);
  EXPECT_EQ(key(SDL_KEYDOWN, SDL_SCANCODE_Q, KMOD_NONE), EventOutcome::handled);
  EXPECT_EQ(scene->downs.size(), 3u);
}

TEST(KeyMapping, NamesAndScancodesGiveEachKeyItsOwnVirtualCodeAndOtherKeysNone) {
  // Which key is which shows in the event tests and remapping; here only that no two keys share a code.
  std::set<uint16_t> codes;
  for (char c : std::string("abcdefghijklmnopqrstuvwxyz0123456789")) codes.insert(*keyCodeForName(std::string(1, c)));
  EXPECT_EQ(codes.size(), 36u);
  for (const char* name : {"", "P", "Space", "f1", "10", "enter "}) EXPECT_FALSE(keyCodeForName(name)) << name;
  EXPECT_GE(keyCodeForScancode(SDL_SCANCODE_F1), kUnmappedKeyCodeBase);
}

}  // namespace
}  // namespace zb

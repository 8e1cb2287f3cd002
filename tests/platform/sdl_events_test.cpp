#include "platform/sdl_events.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "engine/scene.hpp"
#include "platform/sdl_view.hpp"

namespace zb {
namespace {

class RecordingScene : public Scene {
 public:
  std::vector<KeyEvent> downs, ups;
  std::vector<Point> clicks;
  void keyDown(const KeyEvent& e) override { downs.push_back(e); }
  void keyUp(const KeyEvent& e) override { ups.push_back(e); }
  void mouseDown(const MouseEvent& e) override { clicks.push_back(e.locationInScene); }
};

TEST(SdlEvents, KeysClicksAndResizesReachTheSceneAndAQuitRequestQuits) {
  SdlView view({400, 300}, nullptr, nullptr);
  auto scene = std::make_shared<RecordingScene>();
  view.presentScene(scene);
  const auto key = [&](Uint32 type, SDL_Scancode scancode, Uint16 mod, Uint8 repeat) {
    SDL_Event e{.type = type};
    e.key.keysym.scancode = scancode;
    e.key.keysym.mod = mod;
    e.key.repeat = repeat;
    dispatchEvent(e, view);
  };
  const auto click = [&](Uint8 button, int x, int y) {
    SDL_Event e{.type = SDL_MOUSEBUTTONDOWN};
    e.button.button = button;
    e.button.x = x;
    e.button.y = y;
    dispatchEvent(e, view);
  };
  key(SDL_KEYDOWN, SDL_SCANCODE_RETURN, KMOD_LALT, 0);
  key(SDL_KEYDOWN, SDL_SCANCODE_SPACE, KMOD_NONE, 1);  // automatic repeats arrive as presses
  key(SDL_KEYUP, SDL_SCANCODE_DOWN, KMOD_NONE, 0);
  ASSERT_EQ(scene->downs.size(), 2u);
  EXPECT_EQ(scene->downs[0].keyCode, keycode::returnKey);
  EXPECT_EQ(scene->downs[0].modifierFlags & kOptionModifierFlag, kOptionModifierFlag);
  EXPECT_EQ(scene->downs[1].keyCode, keycode::space);
  EXPECT_TRUE(scene->downs[1].isRepeat);
  ASSERT_EQ(scene->ups.size(), 1u);
  EXPECT_EQ(scene->ups[0].keyCode, keycode::downArrow);

  click(SDL_BUTTON_LEFT, 10, 20);
  click(SDL_BUTTON_RIGHT, 50, 50);
  SDL_Event resize{.type = SDL_WINDOWEVENT};
  resize.window.event = SDL_WINDOWEVENT_SIZE_CHANGED;
  resize.window.data1 = 800;
  resize.window.data2 = 450;
  EXPECT_EQ(dispatchEvent(resize, view), EventOutcome::handled);
  EXPECT_EQ(scene->size(), (Size{800, 450}));
  click(SDL_BUTTON_LEFT, 0, 0);
  EXPECT_EQ(scene->clicks, (std::vector<Point>{{10, 280}, {0, 450}})) << "y up, the left button only";
  // Closing the window is checked with the real window; the desktop's quit request must end the game too.
  EXPECT_EQ(dispatchEvent(SDL_Event{.type = SDL_QUIT}, view), EventOutcome::quit);
}

}  // namespace
}  // namespace zb

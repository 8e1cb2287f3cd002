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

struct Fixture {
  Fixture() { view.presentScene(scene); }
  SdlView view{{400, 300}, nullptr, nullptr};
  std::shared_ptr<RecordingScene> scene = std::make_shared<RecordingScene>();
};

SDL_Event keyEvent(Uint32 type, SDL_Scancode scancode, Uint16 mod, bool repeat) {
  SDL_Event e{};
  e.type = type;
  e.key.keysym.scancode = scancode;
  e.key.keysym.mod = mod;
  e.key.repeat = repeat ? 1 : 0;
  return e;
}

SDL_Event buttonEvent(Uint8 button, int x, int y) {
  SDL_Event e{};
  e.type = SDL_MOUSEBUTTONDOWN;
  e.button.button = button;
  e.button.x = x;
  e.button.y = y;
  return e;
}

SDL_Event windowEvent(Uint8 what, int data1 = 0, int data2 = 0) {
  SDL_Event e{};
  e.type = SDL_WINDOWEVENT;
  e.window.event = what;
  e.window.data1 = data1;
  e.window.data2 = data2;
  return e;
}

TEST(SdlEvents, KeysReachTheSceneWithVirtualCodesOptionAndRepeats) {
  Fixture f;
  dispatchEvent(keyEvent(SDL_KEYDOWN, SDL_SCANCODE_RETURN, KMOD_LALT, false), f.view);
  dispatchEvent(keyEvent(SDL_KEYDOWN, SDL_SCANCODE_SPACE, KMOD_NONE, true), f.view);
  dispatchEvent(keyEvent(SDL_KEYUP, SDL_SCANCODE_DOWN, KMOD_NONE, false), f.view);
  ASSERT_EQ(f.scene->downs.size(), 2u);
  EXPECT_EQ(f.scene->downs[0].keyCode, keycode::returnKey);
  EXPECT_EQ(f.scene->downs[0].modifierFlags & kOptionModifierFlag, kOptionModifierFlag);
  EXPECT_FALSE(f.scene->downs[0].isRepeat);
  EXPECT_EQ(f.scene->downs[1].keyCode, keycode::space);
  EXPECT_TRUE(f.scene->downs[1].isRepeat) << "automatic repeats arrive as presses";
  ASSERT_EQ(f.scene->ups.size(), 1u);
  EXPECT_EQ(f.scene->ups[0].keyCode, keycode::downArrow);
}

TEST(SdlEvents, PrimaryClicksArriveInSceneCoordinatesWithYUp) {
  Fixture f;
  dispatchEvent(buttonEvent(SDL_BUTTON_LEFT, 10, 20), f.view);
  dispatchEvent(buttonEvent(SDL_BUTTON_RIGHT, 50, 50), f.view);
  dispatchEvent(buttonEvent(SDL_BUTTON_MIDDLE, 50, 50), f.view);
  ASSERT_EQ(f.scene->clicks.size(), 1u);
  EXPECT_EQ(f.scene->clicks[0], (Point{10, 280}));
}

TEST(SdlEvents, ResizeFollowsTheWindowAndCloseQuits) {
  Fixture f;
  EXPECT_EQ(dispatchEvent(windowEvent(SDL_WINDOWEVENT_SIZE_CHANGED, 800, 450), f.view), EventOutcome::handled);
  EXPECT_EQ(f.view.size(), (Size{800, 450}));
  EXPECT_EQ(f.scene->size(), (Size{800, 450}));
  dispatchEvent(buttonEvent(SDL_BUTTON_LEFT, 0, 0), f.view);
  EXPECT_EQ(f.scene->clicks.back(), (Point{0, 450})) << "clicks use the new height";

  EXPECT_EQ(dispatchEvent(windowEvent(SDL_WINDOWEVENT_CLOSE), f.view), EventOutcome::quit);
  SDL_Event quit{};
  quit.type = SDL_QUIT;
  EXPECT_EQ(dispatchEvent(quit, f.view), EventOutcome::quit);
}

TEST(SdlEvents, MouseMotionUnhidesACursorHiddenUntilMoved) {
  Fixture f;
  f.view.hideCursorUntilMouseMoves();
  EXPECT_TRUE(f.view.isCursorHidden());
  SDL_Event motion{};
  motion.type = SDL_MOUSEMOTION;
  dispatchEvent(motion, f.view);
  EXPECT_FALSE(f.view.isCursorHidden());
}

}  // namespace
}  // namespace zb

// Gamepads through SDL's virtual joysticks, its controller layer and the window's event code, into the game.
#include "platform_sdl/gamepads.hpp"

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "platform_sdl/sdl_events.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using State = GameScene::GameState;

class VirtualPads : public testing::Test {
 protected:
  void SetUp() override {
    setenv("SDL_JOYSTICK_ALLOW_BACKGROUND_EVENTS", "1", 1);  // there is no window to have focus
    ASSERT_EQ(SDL_Init(SDL_INIT_JOYSTICK | SDL_INIT_EVENTS), 0) << SDL_GetError();
  }
  void TearDown() override {
    pads.reset();
    SDL_Quit();
  }

  // A pad with the common layout and its SDL mapping; one of unknown type gets no mapping.
  SDL_Joystick* attach(SDL_JoystickType type = SDL_JOYSTICK_TYPE_GAMECONTROLLER) {
    SDL_VirtualJoystickDesc desc{};
    desc.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
    desc.type = type;
    desc.naxes = SDL_CONTROLLER_AXIS_MAX;
    desc.nbuttons = kGamepadButtonCount;
    desc.name = "Odd Pad";
    desc.vendor_id = 0x1234;  // an identity a layout file can name
    desc.product_id = 0x5678;
    const int index = SDL_JoystickAttachVirtualEx(&desc);
    EXPECT_GE(index, 0) << SDL_GetError();
    return SDL_JoystickOpen(index);  // SDL_Quit closes it
  }
  void pump() {
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) dispatchEvent(event, *game.view, *pads);
  }
  void button(SDL_Joystick* joystick, SDL_GameControllerButton which, bool down) {
    SDL_JoystickSetVirtualButton(joystick, which, down ? 1 : 0);
    pump();
  }
  void tap(SDL_Joystick* joystick, SDL_GameControllerButton which) {
    for (bool down : {true, false}) button(joystick, which, down);
  }

  test::AttachedScene game;
  std::optional<SdlGamepads> pads;
};

TEST_F(VirtualPads, PadsAtStartAndLaterOnesCountTheFirstPlaysAndLosingItMidRunPauses) {
  SDL_Joystick* first = attach();  // plugged in before the game starts
  pads.emplace();
  pump();
  EXPECT_EQ(game.view->gamepads().count(), 1u);
  SDL_Joystick* second = attach();
  pump();
  EXPECT_EQ(game.view->gamepads().count(), 2u);

  tap(second, SDL_CONTROLLER_BUTTON_A);
  EXPECT_EQ(game->gameState, State::menu) << "only the first pad plays";
  tap(first, SDL_CONTROLLER_BUTTON_A);
  EXPECT_EQ(game->gameState, State::playing);

  button(first, SDL_CONTROLLER_BUTTON_B, true);  // ducking when the cable goes
  for (int i = 0; i < SDL_NumJoysticks(); ++i) {
    if (SDL_JoystickGetDeviceInstanceID(i) == SDL_JoystickInstanceID(first)) SDL_JoystickDetachVirtual(i);
  }
  pump();
  EXPECT_EQ(game.view->gamepads().count(), 1u);
  EXPECT_EQ(game->gameState, State::paused);
  EXPECT_FALSE(game->isDucking) << "a pad that is gone holds nothing";
  tap(second, SDL_CONTROLLER_BUTTON_A);  // the remaining pad takes over
  EXPECT_EQ(game->gameState, State::playing);
}

TEST_F(VirtualPads, EveryMappedButtonDoesWhatItsKeyDoesTheRestNothingAndTheStickDucksPastHalfWay) {
  SDL_Joystick* pad = attach();
  pads.emplace();
  pump();
  tap(pad, SDL_CONTROLLER_BUTTON_A);
  EXPECT_EQ(game->gameState, State::playing);
  EXPECT_EQ(game.sounds(), std::vector<std::string>{"jump"});
  tap(pad, SDL_CONTROLLER_BUTTON_START);
  EXPECT_EQ(game->gameState, State::paused);
  tap(pad, SDL_CONTROLLER_BUTTON_START);
  EXPECT_EQ(game->gameState, State::playing);

  // B and down duck while held; the other buttons do nothing.
  for (const auto& [which, ducks] : {std::pair{SDL_CONTROLLER_BUTTON_B, true}, {SDL_CONTROLLER_BUTTON_DPAD_DOWN, true},
                                     {SDL_CONTROLLER_BUTTON_X, false}, {SDL_CONTROLLER_BUTTON_Y, false},
                                     {SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, false},
                                     {SDL_CONTROLLER_BUTTON_DPAD_UP, false}}) {
    button(pad, which, true);
    EXPECT_EQ(game->isDucking, ducks) << which;
    EXPECT_EQ(game->gameState, State::playing) << which;
    button(pad, which, false);
    EXPECT_FALSE(game->isDucking) << which;
  }
  EXPECT_TRUE(game.sounds().empty()) << "no other button jumps";

  for (const auto& [y, ducking] : {std::pair{0.45, false}, {0.55, true}, {0.4, false}, {-0.9, false}}) {
    SDL_JoystickSetVirtualAxis(pad, SDL_CONTROLLER_AXIS_LEFTY, static_cast<Sint16>(y * 32767));
    pump();
    EXPECT_EQ(game->isDucking, ducking) << y;
  }
  // The right stick and the left stick's sideways travel never duck.
  SDL_JoystickSetVirtualAxis(pad, SDL_CONTROLLER_AXIS_RIGHTY, 32767);
  SDL_JoystickSetVirtualAxis(pad, SDL_CONTROLLER_AXIS_LEFTX, 32767);
  pump();
  EXPECT_FALSE(game->isDucking);

  tap(pad, SDL_CONTROLLER_BUTTON_BACK);
  EXPECT_EQ(game->gameState, State::menu);
}

TEST_F(VirtualPads, AnUnknownPadPlaysWithTheLayoutFileSdlIsToldAbout) {
  char guid[64] = {};
  SDL_JoystickGetGUIDString(SDL_JoystickGetGUID(attach(SDL_JOYSTICK_TYPE_UNKNOWN)), guid, sizeof guid);
  // Its bottom face button reports as the second button; SDL reads the file as its joystick layer starts.
  SDL_Quit();
  const test::TempFolder folder("zb-pad-layouts");
  const std::string file = (folder.path() / "pads.txt").string();
  std::ofstream(file) << guid << ",Odd Pad,a:b1,b:b0,dpdown:b12,platform:Linux,\n";
  setenv("SDL_GAMECONTROLLERCONFIG_FILE", file.c_str(), 1);
  ASSERT_EQ(SDL_Init(SDL_INIT_JOYSTICK | SDL_INIT_EVENTS), 0) << SDL_GetError();
  SDL_Joystick* pad = attach(SDL_JOYSTICK_TYPE_UNKNOWN);
  pads.emplace();
  unsetenv("SDL_GAMECONTROLLERCONFIG_FILE");
  pump();
  ASSERT_EQ(game.view->gamepads().count(), 1u) << "the file made it a pad";

  tap(pad, SDL_CONTROLLER_BUTTON_B);  // the second button: A in this layout
  EXPECT_EQ(game->gameState, State::playing);
  // A duck held by B (the first button) and the D-pad lasts until both let go.
  button(pad, SDL_CONTROLLER_BUTTON_A, true);
  button(pad, SDL_CONTROLLER_BUTTON_DPAD_DOWN, true);
  button(pad, SDL_CONTROLLER_BUTTON_A, false);
  EXPECT_TRUE(game->isDucking);
  button(pad, SDL_CONTROLLER_BUTTON_DPAD_DOWN, false);
  EXPECT_FALSE(game->isDucking);
}

}  // namespace
}  // namespace zb

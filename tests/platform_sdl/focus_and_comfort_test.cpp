// The comfort options as a player meets them: focus through SDL's window events, reduced motion, keys.
// The slower game's pace is in the frame loop's evenness table.
#include <SDL.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "engine/input_event.hpp"
#include "engine/key_names.hpp"
#include "platform_sdl/sdl_events.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using State = GameScene::GameState;

// Puts the game in `state` by the player's own keys.
void reach(test::AttachedScene& game, State state) {
  if (state == State::settings) game->openSettings();
  if (state == State::menu || state == State::settings) return;
  game.press(keycode::space);
  if (state == State::gameOver) game.runUntilCrash();
  game.sounds();
}

// Through SDL's queue and the window's event code, as the frame loop hands them over.
void windowEvent(test::AttachedScene& game, SDL_WindowEventID what) {
  SDL_Event event{};
  event.type = SDL_WINDOWEVENT;
  event.window.event = static_cast<Uint8>(what);
  SDL_PushEvent(&event);
  while (SDL_PollEvent(&event) != 0) dispatchEvent(event, *game.view);
}

TEST(WindowEvents, LookingAwayMidRunPausesSilentlyAndComingBackDoesNotResume) {
  ASSERT_EQ(SDL_Init(SDL_INIT_EVENTS), 0) << SDL_GetError();
  for (SDL_WindowEventID away : {SDL_WINDOWEVENT_FOCUS_LOST, SDL_WINDOWEVENT_MINIMIZED}) {
    test::AttachedScene game;
    reach(game, State::playing);
    windowEvent(game, away);
    EXPECT_EQ(game->gameState, State::paused) << away;
    EXPECT_TRUE(game.sounds().empty());
    windowEvent(game, SDL_WINDOWEVENT_FOCUS_GAINED);
    windowEvent(game, SDL_WINDOWEVENT_RESTORED);
    EXPECT_EQ(game->gameState, State::paused) << away;
  }
  // In every other state, or with the option off, nothing happens.
  for (auto [state, pauseOnFocusLoss] :
       {std::pair{State::menu, true}, {State::settings, true}, {State::gameOver, true}, {State::playing, false}}) {
    test::SceneOptions options;
    options.preferences->setBool(pauseOnFocusLoss, "zindlebop_pauseOnFocusLoss");
    test::AttachedScene game(options);
    reach(game, state);
    windowEvent(game, SDL_WINDOWEVENT_FOCUS_LOST);
    EXPECT_EQ(game->gameState, state);
  }
  SDL_Quit();
}

// How far the interface strays sideways in the frames after a crash.
double interfaceSwayAfterCrash(test::AttachedScene& game) {
  reach(game, State::gameOver);
  double sway = 0;
  for (int i = 0; i < 10; ++i) {
    game.step();
    sway = std::max(sway, std::abs(game->uiLayer->position.x));
  }
  return sway;
}

TEST(ReducedMotion, OnlyTheInterfaceShakeAtACrashGoesAndTheStoreWinsOverTheDesktop) {
  test::AttachedScene shaking;
  EXPECT_GT(interfaceSwayAfterCrash(shaking), 0);
  test::SceneOptions options;
  options.preferences->setBool(true, "zindlebop_reducedMotion");
  test::AttachedScene still(options);
  EXPECT_EQ(interfaceSwayAfterCrash(still), 0);
  EXPECT_EQ(still->gameState, State::gameOver) << "the rest of the crash is as before";

  MemoryPreferences store;
  EXPECT_TRUE(readComfortOptions(store, true).reducedMotion) << "with nothing stored, the desktop decides";
  store.setBool(false, "zindlebop_reducedMotion");
  EXPECT_FALSE(readComfortOptions(store, true).reducedMotion) << "the store wins over the desktop";
}

// "abc" is not read as 0 (half speed) or false (no pause), nor false as a speed of 0.
TEST(ComfortTypes, AValueOfTheWrongTypeMeansTheDefaultWithOneLineNamingTheKey) {
  for (const PreferenceValue& speed : {PreferenceValue(std::string("abc")), PreferenceValue(false)}) {
    test::SceneOptions options;
    options.preferences->setObject("zindlebop_gameSpeed", speed);
    options.preferences->setObject("zindlebop_pauseOnFocusLoss", std::string("abc"));
    testing::internal::CaptureStderr();
    test::AttachedScene game(options);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(game->comfortOptions().gameSpeed, 1.0f);
    EXPECT_TRUE(game->comfortOptions().pauseOnFocusLoss);
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2) << said;
    EXPECT_THAT(said, testing::ContainsRegex("zindlebop_pauseOnFocusLoss.*\n.*zindlebop_gameSpeed")) << said;
  }
}

// However many unknown names, they are named in one short line that cannot repaint the terminal.
TEST(RemappedKeys, ChosenKeysReplaceTheDefaultsUnknownNamesAndNumbersAreNamedOnceAndTheFirstActionKeepsAKey) {
  std::string manyNames = "nonsense \x1B[0m\x7F\xC2\x85";
  for (int i = 0; i < 20000; ++i) manyNames += " zz";
  test::SceneOptions options;
  options.preferences->setObject("zindlebop_keys_jump", std::string("w  Up return"));
  options.preferences->setObject("zindlebop_keys_duck", std::string("s 12345"));
  options.preferences->setObject("zindlebop_keys_pause", std::string("q bogus"));
  options.preferences->setObject("zindlebop_keys_leave", manyNames + " w");
  testing::internal::CaptureStderr();
  test::AttachedScene game(options);
  const std::string complaint = testing::internal::GetCapturedStderr();
  EXPECT_THAT(complaint, testing::HasSubstr("'12345' 'bogus' 'nonsense' '\\x1b[0m\\x7f\\x85' 'zz'"));
  EXPECT_THAT(complaint, testing::HasSubstr("'w' is given to both jump and leave"));
  EXPECT_EQ(std::count(complaint.begin(), complaint.end(), '\n'), 2) << complaint;
  const size_t firstLineEnd = complaint.find('\n') + 1;
  EXPECT_LE(firstLineEnd, 201u) << complaint;
  EXPECT_LE(complaint.size() - firstLineEnd, 201u) << complaint;
  EXPECT_THAT(complaint, testing::HasSubstr(" more\n")) << complaint;

  game.press(keycode::space);
  EXPECT_EQ(game->gameState, State::menu) << "Space no longer jumps";
  game.press(*keyCodeForName("w"));
  EXPECT_EQ(game->gameState, State::playing);
  game.press(*keyCodeForName("s"));
  EXPECT_TRUE(game->isDucking);
  game.press(*keyCodeForName("q"));
  EXPECT_EQ(game->gameState, State::paused);
  game.press(keycode::returnKey);  // a jump key now: resumes as Space would
  EXPECT_EQ(game->gameState, State::playing);
  game.press(keycode::returnKey, kOptionModifierFlag);
  EXPECT_TRUE(game.fullScreen()) << "Alt+Return stays the full-screen key";
  game.press(keycode::escape);  // no leave key of its own: Escape stays
  EXPECT_EQ(game->gameState, State::menu);
  game.press(*keyCodeForName("w"));
  EXPECT_EQ(game->gameState, State::playing) << "w stays with jump";
}

}  // namespace
}  // namespace zb

// The comfort options as a player meets them: window focus through SDL's own window events, reduced
// motion at a crash, remapped keys from the preferences file, and the slower game through the pacer.
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>
#include <string>

#include "engine/input_event.hpp"
#include "engine/key_names.hpp"
#include "platform/frame_pacer.hpp"
#include "platform/sdl_events.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using State = GameScene::GameState;

class WindowEvents : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(SDL_Init(SDL_INIT_EVENTS), 0) << SDL_GetError(); }
  void TearDown() override { SDL_Quit(); }

  // Through SDL's queue and the window's event code, as the frame loop hands them over.
  static void windowEvent(test::AttachedScene& game, SDL_WindowEventID what) {
    SDL_Event event{};
    event.type = SDL_WINDOWEVENT;
    event.window.event = static_cast<Uint8>(what);
    SDL_PushEvent(&event);
    while (SDL_PollEvent(&event) != 0) dispatchEvent(event, *game.view);
  }
};

// Puts the game in `state` by the player's own keys.
void reach(test::AttachedScene& game, State state) {
  if (state == State::settings) game->openSettings();
  if (state == State::menu || state == State::settings) return;
  game.press(keycode::space);
  if (state == State::gameOver) game.runUntilCrash();
  game.sounds();
}

TEST_F(WindowEvents, LookingAwayMidRunPausesSilentlyAndComingBackDoesNotResume) {
  for (SDL_WindowEventID away : {SDL_WINDOWEVENT_FOCUS_LOST, SDL_WINDOWEVENT_MINIMIZED}) {
    test::AttachedScene game;
    reach(game, State::playing);
    windowEvent(game, away);
    EXPECT_EQ(game->gameState, State::paused) << away;
    EXPECT_TRUE(game->paused);
    EXPECT_TRUE(game.sounds().empty());
    windowEvent(game, SDL_WINDOWEVENT_FOCUS_GAINED);
    windowEvent(game, SDL_WINDOWEVENT_RESTORED);
    EXPECT_EQ(game->gameState, State::paused) << away;
  }
  // In every other state, or with the option off, nothing happens.
  for (State state : {State::menu, State::settings, State::gameOver}) {
    test::AttachedScene game;
    reach(game, state);
    windowEvent(game, SDL_WINDOWEVENT_FOCUS_LOST);
    EXPECT_EQ(game->gameState, state);
  }
  test::SceneOptions keepPlaying;
  keepPlaying.preferences->setBool(false, "zindlebop_pauseOnFocusLoss");
  test::AttachedScene game(keepPlaying);
  reach(game, State::playing);
  windowEvent(game, SDL_WINDOWEVENT_FOCUS_LOST);
  EXPECT_EQ(game->gameState, State::playing);
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

TEST(ReducedMotion, OnlyTheInterfaceShakeAtACrashGoes) {
  test::AttachedScene shaking;
  EXPECT_GT(interfaceSwayAfterCrash(shaking), 0);

  test::SceneOptions options;
  options.preferences->setBool(true, "zindlebop_reducedMotion");
  test::AttachedScene still(options);
  EXPECT_EQ(interfaceSwayAfterCrash(still), 0);
  // The rest of the crash is as before.
  EXPECT_EQ(still->gameState, State::gameOver);
  EXPECT_FALSE(still->gameOverOverlay->hidden);
}

TEST(ReducedMotion, TheStoreWinsOverTheDesktopWhichDecidesWhenTheStoreIsSilent) {
  for (auto [stored, desktop, expected] : {std::tuple{std::optional<bool>{}, true, true},
                                          {std::optional<bool>{}, false, false},
                                          {std::optional<bool>{false}, true, false},
                                          {std::optional<bool>{true}, false, true}}) {
    MemoryPreferences store;
    if (stored) store.setBool(*stored, "zindlebop_reducedMotion");
    EXPECT_EQ(readComfortOptions(store, desktop).reducedMotion, expected);
  }
}

TEST(RemappedKeys, ChosenKeysReplaceTheDefaultsAndUnknownNamesAreNamedOnce) {
  test::SceneOptions options;
  options.preferences->setObject("zindlebop_keys_jump", std::string("w  Up return"));
  options.preferences->setObject("zindlebop_keys_duck", std::string("s"));
  options.preferences->setObject("zindlebop_keys_pause", std::string("q bogus"));
  options.preferences->setObject("zindlebop_keys_leave", std::string("nonsense"));
  testing::internal::CaptureStderr();
  test::AttachedScene game(options);
  const std::string complaint = testing::internal::GetCapturedStderr();
  EXPECT_NE(complaint.find("'bogus'"), std::string::npos) << complaint;
  EXPECT_NE(complaint.find("'nonsense'"), std::string::npos) << complaint;
  EXPECT_EQ(std::count(complaint.begin(), complaint.end(), '\n'), 1) << complaint;

  const uint16_t w = *keyCodeForName("w"), s = *keyCodeForName("s"), q = *keyCodeForName("q");
  game.press(keycode::space);
  EXPECT_EQ(game->gameState, State::menu) << "Space no longer jumps";
  game.press(w);
  EXPECT_EQ(game->gameState, State::playing);
  game.press(s);
  EXPECT_TRUE(game->isDucking);
  game.release(s);
  EXPECT_FALSE(game->isDucking);
  game.press(keycode::p);
  EXPECT_EQ(game->gameState, State::playing);
  game.press(q);
  EXPECT_EQ(game->gameState, State::paused);
  game.press(keycode::returnKey);  // a jump key now: resumes as Space would
  EXPECT_EQ(game->gameState, State::playing);
  game.press(keycode::returnKey, kOptionModifierFlag);
  EXPECT_EQ(game.view->testWindow.toggles, 1) << "Alt+Return stays the full-screen key";
  game.press(keycode::escape);  // no known leave key: Escape stays
  EXPECT_EQ(game->gameState, State::menu);
}

TEST(GameSpeed, ThePacerRunsSixtyTimesTheSpeedStepsASecondOnAnyDisplay) {
  const struct {
    double speed, hz;
    bool vsync;
    int steps;  // in 10 s
  } cases[] = {{0.5, 144, false, 300}, {0.75, 60, true, 450}, {1.0, 60, true, 600}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.speed << " at " << c.hz);
    FramePacer pacer(c.vsync);
    pacer.setSpeed(c.speed);
    double now = 50;
    pacer.stepsDue(now);
    int steps = 0;
    for (int frame = 0; frame < c.hz * 10; ++frame) {
      now += 1 / c.hz;
      const int due = pacer.stepsDue(now);
      EXPECT_LE(due, 1) << "a slower game never needs to catch up at a steady frame rate";
      steps += due;
    }
    EXPECT_NEAR(steps, c.steps, 1);
  }
}

}  // namespace
}  // namespace zb

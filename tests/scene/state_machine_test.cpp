// Every row of the game's state table, driven the way a player drives it: keys and clicks on a scene
// presented in a view, then what the player would notice (state, pages, sounds, jump request).
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using GameState = GameScene::GameState;
using test::AttachedScene;
using Sounds = std::vector<std::string>;

constexpr uint16_t kSpace = keycode::space;
constexpr uint16_t kP = keycode::p;
constexpr uint16_t kEscape = keycode::escape;

bool shown(const Node& node) { return !node.isHiddenInTree(); }

// Leaves the game in each state, with the sounds of getting there taken away.
void toPlaying(AttachedScene& game) {
  game.press(kSpace);
  game.sounds();
}
void toPaused(AttachedScene& game) {
  toPlaying(game);
  game.step(5);
  game.press(kP);
  game.sounds();
}
void toGameOver(AttachedScene& game) {
  toPlaying(game);
  game.runUntilCrash();
  ASSERT_EQ(game->gameState, GameState::gameOver);
  game.sounds();
}
void toSettings(AttachedScene& game) {
  game.clickOn(*game->settingsButton);
  ASSERT_EQ(game->gameState, GameState::settings);
  game.sounds();
}

TEST(StateMachine, AttachmentShowsTheMenu) {
  AttachedScene game;
  EXPECT_EQ(game->gameState, GameState::menu);
  EXPECT_TRUE(shown(*game->menuOverlay));
  EXPECT_TRUE(shown(*game->dimBackground));
  EXPECT_FALSE(shown(*game->pauseButton));
  EXPECT_FALSE(game.view->cursorHidden);
  // The counters are off on the menu, whatever the setting.
  EXPECT_FALSE(game.view->showsFPS);
  EXPECT_FALSE(game.view->showsNodeCount);
}

TEST(StateMachine, FromTheMenu) {
  {
    AttachedScene game;
    game.press(kSpace);
    EXPECT_EQ(game->gameState, GameState::playing);
    EXPECT_EQ(game.sounds(), Sounds{"jump"});
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 0) << "Space starts the run without a jump";
    EXPECT_FALSE(shown(*game->menuOverlay));
    EXPECT_FALSE(shown(*game->dimBackground));
    EXPECT_TRUE(shown(*game->pauseButton));
    EXPECT_TRUE(game.view->cursorHidden);
  }
  {
    AttachedScene game;
    game.clickOn(*game->startButton);
    EXPECT_EQ(game->gameState, GameState::playing);
    EXPECT_EQ(game.sounds(), (Sounds{"click", "jump"}));
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 9) << "the click that starts the run also jumps";
  }
  {
    AttachedScene game;
    game.clickOn(*game->settingsButton);
    EXPECT_EQ(game->gameState, GameState::settings);
    EXPECT_EQ(game.sounds(), Sounds{"click"});
    EXPECT_TRUE(shown(*game->settingsOverlay));
    EXPECT_FALSE(shown(*game->menuOverlay));
  }
}

TEST(StateMachine, DuringARun) {
  AttachedScene game;
  toPlaying(game);
  game.step(3);
  game.press(kSpace);
  EXPECT_EQ(game->bufferedJumpFramesRemaining, 9);
  EXPECT_EQ(game.sounds(), Sounds{"jump"});

  game.step(30);
  game.click({700, 150});  // empty sky
  EXPECT_EQ(game->gameState, GameState::playing);
  EXPECT_EQ(game->bufferedJumpFramesRemaining, 9);
  EXPECT_EQ(game.sounds(), Sounds{"jump"});

  game.press(kP);
  EXPECT_EQ(game->gameState, GameState::paused);
  EXPECT_TRUE(game->paused);
  EXPECT_TRUE(game->isPausedManually);
  EXPECT_TRUE(shown(*game->pauseOverlay));
  EXPECT_TRUE(shown(*game->pauseButton)) << "the pause button stays above the pause page";
  EXPECT_TRUE(game.sounds().empty());

  game.press(kP);
  game.step(2);
  game.sounds();
  const int64_t buffered = game->bufferedJumpFramesRemaining;
  game.clickOn(*game->pauseButton);
  EXPECT_EQ(game->gameState, GameState::paused);
  EXPECT_EQ(game.sounds(), Sounds{"click"}) << "pausing by the button does not jump";
  EXPECT_EQ(game->bufferedJumpFramesRemaining, buffered);
}

TEST(StateMachine, EscapeAbandonsTheRunWithoutStoringABest) {
  AttachedScene game;
  toPlaying(game);
  game.step(50);
  ASSERT_EQ(game->gameState, GameState::playing);
  game.press(kEscape);
  EXPECT_EQ(game->gameState, GameState::menu);
  EXPECT_EQ(game->score, 0);
  EXPECT_EQ(game->highScore, 50) << "the in-memory best stays";
  EXPECT_FALSE(game.preferences->objectForKey("quorraHighScore").has_value());
  EXPECT_TRUE(game->obstacleNodes.empty());
  EXPECT_TRUE(shown(*game->menuOverlay));
}

TEST(StateMachine, ACollisionEndsTheRun) {
  AttachedScene game;
  toPlaying(game);
  game.runUntilCrash();
  ASSERT_EQ(game->gameState, GameState::gameOver);
  const Sounds sounds = game.sounds();
  ASSERT_EQ(sounds.size(), 2u);
  EXPECT_EQ(sounds[0], "explosion");
  EXPECT_TRUE(sounds[1].starts_with("baby-laugh-"));
  EXPECT_TRUE(shown(*game->gameOverOverlay));
  EXPECT_TRUE(shown(*game->dimBackground));
  EXPECT_FALSE(shown(*game->pauseButton));
  EXPECT_FALSE(game.view->cursorHidden);
  EXPECT_TRUE(game->lastCollisionPoint.has_value());
  EXPECT_EQ(game->bufferedJumpFramesRemaining, 0);
  EXPECT_EQ(game->framesSinceLeftGround, 9999);
  EXPECT_EQ(game->highScore, game->score);
  EXPECT_FALSE(game.preferences->objectForKey("quorraHighScore").has_value())
      << "the live best already equals the score, so nothing is written";
}

TEST(StateMachine, FromGameOver) {
  {
    AttachedScene game;
    toGameOver(game);
    game.press(kSpace);
    EXPECT_EQ(game->gameState, GameState::playing);
    EXPECT_EQ(game.sounds(), Sounds{"jump"});
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 0);
    EXPECT_EQ(game->score, 0);
  }
  {
    AttachedScene game;
    toGameOver(game);
    game.clickOn(*game->retryButton);
    EXPECT_EQ(game->gameState, GameState::playing);
    EXPECT_EQ(game.sounds(), (Sounds{"click", "jump"}));
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 9);
  }
  {
    AttachedScene game;
    toGameOver(game);
    game.clickOn(*game->menuButton);
    EXPECT_EQ(game->gameState, GameState::menu);
    EXPECT_EQ(game.sounds(), Sounds{"click"});
  }
}

TEST(StateMachine, FromSettings) {
  {
    AttachedScene game;
    toSettings(game);
    game.clickOn(*game->settingsBackButton);
    EXPECT_EQ(game->gameState, GameState::menu);
    EXPECT_EQ(game.sounds(), Sounds{"click"});
  }
  {
    AttachedScene game;
    toSettings(game);
    game.press(kEscape);
    EXPECT_EQ(game->gameState, GameState::menu);
    EXPECT_TRUE(game.sounds().empty());
  }
  {
    AttachedScene game;
    toSettings(game);
    game.press(kSpace);
    EXPECT_EQ(game->gameState, GameState::settings);
    EXPECT_EQ(game.sounds(), Sounds{"jump"});
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 0);

    game.clickOn(*game->toggleFPSLabel);
    EXPECT_TRUE(game->settingShowFPS);
    EXPECT_TRUE(game.sounds().empty()) << "the frame-rate toggle is silent";
    game.clickOn(*game->musicToggleLabel);
    EXPECT_FALSE(game->settingMusicEnabled);
    game.clickOn(*game->volDownButton);
    EXPECT_FLOAT_EQ(game->settingMusicVolume, 0.5f);
    game.clickOn(*game->volUpButton);
    EXPECT_FLOAT_EQ(game->settingMusicVolume, 0.6f);
    EXPECT_EQ(game.sounds(), (Sounds{"click", "click", "click"}));
    EXPECT_EQ(game->gameState, GameState::settings);
  }
}

TEST(StateMachine, FromPause) {
  {
    AttachedScene game;
    toPaused(game);
    game.press(kP);
    EXPECT_EQ(game->gameState, GameState::playing);
    EXPECT_FALSE(game->paused);
    EXPECT_FALSE(game->isPausedManually);
    EXPECT_FALSE(shown(*game->pauseOverlay));
    EXPECT_TRUE(game.view->cursorHidden);
    EXPECT_TRUE(game.sounds().empty());
  }
  {
    AttachedScene game;
    toPaused(game);
    const int64_t score = game->score;
    game.press(kSpace);
    EXPECT_EQ(game->gameState, GameState::playing);
    EXPECT_EQ(game.sounds(), Sounds{"jump"});
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 0) << "Space resumes without a jump";
    EXPECT_EQ(game->score, score) << "the run goes on where it stopped";
  }
  {
    AttachedScene game;
    toPaused(game);
    game.clickOn(*game->resumeButton);
    EXPECT_EQ(game->gameState, GameState::playing);
    EXPECT_EQ(game.sounds(), (Sounds{"click", "jump"}));
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 9);
  }
  {
    AttachedScene game;
    toPaused(game);
    ASSERT_GT(game->score, 0);
    game.clickOn(game.restartButton());
    EXPECT_EQ(game->gameState, GameState::playing);
    EXPECT_EQ(game->score, 0) << "a fresh run";
    EXPECT_FALSE(game->paused);
    EXPECT_EQ(game.sounds(), Sounds{"jump"}) << "restart makes no click";
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 9);
  }
  {
    AttachedScene game;
    toPaused(game);
    game.clickOn(*game->pauseMenuButton);
    EXPECT_EQ(game->gameState, GameState::menu);
    EXPECT_FALSE(game->paused);
    EXPECT_EQ(game.sounds(), Sounds{"click"});
  }
}

// Puts a fresh game into the named state.
void enter(AttachedScene& game, GameState state) {
  switch (state) {
    case GameState::menu: break;
    case GameState::playing: toPlaying(game); break;
    case GameState::gameOver: toGameOver(game); break;
    case GameState::settings: toSettings(game); break;
    case GameState::paused: toPaused(game); break;
  }
}

constexpr GameState kAllStates[] = {GameState::menu, GameState::playing, GameState::gameOver,
                                    GameState::settings, GameState::paused};

TEST(StateMachine, DuckingAndFullScreenWorkInEveryState) {
  for (GameState state : kAllStates) {
    SCOPED_TRACE(toString(state));
    AttachedScene game;
    enter(game, state);
    game.press(keycode::downArrow);
    EXPECT_TRUE(game->isDucking);
    game.release(keycode::downArrow);
    EXPECT_FALSE(game->isDucking);

    game.press(keycode::returnKey, kOptionModifierFlag);
    EXPECT_EQ(game.view->testWindow.toggles, 1);
    EXPECT_EQ(game->fullscreenButton->text(), "Exit Full Screen");
    game.press(keycode::keypadEnter, kOptionModifierFlag | (1u << 17));  // Shift held as well
    EXPECT_EQ(game.view->testWindow.toggles, 2);
    EXPECT_EQ(game->fullscreenButton->text(), "Full Screen");
    game.clickOn(*game->fullscreenButton);
    EXPECT_EQ(game.view->testWindow.toggles, 3);
    EXPECT_EQ(game->gameState, state);
  }
}

// What the player could notice, short of the picture itself.
struct Observed {
  GameState state;
  bool paused;
  int64_t score;
  int64_t buffered;
  bool ducking;
  bool showFPS;
  bool music;
  float volume;
  int toggles;
  size_t obstacles;
  bool pages[5];
  bool operator==(const Observed& o) const {
    return state == o.state && paused == o.paused && score == o.score && buffered == o.buffered &&
           ducking == o.ducking && showFPS == o.showFPS && music == o.music && volume == o.volume &&
           toggles == o.toggles && obstacles == o.obstacles && std::equal(pages, pages + 5, o.pages);
  }
};

Observed observe(AttachedScene& game) {
  GameScene& s = *game;
  return {s.gameState, s.paused, s.score, s.bufferedJumpFramesRemaining, s.isDucking, s.settingShowFPS,
          s.settingMusicEnabled, s.settingMusicVolume, game.view->testWindow.toggles, s.obstacleNodes.size(),
          {shown(*s.menuOverlay), shown(*s.settingsOverlay), shown(*s.gameOverOverlay), shown(*s.pauseOverlay),
           shown(*s.dimBackground)}};
}

bool keyActsIn(uint16_t code, GameState state) {
  switch (code) {
    case keycode::space:
    case keycode::downArrow: return true;
    case keycode::p: return state == GameState::playing || state == GameState::paused;
    case keycode::escape: return state == GameState::playing || state == GameState::settings;
    default: return false;  // Return and Enter act only with Option, pressed without it here
  }
}

TEST(StateMachine, EveryOtherKeyDoesNothing) {
  for (GameState state : kAllStates) {
    SCOPED_TRACE(toString(state));
    AttachedScene game;
    enter(game, state);
    const Observed before = observe(game);
    for (int code = 0; code < 256; ++code) {
      if (keyActsIn(static_cast<uint16_t>(code), state)) continue;
      game.press(static_cast<uint16_t>(code));
      game.release(static_cast<uint16_t>(code));
      ASSERT_EQ(observe(game), before) << "key code " << code;
    }
    EXPECT_TRUE(game.sounds().empty());
  }
}

TEST(StateMachine, ClicksOnNoVisibleButtonDoNothingOffTheRun) {
  AttachedScene game;
  const Point volumeDown = game.centreOf(*game->volDownButton);
  toSettings(game);
  const Point readout = game.centreOf(*game->volumeLabel);
  game.clickOn(*game->settingsBackButton);
  game.sounds();

  // The menu: empty space and buttons of hidden pages.
  Observed before = observe(game);
  for (Point p : {Point{5, 5}, Point{700, 150}, volumeDown}) {
    game.click(p);
    EXPECT_EQ(observe(game), before);
  }
  EXPECT_TRUE(game.sounds().empty());

  // The settings page: the volume read-out is not a button.
  toSettings(game);
  before = observe(game);
  game.click(readout);
  game.click({5, 5});
  EXPECT_EQ(observe(game), before);
  EXPECT_TRUE(game.sounds().empty());

  // Game over: a hidden page's button and empty space.
  game.clickOn(*game->settingsBackButton);
  toGameOver(game);
  before = observe(game);
  game.click(volumeDown);
  game.click({5, 5});
  EXPECT_EQ(observe(game), before);
  EXPECT_TRUE(game.sounds().empty());
}

TEST(StateMachine, HeldKeysRepeatWithoutFiltering) {
  AttachedScene game;
  toPlaying(game);
  game.step(3);
  // A held P alternates between paused and playing.
  for (int i = 0; i < 4; ++i) {
    game.view->keyDown(KeyEvent{kP, 0, true});
    EXPECT_EQ(game->gameState, i % 2 == 0 ? GameState::paused : GameState::playing);
  }
  // A held Space re-arms the buffer and replays the sound with every repeat.
  game.sounds();
  for (int i = 0; i < 3; ++i) {
    game.step();
    game.view->keyDown(KeyEvent{kSpace, 0, true});
    EXPECT_EQ(game->bufferedJumpFramesRemaining, 9);
  }
  EXPECT_EQ(game.sounds(), (Sounds{"jump", "jump", "jump"}));
  // Held through a crash, the next repeat starts a new run at once.
  game.runUntilCrash();
  ASSERT_EQ(game->gameState, GameState::gameOver);
  game.view->keyDown(KeyEvent{kSpace, 0, true});
  EXPECT_EQ(game->gameState, GameState::playing);
}

TEST(StateMachine, DuckHeldFromTheMenuEndsAtReleaseDuringTheRun) {
  AttachedScene game;
  game.press(keycode::downArrow);
  game.step();
  game.press(kSpace);
  EXPECT_FALSE(game->isDucking) << "a new run starts standing";
  game.press(keycode::downArrow);
  game.step(2);
  EXPECT_TRUE(game->isDucking);
  game.release(keycode::downArrow);
  EXPECT_FALSE(game->isDucking);
}

}  // namespace
}  // namespace zb

// The game's state table, driven the way a player drives it: keys and clicks on a scene in a view, then
// what the player would notice (state, pages, cursor, sounds, jump request); then the settings page's
// buttons, and attachment, pausing and resizing as seen from outside the scene.
#include <gtest/gtest.h>

#include <map>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using G = GameScene::GameState;
using test::AttachedScene;
using Sounds = std::vector<std::string>;
using keycode::escape, keycode::p, keycode::space;

// Puts a fresh game into the state, with the sounds of getting there taken away.
void enter(AttachedScene& game, G state) {
  if (state == G::settings) game.clickOn(*game->settingsButton);
  if (state == G::playing || state == G::paused || state == G::gameOver) game.press(space);
  if (state == G::paused) {
    game.step(5);
    game.press(p);
    game.step(30);
    ASSERT_EQ(game->score, 5) << "nothing moves while paused";
  }
  if (state == G::gameOver) game.runUntilCrash();
  ASSERT_EQ(game->gameState, state);
  game.sounds();
}

// Which of dim, menu, settings, game over, pause page and pause button show.
std::string pages(const GameScene& s) {
  std::string shown;
  for (const Node* n : std::initializer_list<const Node*>{s.dimBackground.get(), s.menuOverlay.get(),
                                                         s.settingsOverlay.get(), s.gameOverOverlay.get(),
                                                         s.pauseOverlay.get(), s.pauseButton.get()}) {
    shown += n->isHiddenInTree() ? '0' : '1';
  }
  return shown;
}
const std::map<G, std::string> kPagesOf = {{G::menu, "110000"},   {G::settings, "101000"}, {G::playing, "000001"},
                                           {G::paused, "100011"}, {G::gameOver, "100100"}};

using Act = void (*)(AttachedScene&);
TEST(StateMachine, EveryRowOfTheTable) {
  const struct {
    G from;
    const char* input;
    Act act;
    G to;
    Sounds sounds;
    int64_t buffered;  // a click during a run is also a jump request
  } rows[] = {
      {G::menu, "Space", [](AttachedScene& g) { g.press(space); }, G::playing, {"jump"}, 0},
      {G::menu, "Start", [](AttachedScene& g) { g.clickOn(*g->startButton); }, G::playing, {"click", "jump"}, 9},
      {G::menu, "Settings", [](AttachedScene& g) { g.clickOn(*g->settingsButton); }, G::settings, {"click"}, 0},
      {G::playing, "Space", [](AttachedScene& g) { g.press(space); }, G::playing, {"jump"}, 9},
      {G::playing, "empty sky", [](AttachedScene& g) { g.click({700, 150}); }, G::playing, {"jump"}, 9},
      {G::playing, "P", [](AttachedScene& g) { g.press(p); }, G::paused, {}, 0},
      {G::playing, "Pause", [](AttachedScene& g) { g.clickOn(*g->pauseButton); }, G::paused, {"click"}, 0},
      {G::playing, "Escape", [](AttachedScene& g) { g.press(escape); }, G::menu, {}, 0},
      {G::gameOver, "Space", [](AttachedScene& g) { g.press(space); }, G::playing, {"jump"}, 0},
      {G::gameOver, "Retry", [](AttachedScene& g) { g.clickOn(*g->retryButton); }, G::playing, {"click", "jump"}, 9},
      {G::gameOver, "Main Menu", [](AttachedScene& g) { g.clickOn(*g->menuButton); }, G::menu, {"click"}, 0},
      {G::settings, "Back", [](AttachedScene& g) { g.clickOn(*g->settingsBackButton); }, G::menu, {"click"}, 0},
      {G::settings, "Escape", [](AttachedScene& g) { g.press(escape); }, G::menu, {}, 0},
      {G::settings, "Space", [](AttachedScene& g) { g.press(space); }, G::settings, {"jump"}, 0},
      {G::paused, "P", [](AttachedScene& g) { g.press(p); }, G::playing, {}, 0},
      {G::paused, "Space", [](AttachedScene& g) { g.press(space); }, G::playing, {"jump"}, 0},
      {G::paused, "Resume", [](AttachedScene& g) { g.clickOn(*g->resumeButton); }, G::playing, {"click", "jump"}, 9},
      {G::paused, "Restart", [](AttachedScene& g) { g.clickOn(*g->restartButton()); }, G::playing, {"jump"}, 9},
      {G::paused, "Main Menu", [](AttachedScene& g) { g.clickOn(*g->pauseMenuButton); }, G::menu, {"click"}, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(toString(row.from)) + " + " + row.input);
    AttachedScene game;
    enter(game, row.from);
    const int64_t score = game->score;
    row.act(game);
    EXPECT_EQ(game->gameState, row.to);
    EXPECT_EQ(game.sounds(), row.sounds);
    EXPECT_EQ(game->bufferedJumpFramesRemaining, row.buffered);
    EXPECT_EQ(pages(*game), kPagesOf.at(row.to));
    EXPECT_EQ(game.view->cursorHidden(), row.to == G::playing);
    EXPECT_EQ(game->paused, row.to == G::paused);
    if (row.from == G::paused && row.to == G::playing) {
      EXPECT_EQ(game->score, std::string(row.input) == "Restart" ? 0 : score) << "resume goes on, restart is fresh";
    }
  }
}

TEST(StateMachine, DuckAndFullScreenActEverywhereAndOtherKeysAndClicksOnNothingDoNothing) {
  for (G state : {G::menu, G::playing, G::gameOver, G::settings, G::paused}) {
    SCOPED_TRACE(toString(state));
    AttachedScene game;
    enter(game, state);
    const bool run = state == G::playing || state == G::paused;
    // In a run Return and Enter act only with Option (on a page they move the focus, tested with it), P
    // only in a run, Escape only in a run or on the settings page.
    std::vector<uint16_t> idle;
    if (state == G::playing) idle = {keycode::returnKey, keycode::keypadEnter, keycode::upArrow, keycode::tab};
    if (!run) idle.push_back(p);
    if (state != G::playing && state != G::settings) idle.push_back(escape);
    for (uint16_t code : idle) game.press(code);
    if (!run) game.click({700, 150});
    EXPECT_EQ(game->gameState, state);
    EXPECT_EQ(pages(*game), kPagesOf.at(state));
    EXPECT_TRUE(game.sounds().empty());
    EXPECT_FALSE(game.fullScreen());

    game.press(keycode::downArrow);
    EXPECT_TRUE(game->isDucking);
    game.release(keycode::downArrow);
    EXPECT_FALSE(game->isDucking);
    game.view->mouseMoved();  // hides the focus Down showed on a page, so Enter below presses nothing
    game.press(keycode::returnKey, kOptionModifierFlag);
    EXPECT_TRUE(game.fullScreen());
    game.press(keycode::keypadEnter, kOptionModifierFlag | kShiftModifierFlag);
    game.press(keycode::keypadEnter, kControlModifierFlag);  // Control is not Option
    EXPECT_FALSE(game.fullScreen());
    game.clickOn(*game->fullscreenButton);
    EXPECT_TRUE(game.fullScreen());
    EXPECT_EQ(game->gameState, state);
  }
}

TEST(StateMachine, ARunEndsWithoutWritingTheBest) {
  AttachedScene crashed;
  enter(crashed, G::playing);
  crashed.runUntilCrash();
  const Sounds sounds = crashed.sounds();
  ASSERT_EQ(sounds.size(), 2u);
  EXPECT_EQ(sounds[0], "explosion");
  EXPECT_TRUE(sounds[1].starts_with("baby-laugh-"));
  EXPECT_FALSE(crashed.view->cursorHidden());
  EXPECT_EQ(crashed->highScore, crashed->score);
  EXPECT_FALSE(crashed.preferences->objectForKey("quorraHighScore").has_value());
  // The crash frame still scores its point after the page was filled: the HUD is one ahead.
  EXPECT_EQ(crashed->scoreLabel->text(), "Score: " + std::to_string(crashed->score));
  EXPECT_EQ(crashed->goScore->text(), "Score: " + std::to_string(crashed->score - 1));

  AttachedScene abandoned;
  enter(abandoned, G::playing);
  abandoned.step(50);
  abandoned.press(escape);
  EXPECT_EQ(abandoned->score, 0);
  EXPECT_EQ(abandoned->highScore, 50) << "the in-memory best stays";
  EXPECT_TRUE(abandoned->obstacleNodes.empty());
}

TEST(Lifecycle, OnlyItsOwnWindowsNewsAndSizeReachTheSceneUntilItIsDismissed) {
  AttachedScene game;
  NotificationCenter& centre = game.view->notificationCenter();
  game.view->virtualWindow().toggleNow();  // the window manager's toggle
  EXPECT_EQ(game->fullscreenButton->text(), "Exit Full Screen");
  int otherWindow = 0;
  centre.post(kWindowDidExitFullScreenNotification, &otherWindow);
  EXPECT_EQ(game->fullscreenButton->text(), "Exit Full Screen") << "another window's news is ignored";
  game.view->virtualWindow().toggleNow();
  EXPECT_EQ(game->fullscreenButton->text(), "Full Screen");
  game.view->setSize({640, 480});
  EXPECT_DOUBLE_EQ(game->layoutScale, 0.8) << "a resize lays the interface out at once";
  game.step();
  EXPECT_EQ(game->groundLine->path.elements()[1].point, (Point{640, 50})) << "and the ground at the next frame";
  game.view->dismissScene();
  EXPECT_EQ(centre.observerCount(), 0u);
}

TEST(Lifecycle, ARestartStartsAfresh) {
  AttachedScene game(test::SceneOptions{.size = {1000, 600}});
  const Point home = game->playerContainer->position;  // standing on the ground, as a new scene places it
  enter(game, G::paused);
  game->obstacleSpeed = 9;
  game->playerContainer->position = {1, 2};
  game.clickOn(*game->restartButton());
  EXPECT_EQ(game->obstacleSpeed, kStartObstacleSpeed);
  EXPECT_EQ(game->playerContainer->position, home);
}

TEST(Input, SettingsButtonsChangeMusicAndVolumeButOnlyTheFrameRateToggleSaves) {
  AttachedScene game;
  GameScene& s = *game;
  game.clickOn(*s.settingsButton);
  EXPECT_EQ(s.volumeLabel->text(), "Volume: 60%");
  game.clickOn(*s.musicToggleLabel);
  game.clickOn(*s.volDownButton);
  EXPECT_EQ(s.musicToggleLabel->text(), "Music: Off");
  EXPECT_EQ(s.volumeLabel->text(), "Volume: 50%");
  EXPECT_TRUE(game.preferences->dictionaryRepresentation().empty());
  game.clickOn(*s.toggleFPSLabel);
  EXPECT_EQ(s.toggleFPSLabel->text(), "Show FPS: On");
  EXPECT_TRUE(game.view->showsFPS && game.view->showsNodeCount);
  EXPECT_TRUE(game.preferences->boolForKey("quorra_settingShowFPS"));
  EXPECT_FALSE(game.preferences->boolForKey("quorra_settingMusicEnabled"));
  EXPECT_EQ(game.preferences->floatForKey("quorra_settingMusicVolume"), 0.5f);
  game.press(keycode::escape);
  EXPECT_FALSE(game.view->showsFPS) << "the menu switches the counters off again";

  // Volume steps in single precision: six down from 60% leave a crumb above zero that reads 0%, the
  // seventh reaches zero and stays; up stops at 100%.
  s.settingMusicVolume = 0.6f;
  for (int i = 0; i < 6; ++i) s.volumeDown();
  EXPECT_GT(s.settingMusicVolume, 0.0f);
  EXPECT_EQ(s.volumeLabel->text(), "Volume: 0%");
  s.volumeDown();
  s.volumeDown();
  EXPECT_EQ(s.settingMusicVolume, 0.0f);
  s.settingMusicVolume = 0.6f;
  for (int i = 0; i < 5; ++i) s.volumeUp();
  EXPECT_EQ(s.settingMusicVolume, 1.0f);
}

}  // namespace
}  // namespace zb

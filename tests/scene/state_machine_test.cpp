// The game's state table driven by keys and clicks, and what its pages and HUD tell a player.
#include <gtest/gtest.h>

#include <bit>
#include <map>
#include <set>

#include "platform/preferences_file.hpp"
#include "scene/scene_fixture.hpp"
#include "settings/preference_keys.hpp"

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
    // Return/Enter act in a run only with Option; P only in a run; Escape in a run or on settings.
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

TEST(StateMachine, ARunEndsWithoutWritingTheBestAndARestartStartsAfresh) {
  AttachedScene crashed;
  enter(crashed, G::playing);
  crashed.runUntilCrash();
  const Sounds sounds = crashed.sounds();
  ASSERT_EQ(sounds.size(), 2u);
  EXPECT_TRUE(sounds[0] == "explosion" && sounds[1].starts_with("baby-laugh-")) << sounds[0] << sounds[1];
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

  AttachedScene restarted(test::SceneOptions{.size = {1000, 600}});
  const Point home = restarted->playerContainer->position;
  enter(restarted, G::paused);
  restarted->obstacleSpeed = 9;
  restarted->playerContainer->position = {1, 2};
  restarted.clickOn(*restarted->restartButton());
  EXPECT_EQ(restarted->obstacleSpeed, kStartObstacleSpeed) << "a restart starts afresh";
  EXPECT_EQ(restarted->playerContainer->position, home);
}

// What the head-up display and the game-over page tell a player.
TEST(Hud, ShowsTheStoredBestDuringARunAndTheGameOverPageTheLiveBestAndEveryTaunt) {
  auto store = std::make_shared<MemoryPreferences>();
  store->setInteger(250, kHighScoreKey);
  AttachedScene s({.preferences = store});
  s.press(keycode::space);
  s.step(120);
  ASSERT_GT(s->score, 0);
  EXPECT_EQ(s->highScoreLabel->text(), "High: 250") << "a best score in the store shows";

  s->score = 7;
  s->highScore = 9;  // the page shows the live best, not the store's
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    s->updateGameOverOverlay();
    seen.insert(s->tauntLabel->text());
  }
  EXPECT_EQ(seen, std::set<std::string>(s->taunts.begin(), s->taunts.end())) << "every taunt, and nothing else";
  EXPECT_EQ(s->goHigh->text(), "High: 9");
  s->taunts.clear();
  s->updateGameOverOverlay();
  EXPECT_EQ(s->tauntLabel->text(), "Press Space to Retry");
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

// Quit and relaunch with the real preferences file; the keys are what other copies of the game read.
TEST(Input, SettingsButtonsChangeMusicAndVolumeButOnlyTheFrameRateToggleSavesAndARelaunchReadsItBack) {
  const test::TempFolder folder("zb-settings");
  const auto file = folder.path() / "zindlebop" / "preferences.ini";
  {
    AttachedScene game({.preferences = std::make_shared<FilePreferences>(file)});
    GameScene& s = *game;
    game.clickOn(*s.settingsButton);
    EXPECT_EQ(s.volumeLabel->text(), "Volume: 60%");
    game.clickOn(*s.musicToggleLabel);
    game.clickOn(*s.volDownButton);
    EXPECT_EQ(s.musicToggleLabel->text(), "Music: Off");
    EXPECT_EQ(s.volumeLabel->text(), "Volume: 50%");
    EXPECT_TRUE(game.preferences->dictionaryRepresentation().empty());
    s.settingMusicVolume = 0.70000005f;  // off the tenths: must come back bit for bit
    s.highScore = 5000;
    game.clickOn(*s.toggleFPSLabel);
    EXPECT_EQ(s.toggleFPSLabel->text(), "Show FPS: On");
    EXPECT_TRUE(game.view->showsFPS && game.view->showsNodeCount);
    EXPECT_EQ(game.preferences->dictionaryRepresentation().size(), 3u) << "the best score is not among them";
    EXPECT_TRUE(game.preferences->boolForKey("quorra_settingShowFPS"));
    EXPECT_FALSE(game.preferences->boolForKey("quorra_settingMusicEnabled"));
    EXPECT_EQ(game.preferences->floatForKey("quorra_settingMusicVolume"), 0.70000005f);
    game.press(keycode::escape);
    EXPECT_FALSE(game.view->showsFPS) << "the menu switches the counters off again";
  }
  AttachedScene relaunched({.preferences = std::make_shared<FilePreferences>(file)});
  GameScene& s = *relaunched;
  EXPECT_TRUE(s.settingShowFPS);
  EXPECT_FALSE(s.settingMusicEnabled);
  EXPECT_EQ(std::bit_cast<uint32_t>(s.settingMusicVolume), std::bit_cast<uint32_t>(0.70000005f));
  relaunched.step(20);
  EXPECT_EQ(relaunched.musicVolume(), 0) << "music off stays silent on the menu";

  // Single-precision steps: six down from 60% leave a crumb that reads 0%; up stops at 100%.
  s.settingMusicVolume = 0.6f;
  for (int i = 0; i < 6; ++i) s.volumeDown();
  EXPECT_GT(s.settingMusicVolume, 0.0f);
  EXPECT_EQ(s.volumeLabel->text(), "Volume: 0%");
  for (int i = 0; i < 2; ++i) s.volumeDown();
  EXPECT_EQ(s.settingMusicVolume, 0.0f);
  s.settingMusicVolume = 0.6f;
  for (int i = 0; i < 5; ++i) s.volumeUp();
  EXPECT_EQ(s.settingMusicVolume, 1.0f);
}

}  // namespace
}  // namespace zb

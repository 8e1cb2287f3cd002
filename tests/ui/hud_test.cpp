// What the head-up display and the game-over page tell a player: the scores, the buttons, a taunt.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "scene/scene_fixture.hpp"
#include "settings/preference_keys.hpp"

namespace zb {
namespace {

using test::AttachedScene;

TEST(Hud, ShowsTheRunsScoreAndTheBestOfTheRunAndTheStore) {
  auto store = std::make_shared<MemoryPreferences>();
  store->setInteger(250, kHighScoreKey);
  AttachedScene s({.preferences = store});
  EXPECT_EQ(s->scoreLabel->text(), "Score: 0");
  EXPECT_EQ(s->highScoreLabel->text(), "High: 250") << "a best score in the store shows";
  EXPECT_EQ(s->pauseButton->text(), "Pause");
  EXPECT_EQ(s->fullscreenButton->text(), "Full Screen");

  s.press(keycode::space);
  s.step(120);
  ASSERT_EQ(s->gameState, GameScene::GameState::playing);
  ASSERT_GT(s->score, 0);
  EXPECT_EQ(s->scoreLabel->text(), "Score: " + std::to_string(s->score));
  EXPECT_EQ(s->highScoreLabel->text(), "High: 250");
}

TEST(GameOverTexts, ScoreBestAndEveryTaunt) {
  AttachedScene s;
  s->score = 7;
  s->highScore = 9;
  s.preferences->setInteger(999, kHighScoreKey);  // the page shows the live best, not the store
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    s->updateGameOverOverlay();
    seen.insert(s->tauntLabel->text());
  }
  EXPECT_EQ(seen, std::set<std::string>(s->taunts.begin(), s->taunts.end())) << "every taunt, and nothing else";
  EXPECT_EQ(s->goScore->text(), "Score: 7");
  EXPECT_EQ(s->goHigh->text(), "High: 9");
  s->taunts.clear();
  s->updateGameOverOverlay();
  EXPECT_EQ(s->tauntLabel->text(), "Press Space to Retry");
}

}  // namespace
}  // namespace zb

// What the head-up display and the game-over page tell a player: the scores, the buttons, a taunt.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

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
  s.release(keycode::space);
  s.step(120);
  ASSERT_EQ(s->gameState, GameScene::GameState::playing);
  ASSERT_GT(s->score, 0);
  EXPECT_EQ(s->scoreLabel->text(), "Score: " + std::to_string(s->score));
  EXPECT_EQ(s->highScoreLabel->text(), "High: 250");
}

TEST(Hud, StaysInTheTopCornersAtAnySize) {
  for (const Size size : {Size{320, 200}, Size{1920, 1080}}) {
    SCOPED_TRACE(testing::PrintToString(size.width));
    AttachedScene s({.size = size});
    for (const LabelNodePtr& label : {s->scoreLabel, s->highScoreLabel, s->pauseButton, s->fullscreenButton}) {
      const Rect f = label->frame();
      EXPECT_TRUE(f.minX() >= 0 && f.maxX() <= size.width && f.minY() > size.height / 2 && f.maxY() <= size.height);
    }
    EXPECT_LT(s->highScoreLabel->frame().maxX(), size.width / 2) << "the scores on the left";
    EXPECT_GT(s->pauseButton->frame().minX(), size.width / 2) << "the buttons on the right";
    EXPECT_FALSE(s->scoreLabel->frame().intersects(s->highScoreLabel->frame()));
    EXPECT_FALSE(s->pauseButton->frame().intersects(s->fullscreenButton->frame()));
  }
}

TEST(GameOverTexts, ScoreBestAndATauntDrawnWithoutBias) {
  AttachedScene s;
  s->score = 7;
  s->highScore = 9;
  s.preferences->setInteger(999, kHighScoreKey);  // the page shows the live best, not the store
  constexpr int kDraws = 4000;
  std::map<std::string, int> seen;
  for (int i = 0; i < kDraws; ++i) {
    s->updateGameOverOverlay();
    ++seen[s->tauntLabel->text()];
  }
  ASSERT_EQ(seen.size(), s->taunts.size()) << "every taunt comes up, and nothing else";
  for (const auto& [taunt, count] : seen) {
    EXPECT_NE(std::ranges::find(s->taunts, taunt), s->taunts.end()) << taunt;
    EXPECT_GT(count, kDraws / static_cast<int>(s->taunts.size()) / 2) << taunt << " comes up too seldom";
  }
  EXPECT_EQ(s->goScore->text(), "Score: 7");
  EXPECT_EQ(s->goHigh->text(), "High: 9");
  s->taunts.clear();
  s->updateGameOverOverlay();
  EXPECT_EQ(s->tauntLabel->text(), "Press Space to Retry");
}

}  // namespace
}  // namespace zb

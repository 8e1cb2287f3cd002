// What the head-up display tells a player: the run's score, the best score, and the buttons.
#include <gtest/gtest.h>

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
    for (const LabelNodePtr& label : {s->scoreLabel, s->highScoreLabel}) {
      EXPECT_GE(label->frame().minX(), 0);
      EXPECT_LT(label->frame().maxX(), size.width / 2);
      EXPECT_LE(label->frame().maxY(), size.height);
      EXPECT_GT(label->frame().minY(), size.height / 2);
    }
    for (const LabelNodePtr& button : {s->pauseButton, s->fullscreenButton}) {
      EXPECT_LE(button->frame().maxX(), size.width);
      EXPECT_GT(button->frame().minX(), size.width / 2);
      EXPECT_LE(button->frame().maxY(), size.height);
    }
    EXPECT_FALSE(s->scoreLabel->frame().intersects(s->highScoreLabel->frame()));
    EXPECT_FALSE(s->pauseButton->frame().intersects(s->fullscreenButton->frame()));
  }
}

}  // namespace
}  // namespace zb

// The game-over page's computed lines: score, best and a taunt drawn from the list.
#include <gtest/gtest.h>

#include <set>

#include "engine/random.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

TEST(GameOverTexts, ScoreBestAndATauntDrawnWithoutBias) {
  test::AttachedScene s;
  ASSERT_EQ(s->taunts.size(), 20u);
  EXPECT_EQ(s->taunts[0], "Trip much?");
  EXPECT_EQ(s->taunts[1], "Obstacle 1 \xE2\x80\x93 You 0");
  EXPECT_EQ(s->taunts[19], "C\xE2\x80\x99mon. You got this.");
  s->score = 7;
  s->highScore = 9;
  s.preferences->setInteger(999, "quorraHighScore");  // the page shows the live best, not the store
  s->random().seed(9);
  Random replay(9);
  std::set<std::string> seen;
  for (int i = 0; i < 400; ++i) {
    s->updateGameOverOverlay();
    EXPECT_EQ(s->tauntLabel->text(), s->taunts[replay.uniformIndex(20)]);
    seen.insert(s->tauntLabel->text());
  }
  EXPECT_EQ(seen.size(), 20u);
  EXPECT_EQ(s->goScore->text(), "Score: 7");
  EXPECT_EQ(s->goHigh->text(), "High: 9");

  s->taunts.clear();
  s->updateGameOverOverlay();
  EXPECT_EQ(s->tauntLabel->text(), "Press Space to Retry");
}

}  // namespace
}  // namespace zb

// The game-over page's computed lines: score, best and a taunt drawn from the list.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

TEST(GameOverTexts, ScoreBestAndATauntDrawnWithoutBias) {
  test::AttachedScene s;
  s->score = 7;
  s->highScore = 9;
  s.preferences->setInteger(999, "quorraHighScore");  // the page shows the live best, not the store
  constexpr int kDraws = 4000;
  std::map<std::string, int> seen;
  for (int i = 0; i < kDraws; ++i) {
    s->updateGameOverOverlay();
    ++seen[s->tauntLabel->text()];
  }
  ASSERT_EQ(seen.size(), s->taunts.size()) << "every taunt comes up, and nothing else";
  for (const auto& [taunt, count] : seen) {
    EXPECT_NE(std::find(s->taunts.begin(), s->taunts.end(), taunt), s->taunts.end()) << taunt;
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

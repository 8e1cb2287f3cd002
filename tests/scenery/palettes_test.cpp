// The four palettes a run steps through, what each recolours and what keeps its colour.
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

// Walks the score up one point per check, as a run does, until it reaches `target`.
void scoreUpTo(GameScene& scene, int64_t target) {
  while (scene.score < target) {
    ++scene.score;
    scene.updatePaletteIfNeeded();
  }
}

// The palette's background, and its primary and secondary on the parts that take them.
void expectPalette(const GameScene& s, int64_t index) {
  const GameScene::Palette& palette = s.vibrantPalettes.at(static_cast<size_t>(index));
  EXPECT_EQ(s.currentPaletteIndex, index);
  EXPECT_EQ(s.backgroundColor, palette.bg);
  for (Color c : {s.playerLegRight->strokeColor, s.groundLine->strokeColor, s.scoreLabel->fontColor}) {
    EXPECT_EQ(c, palette.primary);
  }
  EXPECT_EQ(s.highScoreLabel->fontColor, palette.secondary);
}

TEST(Palettes, StepEvery350PointsAndCycleBackAfterFour) {
  AttachedScene s;
  scoreUpTo(*s, 349);
  expectPalette(*s, 0);
  scoreUpTo(*s, 350);
  expectPalette(*s, 1);
  scoreUpTo(*s, 1050);
  expectPalette(*s, 3);
  scoreUpTo(*s, 1400);
  expectPalette(*s, 0);
}

TEST(Palettes, GameOverAt800ThenTheMenuAdvancesOnceMoreAndARetryKeepsThePalette) {
  for (bool retry : {false, true}) {
    SCOPED_TRACE(retry ? "retry" : "menu");
    AttachedScene s;
    s->startGame();
    scoreUpTo(*s, 800);
    s->showGameOver();
    s.step();
    expectPalette(*s, 2);
    retry ? s->startGame() : s->showMenu();
    s.step(10);
    expectPalette(*s, retry ? 2 : 3);
  }
}

}  // namespace
}  // namespace zb

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

void expectPaletteInForce(const GameScene& scene, int64_t index) {
  const GameScene::Palette& palette = scene.vibrantPalettes.at(static_cast<size_t>(index));
  EXPECT_EQ(scene.currentPaletteIndex, index);
  EXPECT_EQ(scene.backgroundColor, palette.bg);
  EXPECT_EQ(scene.currentPrimaryColor, palette.primary);
  EXPECT_EQ(scene.currentSecondaryColor, palette.secondary);
  EXPECT_EQ(scene.playerHead->strokeColor, palette.primary);
  EXPECT_EQ(scene.playerLegRight->strokeColor, palette.primary);
  EXPECT_EQ(scene.groundLine->strokeColor, palette.primary);
  EXPECT_EQ(scene.scoreLabel->fontColor, palette.primary);
  EXPECT_EQ(scene.highScoreLabel->fontColor, palette.secondary);
  EXPECT_EQ(scene.subtitleLabel->fontColor, palette.secondary);
  EXPECT_EQ(scene.menuButton->fontColor, palette.primary);
}

TEST(Palettes, StepEveryThreeHundredFiftyPointsAndCycleBackAfterFour) {
  AttachedScene s;
  expectPaletteInForce(*s, 0);
  scoreUpTo(*s, 349);
  expectPaletteInForce(*s, 0);
  scoreUpTo(*s, 350);
  expectPaletteInForce(*s, 1);
  EXPECT_EQ(s->lastPaletteChangeAtScore, 350);
  scoreUpTo(*s, 1049);
  expectPaletteInForce(*s, 2);
  scoreUpTo(*s, 1050);
  expectPaletteInForce(*s, 3);
  scoreUpTo(*s, 1400);
  expectPaletteInForce(*s, 0);
}

TEST(Palettes, GameOverAtEightHundredThenMenuAdvancesOnceMore) {
  AttachedScene s;
  s->startGame();
  scoreUpTo(*s, 800);
  expectPaletteInForce(*s, 2);
  s->showGameOver();
  s.step();
  expectPaletteInForce(*s, 2);
  s->showMenu();
  s.step();
  expectPaletteInForce(*s, 3);
  s.step(10);
  expectPaletteInForce(*s, 3);
}

TEST(Palettes, GameOverAtEightHundredThenRetryKeepsThePalette) {
  AttachedScene s;
  s->startGame();
  scoreUpTo(*s, 800);
  s->showGameOver();
  s->startGame();
  s->updatePaletteIfNeeded();
  expectPaletteInForce(*s, 2);
  s->score = 0;
  scoreUpTo(*s, 349);
  expectPaletteInForce(*s, 2);
  scoreUpTo(*s, 350);
  expectPaletteInForce(*s, 3);
}

TEST(Palettes, CloudPuffsStayGreyAndBuildingsTakeTheSecondary) {
  AttachedScene s;
  scoreUpTo(*s, 350);
  const Color secondary = s->vibrantPalettes[1].secondary;
  for (const NodePtr& building : s->buildingGroup->children()) {
    EXPECT_EQ(dynamic_cast<ShapeNode&>(*building).fillColor, secondary.withAlpha(0.35));
    EXPECT_EQ(dynamic_cast<ShapeNode&>(*building).strokeColor, Color::clear());
    EXPECT_DOUBLE_EQ(building->alpha, 0.35);
  }
  for (const NodePtr& cloud : s->cloudGroup->children()) {
    EXPECT_EQ(dynamic_cast<ShapeNode&>(*cloud).fillColor, secondary.withAlpha(0.6));
    for (const NodePtr& puff : cloud->children()) {
      EXPECT_EQ(dynamic_cast<ShapeNode&>(*puff).fillColor, Color::lightGray());
    }
  }
}

TEST(Palettes, PausePageHudButtonsAndTauntKeepTheirBuildColours) {
  AttachedScene s;
  scoreUpTo(*s, 700);
  EXPECT_EQ(s->pauseTitle->fontColor, Color::white());
  EXPECT_EQ(s->resumeButton->fontColor, Color::black());
  EXPECT_EQ(dynamic_cast<LabelNode&>(s.restartButton()).fontColor, Color::black());
  EXPECT_EQ(s->pauseMenuButton->fontColor, Color::black());
  EXPECT_EQ(s->pauseButton->fontColor, Color::black());
  EXPECT_EQ(s->fullscreenButton->fontColor, Color::black());
  EXPECT_EQ(s->tauntLabel->fontColor, Color::darkGray());
}

TEST(Palettes, OnlyObstaclesInPlayAreRecoloured) {
  AttachedScene s;
  auto inPlay = std::make_shared<GameScene::ObstacleNode>();
  auto pooled = std::make_shared<GameScene::ObstacleNode>();
  const Color old = Color::rgba(0.5, 0.5, 0.5, 1);
  inPlay->strokeColor = pooled->strokeColor = old;
  inPlay->fillColor = pooled->fillColor = old;
  s->obstacleNodes.push_back(inPlay);
  s->obstaclePool[GameScene::ObstacleType::barrel].push_back(pooled);
  scoreUpTo(*s, 350);
  EXPECT_EQ(inPlay->strokeColor, s->vibrantPalettes[1].primary);
  EXPECT_EQ(inPlay->fillColor, Color::clear());
  EXPECT_EQ(pooled->strokeColor, old);
  EXPECT_EQ(pooled->fillColor, old);
}

TEST(Palettes, ApplyingAPaletteClearsTheStarGroup) {
  AttachedScene s;
  s->starGroup->addChild(std::make_shared<Node>());
  s->applyPalette(2);
  EXPECT_TRUE(s->starGroup->children().empty());
  EXPECT_EQ(s->backgroundColor, s->vibrantPalettes[2].bg);
  EXPECT_EQ(s->groundLine->strokeColor, s->vibrantPalettes[2].primary);
}

}  // namespace
}  // namespace zb

// The picture is drawn in three colours at a time. While a run goes on the game steps through its
// palettes in order, one step each time the score crosses a multiple of paletteChangePoints.
#include <algorithm>
#include <cstdlib>

#include "engine/checked.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {

constexpr double kBuildingFillAlpha = 0.35;
constexpr double kCloudFillAlpha = 0.6;

void setFill(Node& group, Color color) {
  for (const NodePtr& child : group.children()) {
    if (auto* shape = dynamic_cast<ShapeNode*>(child.get())) shape->fillColor = color;
  }
}

}  // namespace

void GameScene::updatePaletteIfNeeded() {
  const int64_t step = checkedDiv(score, paletteChangePoints);
  const int64_t lastStep = checkedDiv(lastPaletteChangeAtScore, paletteChangePoints);
  if (step != lastStep) {
    const auto count = std::max<int64_t>(static_cast<int64_t>(vibrantPalettes.size()), 1);
    currentPaletteIndex = checkedMod(checkedAdd(currentPaletteIndex, 1), count);
    applyPalette(currentPaletteIndex);
  }
  // Refreshed on every check, so the palette moves on exactly when the quotient changes, in either
  // direction; the menu's score reset after a long run therefore advances it once more.
  lastPaletteChangeAtScore = score;
}

void GameScene::applyPalette(int64_t index) {
  // The palette list is a fixed table that is never empty; an index outside it is a broken build.
  if (index < 0 || index >= static_cast<int64_t>(vibrantPalettes.size())) std::abort();
  const Palette& palette = vibrantPalettes[static_cast<size_t>(index)];
  backgroundColor = palette.bg;
  currentPrimaryColor = palette.primary;
  currentSecondaryColor = palette.secondary;
  setAllColors(currentPrimaryColor, currentSecondaryColor);
  starGroup->removeAllChildren();
}

void GameScene::setAllColors(Color primary, Color secondary) {
  for (const ShapeNodePtr& part : {playerHead, playerBody, playerArmLeft, playerArmRight, playerLegLeft, playerLegRight}) {
    part->strokeColor = primary;
  }
  groundLine->strokeColor = primary;
  scoreLabel->fontColor = primary;
  highScoreLabel->fontColor = secondary;
  titleLabel->fontColor = primary;
  subtitleLabel->fontColor = secondary;
  // The pause page, the pause and full-screen buttons and the taunt keep their build-time colours.
  for (const LabelNodePtr& label : {startButton, settingsButton, settingsTitle, toggleFPSLabel, musicToggleLabel,
                                    volumeLabel, volDownButton, volUpButton, settingsBackButton, goTitle, goScore,
                                    goHigh, retryButton, menuButton}) {
    label->fontColor = primary;
  }
  // Pooled obstacles are recoloured when they are reused; birds and dots keep their colour.
  for (const ObstacleNodePtr& obstacle : obstacleNodes) {
    obstacle->strokeColor = primary;
    obstacle->fillColor = Color::clear();
  }
  setFill(*buildingGroup, secondary.withAlpha(kBuildingFillAlpha));
  // Only the cloud containers take the colour; their puffs stay light grey in every palette.
  setFill(*cloudGroup, secondary.withAlpha(kCloudFillAlpha));
}

}  // namespace zb

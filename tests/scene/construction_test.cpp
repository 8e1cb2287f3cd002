// A new scene, whichever constructor made it, holds the same defaults and the same empty nodes.
#include <gtest/gtest.h>

#include <sstream>

#include "scene/game_scene.hpp"

namespace zb {
namespace {

std::ostream& operator<<(std::ostream& out, const Color& c) {
  return out << c.r << "," << c.g << "," << c.b << "," << c.a << " ";
}

template <typename... Values>
void put(std::ostream& out, const Values&... values) {
  ((out << values << ' '), ...);
}

void describeNode(std::ostream& out, const Node* node) {
  if (node == nullptr) {
    out << "null\n";
    return;
  }
  out << node->children().size() << (node->parent() != nullptr) << node->hidden << node->name;
  if (auto* label = dynamic_cast<const LabelNode*>(node)) out << " label " << label->fontName() << label->text();
  if (auto* shape = dynamic_cast<const ShapeNode*>(node)) {
    out << " shape " << shape->path.elements().size();
    if (auto box = shape->path.boundingBox()) out << " " << box->width() << "x" << box->height();
  }
  out << "\n";
}

// Every field, in declaration order, as text.
std::string describe(const GameScene& s) {
  std::ostringstream out;
  out.precision(17);
  for (const Node* node : std::initializer_list<const Node*>{
        s.playerContainer.get(), s.playerHead.get(), s.playerBody.get(), s.playerArmLeft.get(), s.playerArmRight.get(),
        s.playerLegLeft.get(), s.playerLegRight.get(), s.groundLine.get(), s.backgroundGroup.get(), s.cloudGroup.get(),
        s.starGroup.get(), s.buildingGroup.get(), s.scoreLabel.get(), s.highScoreLabel.get(), s.pauseButton.get(),
        s.uiLayer.get(), s.menuOverlay.get(), s.settingsOverlay.get(), s.gameOverOverlay.get(), s.pauseOverlay.get(),
        s.dimBackground.get(), s.titleLabel.get(), s.subtitleLabel.get(), s.startButton.get(), s.settingsButton.get(),
        s.settingsTitle.get(), s.toggleFPSLabel.get(), s.musicToggleLabel.get(), s.volumeLabel.get(),
        s.volDownButton.get(), s.volUpButton.get(), s.settingsBackButton.get(), s.goTitle.get(), s.goScore.get(),
        s.goHigh.get(), s.retryButton.get(), s.menuButton.get(), s.tauntLabel.get(), s.fullscreenButton.get(),
        s.pauseTitle.get(), s.resumeButton.get(), s.pauseMenuButton.get(), s.backgroundMusicNode.get()}) {
    describeNode(out, node);
  }
  put(out, toString(s.gameState), s.isDucking, s.playerFootAltitude, s.playerVelocityY, s.gravity, s.jumpVelocity,
      s.playerWidth, s.playerHeightStanding, s.playerHeightDucking, s.runAnimationFrameIndex,
      s.runAnimationFrameCounter, s.groundHeightFromBottom, s.layoutScale, s.isPausedManually,
      s.lastCollisionPoint.has_value(), s.obstacleNodes.size(), s.obstacleSpeed, s.spawnTimerFrames,
      s.spawnIntervalMin, s.spawnIntervalMax, s.obstaclePool.size(), s.score, s.highScore, s.lastPaletteChangeAtScore,
      s.paletteChangePoints, s.currentPaletteIndex, s.currentPrimaryColor, s.currentSecondaryColor, s.settingShowFPS,
      s.settingMusicEnabled, s.settingMusicVolume, s.lastBabyLaughIndex, s.coyoteTimeFrames, s.jumpBufferFrames,
      s.framesSinceLeftGround, s.bufferedJumpFramesRemaining, s.paused);
  for (const auto& text : s.taunts) out << text << "|";
  for (const auto& name : s.babyLaughResourceNames) out << name << "|";
  for (const auto& p : s.vibrantPalettes) out << p.bg << p.primary << p.secondary;
  return out.str();
}

TEST(SceneConstruction, AllThreeConstructorsGiveTheSameFields) {
  GameScene sized(Size{1024, 768});
  GameScene plain;
  GameScene restored(Coder{Size{320, 200}});
  EXPECT_EQ(describe(plain), describe(sized));
  EXPECT_EQ(describe(restored), describe(sized));
  EXPECT_EQ(restored.size(), (Size{320, 200}));
}

}  // namespace
}  // namespace zb

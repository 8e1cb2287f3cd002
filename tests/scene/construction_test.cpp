// A new scene, whichever constructor made it, holds the same defaults and the same empty nodes.
#include <gtest/gtest.h>

#include <sstream>

#include "scene/game_scene.hpp"

namespace zb {
namespace {

using GameState = GameScene::GameState;

void describeNode(std::ostream& out, const char* field, const Node* node) {
  out << field << ":";
  if (node == nullptr) {
    out << "null\n";
    return;
  }
  out << " children=" << node->children().size() << " parent=" << (node->parent() != nullptr)
      << " hidden=" << node->hidden << " name=" << node->name;
  if (auto* label = dynamic_cast<const LabelNode*>(node)) {
    out << " label font=" << label->fontName() << " text=" << label->text();
  } else if (auto* shape = dynamic_cast<const ShapeNode*>(node)) {
    out << " shape elements=" << shape->path.elements().size();
    if (auto box = shape->path.boundingBox()) out << " box=" << box->width() << "x" << box->height();
  } else {
    out << " plain";
  }
  out << "\n";
}

void describeColor(std::ostream& out, const Color& c) { out << c.r << "," << c.g << "," << c.b << "," << c.a << " "; }

// Every field, in declaration order, as text.
std::string describe(const GameScene& s) {
  std::ostringstream out;
  out.precision(17);
  out << toString(s.gameState) << "\n";
#define NODE(f) describeNode(out, #f, s.f.get())
  NODE(playerContainer); NODE(playerHead); NODE(playerBody); NODE(playerArmLeft); NODE(playerArmRight);
  NODE(playerLegLeft); NODE(playerLegRight);
  out << s.isDucking << " " << s.playerFootAltitude << " " << s.playerVelocityY << " " << s.gravity << " "
      << s.jumpVelocity << " " << s.playerWidth << " " << s.playerHeightStanding << " " << s.playerHeightDucking
      << " " << s.runAnimationFrameIndex << " " << s.runAnimationFrameCounter << " " << s.groundHeightFromBottom
      << "\n";
  NODE(groundLine); NODE(backgroundGroup); NODE(cloudGroup); NODE(starGroup); NODE(buildingGroup);
  out << s.layoutScale << " " << s.isPausedManually << " " << s.lastCollisionPoint.has_value() << " "
      << s.obstacleNodes.size() << " " << s.obstacleSpeed << " " << s.spawnTimerFrames << " " << s.spawnIntervalMin
      << " " << s.spawnIntervalMax << " " << s.obstaclePool.size() << " " << s.score << " " << s.highScore << "\n";
  NODE(scoreLabel); NODE(highScoreLabel); NODE(pauseButton); NODE(uiLayer); NODE(menuOverlay);
  NODE(settingsOverlay); NODE(gameOverOverlay); NODE(pauseOverlay); NODE(dimBackground); NODE(titleLabel);
  NODE(subtitleLabel); NODE(startButton); NODE(settingsButton); NODE(settingsTitle); NODE(toggleFPSLabel);
  NODE(musicToggleLabel); NODE(volumeLabel); NODE(volDownButton); NODE(volUpButton); NODE(settingsBackButton);
  NODE(goTitle); NODE(goScore); NODE(goHigh); NODE(retryButton); NODE(menuButton); NODE(tauntLabel);
  for (const auto& taunt : s.taunts) out << taunt << "|";
  out << "\n";
  NODE(fullscreenButton); NODE(pauseTitle); NODE(resumeButton); NODE(pauseMenuButton);
#undef NODE
  out << s.lastPaletteChangeAtScore << " " << s.paletteChangePoints << " " << s.currentPaletteIndex << " ";
  describeColor(out, s.currentPrimaryColor);
  describeColor(out, s.currentSecondaryColor);
  out << s.settingShowFPS << " " << s.settingMusicEnabled << " " << s.settingMusicVolume << " "
      << (s.backgroundMusicNode != nullptr) << "\n";
  for (const auto& name : s.babyLaughResourceNames) out << name << "|";
  out << s.lastBabyLaughIndex << "\n";
  for (const auto& p : s.vibrantPalettes) {
    describeColor(out, p.bg);
    describeColor(out, p.primary);
    describeColor(out, p.secondary);
  }
  out << "\n"
      << s.coyoteTimeFrames << " " << s.jumpBufferFrames << " " << s.framesSinceLeftGround << " "
      << s.bufferedJumpFramesRemaining << "\n";
  return out.str();
}

TEST(SceneConstruction, AllThreeConstructorsGiveTheSameFields) {
  GameScene sized(Size{1024, 768});
  GameScene plain;
  GameScene restored(Coder{Size{320, 200}});
  const std::string expected = describe(sized);
  EXPECT_EQ(describe(plain), expected);
  EXPECT_EQ(describe(restored), expected);
  EXPECT_EQ(sized.size(), (Size{1024, 768}));
  EXPECT_EQ(restored.size(), (Size{320, 200}));
}

TEST(SceneConstruction, StartsInTheMenuWithNothingScoredOrPlaying) {
  GameScene s(Size{800, 600});
  EXPECT_EQ(s.gameState, GameState::menu);
  EXPECT_EQ(s.score, 0);
  EXPECT_EQ(s.highScore, 0);
  EXPECT_FALSE(s.lastCollisionPoint.has_value());
  EXPECT_EQ(s.layoutScale, 1.0);
  EXPECT_EQ(s.backgroundMusicNode, nullptr);
  EXPECT_FALSE(s.paused);
  EXPECT_EQ(s.obstacleSpeed, 4.0);
  EXPECT_EQ(s.spawnIntervalMin, 72);
  EXPECT_EQ(s.spawnIntervalMax, 150);
  EXPECT_EQ(s.gravity, -0.6);
  EXPECT_EQ(s.jumpVelocity, 12.0);
  EXPECT_EQ(s.coyoteTimeFrames, 9);
  EXPECT_EQ(s.jumpBufferFrames, 9);
  EXPECT_EQ(s.framesSinceLeftGround, 9999);
  EXPECT_TRUE(s.settingMusicEnabled);
  EXPECT_FALSE(s.settingShowFPS);
  EXPECT_EQ(s.settingMusicVolume, 0.6f);
  EXPECT_EQ(s.lastBabyLaughIndex, -1);
}

TEST(SceneConstruction, NodesAreCreatedEmptyButPresent) {
  GameScene s;
  // The head is the one shape made with its outline: a circle of radius 10.
  auto head = s.playerHead->path.boundingBox();
  ASSERT_TRUE(head.has_value());
  EXPECT_DOUBLE_EQ(head->width(), 20);
  EXPECT_DOUBLE_EQ(head->height(), 20);
  EXPECT_TRUE(s.playerBody->path.isEmpty());
  EXPECT_TRUE(s.groundLine->path.isEmpty());
  // The dim background starts as an empty rectangle, replaced when the interface is built.
  auto dim = s.dimBackground->path.boundingBox();
  EXPECT_TRUE(!dim.has_value() || (dim->width() == 0 && dim->height() == 0));
  for (const LabelNodePtr& label : {s.scoreLabel, s.titleLabel, s.volumeLabel, s.tauntLabel, s.pauseMenuButton}) {
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->fontName(), "Menlo");
    EXPECT_EQ(label->text(), "");
  }
  EXPECT_TRUE(s.uiLayer->children().empty());
  EXPECT_EQ(s.playerContainer->parent(), nullptr);
}

TEST(SceneConstruction, TauntsLaughsAndPalettes) {
  GameScene s;
  ASSERT_EQ(s.taunts.size(), 20u);
  EXPECT_EQ(s.taunts.front(), "Trip much?");
  EXPECT_EQ(s.taunts[1], "Obstacle 1 \xE2\x80\x93 You 0");
  EXPECT_EQ(s.taunts[10], "Press space. Redeem yourself.");
  EXPECT_EQ(s.taunts[18], "They didn\xE2\x80\x99t even try");
  EXPECT_EQ(s.taunts[19], "C\xE2\x80\x99mon. You got this.");
  EXPECT_EQ(s.babyLaughResourceNames,
            (std::vector<std::string>{"baby-laugh-1", "baby-laugh-2", "baby-laugh-3", "baby-laugh-4"}));
  ASSERT_EQ(s.vibrantPalettes.size(), 4u);
  EXPECT_EQ(s.vibrantPalettes[0].bg, Color::rgba(0.98, 0.97, 0.90, 1.0));
  EXPECT_EQ(s.vibrantPalettes[1].primary, Color::rgba(0.10, 0.20, 0.45, 1.0));
  EXPECT_EQ(s.vibrantPalettes[3].secondary, Color::rgba(0.30, 0.70, 0.45, 1.0));
  EXPECT_EQ(s.currentPrimaryColor, Color::black());
  EXPECT_EQ(s.currentSecondaryColor, Color::darkGray());
}

TEST(SceneConstruction, CaseNames) {
  using T = GameScene::ObstacleType;
  EXPECT_STREQ(toString(T::boxSmall), "boxSmall");
  EXPECT_STREQ(toString(T::boxMedium), "boxMedium");
  EXPECT_STREQ(toString(T::boxLarge), "boxLarge");
  EXPECT_STREQ(toString(T::barrel), "barrel");
  EXPECT_STREQ(toString(T::planeHigh), "planeHigh");
  EXPECT_STREQ(toString(T::planeMedium), "planeMedium");
  EXPECT_STREQ(toString(GameState::menu), "menu");
  EXPECT_STREQ(toString(GameState::playing), "playing");
  EXPECT_STREQ(toString(GameState::gameOver), "gameOver");
  EXPECT_STREQ(toString(GameState::settings), "settings");
  EXPECT_STREQ(toString(GameState::paused), "paused");
}

}  // namespace
}  // namespace zb

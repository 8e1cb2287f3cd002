#include <gtest/gtest.h>

#include <cmath>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using test::SceneOptions;

AttachedScene sceneOfSize(Size size) {
  SceneOptions options;
  options.size = size;
  return AttachedScene(options);
}

void expectAt(const LabelNode& label, Point position, double fontSize) {
  SCOPED_TRACE(label.text());
  EXPECT_NEAR(label.position.x, position.x, 1e-9);
  EXPECT_NEAR(label.position.y, position.y, 1e-9);
  EXPECT_NEAR(label.fontSize(), fontSize, 1e-9);
}

TEST(Layout, WorkedExampleAtEightHundredBySixHundred) {
  AttachedScene s;
  EXPECT_EQ(s->layoutScale, 1);
  expectAt(*s->scoreLabel, {24, 560}, 18);
  expectAt(*s->highScoreLabel, {24, 536}, 14);
  expectAt(*s->fullscreenButton, {776, 564}, 14);
  expectAt(*s->pauseButton, {776, 536}, 16);

  expectAt(*s->titleLabel, {400, 360}, 32);
  expectAt(*s->subtitleLabel, {400, 332}, 16);
  expectAt(*s->startButton, {400, 280}, 20);
  expectAt(*s->settingsButton, {400, 244}, 18);

  expectAt(*s->settingsTitle, {400, 408}, 26);
  expectAt(*s->toggleFPSLabel, {400, 350}, 18);
  expectAt(*s->musicToggleLabel, {400, 316}, 18);
  expectAt(*s->volumeLabel, {400, 282}, 18);
  expectAt(*s->volDownButton, {340, 248}, 22);
  expectAt(*s->volUpButton, {460, 248}, 22);
  expectAt(*s->settingsBackButton, {400, 208}, 18);

  expectAt(*s->goTitle, {400, 372}, 28);
  expectAt(*s->goScore, {400, 336}, 18);
  expectAt(*s->goHigh, {400, 312}, 16);
  expectAt(*s->tauntLabel, {400, 284}, 16);
  expectAt(*s->retryButton, {400, 250}, 20);
  expectAt(*s->menuButton, {400, 216}, 18);

  expectAt(*s->pauseTitle, {400, 384}, 28);
  expectAt(*s->resumeButton, {400, 340}, 20);
  expectAt(dynamic_cast<LabelNode&>(s.restartButton()), {400, 306}, 18);
  expectAt(*s->pauseMenuButton, {400, 272}, 18);
}

TEST(Layout, ScaleIsTheSmallerOfHeightOverTwoHundredAndWidthOverEightHundred) {
  const struct {
    Size size;
    double scale;
  } cases[] = {{{800, 200}, 1}, {{1200, 900}, 1.5}, {{1000, 150}, 0.75}, {{1600, 1000}, 2}, {{400, 300}, 0.5}};
  for (const auto& c : cases) {
    AttachedScene s = sceneOfSize(c.size);
    EXPECT_DOUBLE_EQ(s->layoutScale, c.scale) << c.size.width << "x" << c.size.height;
    EXPECT_DOUBLE_EQ(s->startButton->fontSize(), 20 * c.scale);
  }

  AttachedScene s;
  s.view->setSize({1920, 1080});
  EXPECT_DOUBLE_EQ(s->layoutScale, 2.4);
  expectAt(*s->scoreLabel, {16 * 2.4 + 8, 1080 - (32 * 2.4 + 8)}, 18 * 2.4);
  expectAt(*s->volUpButton, {960 + 60 * 2.4, 0.68 * 1080 - 160 * 2.4}, 22 * 2.4);
}

TEST(Layout, DegenerateSizesCollapseWithoutNaN) {
  for (Size size : {Size{0, 0}, Size{1, 1}, Size{0, 600}, Size{800, 0}}) {
    AttachedScene s = sceneOfSize(size);
    s.step(3);
    EXPECT_TRUE(std::isfinite(s->layoutScale));
    for (const NodePtr& node : s->uiLayer->children()) {
      EXPECT_TRUE(std::isfinite(node->position.x) && std::isfinite(node->position.y));
    }
    for (const auto& page : {s->menuOverlay, s->settingsOverlay, s->gameOverOverlay, s->pauseOverlay}) {
      for (const NodePtr& node : page->children()) {
        EXPECT_TRUE(std::isfinite(node->position.x) && std::isfinite(node->position.y));
      }
    }
  }
  AttachedScene empty = sceneOfSize({0, 0});
  EXPECT_EQ(empty->layoutScale, 0);
  EXPECT_EQ(empty->titleLabel->fontSize(), 0);
}

TEST(Layout, DimBackgroundCoversTheSceneAfterEveryResize) {
  AttachedScene s;
  for (Size size : {Size{800, 600}, Size{1280, 720}, Size{300, 900}}) {
    s.view->setSize(size);
    const Rect covered = s->dimBackground->frame();
    EXPECT_NEAR(covered.minX(), -0.5, 1e-9);  // half the default stroke width either side
    EXPECT_NEAR(covered.minY(), -0.5, 1e-9);
    EXPECT_NEAR(covered.width(), size.width + 1, 1e-9);
    EXPECT_NEAR(covered.height(), size.height + 1, 1e-9);
    EXPECT_EQ(s->dimBackground->position, (Point{size.width / 2, size.height / 2}));
  }
}

TEST(Layout, ResizingWhilePausedLaysOutAtOnce) {
  AttachedScene s;
  s->startGame();
  s->pauseGame();
  ASSERT_TRUE(s->paused);
  s.view->setSize({1600, 1000});
  EXPECT_EQ(s->layoutScale, 2);
  expectAt(*s->pauseTitle, {800, 640}, 56);
  expectAt(*s->resumeButton, {800, 640 - 88}, 40);
}

TEST(Layout, RestartRowIsSkippedWhenItsNodeIsMissingOrNotALabel) {
  AttachedScene s;
  const NodePtr restart = s.restartButton().shared_from_this();
  const Point before = restart->position;
  restart->removeFromParent();
  auto impostor = std::make_shared<Node>();
  impostor->name = "btn_pause_restart";
  s->pauseOverlay->addChild(impostor);
  s.view->setSize({1600, 1200});
  EXPECT_EQ(impostor->position, (Point{}));
  EXPECT_EQ(restart->position, before);
  expectAt(*s->pauseMenuButton, {800, 0.64 * 1200 - 112 * 2}, 36);

  impostor->removeFromParent();
  s.view->setSize({800, 600});
  expectAt(*s->pauseMenuButton, {400, 272}, 18);
}

}  // namespace
}  // namespace zb

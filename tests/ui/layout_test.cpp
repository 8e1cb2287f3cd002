// Where every interface label sits, and how the one layout scale follows the scene size.
#include <gtest/gtest.h>

#include <cmath>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

void expectAt(const LabelNode& label, Point position, double fontSize) {
  SCOPED_TRACE(label.text());
  EXPECT_NEAR(label.position.x, position.x, 1e-9);
  EXPECT_NEAR(label.position.y, position.y, 1e-9);
  EXPECT_NEAR(label.fontSize(), fontSize, 1e-9);
}

TEST(Layout, WorkedExampleAt800By600) {
  AttachedScene s;
  EXPECT_EQ(s->layoutScale, 1);
  const struct {
    const LabelNode& label;
    Point at;
    double fontSize;
  } rows[] = {
      {*s->scoreLabel, {24, 560}, 18},       {*s->highScoreLabel, {24, 536}, 14},
      {*s->fullscreenButton, {776, 564}, 14}, {*s->pauseButton, {776, 536}, 16},
      {*s->titleLabel, {400, 360}, 32},      {*s->subtitleLabel, {400, 332}, 16},
      {*s->startButton, {400, 280}, 20},     {*s->settingsButton, {400, 244}, 18},
      {*s->settingsTitle, {400, 408}, 26},   {*s->toggleFPSLabel, {400, 350}, 18},
      {*s->musicToggleLabel, {400, 316}, 18}, {*s->volumeLabel, {400, 282}, 18},
      {*s->volDownButton, {340, 248}, 22},   {*s->volUpButton, {460, 248}, 22},
      {*s->settingsBackButton, {400, 208}, 18}, {*s->goTitle, {400, 372}, 28},
      {*s->goScore, {400, 336}, 18},         {*s->goHigh, {400, 312}, 16},
      {*s->tauntLabel, {400, 284}, 16},      {*s->retryButton, {400, 250}, 20},
      {*s->menuButton, {400, 216}, 18},      {*s->pauseTitle, {400, 384}, 28},
      {*s->resumeButton, {400, 340}, 20},    {dynamic_cast<LabelNode&>(s.restartButton()), {400, 306}, 18},
      {*s->pauseMenuButton, {400, 272}, 18},
  };
  for (const auto& row : rows) expectAt(row.label, row.at, row.fontSize);
}

TEST(Layout, ScaleIsTheSmallerOfHeightOver200AndWidthOver800AndTheDimCoversTheScene) {
  const struct {
    Size size;
    double scale;
  } cases[] = {{{800, 200}, 1},    {{1200, 900}, 1.5}, {{1000, 150}, 0.75}, {{1600, 1000}, 2}, {{400, 300}, 0.5},
               {{1920, 1080}, 2.4}, {{0, 0}, 0},       {{1, 1}, 0.00125},    {{0, 600}, 0},     {{800, 0}, 0}};
  AttachedScene s;
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.size.width << "x" << c.size.height);
    s.view->setSize(c.size);
    s.step();
    EXPECT_DOUBLE_EQ(s->layoutScale, c.scale);
    EXPECT_DOUBLE_EQ(s->startButton->fontSize(), 20 * c.scale);
    for (const auto& page : {s->uiLayer, s->menuOverlay, s->settingsOverlay, s->gameOverOverlay, s->pauseOverlay}) {
      for (const NodePtr& node : page->children()) EXPECT_TRUE(std::isfinite(node->position.x + node->position.y));
    }
    EXPECT_EQ(s->dimBackground->position, (Point{c.size.width / 2, c.size.height / 2}));
    EXPECT_NEAR(s->dimBackground->frame().width(), c.size.width + 1, 1e-9) << "half a stroke either side";
  }
  s.view->setSize({1920, 1080});
  expectAt(*s->scoreLabel, {16 * 2.4 + 8, 1080 - (32 * 2.4 + 8)}, 18 * 2.4);
  expectAt(*s->volUpButton, {960 + 60 * 2.4, 0.68 * 1080 - 160 * 2.4}, 22 * 2.4);
}

}  // namespace
}  // namespace zb

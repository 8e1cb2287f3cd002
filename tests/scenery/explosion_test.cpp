#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

constexpr double kDotZ = 50;

std::vector<ShapeNode*> dotsIn(const GameScene& scene) {
  std::vector<ShapeNode*> dots;
  for (const NodePtr& child : scene.children()) {
    if (child->zPosition == kDotZ) dots.push_back(dynamic_cast<ShapeNode*>(child.get()));
  }
  return dots;
}

TEST(Explosion, EighteenDotsFlyOutInARingFadeAndRemoveThemselves) {
  AttachedScene s;
  const Point impact{300, 120};
  s->lastCollisionPoint = impact;
  s->spawnExplosionEffect();
  const auto dots = dotsIn(*s);
  ASSERT_EQ(dots.size(), 18u);
  for (const ShapeNode* dot : dots) {
    EXPECT_EQ(dot->position, impact);
    EXPECT_DOUBLE_EQ(dot->path.boundingBox()->width(), 4);  // radius 2
    EXPECT_EQ(dot->fillColor, s->currentPrimaryColor);
    EXPECT_EQ(dot->strokeColor, Color::clear());
  }

  s.step(30);  // 0.5 s: the moves are over, the fades are under way
  ASSERT_EQ(dotsIn(*s).size(), 18u);
  for (size_t i = 0; i < 18; ++i) {
    const double angle = static_cast<double>(i) / 18 * 2 * std::numbers::pi;
    EXPECT_NEAR(dots[i]->position.x, impact.x + 120 * std::cos(angle), 1e-9) << "dot " << i;
    EXPECT_NEAR(dots[i]->position.y, impact.y + 120 * std::sin(angle), 1e-9) << "dot " << i;
    EXPECT_LT(dots[i]->alpha, 1);
  }
  EXPECT_NEAR(dots[0]->position.x, impact.x + 120, 1e-9);
  EXPECT_NEAR(dots[9]->position.x, impact.x - 120, 1e-9);
  EXPECT_GT(dots[4]->position.y, impact.y + 110);

  s.step(10);  // past 0.65 s
  EXPECT_TRUE(dotsIn(*s).empty());
}

TEST(Explosion, StartsAtTheFigureWithoutACollisionPoint) {
  AttachedScene s;
  s->lastCollisionPoint.reset();
  s->playerContainer->position = {144, 80};
  s->spawnExplosionEffect();
  for (const ShapeNode* dot : dotsIn(*s)) EXPECT_EQ(dot->position, (Point{144, 80}));
}

TEST(Explosion, DotsKeepTheColourInForceAtTheCrash) {
  AttachedScene s;
  const Color atCrash = s->currentPrimaryColor;
  s->spawnExplosionEffect();
  s->applyPalette(1);
  s.step(5);
  ASSERT_EQ(dotsIn(*s).size(), 18u);
  for (const ShapeNode* dot : dotsIn(*s)) EXPECT_EQ(dot->fillColor, atCrash);
}

}  // namespace
}  // namespace zb

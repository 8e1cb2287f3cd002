// The crash burst: a ring of 18 dots from the point of impact that flies out, fades and is gone.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

TEST(Explosion, EighteenDotsFlyOutInARingInTheCrashColourAndAreGoneAfter065Seconds) {
  test::AttachedScene s;
  const Point impact{300, 120};
  const Color atCrash = s->currentPrimaryColor;
  s->lastCollisionPoint = impact;
  s->spawnExplosionEffect();
  s->applyPalette(1);
  const auto dots = s->explosionDots();
  ASSERT_EQ(dots.size(), 18u);
  s.step(30);  // 0.5 s: the moves are over, the fades are under way
  ASSERT_EQ(s->explosionDots().size(), 18u);
  for (size_t i = 0; i < 18; ++i) {
    const double angle = static_cast<double>(i) / 18 * 2 * std::numbers::pi;
    EXPECT_NEAR(dots[i]->position.x, impact.x + 120 * std::cos(angle), 1e-9) << "dot " << i;
    EXPECT_NEAR(dots[i]->position.y, impact.y + 120 * std::sin(angle), 1e-9) << "dot " << i;
    EXPECT_LT(dots[i]->alpha, 1);
    EXPECT_EQ(dots[i]->fillColor, atCrash) << "a palette change leaves the dots alone";
  }
  s.step(10);  // past 0.65 s
  EXPECT_TRUE(s->explosionDots().empty());
}

}  // namespace
}  // namespace zb

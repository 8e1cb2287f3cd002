// The crash burst: a ring of 18 dots from the point of impact that flies out, fades and is gone.
#include <gtest/gtest.h>

#include <cmath>
#include <set>
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
  std::set<std::pair<int, int>> spots;
  for (const auto& dot : dots) {
    EXPECT_NEAR(std::hypot(dot->position.x - impact.x, dot->position.y - impact.y), 120, 1e-9);
    spots.emplace(std::lround(dot->position.x), std::lround(dot->position.y));
    EXPECT_LT(dot->alpha, 1);
    EXPECT_EQ(dot->fillColor, atCrash) << "a palette change leaves the dots alone";
  }
  EXPECT_EQ(spots.size(), 18u) << "a ring, not a clump";
  s.step(10);  // past 0.65 s
  EXPECT_TRUE(s->explosionDots().empty());
}

}  // namespace
}  // namespace zb

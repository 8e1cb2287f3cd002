// The stick figure's build, its three poses, and what each pose leaves as it was.
#include <gtest/gtest.h>

#include <ostream>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using test::SceneOptions;

struct Segment {
  Point from, to;
  friend bool operator==(const Segment&, const Segment&) = default;
  friend void PrintTo(const Segment& s, std::ostream* out) {
    *out << "(" << s.from.x << ", " << s.from.y << ") -> (" << s.to.x << ", " << s.to.y << ")";
  }
};

Segment segmentOf(const ShapeNode& limb) {
  const auto& e = limb.path.elements();
  EXPECT_EQ(e.size(), 2u);
  if (e.size() < 2) return {};
  return {e[0].point, e[1].point};
}

constexpr double kShift = 2.8000000000000003;

TEST(Rig, SetupPlacesTheFigureAndBuildsSixParts) {
  AttachedScene narrow(SceneOptions{.size = {500, 400}});
  EXPECT_EQ(narrow->playerContainer->position, (Point{120, 80}));
  AttachedScene wide(SceneOptions{.size = {1000, 600}});
  EXPECT_EQ(wide->playerContainer->position, (Point{180, 80}));

  GameScene& s = *wide;
  EXPECT_EQ(s.playerContainer->children().size(), 6u);
  EXPECT_EQ(s.playerHead->parent(), s.playerContainer.get());
  EXPECT_EQ(s.playerHead->position, (Point{0, 20}));
  EXPECT_EQ(s.playerHead->lineWidth, 3);
  EXPECT_EQ(s.playerHead->fillColor, Color::clear());
  EXPECT_EQ(segmentOf(*s.playerBody), (Segment{{0, 10}, {0, -20}}));
  EXPECT_EQ(segmentOf(*s.playerArmLeft), (Segment{{0, 2}, {-16, -10}}));
  EXPECT_EQ(segmentOf(*s.playerArmRight), (Segment{{0, 2}, {16, -10}}));
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -20}, {-12, -44}}));
  EXPECT_EQ(segmentOf(*s.playerLegRight), (Segment{{0, -20}, {12, -44}}));
  for (const ShapeNodePtr& limb : {s.playerBody, s.playerArmLeft, s.playerLegRight}) {
    EXPECT_EQ(limb->parent(), s.playerContainer.get());
    EXPECT_EQ(limb->lineWidth, 3);
    EXPECT_EQ(limb->lineCap, LineCap::round);
  }
}

TEST(Rig, RunPoseAlternatesAWideAndANarrowStride) {
  AttachedScene game;
  GameScene& s = *game;
  s.currentPrimaryColor = Color::rgba(0.1, 0.2, 0.3, 1);
  s.applyRunPose(0);
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -20}, {-kShift - 12, -44}}));
  EXPECT_EQ(segmentOf(*s.playerLegRight), (Segment{{0, -20}, {12 + kShift, -44}}));
  EXPECT_EQ(segmentOf(*s.playerArmLeft), (Segment{{0, 2}, {-kShift - 16, -10}}));
  EXPECT_EQ(segmentOf(*s.playerArmRight), (Segment{{0, 2}, {16 + kShift, -10}}));
  EXPECT_EQ(s.playerLegLeft->strokeColor, s.currentPrimaryColor);
  EXPECT_EQ(s.playerArmRight->lineWidth, 3);
  const Segment wide = segmentOf(*s.playerLegLeft);

  s.applyRunPose(1);
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -20}, {kShift - 12, -44}}));
  EXPECT_EQ(segmentOf(*s.playerArmRight), (Segment{{0, 2}, {16 - kShift, -10}}));
  const Segment narrow = segmentOf(*s.playerLegLeft);

  s.applyRunPose(2);
  EXPECT_EQ(segmentOf(*s.playerLegLeft), wide);
  s.applyRunPose(3);
  EXPECT_EQ(segmentOf(*s.playerLegLeft), narrow);
  // The remainder keeps the index's sign: odd negatives are narrow, even ones wide.
  s.applyRunPose(-1);
  EXPECT_EQ(segmentOf(*s.playerLegLeft), narrow);
  s.applyRunPose(-2);
  EXPECT_EQ(segmentOf(*s.playerLegLeft), wide);
}

TEST(Rig, DuckPoseCrouchesTheWholeFigure) {
  AttachedScene game;
  GameScene& s = *game;
  s.applyDuckPose(36);
  EXPECT_EQ(segmentOf(*s.playerBody), (Segment{{0, -2}, {0, -8}}));
  EXPECT_EQ(segmentOf(*s.playerArmLeft), (Segment{{0, -10}, {-18, -16}}));
  EXPECT_EQ(segmentOf(*s.playerArmRight), (Segment{{0, -10}, {18, -16}}));
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -8}, {-12, -24}}));
  EXPECT_EQ(segmentOf(*s.playerLegRight), (Segment{{0, -8}, {12, -24}}));
  EXPECT_EQ(s.playerHead->position, (Point{0, 8}));
}

TEST(Rig, AirPoseAndTheCarryOverBetweenPoses) {
  AttachedScene game;
  GameScene& s = *game;
  s.applyDuckPose(36);
  s.applyAirPose();
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -20}, {-8, -38}}));
  EXPECT_EQ(segmentOf(*s.playerLegRight), (Segment{{0, -20}, {8, -38}}));
  EXPECT_EQ(segmentOf(*s.playerArmLeft), (Segment{{0, 2}, {-10, -14}}));
  EXPECT_EQ(segmentOf(*s.playerArmRight), (Segment{{0, 2}, {10, -14}}));
  EXPECT_EQ(s.playerHead->position, (Point{0, 20}));
  EXPECT_EQ(segmentOf(*s.playerBody), (Segment{{0, -2}, {0, -8}})) << "the crouched body stays";

  s.applyDuckPose(36);
  s.applyRunPose(1);
  EXPECT_EQ(s.playerHead->position, (Point{0, 8})) << "running does not lift the head";
  EXPECT_EQ(segmentOf(*s.playerBody), (Segment{{0, -2}, {0, -8}}));
}

TEST(Rig, TheFrameStepChoosesThePose) {
  AttachedScene game;
  GameScene& s = *game;
  // On the menu: the air pose, or the duck pose while Down is held.
  game.step();
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -20}, {-8, -38}}));
  game.press(keycode::downArrow);
  game.step();
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -8}, {-12, -24}}));
  game.release(keycode::downArrow);
  game.step();

  // Running: the air pose lingers until the cycle first comes round.
  game.press(keycode::space);
  game.step(6);
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -20}, {-8, -38}}));
  game.step();
  EXPECT_EQ(segmentOf(*s.playerLegLeft), (Segment{{0, -20}, {kShift - 12, -44}}));
}

}  // namespace
}  // namespace zb

// The stick figure's three poses, and what each pose leaves as it was.
#include <gtest/gtest.h>

#include <ostream>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

struct Segment {
  Point from, to;
  friend bool operator==(const Segment&, const Segment&) = default;
  friend void PrintTo(const Segment& s, std::ostream* out) {
    *out << "(" << s.from.x << ", " << s.from.y << ") -> (" << s.to.x << ", " << s.to.y << ")";
  }
};
// Body, left arm, right arm, left leg, right leg.
using Limbs = std::vector<Segment>;

Limbs limbs(const GameScene& s) {
  Limbs result;
  for (const auto& limb : {s.playerBody, s.playerArmLeft, s.playerArmRight, s.playerLegLeft, s.playerLegRight}) {
    const auto& e = limb->path.elements();
    result.push_back(e.size() == 2 ? Segment{e[0].point, e[1].point} : Segment{});
  }
  return result;
}

constexpr double kShift = 2.8000000000000003;
constexpr Segment kStandingBody{{0, 10}, {0, -20}}, kCrouchedBody{{0, -2}, {0, -8}};
constexpr Point kShoulder{0, 2}, kHip{0, -20};

TEST(Rig, PosesAndWhatTheyCarryOver) {
  AttachedScene game;
  GameScene& s = *game;
  s.currentPrimaryColor = Color::rgba(0.1, 0.2, 0.3, 1);
  s.applyRunPose(0);
  const Limbs wide{kStandingBody, {kShoulder, {-kShift - 16, -10}}, {kShoulder, {16 + kShift, -10}},
                   {kHip, {-kShift - 12, -44}}, {kHip, {12 + kShift, -44}}};
  EXPECT_EQ(limbs(s), wide);
  EXPECT_EQ(s.playerLegLeft->strokeColor, s.currentPrimaryColor);
  s.applyRunPose(1);
  const Limbs narrow{kStandingBody, {kShoulder, {kShift - 16, -10}}, {kShoulder, {16 - kShift, -10}},
                     {kHip, {kShift - 12, -44}}, {kHip, {12 - kShift, -44}}};
  EXPECT_EQ(limbs(s), narrow);
  for (int64_t index : {2, 3, -1, -2}) {
    s.applyRunPose(index);
    EXPECT_EQ(limbs(s), index % 2 == 0 ? wide : narrow) << "index " << index;
  }

  s.applyDuckPose(36);
  EXPECT_EQ(limbs(s), (Limbs{kCrouchedBody, {{0, -10}, {-18, -16}}, {{0, -10}, {18, -16}}, {{0, -8}, {-12, -24}},
                             {{0, -8}, {12, -24}}}));
  EXPECT_EQ(s.playerHead->position, (Point{0, 8}));
  s.applyRunPose(1);
  EXPECT_EQ(s.playerHead->position, (Point{0, 8})) << "running does not lift the head";
  s.applyAirPose();
  EXPECT_EQ(limbs(s), (Limbs{kCrouchedBody, {kShoulder, {-10, -14}}, {kShoulder, {10, -14}}, {kHip, {-8, -38}},
                             {kHip, {8, -38}}}))
      << "the crouched body stays";
  EXPECT_EQ(s.playerHead->position, (Point{0, 20}));
}

}  // namespace
}  // namespace zb

// The stick figure: a head circle and five one-segment strokes inside one container. A pose is just
// a new set of end points; limbs a pose does not list keep what they had, so a crouched body and
// head carry over into the next poses until something redraws them.
#include <algorithm>

#include "engine/checked.hpp"
#include "engine/path.hpp"
#include "scene/game_scene.hpp"

namespace zb {

namespace {

constexpr double kStrokeWidth = 3.0;
// The figure stands at this share of the scene width, but never closer to the left edge than the
// minimum.
constexpr double kHomeWidthShare = 0.18;
constexpr double kHomeMinimumX = 120.0;

// Half the distance between the run cycle's wide and narrow strides. It is one unit in the last
// place above 2.8, the value the run cycle was tuned with.
constexpr double kStrideShift = 2.8000000000000003;

// Standing rig, in the container's coordinates (y up, origin at the middle of the standing height).
constexpr Point kHeadStanding{0, 20};
constexpr Point kNeck{0, 10};
constexpr Point kShoulder{0, 2};
constexpr Point kHip{0, -20};

// Where the arms and legs end in a pose; they start at the shoulder and the hip.
struct LimbEnds {
  Point armLeft, armRight, legLeft, legRight;
};
// Standing still, and the run cycle's middle stride (its strides shift the ends by kStrideShift).
constexpr LimbEnds kStanding{{-16, -10}, {16, -10}, {-12, -44}, {12, -44}};
constexpr LimbEnds kAirborne{{-10, -14}, {10, -14}, {-8, -38}, {8, -38}};

void restroke(ShapeNode& limb, Point from, Point to, Color color) {
  limb.path = Path::line(from, to);
  limb.strokeColor = color;
  limb.lineWidth = kStrokeWidth;
}

}  // namespace

double GameScene::playerHomeX() const { return std::max(size().width * kHomeWidthShare, kHomeMinimumX); }

void GameScene::setupPlayer() {
  playerContainer->position = {playerHomeX(), groundHeightFromBottom + kPlayerHeightStanding * 0.5};

  playerHead->lineWidth = kStrokeWidth;
  playerHead->strokeColor = Color::black();
  playerHead->fillColor = Color::clear();
  playerHead->position = kHeadStanding;
  playerContainer->addChild(playerHead);

  playerBody = line(kNeck, kHip);
  playerContainer->addChild(playerBody);

  playerArmLeft = line(kShoulder, kStanding.armLeft);
  playerArmRight = line(kShoulder, kStanding.armRight);
  playerContainer->addChild(playerArmLeft);
  playerContainer->addChild(playerArmRight);

  playerLegLeft = line(kHip, kStanding.legLeft);
  playerLegRight = line(kHip, kStanding.legRight);
  playerContainer->addChild(playerLegLeft);
  playerContainer->addChild(playerLegRight);
}

void GameScene::applyRunPose(int64_t index) {
  // Even indices take the wide stride, odd ones (of either sign) the narrow one.
  const double s = checkedMod(index, 2) == 0 ? -kStrideShift : kStrideShift;
  const Color color = currentPrimaryColor;
  const LimbEnds& at = kStanding;
  restroke(*playerLegLeft, kHip, {at.legLeft.x + s, at.legLeft.y}, color);
  restroke(*playerLegRight, kHip, {at.legRight.x - s, at.legRight.y}, color);
  restroke(*playerArmLeft, kShoulder, {at.armLeft.x + s, at.armLeft.y}, color);
  restroke(*playerArmRight, kShoulder, {at.armRight.x - s, at.armRight.y}, color);
}

void GameScene::applyDuckPose(double height) {
  const double half = height * 0.5;
  const double top = half - 28;
  const double hip = 10 - half;
  const Color color = currentPrimaryColor;
  restroke(*playerBody, {0, top + 8}, {0, hip}, color);
  restroke(*playerArmLeft, {0, top}, {-18, top - 6}, color);
  restroke(*playerArmRight, {0, top}, {18, top - 6}, color);
  restroke(*playerLegLeft, {0, hip}, {-12, hip - 16}, color);
  restroke(*playerLegRight, {0, hip}, {12, hip - 16}, color);
  playerHead->position = {0, half - 10};
}

void GameScene::applyAirPose() {
  const Color color = currentPrimaryColor;
  restroke(*playerLegLeft, kHip, kAirborne.legLeft, color);
  restroke(*playerLegRight, kHip, kAirborne.legRight, color);
  restroke(*playerArmLeft, kShoulder, kAirborne.armLeft, color);
  restroke(*playerArmRight, kShoulder, kAirborne.armRight, color);
  playerHead->position = kHeadStanding;
}

}  // namespace zb

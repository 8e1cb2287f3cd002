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

  playerArmLeft = line(kShoulder, {-16, -10});
  playerArmRight = line(kShoulder, {16, -10});
  playerContainer->addChild(playerArmLeft);
  playerContainer->addChild(playerArmRight);

  playerLegLeft = line(kHip, {-12, -44});
  playerLegRight = line(kHip, {12, -44});
  playerContainer->addChild(playerLegLeft);
  playerContainer->addChild(playerLegRight);
}

void GameScene::applyRunPose(int64_t index) {
  // Even indices take the wide stride, odd ones (of either sign) the narrow one.
  const double s = checkedMod(index, 2) == 0 ? -kStrideShift : kStrideShift;
  const Color color = currentPrimaryColor;
  restroke(*playerLegLeft, kHip, {s - 12, -44}, color);
  restroke(*playerLegRight, kHip, {12 - s, -44}, color);
  restroke(*playerArmLeft, kShoulder, {s - 16, -10}, color);
  restroke(*playerArmRight, kShoulder, {16 - s, -10}, color);
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
  restroke(*playerLegLeft, kHip, {-8, -38}, color);
  restroke(*playerLegRight, kHip, {8, -38}, color);
  restroke(*playerArmLeft, kShoulder, {-10, -14}, color);
  restroke(*playerArmRight, kShoulder, {10, -14}, color);
  playerHead->position = kHeadStanding;
}

}  // namespace zb

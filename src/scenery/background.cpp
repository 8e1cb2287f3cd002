// The skyline, the clouds and the ground line. They drift left at fractions of the obstacle speed
// and wrap round to the right edge, which makes the runner look as if it moves without a camera.
#include "engine/path.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {

constexpr int kBuildingCount = 5;
constexpr double kBuildingMinWidth = 80;
constexpr double kBuildingMaxWidth = 140;
constexpr double kBuildingMinHeight = 40;
constexpr double kBuildingMaxHeight = 100;
constexpr double kBuildingJitter = 20;  // x varies by up to this much either side of its slot
constexpr double kBuildingLift = 6;     // lower edge above the ground line
constexpr double kBuildingAlpha = 0.35;

constexpr int kCloudCount = 6;
constexpr double kCloudMinHeightFraction = 0.65;
constexpr double kCloudMaxHeightFraction = 0.9;
constexpr double kCloudAlpha = 0.6;

struct PuffShape {
  double minRadius;
  double maxRadius;
  Point offset;
};
// A low puff on each side and a higher one in the middle; radii are drawn in this order.
constexpr PuffShape kPuffs[] = {
    {10, 18, {-12, 0}},
    {12, 20, {0, 6}},
    {8, 14, {12, 0}},
};

// Clouds drift faster than the buildings in front of them; the look depends on it.
constexpr double kCloudDriftFactor = -0.25;
constexpr double kBuildingDriftFactor = -0.1;
constexpr double kCloudWrapMargin = 40;
constexpr double kBuildingWrapMargin = 80;

constexpr double kStrokeWidth = 3;

// Moves every child left by `dx`; one that passes -margin re-enters exactly at width + margin.
void driftAndWrap(Node& group, double dx, double margin, double width) {
  for (const NodePtr& child : group.children()) {
    double x = child->position.x + dx;
    const bool wraps = x < -margin;
    if (wraps) x = width + margin;
    child->position.x = x;
    // Frames between steps draw it at the right edge at once, not sliding back across the sky.
    if (wraps) child->placeWithoutSlide();
  }
}

}  // namespace

void GameScene::setupBackground() {
  buildingGroup->removeAllChildren();
  cloudGroup->removeAllChildren();
  starGroup->removeAllChildren();

  const Size sceneSize = size();
  for (int i = 0; i < kBuildingCount; ++i) {
    const double w = random().uniformDouble(kBuildingMinWidth, kBuildingMaxWidth);
    const double h = random().uniformDouble(kBuildingMinHeight, kBuildingMaxHeight);
    const double x = sceneSize.width / kBuildingCount * i + random().uniformDouble(-kBuildingJitter, kBuildingJitter);
    ShapeNodePtr building = ShapeNode::withRectOfSize({w, h});
    building->fillColor = Color::lightGray();
    building->strokeColor = Color::clear();
    building->alpha = kBuildingAlpha;
    building->position = {x, groundHeightFromBottom + h * 0.5 + kBuildingLift};
    buildingGroup->addChild(building);
  }

  for (int i = 0; i < kCloudCount; ++i) {
    ShapeNodePtr cloud = cloudNode();
    const double x = random().uniformDouble(0, sceneSize.width);
    const double y = sceneSize.height * random().uniformDouble(kCloudMinHeightFraction, kCloudMaxHeightFraction);
    cloud->position = {x, y};
    cloud->alpha = kCloudAlpha;
    cloudGroup->addChild(cloud);
  }
}

ShapeNodePtr GameScene::cloudNode() {
  // The container draws nothing itself, so a palette's fill on it never shows.
  ShapeNodePtr cloud = std::make_shared<ShapeNode>();
  for (const PuffShape& shape : kPuffs) {
    ShapeNodePtr puff = ShapeNode::withCircleOfRadius(random().uniformDouble(shape.minRadius, shape.maxRadius));
    puff->fillColor = Color::lightGray();
    puff->strokeColor = Color::clear();
    puff->position = shape.offset;
    cloud->addChild(puff);
  }
  return cloud;
}

void GameScene::setupGround() {
  groundLine->path = Path::line({0, groundHeightFromBottom}, {size().width, groundHeightFromBottom});
  groundLine->strokeColor = Color::black();
  groundLine->lineWidth = kStrokeWidth;
}

void GameScene::updateBackground() {
  const double width = size().width;
  driftAndWrap(*cloudGroup, obstacleSpeed * kCloudDriftFactor, kCloudWrapMargin, width);
  driftAndWrap(*buildingGroup, obstacleSpeed * kBuildingDriftFactor, kBuildingWrapMargin, width);
  maybeSpawnBird();
}

ShapeNodePtr GameScene::line(Point from, Point to) {
  ShapeNodePtr node = ShapeNode::withPath(Path::line(from, to));
  node->strokeColor = Color::black();
  node->lineWidth = kStrokeWidth;
  node->lineCap = LineCap::round;
  return node;
}

}  // namespace zb

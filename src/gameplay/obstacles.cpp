// Obstacles: six kinds of outline that enter at the right edge and slide left at a common speed.
// Nodes that scroll off go back to a pool per kind and are reused last in, first out, so steady play
// builds no new shapes once every kind has been seen.
#include <algorithm>

#include "engine/checked.hpp"
#include "engine/path.hpp"
#include "gameplay/difficulty.hpp"
#include "scene/game_scene.hpp"

namespace zb {

namespace {

using ObstacleType = GameScene::ObstacleType;

constexpr int64_t kStageCount = 5;
constexpr double kOutlineWidth = 3.0;
constexpr double kBarrelCrossWidth = 2.0;
constexpr double kBarrelRadius = 18.0;
constexpr double kBarrelSpinPerFrame = 0.08;  // radians, counter-clockwise: a rolling look
constexpr double kBoxCornerRadius = 4.0;
constexpr double kSpawnMarginRight = 20.0;
// An obstacle is gone once its centre is this far left of the edge, less its whole frame width.
constexpr double kOffscreenLeft = -10.0;

// Boxes are centred on their node.
constexpr Rect kBoxSmall{{-13, -15}, {26, 30}};
constexpr Rect kBoxMedium{{-17, -25}, {34, 50}};
constexpr Rect kBoxLarge{{-21, -40}, {42, 80}};

// Planes fly at fixed heights over the ground line: the high one above a standing figure, the
// medium one at a standing figure's chest.
constexpr double kPlaneHighClearance = 26.0;
constexpr double kPlaneMediumOffset = 10.0;

// The kinds each stage draws from, in order; each stage adds to the one before.
std::vector<ObstacleType> candidatesForStage(int64_t stage) {
  using T = ObstacleType;
  switch (stage) {
    case 1: return {T::boxSmall, T::boxMedium};
    case 2: return {T::boxSmall, T::boxMedium, T::barrel};
    case 3: return {T::boxSmall, T::boxMedium, T::boxLarge, T::barrel};
    case 4: return {T::boxSmall, T::boxMedium, T::boxLarge, T::barrel, T::planeMedium};
    default: return {T::boxSmall, T::boxMedium, T::boxLarge, T::barrel, T::planeMedium, T::planeHigh};
  }
}

bool isPlane(ObstacleType type) { return type == ObstacleType::planeHigh || type == ObstacleType::planeMedium; }

}  // namespace

void GameScene::spawnAndUpdateObstacles() {
  spawnTimerFrames = checkedSub(spawnTimerFrames, 1);
  if (spawnTimerFrames < 1) {
    spawnObstacle();
    spawnTimerFrames = random().uniformInt(spawnIntervalMin, spawnIntervalMax);
  }

  // Back to front, so that removing one keeps the indices of those still to visit.
  for (size_t i = obstacleNodes.size(); i-- > 0;) {
    ObstacleNodePtr node = obstacleNodes[i];
    node->position.x -= obstacleSpeed;
    if (node->obstacleType == ObstacleType::barrel) node->zRotation += kBarrelSpinPerFrame;
    // The whole frame width, not half of it: a generous margin before recycling.
    if (node->position.x + node->frame().width() < kOffscreenLeft) {
      node->removeFromParent();
      obstaclePool[node->obstacleType].push_back(node);
      obstacleNodes.erase(obstacleNodes.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
}

void GameScene::spawnObstacle() {
  const int64_t stage = std::clamp<int64_t>(checkedDiv(score, kDifficultyStepPoints), 0, kStageCount - 1) + 1;
  const ObstacleType type = randomObstacleType(stage);
  ObstacleNodePtr node = dequeueObstacle(type);
  if (!node) node = buildObstacle(type);

  node->obstacleType = type;
  node->strokeColor = currentPrimaryColor;
  node->fillColor = Color::clear();
  node->lineWidth = kOutlineWidth;
  node->position.x = size().width + node->frame().width() + kSpawnMarginRight;
  // Planes keep the height they were built with; everything else rests on the ground line.
  if (!isPlane(type)) node->position.y = groundHeightFromBottom + node->frame().height() * 0.5;

  addChild(node);
  obstacleNodes.push_back(node);
}

GameScene::ObstacleNodePtr GameScene::buildObstacle(ObstacleType type) {
  auto box = [](const Rect& r) {
    auto node = std::make_shared<ObstacleNode>();
    node->path = Path::roundedRect(r, kBoxCornerRadius);
    return node;
  };
  switch (type) {
    case ObstacleType::boxSmall: return box(kBoxSmall);
    case ObstacleType::boxMedium: return box(kBoxMedium);
    case ObstacleType::boxLarge: return box(kBoxLarge);
    case ObstacleType::barrel: return barrelObstacle(kBarrelRadius);
    case ObstacleType::planeHigh: return planeObstacle(PlaneAltitude::high);
    case ObstacleType::planeMedium: return planeObstacle(PlaneAltitude::medium);
  }
  return box(kBoxSmall);
}

GameScene::ObstacleNodePtr GameScene::dequeueObstacle(ObstacleType type) {
  auto found = obstaclePool.find(type);
  if (found == obstaclePool.end() || found->second.empty()) return nullptr;
  ObstacleNodePtr node = found->second.back();
  found->second.pop_back();
  node->hidden = false;
  node->zRotation = 0;
  return node;
}

GameScene::ObstacleNodePtr GameScene::barrelObstacle(double radius) {
  auto barrel = std::make_shared<ObstacleNode>();
  barrel->path = Path::circle(radius);
  for (const auto& [from, to] : {std::pair{Point{-radius, 0}, Point{radius, 0}}, std::pair{Point{0, -radius}, Point{0, radius}}}) {
    auto cross = ShapeNode::withPath(Path::line(from, to));
    cross->lineWidth = kBarrelCrossWidth;
    cross->strokeColor = currentPrimaryColor;
    barrel->addChild(cross);
  }
  return barrel;
}

GameScene::ObstacleNodePtr GameScene::planeObstacle(PlaneAltitude altitude) {
  auto plane = std::make_shared<ObstacleNode>();
  plane->path = Path::polyline({{-18, -6}, {18, 0}, {-18, 6}});  // a wedge pointing right, left open
  plane->lineWidth = kOutlineWidth;
  plane->strokeColor = currentPrimaryColor;
  plane->fillColor = Color::clear();
  plane->position.y = altitude == PlaneAltitude::high
                          ? groundHeightFromBottom + kPlayerHeightStanding + kPlaneHighClearance
                          : groundHeightFromBottom + kPlayerHeightStanding * 0.5 + kPlaneMediumOffset;
  return plane;
}

GameScene::ObstacleType GameScene::randomObstacleType(int64_t stage) {
  const std::vector<ObstacleType> candidates = candidatesForStage(stage);
  return candidates[random().uniformIndex(candidates.size())];
}

// Nodes on screen when a run starts or ends are dropped, not pooled: the pool keeps what it holds.
void GameScene::dropLiveObstacles() {
  for (const ObstacleNodePtr& node : obstacleNodes) node->removeFromParent();
  obstacleNodes.clear();
}

}  // namespace zb

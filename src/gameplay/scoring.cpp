// Collisions and score. The figure's box is its nominal size, with no margin; the first live obstacle
// it overlaps ends the run. The score counts frames survived and drives the difficulty.
#include <algorithm>

#include "engine/checked.hpp"
#include "gameplay/difficulty.hpp"
#include "scene/game_scene.hpp"

namespace zb {

namespace {

constexpr double kSpeedStep = 0.6;
constexpr int64_t kIntervalMinStep = 6;
constexpr int64_t kIntervalMinFloor = 36;
constexpr int64_t kIntervalMaxStep = 10;
constexpr int64_t kIntervalMaxFloor = 80;

}  // namespace

void GameScene::checkCollisions() {
  const double height = currentPlayerHeight();
  const Point centre = playerContainer->position;
  const Rect player = Rect::make(centre.x - kPlayerWidth * 0.5, centre.y - height * 0.5, kPlayerWidth, height);
  // Oldest first; only the first overlap counts. Touching along an edge is not a hit.
  for (const ObstacleNodePtr& obstacle : obstacleNodes) {
    const Rect bounds = obstacle->calculateAccumulatedFrame();
    if (!player.intersects(bounds)) continue;
    lastCollisionPoint = Point{bounds.midX(), bounds.midY()};
    endRun();
    return;
  }
}

void GameScene::incrementScoreAndDifficulty() {
  score = checkedAdd(score, 1);
  // The best score rises live, so endRun never finds a new best to store.
  if (highScore < score) highScore = score;
  updateScoreLabels();
  if (checkedMod(score, kDifficultyStepPoints) == 0) raiseDifficulty();
}

void GameScene::raiseDifficulty() {
  obstacleSpeed += kSpeedStep;
  spawnIntervalMin = std::max(checkedSub(spawnIntervalMin, kIntervalMinStep), kIntervalMinFloor);
  spawnIntervalMax = std::max(checkedSub(spawnIntervalMax, kIntervalMaxStep), kIntervalMaxFloor);
}

}  // namespace zb

#include "scene_in_play.hpp"

#include <limits>

#include "engine/input_event.hpp"

namespace zb::bench {

namespace {

using Clock = std::chrono::steady_clock;
using ObstacleType = GameScene::ObstacleType;

// The pilot jumps when an obstacle's left edge is this many frames of travel away from the figure,
// and ducks under the low plane a little earlier. Found by watching the pilot survive long runs.
constexpr double kJumpLeadFrames = 10;
constexpr double kDuckLeadFrames = 14;
constexpr int kMaxFramesToStart = 5000;

bool isGrounded(const GameScene& scene) { return scene.playerFootAltitude <= kGroundedEpsilon; }

// The obstacle nearest ahead of the figure, or nullptr.
const GameScene::ObstacleNode* nextObstacle(const GameScene& scene, double playerLeft) {
  const GameScene::ObstacleNode* nearest = nullptr;
  double nearestX = std::numeric_limits<double>::infinity();
  for (const GameScene::ObstacleNodePtr& node : scene.obstacleNodes) {
    const Rect frame = node->frame();
    if (frame.maxX() < playerLeft || frame.minX() >= nearestX) continue;
    nearest = node.get();
    nearestX = frame.minX();
  }
  return nearest;
}

}  // namespace

void TimedGameScene::update(double currentTime) {
  const Clock::time_point start = Clock::now();
  GameScene::update(currentTime);
  lastUpdateTime = Clock::now() - start;
}

SceneInPlay::SceneInPlay(Size size) : view_(size), scene_(std::make_shared<TimedGameScene>(size)) {
  scene_->random().seed(kBenchSeed);
  view_.presentScene(scene_);
  startRun();
}

SceneInPlay::~SceneInPlay() { view_.dismissScene(); }

void SceneInPlay::startRun() {
  if (scene_->gameState != GameScene::GameState::playing) view_.keyDown({keycode::space, 0, false});
  for (int i = 0; i < kMaxFramesToStart && scene_->obstacleNodes.size() < kLiveObstaclesAtStart; ++i) {
    steer();
    view_.stepFrame();
  }
}

void SceneInPlay::steer() {
  GameScene& scene = *scene_;
  if (scene.gameState != GameScene::GameState::playing) {
    if (holdingDuck_) view_.keyUp({keycode::downArrow, 0, false});
    holdingDuck_ = false;
    startRun();
    return;
  }
  const double playerLeft = scene.playerContainer->position.x - kPlayerWidth * 0.5;
  const double playerRight = playerLeft + kPlayerWidth;
  const GameScene::ObstacleNode* next = nextObstacle(scene, playerLeft);
  const double gap = next != nullptr ? next->frame().minX() - playerRight : std::numeric_limits<double>::infinity();

  const bool duckUnder = next != nullptr && next->obstacleType == ObstacleType::planeMedium &&
                         gap < scene.obstacleSpeed * kDuckLeadFrames;
  if (duckUnder != holdingDuck_) {
    if (duckUnder) {
      view_.keyDown({keycode::downArrow, 0, false});
    } else {
      view_.keyUp({keycode::downArrow, 0, false});
    }
    holdingDuck_ = duckUnder;
  }
  // The high plane passes over a standing figure; everything else on the ground is jumped.
  const bool jumpOver = next != nullptr && next->obstacleType != ObstacleType::planeMedium &&
                        next->obstacleType != ObstacleType::planeHigh && gap < scene.obstacleSpeed * kJumpLeadFrames;
  if (jumpOver && isGrounded(scene)) view_.keyDown({keycode::space, 0, false});
}

}  // namespace zb::bench

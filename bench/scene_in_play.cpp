#include "scene_in_play.hpp"

#include "engine/input_event.hpp"
#include "render/pango_text.hpp"

namespace zb::bench {

namespace {

using Clock = std::chrono::steady_clock;
// Far more than a crash, the game-over page and the first obstacles of a new run take.
constexpr int kMaxFramesOffTheRun = 5000;

}  // namespace

void TimedGameScene::update(double currentTime) {
  const Clock::time_point start = Clock::now();
  GameScene::update(currentTime);
  lastUpdateTime = Clock::now() - start;
}

SceneInPlay::SceneInPlay(Size size) : view_(size), scene_(std::make_shared<TimedGameScene>(size)) {
  installPangoText();
  scene_->random().seed(kBenchSeed);
  view_.presentScene(scene_);
  pressPlayersKeys();
  for (int i = 0; i < kMaxFramesOffTheRun && !inPlayWithObstacles(kLiveObstaclesAtStart); ++i) {
    view_.stepFrame();
    pressPlayersKeys();
  }
}

SceneInPlay::~SceneInPlay() { view_.dismissScene(); }

void SceneInPlay::prepareFrame() {
  pressPlayersKeys();
  for (int i = 0; i < kMaxFramesOffTheRun && !inPlayWithObstacles(1); ++i) {
    view_.stepFrame();
    pressPlayersKeys();
  }
}

void SceneInPlay::pressPlayersKeys() {
  player_.pressKeys(*scene_, view_);
}

bool SceneInPlay::inPlayWithObstacles(std::size_t count) const {
  return scene_->gameState == GameScene::GameState::playing && scene_->obstacleNodes.size() >= count;
}

}  // namespace zb::bench

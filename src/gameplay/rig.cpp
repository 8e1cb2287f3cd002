// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::setupPlayer() {}
void GameScene::applyRunPose(int64_t) {}
void GameScene::applyDuckPose(double) {}
void GameScene::applyAirPose() {}

}  // namespace zb

// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::updateLayout() {}
void GameScene::layoutMenu() {}
void GameScene::layoutSettings() {}
void GameScene::layoutGameOver() {}

}  // namespace zb

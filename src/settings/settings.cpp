// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

int64_t GameScene::storedHighScore() { return 0; }
void GameScene::loadSettings() {}
void GameScene::saveSettings() {}

}  // namespace zb

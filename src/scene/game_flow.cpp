// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::startGame() {}
void GameScene::endRun() {}
void GameScene::showGameOver() {}
void GameScene::showMenu() {}
void GameScene::openSettings() {}
void GameScene::pauseGame() {}
void GameScene::resumeGame() {}

}  // namespace zb

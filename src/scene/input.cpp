// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::keyDown(const KeyEvent&) {}
void GameScene::keyUp(const KeyEvent&) {}
void GameScene::mouseDown(const MouseEvent&) {}
void GameScene::handleClick(Point) {}
void GameScene::requestJump() {}
void GameScene::toggleFullScreen() {}
void GameScene::toggleMusic() {}
void GameScene::volumeDown() {}
void GameScene::volumeUp() {}
void GameScene::toggleShowFPS() {}

}  // namespace zb

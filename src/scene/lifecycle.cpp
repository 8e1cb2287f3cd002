// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::didMoveToView(View&) {}
void GameScene::willMoveFromView(View&) {}
void GameScene::setupScene() {}
void GameScene::update(double) {}
void GameScene::didChangeSize(Size) {}

}  // namespace zb

// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

GameScene::GameScene() {}
GameScene::GameScene(Size) {}
GameScene::GameScene(const Coder&) {}
GameScene::~GameScene() = default;
void GameScene::initializeFields() {}
const char* toString(GameScene::ObstacleType) { return ""; }
const char* toString(GameScene::GameState) { return ""; }

}  // namespace zb

// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::setupBackground() {}
void GameScene::setupGround() {}
void GameScene::updateBackground() {}
ShapeNodePtr GameScene::cloudNode() { return nullptr; }
ShapeNodePtr GameScene::line(Point, Point) { return nullptr; }

}  // namespace zb

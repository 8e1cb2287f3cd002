// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::spawnAndUpdateObstacles() {}
void GameScene::spawnObstacle() {}
GameScene::ObstacleNodePtr GameScene::dequeueObstacle(ObstacleType) { return nullptr; }
GameScene::ObstacleNodePtr GameScene::barrelObstacle(double) { return nullptr; }
GameScene::ObstacleNodePtr GameScene::planeObstacle(PlaneAltitude) { return nullptr; }
GameScene::ObstacleType GameScene::randomObstacleType(int64_t) { return ObstacleType::boxSmall; }

}  // namespace zb

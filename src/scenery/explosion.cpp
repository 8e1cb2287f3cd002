// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::spawnExplosionEffect() {}

}  // namespace zb

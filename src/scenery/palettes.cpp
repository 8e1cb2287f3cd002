// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::updatePaletteIfNeeded() {}
void GameScene::applyPalette(int64_t) {}
void GameScene::setAllColors(Color, Color) {}

}  // namespace zb

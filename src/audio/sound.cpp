// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::buildMusicNode() {}
void GameScene::fadeMusic(float, double) {}
void GameScene::playSFX(const std::string&, const std::optional<std::filesystem::path>&) {}
void GameScene::playRandomBabyLaugh() {}
std::filesystem::path GameScene::fallbackPath(const std::string&) const { return {}; }

}  // namespace zb

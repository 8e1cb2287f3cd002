// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::setupUI() {}
LabelNodePtr GameScene::buttonLabel(const std::string&, const std::string&) { return nullptr; }
void GameScene::updateScoreLabels() {}

}  // namespace zb

// Placeholder bodies until this subsystem is built.
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::refreshSettingsTexts() {}
void GameScene::updateGameOverOverlay() {}
void GameScene::updateFullscreenButtonTitle() {}
void GameScene::windowDidEnterFullScreen() {}
void GameScene::windowDidExitFullScreen() {}

}  // namespace zb

// The scene's life in its view: building the node tree once on attachment, the per-frame step, and
// following the view's size and full-screen changes.
#include "engine/path.hpp"
#include "engine/view.hpp"
#include "scene/game_scene.hpp"

namespace zb {

void GameScene::didMoveToView(View& view) {
  setupScene();
  setupUI();
  setupPlayer();
  setupBackground();
  setupGround();

  highScore = storedHighScore();
  updateScoreLabels();
  loadSettings();
  loadComfortOptions();

  currentPaletteIndex = 0;
  applyPalette(currentPaletteIndex);
  starGroup->removeAllChildren();

  if (View* shown = this->view()) {
    shown->showsFPS = settingShowFPS;
    shown->showsNodeCount = settingShowFPS;
  }
  showMenu();
  updateLayout();
  registerForFullScreenNotifications(view);
}

void GameScene::registerForFullScreenNotifications(View& view) {
  NotificationCenter& center = view.notificationCenter();
  const void* window = view.window();
  center.addObserver(this, kWindowDidEnterFullScreenNotification, window, [this] { windowDidEnterFullScreen(); });
  center.addObserver(this, kWindowDidExitFullScreenNotification, window, [this] { windowDidExitFullScreen(); });
}

void GameScene::willMoveFromView(View& view) { view.notificationCenter().removeObserver(this); }

void GameScene::setupScene() {
  backgroundColor = Color::white();
  addChild(backgroundGroup);
  backgroundGroup->addChild(buildingGroup);
  backgroundGroup->addChild(cloudGroup);
  backgroundGroup->addChild(starGroup);
  addChild(groundLine);
  addChild(playerContainer);
  addChild(uiLayer);
  if (!backgroundMusicNode) buildMusicNode();
}

void GameScene::update(double currentTime) {
  repeatHeldButton(currentTime);
  updatePaletteIfNeeded();
  updateBackground();
  // Rebuilt every frame so the ground always spans the current width.
  groundLine->path = Path::line({0, groundHeightFromBottom}, {size().width, groundHeightFromBottom});
  updatePlayer();
  // Tested once: the frame in which a collision ends the run still scores its point.
  if (gameState == GameState::playing) {
    spawnAndUpdateObstacles();
    checkCollisions();
    incrementScoreAndDifficulty();
  }
}

void GameScene::didChangeSize(Size oldSize) {
  Scene::didChangeSize(oldSize);
  updateLayout();
}

}  // namespace zb

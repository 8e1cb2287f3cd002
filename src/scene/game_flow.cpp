// The transitions between the game's states. These are the only functions that write gameState;
// input routing and the collision test call them.
#include <algorithm>

#include "engine/action.hpp"
#include "engine/view.hpp"
#include "scene/game_scene.hpp"
#include "settings/preference_keys.hpp"

namespace zb {

namespace {

// Music fades, in seconds: each moment has its own length on purpose.
constexpr double kRunMusicFade = 0.2;
constexpr double kPauseMusicFade = 0.1;
// Paused music is turned down to half, but never quite off.
constexpr float kPausedMusicShare = 0.5f;
constexpr float kPausedMusicFloor = 0.05f;

// The interface shakes sideways once when a run ends: right, left past the start, and back.
constexpr double kShakeDistance = 6.0;
constexpr double kShakeStepSeconds = 0.02;

}  // namespace

void GameScene::hideCursorUntilMouseMoves() {
  if (View* v = view()) v->hideCursorUntilMouseMoves();
}

void GameScene::unhideCursor() {
  if (View* v = view()) v->unhideCursor();
}

void GameScene::showPage(Node* page) {
  for (Node* each : {menuOverlay.get(), settingsOverlay.get(), gameOverOverlay.get(), pauseOverlay.get()}) {
    each->hidden = each != page;
  }
  dimBackground->hidden = page == nullptr;
  pauseButton->hidden = page != nullptr;
  // A new page starts without a visible focus, as the first one did.
  hideFocus();
}

void GameScene::startGame() {
  gameState = GameState::playing;
  showPage(nullptr);
  isPausedManually = false;
  paused = false;
  if (settingMusicEnabled) fadeMusic(settingMusicVolume, kRunMusicFade);

  score = 0;
  dropLiveObstacles();
  playerFootAltitude = 0;
  playerVelocityY = 0;
  isDucking = false;
  runAnimationFrameIndex = 0;
  runAnimationFrameCounter = 0;
  playerContainer->position.x = playerHomeX();
  playerContainer->position.y = groundHeightFromBottom + kPlayerHeightStanding * 0.5;
  lastPaletteChangeAtScore = 0;
  bufferedJumpFramesRemaining = 0;
  framesSinceLeftGround = kLongAirborneFrames;
  hideCursorUntilMouseMoves();

  obstacleSpeed = kStartObstacleSpeed;
  spawnIntervalMin = kStartSpawnIntervalMin;
  spawnIntervalMax = kStartSpawnIntervalMax;
  spawnTimerFrames = random().uniformInt(spawnIntervalMin, spawnIntervalMax);
}

void GameScene::endRun() {
  // The live raise in the score step has already made this false; the write stays for a score that
  // arrives some other way.
  if (score > highScore) {
    highScore = score;
    services().preferences->setInteger(highScore, kHighScoreKey);
  }
  bufferedJumpFramesRemaining = 0;
  framesSinceLeftGround = kLongAirborneFrames;
  playSFX("explosion", fallbackPath("explosion.mp3"));
  playRandomBabyLaugh();
  spawnExplosionEffect();
  // Players who asked for less motion keep a still interface; the explosion itself stays.
  if (!comfortOptions().reducedMotion) {
    uiLayer->runAction(actions::sequence({
        actions::moveBy(kShakeDistance, 0, kShakeStepSeconds),
        actions::moveBy(-2 * kShakeDistance, 0, 2 * kShakeStepSeconds),
        actions::moveBy(kShakeDistance, 0, kShakeStepSeconds),
    }));
  }
  updateScoreLabels();
  showGameOver();
}

void GameScene::showGameOver() {
  gameState = GameState::gameOver;
  showPage(gameOverOverlay.get());
  updateGameOverOverlay();
  updateLayout();
  unhideCursor();
}

void GameScene::showMenu() {
  gameState = GameState::menu;
  score = 0;
  playerFootAltitude = 0;
  playerVelocityY = 0;
  isDucking = false;
  dropLiveObstacles();
  showPage(menuOverlay.get());
  isPausedManually = false;
  paused = false;
  // Off whatever the setting says: the counters only show after a toggle on the settings page.
  if (View* v = view()) {
    v->showsFPS = false;
    v->showsNodeCount = false;
  }
  fadeMusic(settingMusicEnabled ? settingMusicVolume : 0.0f, kRunMusicFade);
  updateScoreLabels();
  updateLayout();
  unhideCursor();
}

void GameScene::openSettings() {
  gameState = GameState::settings;
  showPage(settingsOverlay.get());
  refreshSettingsTexts();
  updateLayout();
}

void GameScene::pauseGame() {
  if (gameState != GameState::playing) return;
  isPausedManually = true;
  paused = true;
  gameState = GameState::paused;
  dimBackground->hidden = false;
  pauseOverlay->hidden = false;
  hideFocus();
  unhideCursor();
  if (settingMusicEnabled) {
    fadeMusic(std::max(settingMusicVolume * kPausedMusicShare, kPausedMusicFloor), kPauseMusicFade);
  }
}

void GameScene::resumeGame() {
  if (gameState != GameState::paused) return;
  isPausedManually = false;
  paused = false;
  gameState = GameState::playing;
  dimBackground->hidden = true;
  pauseOverlay->hidden = true;
  hideFocus();
  hideCursorUntilMouseMoves();
  if (settingMusicEnabled) fadeMusic(settingMusicVolume, kPauseMusicFade);
}

}  // namespace zb

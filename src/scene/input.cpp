// Keyboard and mouse routing. A key is looked up in the player's key map and does what its action
// does, so a remapped key or a gamepad button behaves exactly like the default key. Input moves
// nothing itself: it calls the transitions, sets the two fields the physics reads (isDucking, the
// jump buffer) or changes a setting. Automatic key repeats are ordinary presses on purpose.
#include <algorithm>
#include <optional>
#include <string_view>

#include "engine/view.hpp"
#include "scene/game_scene.hpp"

namespace zb {

namespace {

constexpr std::string_view kButtonPrefix = "btn_";

// Music fades for the settings page, in seconds.
constexpr double kMusicToggleFade = 0.1;
constexpr double kVolumeStepFade = 0.05;
constexpr float kVolumeStep = 0.1f;
constexpr float kMaxVolume = 1.0f;

bool isButtonName(const std::string& name) { return name.starts_with(kButtonPrefix); }

bool isReturn(uint16_t keyCode) { return keyCode == keycode::returnKey || keyCode == keycode::keypadEnter; }

// Tab and Shift+Tab go through the page in reading order, the arrows to the nearest button their way.
std::optional<GameScene::FocusMove> focusMoveForKey(const KeyEvent& event) {
  using Move = GameScene::FocusMove;
  switch (event.keyCode) {
    case keycode::tab: return (event.modifierFlags & kShiftModifierFlag) != 0 ? Move::previous : Move::next;
    case keycode::upArrow: return Move::up;
    case keycode::downArrow: return Move::down;
    case keycode::leftArrow: return Move::left;
    case keycode::rightArrow: return Move::right;
    default: return std::nullopt;
  }
}

// Clicks are routed by button name, first match wins. Restart on the pause page and the frame-rate
// toggle make no click sound.
struct ButtonRoute {
  std::string_view name;
  void (GameScene::*action)();
  bool clicks;
};
constexpr ButtonRoute kButtonRoutes[] = {
    {"btn_start", &GameScene::startGame, true},
    {"btn_settings", &GameScene::openSettings, true},
    {"btn_pause", &GameScene::pauseGame, true},
    {"btn_resume", &GameScene::resumeGame, true},
    {"btn_pause_menu", &GameScene::showMenu, true},
    {"btn_retry", &GameScene::startGame, true},
    {"btn_menu", &GameScene::showMenu, true},
    {"btn_back", &GameScene::showMenu, true},
    {"btn_fullscreen", &GameScene::toggleFullScreen, true},
    {"btn_music", &GameScene::toggleMusic, true},
    {"btn_vol_down", &GameScene::volumeDown, true},
    {"btn_vol_up", &GameScene::volumeUp, true},
    {GameScene::kRestartButtonName, &GameScene::startGame, false},
    {"btn_fps", &GameScene::toggleShowFPS, false},
};

}  // namespace

void GameScene::playJumpSound() { playSFX("jump", fallbackPath("jump.mp3")); }

void GameScene::playClickSound() { playSFX("click", fallbackPath("click.mp3")); }

void GameScene::requestJump() {
  bufferedJumpFramesRemaining = jumpBufferFrames;
  playJumpSound();
}

void GameScene::keyDown(const KeyEvent& event) {
  const bool alt = (event.modifierFlags & kOptionModifierFlag) != 0;
  // Alt+Return is the full-screen key whatever the player remapped.
  if (alt && isReturn(event.keyCode)) {
    toggleFullScreen();
    return;
  }
  const std::optional<InputAction> action = comfortOptions().actionForKey(event.keyCode);
  // On a page the navigation keys move the focus; one the player gave to jump, pause or leave keeps
  // only that meaning, while Down both ducks (as it always did) and moves.
  const bool navigates = gameState != GameState::playing && (!action || *action == InputAction::duck);
  if (navigates) {
    if (auto move = focusMoveForKey(event)) {
      moveFocus(*move);
    } else if (isReturn(event.keyCode) && !event.isRepeat) {
      // A held Return repeats only "-" and "+", at the game's own pace.
      pressFocusedButton();
    }
  }
  if (action) pressAction(*action, event.keyCode);
}

void GameScene::keyUp(const KeyEvent& event) {
  if (isReturn(event.keyCode)) stopButtonRepeat();
  if (auto action = comfortOptions().actionForKey(event.keyCode)) releaseAction(*action, event.keyCode);
}

void GameScene::pressAction(InputAction action, int source) {
  switch (action) {
    case InputAction::jump:
      switch (gameState) {
        case GameState::menu:
        case GameState::gameOver: startGame(); playJumpSound(); break;
        case GameState::playing: requestJump(); break;
        case GameState::settings: playJumpSound(); break;
        case GameState::paused: resumeGame(); playJumpSound(); break;
      }
      break;
    case InputAction::pause:
      if (gameState == GameState::playing) {
        pauseGame();
      } else if (gameState == GameState::paused) {
        resumeGame();
      }
      break;
    case InputAction::leave:
      if (gameState == GameState::playing || gameState == GameState::settings) showMenu();
      break;
    case InputAction::duck:
      duckSources_.insert(source);
      isDucking = true;
      break;
  }
}

void GameScene::releaseAction(InputAction action, int source) {
  if (action != InputAction::duck) return;
  duckSources_.erase(source);
  if (duckSources_.empty()) isDucking = false;
}

void GameScene::mouseDown(const MouseEvent& event) {
  hideFocus();
  handleClick(uiLayer->convertPointFrom(event.locationInScene, *this));
  if (gameState == GameState::playing) requestJump();
}

std::string GameScene::buttonNameAt(Point pointInUILayer) const {
  for (const Node* node : uiLayer->nodesAtPoint(pointInUILayer)) {
    const Node* parent = node->parent();
    const bool parentIsButton = parent != nullptr && isButtonName(parent->name);
    if (!isButtonName(node->name) && !parentIsButton) continue;
    // A named node routes by its own name, even when only its parent made it qualify.
    if (!node->name.empty()) return node->name;
    return parent != nullptr ? parent->name : std::string();
  }
  return {};
}

void GameScene::mouseMoved() { hideFocus(); }

void GameScene::handleClick(Point pointInUILayer) { pressButton(buttonNameAt(pointInUILayer)); }

void GameScene::pressButton(const std::string& name) {
  for (const ButtonRoute& route : kButtonRoutes) {
    if (name != route.name) continue;
    (this->*route.action)();
    if (route.clicks) playClickSound();
    return;
  }
}

void GameScene::toggleFullScreen() {
  if (View* v = view()) {
    if (Window* window = v->window()) window->toggleFullScreen();
  }
  // The window may still be animating; the notification handlers set the final title.
  updateFullscreenButtonTitle();
}

void GameScene::toggleMusic() {
  settingMusicEnabled = !settingMusicEnabled;
  fadeMusic(settingMusicEnabled ? settingMusicVolume : 0.0f, kMusicToggleFade);
  refreshSettingsTexts();
}

void GameScene::volumeDown() {
  const float lowered = settingMusicVolume - kVolumeStep;
  settingMusicVolume = lowered >= 0.0f ? lowered : 0.0f;  // NaN also lands on 0
  if (settingMusicEnabled) fadeMusic(settingMusicVolume, kVolumeStepFade);
  refreshSettingsTexts();
}

void GameScene::volumeUp() {
  settingMusicVolume = std::min(settingMusicVolume + kVolumeStep, kMaxVolume);
  if (settingMusicEnabled) fadeMusic(settingMusicVolume, kVolumeStepFade);
  refreshSettingsTexts();
}

void GameScene::toggleShowFPS() {
  settingShowFPS = !settingShowFPS;
  // The only save: music and volume changes reach the store when the counters are toggled next.
  saveSettings();
  refreshSettingsTexts();
  if (View* v = view()) {
    v->showsFPS = settingShowFPS;
    v->showsNodeCount = settingShowFPS;
  }
}

}  // namespace zb

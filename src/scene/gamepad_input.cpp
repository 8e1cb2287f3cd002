// Gamepad and window-focus routing. A pad does what the keys do: A is Space, B and the D-pad's down
// are the Down arrow, Start is P and Back is Escape. The left stick pushed down past half holds Down
// too. On a page the D-pad and the left stick move the focus, A presses the focused button once it
// shows and B leaves as Escape does. Losing the pad or the window's focus mid-run pauses as P would,
// so a run never goes on alone.
#include <optional>
#include <utility>

#include "scene/game_scene.hpp"

namespace zb {

namespace {

// Past half of its travel, so that a resting or slightly bumped stick neither ducks nor moves the focus.
constexpr double kStickThreshold = 0.5;

std::optional<InputAction> actionForButton(GamepadButton button) {
  switch (button) {
    case GamepadButton::a: return InputAction::jump;
    case GamepadButton::b:
    case GamepadButton::dpadDown: return InputAction::duck;
    case GamepadButton::start: return InputAction::pause;
    case GamepadButton::back: return InputAction::leave;
    default: return std::nullopt;
  }
}

std::optional<GameScene::FocusMove> focusMoveForButton(GamepadButton button) {
  switch (button) {
    case GamepadButton::dpadUp: return GameScene::FocusMove::up;
    case GamepadButton::dpadDown: return GameScene::FocusMove::down;
    case GamepadButton::dpadLeft: return GameScene::FocusMove::left;
    case GamepadButton::dpadRight: return GameScene::FocusMove::right;
    default: return std::nullopt;
  }
}

int sourceOf(GamepadButton button) { return GameScene::kPadButtonSource + static_cast<int>(button); }

int stickDirection(double value) {
  if (value > kStickThreshold) return 1;
  if (value < -kStickThreshold) return -1;
  return 0;
}

}  // namespace

void GameScene::gamepadButtonDown(GamepadButton button) {
  if (gameState != GameState::playing) {
    if (button == GamepadButton::a && focusShown_) {
      pressFocusedButton();
      return;
    }
    if (button == GamepadButton::b) {
      pressAction(InputAction::leave);
      return;
    }
    // Down on the D-pad also ducks, as the Down arrow does on a page.
    if (auto move = focusMoveForButton(button)) moveFocus(*move);
  }
  if (auto action = actionForButton(button)) pressAction(*action, sourceOf(button));
}

void GameScene::gamepadButtonUp(GamepadButton button) {
  if (button == GamepadButton::a) stopButtonRepeat();
  if (auto action = actionForButton(button)) releaseAction(*action, sourceOf(button));
}

void GameScene::gamepadAxisMoved(GamepadAxis axis, double value) {
  if (axis != GamepadAxis::leftX && axis != GamepadAxis::leftY) return;
  // Only crossing the threshold counts: a stick wobbling past it acts once, not every report.
  const int direction = stickDirection(value);
  int& held = axis == GamepadAxis::leftX ? stickX_ : stickY_;
  if (direction == held) return;
  const int was = std::exchange(held, direction);
  if (axis == GamepadAxis::leftY) {
    if (was == 1) releaseAction(InputAction::duck, kStickSource);
    if (direction == 1) pressAction(InputAction::duck, kStickSource);
  }
  if (direction == 0 || gameState == GameState::playing) return;
  if (axis == GamepadAxis::leftX) {
    moveFocus(direction > 0 ? FocusMove::right : FocusMove::left);
  } else {
    moveFocus(direction > 0 ? FocusMove::down : FocusMove::up);  // y grows downwards on a pad
  }
}

// pauseGame itself leaves every state but a run alone, and makes no sound.
void GameScene::gamepadDisconnected() { pauseGame(); }

void GameScene::windowDidLoseFocus() {
  if (comfortOptions().pauseOnFocusLoss) pauseGame();
}

}  // namespace zb

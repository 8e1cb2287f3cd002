// Gamepad and window-focus routing. A pad does what the keys do: A is Space, B and the D-pad's down
// are the Down arrow, Start is P and Back is Escape. The left stick pushed down past half holds Down
// too. Losing the pad or the window's focus mid-run pauses as P would, so a run never goes on alone.
#include <optional>

#include "scene/game_scene.hpp"

namespace zb {

namespace {

// Past half of its travel, so that a resting or slightly bumped stick never ducks.
constexpr double kStickDuckThreshold = 0.5;

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

}  // namespace

void GameScene::gamepadButtonDown(GamepadButton button) {
  if (auto action = actionForButton(button)) pressAction(*action);
}

void GameScene::gamepadButtonUp(GamepadButton button) {
  if (auto action = actionForButton(button)) releaseAction(*action);
}

void GameScene::gamepadAxisMoved(GamepadAxis axis, double value) {
  if (axis != GamepadAxis::leftY) return;
  // Only crossing the threshold counts: a stick wobbling past it presses once, not every report.
  const bool pushed = value > kStickDuckThreshold;
  if (pushed == stickHoldsDuck_) return;
  stickHoldsDuck_ = pushed;
  if (pushed) {
    pressAction(InputAction::duck);
  } else {
    releaseAction(InputAction::duck);
  }
}

// pauseGame itself leaves every state but a run alone, and makes no sound.
void GameScene::gamepadDisconnected() { pauseGame(); }

void GameScene::windowDidLoseFocus() {
  if (comfortOptions().pauseOnFocusLoss) pauseGame();
}

}  // namespace zb

// The built-in player at the keyboard. In a run it plans its jumps from the outlines in sight and
// follows the plan, planning again whenever something new comes into sight; on any other page it
// waits a moment and presses the key that gets it back into a run.
#include "player/autoplay.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/input_event.hpp"
#include "gameplay/difficulty.hpp"

namespace zb {

namespace {

using GameState = GameScene::GameState;

// A person takes a moment to read the score before starting the next run.
constexpr int64_t kRestartDelayFrames = 20;
// Every this many take-offs the player reacts this many frames late.
constexpr int64_t kLateEvery = 5;
constexpr int64_t kLateFrames = 9;
// A figure further than this from where the player thinks it is was moved by another hand.
constexpr double kBeliefTolerance = 1e-6;

bool contains(const std::vector<int64_t>& offsets, int64_t offset) {
  return std::find(offsets.begin(), offsets.end(), offset) != offsets.end();
}

// A press that restarts the ascent in the coyote time rather than leaving the ground.
bool isSecondPress(const Body& body) {
  const bool inFlight = !isGrounded(body) || body.velocityY > 0;
  return inFlight && body.framesSinceLeftGround + 1 <= kJumpTimingFrames;
}

}  // namespace

std::vector<KeyStroke> Autoplayer::play(const GameScene& scene) {
  readKeys(scene);
  if (scene.gameState != lastState_) {
    lastState_ = scene.gameState;
    framesOnPage_ = 0;
  }
  release(jumpKey_, spaceHeld_);
  if (scene.gameState == GameState::playing) {
    playRun(scene);
  } else {
    leavePage(scene);
  }
  return std::exchange(strokes_, {});
}

// The keys the player at this keyboard would press: the ones the preferences gave the actions. A held
// key is released by the code it was pressed with, even if a new scene remapped it meanwhile.
void Autoplayer::readKeys(const GameScene& scene) {
  const ComfortOptions& options = scene.comfortOptions();
  if (!spaceHeld_) jumpKey_ = options.keyFor(InputAction::jump).value_or(kNoKey);
  if (!downHeld_) duckKey_ = options.keyFor(InputAction::duck).value_or(kNoKey);
  leaveKey_ = options.keyFor(InputAction::leave).value_or(kNoKey);
}

void Autoplayer::leavePage(const GameScene& scene) {
  release(duckKey_, downHeld_);
  bodyKnown_ = false;
  planValid_ = false;
  lateFramesLeft_ = 0;
  if (++framesOnPage_ < kRestartDelayFrames) return;
  framesOnPage_ = 0;
  // Space does nothing on the settings page; Escape leads back to the menu, where it does.
  if (scene.gameState == GameState::settings) {
    tap(leaveKey_);
  } else {
    press(jumpKey_, spaceHeld_);
  }
}

void Autoplayer::playRun(const GameScene& scene) {
  const bool sameRun = bodyKnown_;
  trackBody(scene);
  if (sameRun && scene.obstacleSpeed > lastSpeed_) learnedSpeedUp_ = scene.obstacleSpeed - lastSpeed_;
  lastSpeed_ = scene.obstacleSpeed;

  std::vector<const Node*> inSight;
  const Situation situation = lookAt(scene, inSight);
  if (lateFramesLeft_ == 0 && (!planValid_ || inSight != plannedFor_)) {
    plan_ = planJumps(situation);
    planAge_ = 0;
    planValid_ = true;
    plannedFor_ = std::move(inSight);
  }

  const bool jump = wantsJumpNow();
  const bool duck = !jump && lateFramesLeft_ == 0 && contains(plan_.ducks, planAge_);
  ++planAge_;
  if (duck) {
    press(duckKey_, downHeld_);
  } else {
    release(duckKey_, downHeld_);
  }
  if (jump) press(jumpKey_, spaceHeld_);
  stepBody(body_, jump);
}

void Autoplayer::trackBody(const GameScene& scene) {
  const double altitude = scene.playerFootAltitude;
  const double lastSeen = std::exchange(lastSeenAltitude_, altitude);
  if (bodyKnown_ && std::abs(body_.footAltitude - altitude) <= kBeliefTolerance) return;
  // A new run, or a figure moved by someone else: start over from what is on screen, without
  // counting on a second press in the air.
  const bool airborne = altitude > kGroundedEpsilon;
  body_ = Body{altitude, airborne ? altitude - lastSeen : 0, airborne ? kLongAirborneFrames : 0, 0};
  bodyKnown_ = true;
  planValid_ = false;
}

Situation Autoplayer::lookAt(const GameScene& scene, std::vector<const Node*>& inSight) const {
  Situation situation;
  situation.body = body_;
  const Point centre = scene.playerContainer->position;
  const double height = isGrounded(body_) && scene.isDucking ? kPlayerHeightDucking : kPlayerHeightStanding;
  const double ground = centre.y - height * 0.5 - scene.playerFootAltitude;
  situation.playerX = centre.x;
  situation.speed = scene.obstacleSpeed;
  situation.score = scene.score;
  situation.speedUpEvery = kDifficultyStepPoints;
  situation.speedUp = learnedSpeedUp_;

  const double behindFigure = centre.x - kPlayerWidth * 0.5;
  for (const auto& node : scene.obstacleNodes) {
    const Rect frame = node->calculateAccumulatedFrame();
    // Only what is on screen and not yet behind the figure.
    if (frame.minX() >= scene.size().width || frame.maxX() <= behindFigure) continue;
    situation.obstacles.push_back({frame.minX(), frame.maxX(), frame.minY() - ground, frame.maxY() - ground});
    inSight.push_back(node.get());
  }
  return situation;
}

bool Autoplayer::wantsJumpNow() {
  if (lateFramesLeft_ > 0) {
    if (--lateFramesLeft_ > 0) return false;
    planValid_ = false;  // the plan assumed an earlier take-off
    return true;
  }
  if (!contains(plan_.jumps, planAge_)) return false;
  if (isSecondPress(body_)) return true;
  ++takeOffs_;
  if (takeOffs_ % kLateEvery != 0) return true;
  lateFramesLeft_ = kLateFrames;
  return false;
}

void Autoplayer::press(uint16_t key, bool& held) {
  if (held) return;
  strokes_.push_back({key, true});
  held = true;
}

void Autoplayer::release(uint16_t key, bool& held) {
  if (!held) return;
  strokes_.push_back({key, false});
  held = false;
}

void Autoplayer::tap(uint16_t key) {
  strokes_.push_back({key, true});
  strokes_.push_back({key, false});
}

void Autoplayer::pressKeys(const GameScene& scene, View& view) {
  for (const KeyStroke& stroke : play(scene)) {
    const KeyEvent event{stroke.keyCode, 0, false};
    if (stroke.down) {
      view.keyDown(event);
    } else {
      view.keyUp(event);
    }
  }
}

}  // namespace zb

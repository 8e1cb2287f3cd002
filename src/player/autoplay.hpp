#pragma once
// The built-in player of `autoplay`: before each frame it looks at the scene as a person looks at
// the screen (the obstacles' outlines, the figure, the score, which page is up) and decides which
// keys to press and release, which the caller hands to the view as the window's keyboard would. It
// only reads the scene, so it can neither write a field nor draw from the game's random source: the
// seeded sequence is the same as under a human hand, and the same sight always gets the same keys.
//
// It is good but not perfect: every so many take-offs it reacts late, so that long sessions see
// crashes and restarts as well as long runs.
#include <cstdint>
#include <vector>

#include "player/jump_planner.hpp"
#include "engine/node.hpp"
#include "engine/view.hpp"
#include "scene/game_scene.hpp"

namespace zb {

struct KeyStroke {
  uint16_t keyCode = 0;
  bool down = true;
  friend bool operator==(const KeyStroke&, const KeyStroke&) = default;
};

class Autoplayer {
 public:
  // The keys to press and release before the coming frame, in order.
  std::vector<KeyStroke> play(const GameScene& scene);
  // Plays and presses those keys in `view`, as a person at the keyboard would.
  void pressKeys(const GameScene& scene, View& view);

 private:
  void readKeys(const GameScene& scene);
  void playRun(const GameScene& scene);
  void leavePage(const GameScene& scene);
  void trackBody(const GameScene& scene);
  Situation lookAt(const GameScene& scene, std::vector<const Node*>& inSight) const;
  bool wantsJumpNow();
  void press(uint16_t key, bool& held);
  void release(uint16_t key, bool& held);
  void tap(uint16_t key);

  std::vector<KeyStroke> strokes_;
  GameScene::GameState lastState_ = GameScene::GameState::menu;
  int64_t framesOnPage_ = 0;
  bool spaceHeld_ = false;  // the jump key
  bool downHeld_ = false;   // the duck key
  // A key that does nothing, for an action the player left without one.
  static constexpr uint16_t kNoKey = 0xFFFF;
  uint16_t jumpKey_ = kNoKey;
  uint16_t duckKey_ = kNoKey;
  uint16_t leaveKey_ = kNoKey;

  // What the player believes of its figure after the coming frame, from its own key presses.
  Body body_;
  bool bodyKnown_ = false;
  double lastSeenAltitude_ = 0;
  double lastSpeed_ = 0;
  double learnedSpeedUp_ = 0;

  Plan plan_;
  int64_t planAge_ = 0;  // frames since the plan was made
  bool planValid_ = false;
  std::vector<const Node*> plannedFor_;

  int64_t takeOffs_ = 0;  // so far, the late ones included: every so many is a late one
  int64_t lateFramesLeft_ = 0;  // a late reaction in progress: frames until the delayed press
};

}  // namespace zb

#pragma once
// A game scene presented in an in-memory view, in the middle of a run with obstacles on screen, kept
// alive by a simple pilot that jumps over what comes and ducks under the low plane. The benchmarks
// time frames of this scene; the pilot's own work happens between the timed calls.
#include <chrono>
#include <cstdint>
#include <memory>

#include "engine/view.hpp"
#include "scene/game_scene.hpp"

namespace zb::bench {

inline constexpr uint64_t kBenchSeed = 7;
// "A few obstacles on screen": the run is started and stepped until this many are live.
inline constexpr std::size_t kLiveObstaclesAtStart = 2;

// Times its own per-frame update, so that a benchmark can step whole frames (clock and actions
// included) and still read the cost of update() alone.
class TimedGameScene final : public GameScene {
 public:
  explicit TimedGameScene(Size size) : GameScene(size) {}
  void update(double currentTime) override;
  std::chrono::nanoseconds lastUpdateTime{0};
};

class SceneInPlay {
 public:
  explicit SceneInPlay(Size size);
  ~SceneInPlay();
  SceneInPlay(const SceneInPlay&) = delete;
  SceneInPlay& operator=(const SceneInPlay&) = delete;

  TimedGameScene& scene() { return *scene_; }
  View& view() { return view_; }

  // Starts a run from wherever the game is and steps until a few obstacles are live.
  void startRun();
  // Presses and releases keys for the coming frame as a player would; restarts after a crash.
  void steer();

 private:
  View view_;
  std::shared_ptr<TimedGameScene> scene_;
  bool holdingDuck_ = false;
};

}  // namespace zb::bench

#pragma once
// A game scene presented in an in-memory view, in the middle of a run with obstacles on screen, kept
// going by the game's built-in player. The benchmarks time frames of this scene; the player's own
// work, and the frames off the run after a crash, pass between the timed calls.
#include <chrono>
#include <cstdint>
#include <memory>

#include "player/autoplay.hpp"
#include "engine/view.hpp"
#include "scene/game_scene.hpp"

namespace zb::bench {

inline constexpr uint64_t kBenchSeed = 7;
// "A few obstacles on screen": a run is started and stepped until this many are live.
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

  // Presses the player's keys for the coming frame. After a crash, steps untimed through the
  // game-over page and into a new run until obstacles are live again.
  void prepareFrame();

 private:
  void pressPlayersKeys();
  bool inPlayWithObstacles(std::size_t count) const;

  View view_;
  std::shared_ptr<TimedGameScene> scene_;
  Autoplayer player_;
};

}  // namespace zb::bench

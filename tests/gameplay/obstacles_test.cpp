// Obstacles: the spawn timer, which kinds each stage brings, where they enter, and the per-kind pool
// that recycles nodes leaving the screen.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using T = GameScene::ObstacleType;

struct Running {
  Running() { game.press(keycode::space); }
  // Spawns `count` obstacles at the score and returns the first of each kind.
  std::map<T, GameScene::ObstacleNodePtr> spawnAt(int64_t score, int count = 300) {
    s.score = score;
    std::map<T, GameScene::ObstacleNodePtr> firstOfKind;
    for (int i = 0; i < count; ++i) {
      s.spawnObstacle();
      firstOfKind.emplace(s.obstacleNodes.back()->obstacleType, s.obstacleNodes.back());
    }
    return firstOfKind;
  }
  test::AttachedScene game;
  GameScene& s = *game;
};

TEST(Obstacles, EachStageBringsItsKinds) {
  const std::set<T> early{T::boxSmall, T::boxMedium};
  const std::set<T> all{T::boxSmall, T::boxMedium, T::boxLarge, T::barrel, T::planeMedium, T::planeHigh};
  const struct {
    int64_t score;
    std::set<T> kinds;
  } stages[] = {{399, early},
                {400, {T::boxSmall, T::boxMedium, T::barrel}},
                {1200, {T::boxSmall, T::boxMedium, T::boxLarge, T::barrel, T::planeMedium}},
                {1600, all}};
  for (const auto& stage : stages) {
    std::set<T> seen;
    for (const auto& [kind, node] : Running().spawnAt(stage.score)) seen.insert(kind);
    EXPECT_EQ(seen, stage.kinds) << "score " << stage.score;
  }
}

TEST(Obstacles, EachKindEntersAtTheRightEdgeOnTheGroundOrAtItsAltitude) {
  Running r;
  r.s.currentPrimaryColor = Color::rgba(0.2, 0.4, 0.6, 1);
  auto first = r.spawnAt(5000);
  ASSERT_EQ(first.size(), 6u);
  for (const auto& [type, node] : first) {
    SCOPED_TRACE(toString(type));
    EXPECT_EQ(node->strokeColor, r.s.currentPrimaryColor);
    EXPECT_DOUBLE_EQ(node->position.x, 800 + node->frame().width() + 20);
    const bool plane = type == T::planeHigh || type == T::planeMedium;
    EXPECT_TRUE(plane || node->frame().minY() == 50) << "boxes and barrels rest on the ground";
  }
  EXPECT_EQ(first[T::planeHigh]->position.y, 136) << "86 above the ground line";
  EXPECT_EQ(first[T::planeMedium]->position.y, 90) << "40 above the ground line";
}

TEST(Obstacles, ANodeLeavingTheScreenGoesToItsPoolAndComesBackResetAndPlacedAgain) {
  Running r;
  EXPECT_EQ(r.s.dequeueObstacle(T::barrel), nullptr) << "nothing pooled";
  r.s.spawnTimerFrames = 1000;
  auto older = r.spawnAt(0, 1).begin()->second;
  auto newer = r.spawnAt(0, 1).begin()->second;
  // After the next move the older one's centre plus its whole width is exactly -10: it stays.
  older->position.x = -10 - older->frame().width() + r.s.obstacleSpeed;
  newer->position.x = 400;
  r.s.spawnAndUpdateObstacles();
  ASSERT_EQ(r.s.obstacleNodes.size(), 2u);
  r.s.spawnAndUpdateObstacles();
  EXPECT_EQ(r.s.obstacleNodes, std::vector{newer});
  EXPECT_EQ(older->parent(), nullptr);
  EXPECT_EQ(r.s.obstaclePool[older->obstacleType], std::vector{older});

  auto plane = r.s.planeObstacle(GameScene::PlaneAltitude::high);
  plane->zRotation = 2.5;
  plane->hidden = true;
  r.s.obstaclePool[T::planeHigh] = {plane};
  older->position.y = 999;
  auto first = r.spawnAt(1600);
  EXPECT_EQ(first[T::planeHigh], plane);
  EXPECT_EQ(plane->zRotation, 0);
  EXPECT_FALSE(plane->hidden);
  EXPECT_EQ(plane->position.y, 136) << "a plane keeps its altitude";
  EXPECT_EQ(first[older->obstacleType], older);
  EXPECT_DOUBLE_EQ(older->frame().minY(), 50) << "a box rests on the ground again";
}

}  // namespace
}  // namespace zb

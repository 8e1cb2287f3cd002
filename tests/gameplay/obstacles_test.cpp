// Obstacles and the score: kinds per stage, the pool, collisions at contact, difficulty, the score's limit.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <set>

#include "gameplay/difficulty.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using T = GameScene::ObstacleType;

struct Running {
  Running() {
    game.press(keycode::space);
    s.spawnTimerFrames = 100000;  // only the obstacles a test spawns
  }
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
  // One obstacle of the kind, alone in the scene at score 0, moved so that its frame starts at minX.
  GameScene::ObstacleNodePtr place(T type, double minX) {
    const auto node = spawnAt(5000)[type];
    s.score = 0;
    for (const auto& other : s.obstacleNodes) other->removeFromParent();
    s.obstacleNodes = {node};
    s.addChild(node);
    node->position.x += minX - node->calculateAccumulatedFrame().minX();
    return node;
  }
  bool hits() {
    s.checkCollisions();
    return s.gameState == GameScene::GameState::gameOver;
  }
  test::AttachedScene game;
  GameScene& s = *game;
};

TEST(Obstacles, EachStageBringsItsKinds) {
  const std::pair<int64_t, std::set<T>> stages[] = {
      {kDifficultyStepPoints - 1, {T::boxSmall, T::boxMedium}},
      {kDifficultyStepPoints, {T::boxSmall, T::boxMedium, T::barrel}},
      {4 * kDifficultyStepPoints, {T::boxSmall, T::boxMedium, T::boxLarge, T::barrel, T::planeMedium, T::planeHigh}}};
  for (const auto& [score, kinds] : stages) {
    std::set<T> seen;
    for (const auto& [kind, node] : Running().spawnAt(score)) seen.insert(kind);
    EXPECT_EQ(seen, kinds) << "score " << score;
  }
}

TEST(Obstacles, ANodeLeavingTheScreenGoesToItsPoolAndComesBackResetAndPlacedAgain) {
  Running r;
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

// The standing figure's box spans x 132..156 and y 50..110.
TEST(Collisions, TouchingIsNotAHitTheOldestOverlapCountsAndDuckingClearsOnlyTheHighPlane) {
  Running r;
  auto box = r.place(T::boxSmall, 156);
  EXPECT_FALSE(r.hits()) << "edges touch";
  box->position.x -= 0.01;
  auto newer = r.spawnAt(0, 1).begin()->second;
  newer->position.x = 150;
  EXPECT_TRUE(r.hits());
  const Rect hit = box->calculateAccumulatedFrame();
  EXPECT_EQ(r.s.lastCollisionPoint, (Point{hit.midX(), hit.midY()}));

  for (T plane : {T::planeMedium, T::planeHigh}) {  // ducking clears the high plane, not the medium one
    SCOPED_TRACE(toString(plane));
    Running ducking;
    ducking.place(plane, 140);
    ducking.game.press(keycode::downArrow);
    ducking.s.updatePlayer();
    ASSERT_EQ(ducking.s.playerContainer->position.y, kGroundHeightFromBottom + kPlayerHeightDucking / 2);
    EXPECT_EQ(ducking.hits(), plane == T::planeMedium) << "the ducking box reaches 86, the medium wedge starts at 84";
  }
  Running standing;
  standing.place(T::planeHigh, 140);
  EXPECT_FALSE(standing.hits()) << "the high plane clears a standing figure";
  standing.s.playerContainer->position.y = 80 + 40;
  EXPECT_TRUE(standing.hits()) << "but not a jumping one";
}

// A player notices the speed-up at each step and obstacles never closer than the floors allow.
TEST(Score, TheRunSpeedsUpAtEachStepAndTheGapsStopShrinkingBeforeTheyCloseUpToTheLimit) {
  Running r;
  while (r.s.score < kDifficultyStepPoints - 1) r.s.incrementScoreAndDifficulty();
  EXPECT_EQ(r.s.obstacleSpeed, kStartObstacleSpeed);
  r.s.incrementScoreAndDifficulty();
  EXPECT_GT(r.s.obstacleSpeed, kStartObstacleSpeed);
  EXPECT_LT(r.s.spawnIntervalMax, kStartSpawnIntervalMax);
  while (r.s.score < 100 * kDifficultyStepPoints) r.s.incrementScoreAndDifficulty();
  EXPECT_GT(r.s.spawnIntervalMin, 0);
  EXPECT_LT(r.s.spawnIntervalMin, r.s.spawnIntervalMax);
  r.s.score = INT64_MAX - 5;
  r.game.step(5);
  EXPECT_EQ(r.s.score, INT64_MAX) << "the game runs right up to the limit";
}

// A detached scene, so that the re-run in the child process leaves no sound folder behind.
TEST(ScoreDeathTest, AScorePastTheLimitTraps) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  GameScene scene;
  scene.score = INT64_MAX;
  EXPECT_DEATH(scene.incrementScoreAndDifficulty(), "");
}

}  // namespace
}  // namespace zb

// Collisions at the edge of contact, the difficulty schedule, and the trap past the score's limit.
#include <gtest/gtest.h>

#include <cstdint>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using GameState = GameScene::GameState;
using T = GameScene::ObstacleType;

struct Running {
  Running() {
    game.press(keycode::space);
    s.spawnTimerFrames = 100000;  // only the obstacles a test places
  }
  // Spawns obstacles as the game does until one of the kind comes, keeps only that one and moves it
  // so that its frame starts at minX.
  GameScene::ObstacleNodePtr place(T type, double minX) {
    const int64_t score = std::exchange(s.score, 5000);
    do {
      s.spawnObstacle();
    } while (s.obstacleNodes.back()->obstacleType != type);
    s.score = score;
    const auto node = s.obstacleNodes.back();
    for (const auto& other : s.obstacleNodes) other->removeFromParent();
    s.obstacleNodes = {node};
    s.addChild(node);
    node->position.x += minX - node->calculateAccumulatedFrame().minX();
    return node;
  }
  bool hits() {
    s.checkCollisions();
    return s.gameState == GameState::gameOver;
  }
  test::AttachedScene game;
  GameScene& s = *game;
};

// The standing figure's box spans x 132..156 and y 50..110.
TEST(Collisions, TouchingIsNotAHitOverlappingIs) {
  Running r;
  auto box = r.place(T::boxSmall, 156);
  EXPECT_FALSE(r.hits()) << "edges touch";
  box->position.x -= 0.01;
  EXPECT_TRUE(r.hits());
  const Rect hit = box->calculateAccumulatedFrame();
  EXPECT_EQ(r.s.lastCollisionPoint, (Point{hit.midX(), hit.midY()}));
}

TEST(Collisions, DuckingClearsTheHighPlaneButNotTheMediumOne) {
  for (T plane : {T::planeMedium, T::planeHigh}) {
    SCOPED_TRACE(toString(plane));
    Running r;
    r.place(plane, 140);
    r.game.press(keycode::downArrow);
    r.s.updatePlayer();
    ASSERT_EQ(r.s.playerContainer->position.y, 68);
    EXPECT_EQ(r.hits(), plane == T::planeMedium) << "the ducking box reaches 86, the medium wedge starts at 84";
  }
  Running r;
  r.place(T::planeHigh, 140);
  EXPECT_FALSE(r.hits()) << "the high plane clears a standing figure";
  r.s.playerContainer->position.y = 80 + 40;
  EXPECT_TRUE(r.hits()) << "but not a jumping one";
}

TEST(Collisions, OnlyTheOldestOverlappingObstacleCounts) {
  Running r;
  auto older = r.place(T::barrel, 140);
  auto newer = std::make_shared<GameScene::ObstacleNode>();
  newer->path = Path::roundedRect(Rect::make(-13, -15, 26, 30), 4);
  newer->position = {150, 66.5};
  r.s.addChild(newer);
  r.s.obstacleNodes.push_back(newer);
  ASSERT_TRUE(r.hits());
  const Rect oldest = older->calculateAccumulatedFrame();
  EXPECT_EQ(r.s.lastCollisionPoint, (Point{oldest.midX(), oldest.midY()}));
}

TEST(Score, DifficultyRisesEvery400PointsDownToTheFloorsUpToTheLimit) {
  Running r;
  const struct {
    int64_t score;
    double speed;
    int64_t min, max;
  } schedule[] = {{399, 4.0, 72, 150}, {400, 4.6, 66, 140}, {2800, 8.2, 36, 80}, {3200, 8.8, 36, 80}};
  for (const auto& row : schedule) {
    while (r.s.score < row.score) r.s.incrementScoreAndDifficulty();
    EXPECT_NEAR(r.s.obstacleSpeed, row.speed, 1e-9) << "at " << row.score;
    EXPECT_EQ(r.s.spawnIntervalMin, row.min) << "at " << row.score;
    EXPECT_EQ(r.s.spawnIntervalMax, row.max) << "at " << row.score;
  }
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

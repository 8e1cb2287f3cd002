// Collisions at the edge of contact, the score and the difficulty schedule, and the overflow trap.
#include <gtest/gtest.h>

#include <cstdint>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using GameState = GameScene::GameState;
using ObstacleType = GameScene::ObstacleType;
using test::AttachedScene;

struct Running {
  Running() {
    game.press(keycode::space);
    s().spawnTimerFrames = 100000;  // only the obstacles a test places
  }
  GameScene& s() { return *game; }

  // Spawns one obstacle of the kind (through the pool, so the kind is not drawn) and returns it.
  GameScene::ObstacleNodePtr place(ObstacleType type, double minX) {
    const int64_t score = s().score;
    s().score = 5000;
    auto node = type == ObstacleType::barrel ? s().barrelObstacle(18)
                : type == ObstacleType::planeHigh ? s().planeObstacle(GameScene::PlaneAltitude::high)
                : type == ObstacleType::planeMedium ? s().planeObstacle(GameScene::PlaneAltitude::medium)
                                                    : nullptr;
    if (!node) {
      node = std::make_shared<GameScene::ObstacleNode>();
      node->path = Path::roundedRect(Rect::make(-13, -15, 26, 30), 4);
    }
    s().obstaclePool[type] = {node};
    while (!s().obstaclePool[type].empty()) s().spawnObstacle();
    s().score = score;
    // Keep only the placed one.
    std::erase_if(s().obstacleNodes, [&](const auto& n) {
      if (n == node) return false;
      n->removeFromParent();
      return true;
    });
    node->position.x += minX - node->calculateAccumulatedFrame().minX();
    return node;
  }
  AttachedScene game;
};

// The standing figure's box spans x 132..156 (container at 144) and y 50..110.
constexpr double kPlayerRight = 156;

TEST(Collisions, TouchingIsNotAHitOverlappingIs) {
  Running r;
  r.place(ObstacleType::boxSmall, kPlayerRight);
  r.s().checkCollisions();
  EXPECT_EQ(r.s().gameState, GameState::playing) << "edges touch";

  r.s().obstacleNodes.front()->position.x -= 0.01;
  r.s().checkCollisions();
  EXPECT_EQ(r.s().gameState, GameState::gameOver);
  ASSERT_TRUE(r.s().lastCollisionPoint.has_value());
  const Rect hit = r.s().obstacleNodes.front()->calculateAccumulatedFrame();
  EXPECT_EQ(*r.s().lastCollisionPoint, (Point{hit.midX(), hit.midY()}));
}

TEST(Collisions, FeetOnTheTopOfABoxClearIt) {
  Running r;
  auto box = r.place(ObstacleType::boxSmall, 140);
  const double top = box->calculateAccumulatedFrame().maxY();
  r.s().playerFootAltitude = top - 50;
  r.s().playerContainer->position.y = top + 30;
  r.s().checkCollisions();
  EXPECT_EQ(r.s().gameState, GameState::playing);
  r.s().playerContainer->position.y -= 0.01;
  r.s().checkCollisions();
  EXPECT_EQ(r.s().gameState, GameState::gameOver);
}

TEST(Collisions, DuckingIsNoDefenceAgainstTheMediumPlane) {
  {
    Running r;
    r.place(ObstacleType::planeMedium, 140);
    r.game.press(keycode::downArrow);
    r.s().updatePlayer();
    ASSERT_EQ(r.s().playerContainer->position.y, 68);
    r.s().checkCollisions();
    EXPECT_EQ(r.s().gameState, GameState::gameOver) << "the ducking box reaches 86, the wedge starts at 84";
  }
  {
    Running r;
    r.place(ObstacleType::planeHigh, 140);
    r.s().checkCollisions();
    EXPECT_EQ(r.s().gameState, GameState::playing) << "the high plane clears a standing figure";
    r.game.press(keycode::downArrow);
    r.s().updatePlayer();
    r.s().checkCollisions();
    EXPECT_EQ(r.s().gameState, GameState::playing);
    // Jumping into it is a hit.
    r.s().playerFootAltitude = 40;
    r.s().playerContainer->position.y = 50 + 30 + 40;
    r.s().checkCollisions();
    EXPECT_EQ(r.s().gameState, GameState::gameOver);
  }
}

TEST(Collisions, OnlyTheOldestOverlappingObstacleCounts) {
  Running r;
  auto older = r.place(ObstacleType::barrel, 140);
  auto newer = std::make_shared<GameScene::ObstacleNode>();
  newer->path = Path::roundedRect(Rect::make(-13, -15, 26, 30), 4);
  newer->position = {150, 66.5};
  r.s().addChild(newer);
  r.s().obstacleNodes.push_back(newer);
  r.s().checkCollisions();
  ASSERT_EQ(r.s().gameState, GameState::gameOver);
  const Rect oldest = older->calculateAccumulatedFrame();
  EXPECT_EQ(*r.s().lastCollisionPoint, (Point{oldest.midX(), oldest.midY()}));
}

TEST(Collisions, TheCrashFrameStillScores) {
  Running r;
  r.game.step(10);
  ASSERT_EQ(r.s().score, 10);
  r.place(ObstacleType::boxSmall, 140);
  r.game.step();
  EXPECT_EQ(r.s().gameState, GameState::gameOver);
  EXPECT_EQ(r.s().score, 11);
  EXPECT_EQ(r.s().highScore, 11);
  EXPECT_EQ(r.s().goScore->text(), "Score: 10") << "the page was filled before the last point";
  r.game.step(5);
  EXPECT_EQ(r.s().score, 11) << "nothing scores after the run";
}

TEST(Score, BestScoreRisesLive) {
  Running r;
  r.s().highScore = 3;
  r.game.step(2);
  EXPECT_EQ(r.s().highScore, 3);
  r.game.step(2);
  EXPECT_EQ(r.s().score, 4);
  EXPECT_EQ(r.s().highScore, 4);
  EXPECT_EQ(r.s().scoreLabel->text(), "Score: 4");
}

TEST(Score, DifficultyRisesEvery400Points) {
  Running r;
  GameScene& s = r.s();
  s.score = 398;
  s.incrementScoreAndDifficulty();
  EXPECT_EQ(s.obstacleSpeed, 4.0);
  s.incrementScoreAndDifficulty();
  EXPECT_DOUBLE_EQ(s.obstacleSpeed, 4.6);
  EXPECT_EQ(s.spawnIntervalMin, 66);
  EXPECT_EQ(s.spawnIntervalMax, 140);
  s.incrementScoreAndDifficulty();
  EXPECT_DOUBLE_EQ(s.obstacleSpeed, 4.6) << "401 changes nothing";

  const int64_t expectedMin[] = {60, 54, 48, 42, 36, 36, 36};
  const int64_t expectedMax[] = {130, 120, 110, 100, 90, 80, 80};
  for (int step = 0; step < 7; ++step) {
    s.score = 800 + 400 * step - 1;
    s.incrementScoreAndDifficulty();
    EXPECT_EQ(s.spawnIntervalMin, expectedMin[step]) << "at " << s.score;
    EXPECT_EQ(s.spawnIntervalMax, expectedMax[step]) << "at " << s.score;
  }
  EXPECT_NEAR(s.obstacleSpeed, 4.0 + 8 * 0.6, 1e-9) << "the speed has no limit";
}

TEST(Score, OverflowTraps) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        Running r;
        r.s().score = INT64_MAX;
        r.s().incrementScoreAndDifficulty();
      },
      "");
  EXPECT_DEATH(
      {
        Running r;
        r.s().score = INT64_MAX - INT64_MAX % 400 - 1;  // the next point raises the difficulty
        r.s().spawnIntervalMin = INT64_MIN;
        r.s().incrementScoreAndDifficulty();
      },
      "");
}

TEST(Score, NearTheLimitTheGameStillRuns) {
  Running r;
  r.s().score = INT64_MAX - 5;
  r.game.step(5);
  EXPECT_EQ(r.s().score, INT64_MAX);
  EXPECT_EQ(r.s().gameState, GameState::playing);
}

}  // namespace
}  // namespace zb

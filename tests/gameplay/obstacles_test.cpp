// Obstacles: the spawn timer, which kinds each stage brings, their shapes and placement, motion, and
// the per-kind pool that recycles nodes leaving the screen.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using ObstacleType = GameScene::ObstacleType;
using test::AttachedScene;
using Kinds = std::set<ObstacleType>;

struct Running {
  Running() { game.press(keycode::space); }
  GameScene& s() { return *game; }
  AttachedScene game;
};

// Spawns many obstacles at the given score and returns every kind seen.
Kinds kindsSpawnedAt(int64_t score) {
  Running r;
  r.s().score = score;
  Kinds seen;
  for (int i = 0; i < 300; ++i) {
    r.s().spawnObstacle();
    seen.insert(r.s().obstacleNodes.back()->obstacleType);
  }
  return seen;
}

TEST(Obstacles, SpawnTimerFiresWhenItRunsOutAndDrawsTheNextInterval) {
  for (int64_t timer : {1, 0, -7}) {
    Running r;
    r.s().spawnTimerFrames = timer;
    r.s().spawnAndUpdateObstacles();
    EXPECT_EQ(r.s().obstacleNodes.size(), 1u) << "timer " << timer;
    EXPECT_GE(r.s().spawnTimerFrames, 72);
    EXPECT_LE(r.s().spawnTimerFrames, 150);
  }
  Running r;
  r.s().spawnTimerFrames = 2;
  r.s().spawnAndUpdateObstacles();
  EXPECT_TRUE(r.s().obstacleNodes.empty());
  r.s().spawnAndUpdateObstacles();
  EXPECT_EQ(r.s().obstacleNodes.size(), 1u);

  // The interval follows the current bounds.
  r.s().spawnIntervalMin = 40;
  r.s().spawnIntervalMax = 40;
  r.s().spawnTimerFrames = 1;
  r.s().spawnAndUpdateObstacles();
  EXPECT_EQ(r.s().spawnTimerFrames, 40);
}

TEST(Obstacles, EachStageBringsItsKinds) {
  using T = ObstacleType;
  EXPECT_EQ(kindsSpawnedAt(0), (Kinds{T::boxSmall, T::boxMedium}));
  EXPECT_EQ(kindsSpawnedAt(399), (Kinds{T::boxSmall, T::boxMedium}));
  EXPECT_EQ(kindsSpawnedAt(400), (Kinds{T::boxSmall, T::boxMedium, T::barrel}));
  EXPECT_EQ(kindsSpawnedAt(1199), (Kinds{T::boxSmall, T::boxMedium, T::boxLarge, T::barrel}));
  EXPECT_EQ(kindsSpawnedAt(1200), (Kinds{T::boxSmall, T::boxMedium, T::boxLarge, T::barrel, T::planeMedium}));
  EXPECT_EQ(kindsSpawnedAt(1600), (Kinds{T::boxSmall, T::boxMedium, T::boxLarge, T::barrel, T::planeMedium,
                                         T::planeHigh}));
  EXPECT_EQ(kindsSpawnedAt(1'000'000).size(), 6u);
  EXPECT_EQ(kindsSpawnedAt(-5), (Kinds{T::boxSmall, T::boxMedium})) << "a negative score counts as stage 1";
}

TEST(Obstacles, ShapesAndPlacementOfEachKind) {
  Running r;
  GameScene& s = r.s();
  s.score = 5000;
  s.currentPrimaryColor = Color::rgba(0.2, 0.4, 0.6, 1);
  std::map<ObstacleType, GameScene::ObstacleNodePtr> firstOfKind;
  for (int i = 0; i < 300; ++i) {
    s.spawnObstacle();
    firstOfKind.emplace(s.obstacleNodes.back()->obstacleType, s.obstacleNodes.back());
  }
  ASSERT_EQ(firstOfKind.size(), 6u);
  for (const auto& [type, node] : firstOfKind) {
    SCOPED_TRACE(toString(type));
    EXPECT_EQ(node->parent(), &s);
    EXPECT_EQ(node->lineWidth, 3);
    EXPECT_EQ(node->strokeColor, s.currentPrimaryColor);
    EXPECT_EQ(node->fillColor, Color::clear());
    const Rect frame = node->frame();
    EXPECT_DOUBLE_EQ(frame.width(), node->path.boundingBox()->width() + 3) << "the stroke widens the frame";
    EXPECT_DOUBLE_EQ(node->position.x, s.size().width + frame.width() + 20);
    if (type != ObstacleType::planeHigh && type != ObstacleType::planeMedium) {
      EXPECT_DOUBLE_EQ(frame.minY(), 50) << "the outline rests on the ground line";
    }
  }
  auto box = [&](ObstacleType t) { return *firstOfKind[t]->path.boundingBox(); };
  EXPECT_EQ(box(ObstacleType::boxSmall), Rect::make(-13, -15, 26, 30));
  EXPECT_EQ(box(ObstacleType::boxMedium), Rect::make(-17, -25, 34, 50));
  EXPECT_EQ(box(ObstacleType::boxLarge), Rect::make(-21, -40, 42, 80));
  EXPECT_EQ(box(ObstacleType::barrel), Rect::make(-18, -18, 36, 36));
  EXPECT_EQ(box(ObstacleType::planeHigh), Rect::make(-18, -6, 36, 12));

  const auto& barrel = *firstOfKind[ObstacleType::barrel];
  ASSERT_EQ(barrel.children().size(), 2u);
  for (const NodePtr& child : barrel.children()) {
    auto* cross = dynamic_cast<const ShapeNode*>(child.get());
    ASSERT_NE(cross, nullptr);
    EXPECT_EQ(cross->lineWidth, 2);
    EXPECT_EQ(cross->path.boundingBox()->width() + cross->path.boundingBox()->height(), 36);
  }
  // The wedge is left open: three points, no closing segment.
  const auto& wedge = firstOfKind[ObstacleType::planeMedium]->path.elements();
  ASSERT_EQ(wedge.size(), 3u);
  EXPECT_EQ(wedge[0].point, (Point{-18, -6}));
  EXPECT_EQ(wedge[1].point, (Point{18, 0}));
  EXPECT_EQ(wedge[2].point, (Point{-18, 6}));
  EXPECT_EQ(firstOfKind[ObstacleType::planeHigh]->position.y, 136) << "86 above the ground line";
  EXPECT_EQ(firstOfKind[ObstacleType::planeMedium]->position.y, 90) << "40 above the ground line";
}

TEST(Obstacles, MoveLeftAndBarrelsRoll) {
  Running r;
  GameScene& s = r.s();
  s.spawnTimerFrames = 1000;
  s.score = 2000;
  while (s.obstacleNodes.empty() || s.obstacleNodes.back()->obstacleType != ObstacleType::barrel) s.spawnObstacle();
  auto barrel = s.obstacleNodes.back();
  s.obstacleSpeed = 5.5;
  const Point before = barrel->position;
  s.spawnAndUpdateObstacles();
  EXPECT_DOUBLE_EQ(barrel->position.x, before.x - 5.5);
  EXPECT_EQ(barrel->position.y, before.y);
  EXPECT_DOUBLE_EQ(barrel->zRotation, 0.08);
  s.spawnAndUpdateObstacles();
  EXPECT_DOUBLE_EQ(barrel->zRotation, 0.16);
}

TEST(Obstacles, LeavingTheScreenSendsANodeToItsPool) {
  Running r;
  GameScene& s = r.s();
  s.spawnTimerFrames = 1000;
  s.spawnObstacle();
  s.spawnObstacle();
  auto older = s.obstacleNodes[0];
  auto newer = s.obstacleNodes[1];
  const double width = older->frame().width();
  // After the next move the older one's centre plus its whole width is exactly -10: it stays.
  older->position.x = -10 - width + s.obstacleSpeed;
  newer->position.x = 400;
  s.spawnAndUpdateObstacles();
  ASSERT_EQ(s.obstacleNodes.size(), 2u);
  s.spawnAndUpdateObstacles();
  ASSERT_EQ(s.obstacleNodes.size(), 1u);
  EXPECT_EQ(s.obstacleNodes[0], newer);
  EXPECT_EQ(older->parent(), nullptr);
  ASSERT_EQ(s.obstaclePool[older->obstacleType].size(), 1u);
  EXPECT_EQ(s.obstaclePool[older->obstacleType].back(), older);
}

TEST(Obstacles, PoolIsLastInFirstOutAndResetsWhatItHandsOut) {
  Running r;
  GameScene& s = r.s();
  EXPECT_EQ(s.dequeueObstacle(ObstacleType::barrel), nullptr) << "no list yet";
  s.obstaclePool[ObstacleType::barrel];
  EXPECT_EQ(s.dequeueObstacle(ObstacleType::barrel), nullptr) << "an empty list";

  auto first = s.barrelObstacle(18);
  auto second = s.barrelObstacle(18);
  second->zRotation = 2.5;
  second->hidden = true;
  s.obstaclePool[ObstacleType::barrel] = {first, second};
  auto out = s.dequeueObstacle(ObstacleType::barrel);
  EXPECT_EQ(out, second);
  EXPECT_EQ(out->zRotation, 0);
  EXPECT_FALSE(out->hidden);
  EXPECT_EQ(s.obstaclePool[ObstacleType::barrel].size(), 1u);
  EXPECT_EQ(s.dequeueObstacle(ObstacleType::barrel), first);
}

TEST(Obstacles, ReusedNodesArePlacedAgain) {
  Running r;
  GameScene& s = r.s();
  // A plane keeps the height its kind fixes; a box is put back on the ground.
  auto plane = s.planeObstacle(GameScene::PlaneAltitude::high);
  plane->position = {-300, 136};
  auto box = std::make_shared<GameScene::ObstacleNode>();
  box->path = Path::roundedRect(Rect::make(-13, -15, 26, 30), 4);
  box->position = {-300, 999};
  s.obstaclePool[ObstacleType::planeHigh] = {plane};
  s.obstaclePool[ObstacleType::boxSmall] = {box};
  s.score = 1600;
  for (int i = 0; i < 300 && !(s.obstaclePool[ObstacleType::planeHigh].empty() && s.obstaclePool[ObstacleType::boxSmall].empty()); ++i) {
    s.spawnObstacle();
  }
  EXPECT_EQ(plane->parent(), &s);
  EXPECT_EQ(plane->position.y, 136);
  EXPECT_GT(plane->position.x, s.size().width);
  EXPECT_EQ(box->parent(), &s);
  EXPECT_DOUBLE_EQ(box->frame().minY(), 50);
}

TEST(Obstacles, SteadyPlayRecyclesInsteadOfBuilding) {
  Running r;
  GameScene& s = r.s();
  std::set<const Node*> seen;
  for (int frame = 0; frame < 6000; ++frame) {
    s.spawnAndUpdateObstacles();
    for (const auto& node : s.obstacleNodes) seen.insert(node.get());
  }
  // Two kinds at stage 1, and only as many of each as are on screen at once.
  EXPECT_LE(seen.size(), 12u);
  size_t pooled = 0;
  for (const auto& [type, nodes] : s.obstaclePool) pooled += nodes.size();
  EXPECT_EQ(pooled + s.obstacleNodes.size(), seen.size());
}

TEST(Obstacles, ANewRunDropsWhatIsOnScreenAndKeepsThePool) {
  Running r;
  GameScene& s = r.s();
  s.spawnObstacle();
  s.spawnObstacle();
  auto pooled = std::make_shared<GameScene::ObstacleNode>();
  s.obstaclePool[ObstacleType::boxLarge] = {pooled};
  auto live = s.obstacleNodes;
  r.game.press(keycode::escape);
  r.game.press(keycode::space);
  r.game.press(keycode::space);
  EXPECT_TRUE(s.obstacleNodes.empty());
  for (const auto& node : live) EXPECT_EQ(node->parent(), nullptr);
  EXPECT_EQ(s.obstaclePool.size(), 1u);
  EXPECT_EQ(s.obstaclePool[ObstacleType::boxLarge].size(), 1u);
  EXPECT_EQ(s.obstacleSpeed, 4.0);
  EXPECT_GE(s.spawnTimerFrames, 72);
  EXPECT_LE(s.spawnTimerFrames, 150);
}

TEST(Obstacles, SpawnTimerOverflowAndBadIntervalsTrap) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        Running r;
        r.s().spawnTimerFrames = INT64_MIN;
        r.s().spawnAndUpdateObstacles();
      },
      "");
  EXPECT_DEATH(
      {
        Running r;
        r.s().spawnIntervalMin = 90;
        r.s().spawnIntervalMax = 80;
        r.s().spawnTimerFrames = 1;
        r.s().spawnAndUpdateObstacles();
      },
      "");
}

}  // namespace
}  // namespace zb

// The skyline and the clouds: what attachment builds from the scene's random source, and how they
// drift and wrap.
#include <gtest/gtest.h>

#include "engine/random.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

std::vector<Point> positions(const Node& group) {
  std::vector<Point> result;
  for (const NodePtr& child : group.children()) result.push_back(child->position);
  return result;
}

// Replays must see the same scenery: the draws come from the scene's source in a fixed order.
TEST(Background, SetupDrawsFiveBuildingsAndSixCloudsInOrder) {
  AttachedScene s;
  s->random().seed(77);
  s->setupBackground();
  ASSERT_EQ(s->buildingGroup->children().size(), 5u);
  ASSERT_EQ(s->cloudGroup->children().size(), 6u);
  EXPECT_TRUE(s->starGroup->children().empty());
  Random replay(77);
  for (size_t i = 0; i < 5; ++i) {
    const double w = replay.uniformDouble(80, 140), h = replay.uniformDouble(40, 100);
    const double x = 160.0 * i + replay.uniformDouble(-20, 20);
    const auto& building = dynamic_cast<const ShapeNode&>(*s->buildingGroup->children()[i]);
    EXPECT_EQ(building.path.boundingBox()->size, (Size{w, h}));
    EXPECT_EQ(building.position, (Point{x, 50 + h * 0.5 + 6})) << "resting 6 above the ground line";
    EXPECT_DOUBLE_EQ(building.alpha, 0.35);
  }
  for (const NodePtr& cloud : s->cloudGroup->children()) {
    const double radii[] = {replay.uniformDouble(10, 18), replay.uniformDouble(12, 20), replay.uniformDouble(8, 14)};
    const double x = replay.uniformDouble(0, 800);
    EXPECT_EQ(cloud->position, (Point{x, 600 * replay.uniformDouble(0.65, 0.9)}));
    EXPECT_DOUBLE_EQ(cloud->alpha, 0.6);
    ASSERT_EQ(cloud->children().size(), 3u);
    for (size_t p = 0; p < 3; ++p) EXPECT_DOUBLE_EQ(cloud->children()[p]->frame().height(), 2 * radii[p] + 1);
  }
}

TEST(Background, WrapsOnlyStrictlyPastTheEdgeAndResizingMovesOnlyTheWrapPosition) {
  AttachedScene s;
  s->obstacleSpeed = 4;  // buildings move 0.4 a frame, clouds 1
  Node& building = *s->buildingGroup->children()[0];
  Node& wrapping = *s->buildingGroup->children()[1];
  Node& cloud = *s->cloudGroup->children()[0];
  building.position.x = -79.5;
  wrapping.position.x = -79.7;
  cloud.position.x = -39;
  s->updateBackground();
  EXPECT_NEAR(building.position.x, -79.9, 1e-9);
  EXPECT_EQ(wrapping.position.x, 800 + 80) << "the overshoot is dropped";
  EXPECT_EQ(cloud.position.x, -40);

  const std::vector<Point> before = positions(*s->buildingGroup);
  s.view->setSize({1200, 600});
  EXPECT_EQ(positions(*s->buildingGroup), before);
  s->updateBackground();
  EXPECT_EQ(building.position.x, 1200 + 80);
  EXPECT_EQ(cloud.position.x, 1200 + 40);
}

TEST(Background, DriftsOffTheRunAtTheLastSpeedAndStandsStillAtZero) {
  AttachedScene s;
  Node& cloud = *s->cloudGroup->children()[0];
  Node& building = *s->buildingGroup->children()[0];
  s->obstacleSpeed = 10;  // as left behind by a long run
  s->showGameOver();
  cloud.position.x = building.position.x = 400;
  s.step();
  EXPECT_DOUBLE_EQ(cloud.position.x, 397.5);
  EXPECT_DOUBLE_EQ(building.position.x, 399.0);
  s->obstacleSpeed = 0;
  const std::vector<Point> clouds = positions(*s->cloudGroup), buildings = positions(*s->buildingGroup);
  s.step(120);
  EXPECT_EQ(positions(*s->cloudGroup), clouds);
  EXPECT_EQ(positions(*s->buildingGroup), buildings);
}

}  // namespace
}  // namespace zb

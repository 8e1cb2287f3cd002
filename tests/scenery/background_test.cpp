// The skyline and the clouds: how they drift and wrap.
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

std::vector<Point> positions(const Node& group) {
  std::vector<Point> result;
  for (const NodePtr& child : group.children()) result.push_back(child->position);
  return result;
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

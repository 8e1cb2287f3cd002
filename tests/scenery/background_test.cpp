#include <gtest/gtest.h>

#include "engine/random.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;

double lowerEdge(const Node& node) {
  const auto& shape = dynamic_cast<const ShapeNode&>(node);
  return node.position.y + shape.path.boundingBox()->minY();
}

TEST(Background, AttachmentBuildsFiveBuildingsSixCloudsAndNoStars) {
  AttachedScene s;
  ASSERT_EQ(s->buildingGroup->children().size(), 5u);
  ASSERT_EQ(s->cloudGroup->children().size(), 6u);
  EXPECT_TRUE(s->starGroup->children().empty());

  for (size_t i = 0; i < 5; ++i) {
    const Node& building = *s->buildingGroup->children()[i];
    const Rect box = *dynamic_cast<const ShapeNode&>(building).path.boundingBox();
    EXPECT_NEAR(lowerEdge(building), s->groundHeightFromBottom + 6, 1e-9) << "building " << i;
    EXPECT_GE(box.width(), 80);
    EXPECT_LE(box.width(), 140);
    EXPECT_GE(box.height(), 40);
    EXPECT_LE(box.height(), 100);
    EXPECT_NEAR(building.position.x, 160.0 * i, 20.0 + 1e-9);
    EXPECT_DOUBLE_EQ(building.alpha, 0.35);
  }
  for (const NodePtr& cloud : s->cloudGroup->children()) {
    EXPECT_EQ(cloud->children().size(), 3u);
    EXPECT_GE(cloud->position.x, 0);
    EXPECT_LE(cloud->position.x, 800);
    EXPECT_GE(cloud->position.y, 600 * 0.65);
    EXPECT_LE(cloud->position.y, 600 * 0.9);
    EXPECT_DOUBLE_EQ(cloud->alpha, 0.6);
  }
}

// Replays must see the same scenery: the draws come from the scene's source in a fixed order.
TEST(Background, RandomDrawsFollowTheDocumentedOrder) {
  AttachedScene s;
  s->random().seed(77);
  s->setupBackground();

  Random replay(77);
  for (size_t i = 0; i < 5; ++i) {
    const double w = replay.uniformDouble(80, 140);
    const double h = replay.uniformDouble(40, 100);
    const double x = 160.0 * i + replay.uniformDouble(-20, 20);
    const auto& building = dynamic_cast<const ShapeNode&>(*s->buildingGroup->children()[i]);
    EXPECT_EQ(building.path.boundingBox()->size, (Size{w, h}));
    EXPECT_EQ(building.position, (Point{x, 50 + h * 0.5 + 6}));
  }
  for (size_t i = 0; i < 6; ++i) {
    const double radii[] = {replay.uniformDouble(10, 18), replay.uniformDouble(12, 20), replay.uniformDouble(8, 14)};
    const double x = replay.uniformDouble(0, 800);
    const double y = 600 * replay.uniformDouble(0.65, 0.9);
    const Node& cloud = *s->cloudGroup->children()[i];
    EXPECT_EQ(cloud.position, (Point{x, y}));
    const Point offsets[] = {{-12, 0}, {0, 6}, {12, 0}};
    for (size_t p = 0; p < 3; ++p) {
      const auto& puff = dynamic_cast<const ShapeNode&>(*cloud.children()[p]);
      EXPECT_DOUBLE_EQ(puff.path.boundingBox()->width(), 2 * radii[p]);
      EXPECT_EQ(puff.position, offsets[p]);
    }
  }
}

TEST(Background, BuildingsWrapOnlyWhenStrictlyPastTheEdge) {
  AttachedScene s;
  s->obstacleSpeed = 4;  // buildings move 0.4 a frame
  Node& staying = *s->buildingGroup->children()[0];
  Node& wrapping = *s->buildingGroup->children()[1];
  staying.position.x = -79.5;
  wrapping.position.x = -79.7;
  const double stayingY = staying.position.y;
  s->updateBackground();
  EXPECT_NEAR(staying.position.x, -79.9, 1e-9);
  EXPECT_EQ(wrapping.position.x, 800 + 80);  // the overshoot is dropped
  EXPECT_EQ(staying.position.y, stayingY);
}

TEST(Background, CloudsStopAtTheEdgeThenWrap) {
  AttachedScene s;
  s->obstacleSpeed = 4;  // clouds move 1 a frame
  Node& cloud = *s->cloudGroup->children()[0];
  cloud.position.x = -39;
  s->updateBackground();
  EXPECT_EQ(cloud.position.x, -40);
  s->updateBackground();
  EXPECT_EQ(cloud.position.x, 800 + 40);
}

std::vector<Point> sceneryPositions(const GameScene& scene) {
  std::vector<Point> positions;
  for (const auto& group : {scene.cloudGroup, scene.buildingGroup}) {
    for (const NodePtr& child : group->children()) positions.push_back(child->position);
  }
  return positions;
}

TEST(Background, DriftRunsInEveryPageAtTheLastSpeedAndStopsAtZero) {
  AttachedScene s;
  Node& cloud = *s->cloudGroup->children()[0];
  Node& building = *s->buildingGroup->children()[0];
  s->obstacleSpeed = 10;  // as left behind by a long run
  for (auto open : {&GameScene::showMenu, &GameScene::openSettings, &GameScene::showGameOver}) {
    ((*s).*open)();
    cloud.position.x = 400;
    building.position.x = 400;
    s.step();
    EXPECT_DOUBLE_EQ(cloud.position.x, 397.5) << toString(s->gameState);
    EXPECT_DOUBLE_EQ(building.position.x, 399.0) << toString(s->gameState);
  }

  s->obstacleSpeed = 0;
  const std::vector<Point> before = sceneryPositions(*s);
  s.step(120);
  EXPECT_EQ(sceneryPositions(*s), before);
}

TEST(Background, ResizingMovesOnlyTheWrapPositions) {
  AttachedScene s;
  std::vector<Point> before;
  for (const NodePtr& building : s->buildingGroup->children()) before.push_back(building->position);
  s.view->setSize({1200, 600});
  for (size_t i = 0; i < before.size(); ++i) EXPECT_EQ(s->buildingGroup->children()[i]->position, before[i]);

  s->obstacleSpeed = 4;
  Node& building = *s->buildingGroup->children()[0];
  building.position.x = -79.7;
  Node& cloud = *s->cloudGroup->children()[0];
  cloud.position.x = -40;
  s->updateBackground();
  EXPECT_EQ(building.position.x, 1200 + 80);
  EXPECT_EQ(cloud.position.x, 1200 + 40);

  s.step();  // the ground line follows on the next frame
  EXPECT_EQ(s->groundLine->path.boundingBox()->maxX(), 1200);
}

TEST(Background, GroundAndLineStrokes) {
  AttachedScene s;
  const Path& ground = s->groundLine->path;
  ASSERT_EQ(ground.elements().size(), 2u);
  EXPECT_EQ(ground.elements()[0].point, (Point{0, 50}));
  EXPECT_EQ(ground.elements()[1].point, (Point{800, 50}));
  EXPECT_EQ(s->groundLine->lineWidth, 3);

  ShapeNodePtr segment = s->line({1, 2}, {3, 4});
  ASSERT_EQ(segment->path.elements().size(), 2u);
  EXPECT_EQ(segment->path.elements()[0].kind, Path::Kind::moveTo);
  EXPECT_EQ(segment->path.elements()[0].point, (Point{1, 2}));
  EXPECT_EQ(segment->path.elements()[1].kind, Path::Kind::lineTo);
  EXPECT_EQ(segment->path.elements()[1].point, (Point{3, 4}));
  EXPECT_EQ(segment->strokeColor, Color::black());
  EXPECT_EQ(segment->lineWidth, 3);
  EXPECT_EQ(segment->lineCap, LineCap::round);
  EXPECT_EQ(segment->parent(), nullptr);
}

}  // namespace
}  // namespace zb

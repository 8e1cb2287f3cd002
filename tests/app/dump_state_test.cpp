#include "app/dump_state.hpp"

#include <gtest/gtest.h>

#include <sstream>

#include "app/headless_session.hpp"
#include "app/headless_test_support.hpp"

namespace zb::test {
namespace {

// A launched session whose scene the test may rearrange before dumping it.
struct LaunchedSession {
  std::ostringstream out;
  HeadlessSession session{quietOptions(), out};
  GameScene* scene = nullptr;

  LaunchedSession() {
    session.run(LaunchCommand{});
    scene = session.scene();
  }
  Json dump() {
    out.str("");
    session.run(DumpCommand{});
    auto json = parseJson(out.str());
    EXPECT_TRUE(json) << out.str();
    return json.value_or(Json{});
  }
};

std::shared_ptr<ShapeNode> decoration(double zPosition, Point position) {
  auto node = ShapeNode::withCircleOfRadius(2);
  node->zPosition = zPosition;
  node->position = position;
  return node;
}

TEST(DumpState, RecognisesBirdsAndDotsByDepthAmongTheScenesChildren) {
  LaunchedSession game;
  size_t birdsBefore = game.dump()["birds"].items.size();
  size_t dotsBefore = game.dump()["explosionDots"].items.size();

  auto bird = decoration(20, {100, 150});
  bird->xScale = -1;
  game.scene->addChild(bird);
  game.scene->addChild(decoration(50, {10, 20}));
  game.scene->addChild(decoration(50, {30, 40}));
  // Same depth, but not a direct child of the scene: not a bird.
  game.scene->uiLayer->addChild(decoration(20, {0, 0}));

  Json dump = game.dump();
  ASSERT_EQ(dump["birds"].items.size(), birdsBefore + 1);
  const Json& dumpedBird = dump["birds"].items.back();
  EXPECT_EQ(dumpedBird["position"][0].number, 100);
  EXPECT_EQ(dumpedBird["xScale"].number, -1);
  ASSERT_EQ(dump["explosionDots"].items.size(), dotsBefore + 2);
  EXPECT_EQ(dump["explosionDots"].items.back()["position"][1].number, 40);
  EXPECT_EQ(dump["nodeCount"].number, static_cast<double>(game.scene->nodeCount()));
}

TEST(DumpState, ReadsTheFieldsAsTheyStand) {
  LaunchedSession game;
  game.scene->score = 1234567890123;
  game.scene->lastCollisionPoint = Point{12.5, -3};
  game.scene->settingMusicVolume = 0.1f;
  game.scene->playerBody->path = Path::line({1, 2}, {3, 4});
  game.scene->playerBody->position = {10, 0};  // strokes are reported in the figure's coordinates
  game.scene->titleLabel->setText("tab\tand \"quote\" \xe2\x80\x93 dash");

  Json dump = game.dump();
  EXPECT_EQ(dump["score"].text, "1234567890123");
  EXPECT_EQ(dump["lastCollisionPoint"][0].number, 12.5);
  EXPECT_EQ(dump["settingMusicVolume"].text, "0.10000000149011612");
  const Json& body = dump["rig"]["body"];
  EXPECT_EQ((std::vector<double>{body[0].number, body[1].number, body[2].number, body[3].number}),
            (std::vector<double>{11, 2, 13, 4}));
  EXPECT_EQ(dump["labels"]["titleLabel"]["text"].text, "tab\tand \"quote\" \xe2\x80\x93 dash");

  game.scene->lastCollisionPoint.reset();
  game.scene->pauseOverlay->removeAllChildren();
  dump = game.dump();
  EXPECT_TRUE(dump["lastCollisionPoint"].isNull());
  EXPECT_TRUE(dump["labels"]["restartButton"].isNull());
}

}  // namespace
}  // namespace zb::test

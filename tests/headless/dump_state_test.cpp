#include "headless/dump_state.hpp"

#include <gtest/gtest.h>

#include <sstream>

#include "headless/headless_session.hpp"
#include "headless/headless_test_support.hpp"

namespace zb::test {
namespace {

TEST(DumpState, ReadsTheFieldsAsTheyStandAndTellsBirdsAndDotsByDepth) {
  std::ostringstream out;
  HeadlessSession session(quietOptions(), out);
  session.run(LaunchCommand{});
  GameScene& scene = *session.scene();
  const auto dump = [&] {
    out.str("");
    session.run(DumpCommand{});
    return Json::parse(out.str());
  };
  const Json before = dump();
  for (auto [parent, z, x] : {std::tuple<Node*, double, double>{&scene, 20, 100}, {&scene, 50, 10}, {&scene, 50, 30},
                              {scene.uiLayer.get(), 20, 0}}) {  // the same depth, but not a child of the scene
    auto node = ShapeNode::withCircleOfRadius(2);
    node->zPosition = z;
    node->position = {x, 40};
    parent->addChild(node);
  }
  scene.score = 1234567890123;
  scene.lastCollisionPoint = Point{12.5, -3};
  scene.settingMusicVolume = 0.1f;
  scene.playerBody->path = Path::line({1, 2}, {3, 4});
  scene.playerBody->position = {10, 0};  // strokes are reported in the figure's coordinates
  scene.titleLabel->setText("tab\tand \"quote\" \xe2\x80\x93 dash");

  Json after = dump();
  ASSERT_EQ(after["birds"].size(), before["birds"].size() + 1);
  EXPECT_EQ(after["birds"].back()["position"][0].get<double>(), 100);
  ASSERT_EQ(after["explosionDots"].size(), before["explosionDots"].size() + 2);
  EXPECT_EQ(after["explosionDots"].back()["position"][0].get<double>(), 30);
  EXPECT_EQ(after["nodeCount"].get<double>(), static_cast<double>(scene.nodeCount()));
  EXPECT_EQ(after["score"], 1234567890123);
  EXPECT_EQ(after["lastCollisionPoint"][0].get<double>(), 12.5);
  EXPECT_EQ(after["settingMusicVolume"].get<double>(), 0.1f) << "printed to read back exactly";
  EXPECT_EQ(after["rig"]["body"][0].get<double>(), 11);
  EXPECT_EQ(after["labels"]["titleLabel"]["text"].get<std::string>(), "tab\tand \"quote\" \xe2\x80\x93 dash");
  scene.lastCollisionPoint.reset();
  scene.pauseOverlay->removeAllChildren();
  after = dump();
  EXPECT_TRUE(after["lastCollisionPoint"].is_null());
  EXPECT_TRUE(after["labels"]["restartButton"].is_null());
}

}  // namespace
}  // namespace zb::test

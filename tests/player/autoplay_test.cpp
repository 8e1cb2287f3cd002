#include "player/autoplay.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "headless/headless_session.hpp"
#include "headless/headless_test_support.hpp"
#include "engine/path.hpp"
#include "scene/scene_fixture.hpp"

namespace zb::test {
namespace {

using GameState = GameScene::GameState;

void deliver(AttachedScene& scene, const std::vector<KeyStroke>& strokes) {
  for (const KeyStroke& stroke : strokes) stroke.down ? scene.press(stroke.keyCode) : scene.release(stroke.keyCode);
}

// A hand-made outline, in points above the ground line, coming at the figure in a run of its own.
struct Outline {
  const char* name;
  double bottom, height, width, speed;
};

struct Encounter {
  explicit Encounter(const Outline& outline) {
    scene.press(keycode::space);
    scene.release(keycode::space);
    scene->spawnTimerFrames = 1'000'000;  // nothing else comes
    scene->obstacleSpeed = outline.speed;
    auto node = std::make_shared<GameScene::ObstacleNode>();
    node->path = Path::rect(Rect::make(0, 0, outline.width, outline.height));
    node->lineWidth = 0;
    node->position = {600, scene->groundHeightFromBottom + outline.bottom};
    scene->addChild(node);
    scene->obstacleNodes.push_back(node);
  }
  void play(int frames) {
    for (int i = 0; i < frames; ++i) {
      deliver(scene, player.play(*scene));
      scene.step();
      crashed = crashed || scene->gameState != GameState::playing;
      highestFeet = std::max(highestFeet, scene->playerFootAltitude);
      ducked = ducked || scene->isDucking;
    }
  }

  AttachedScene scene;
  Autoplayer player;
  bool crashed = false;
  double highestFeet = 0;
  bool ducked = false;
};

TEST(Autoplayer, ChoosesJumpDuckOrNothingFromTheOutlineAlone) {
  // A single jump peaks at 114 points; only a second press in the air lifts the feet past this.
  constexpr double kSecondPressHeight = 120;
  struct Case {
    Outline outline;
    bool jumps, ducks;
  };
  const Case cases[] = {
      {{"box on the ground", 0, 33, 29, 4}, true, false},
      // Standing clears it; jumping would fly into it.
      {{"plane overhead", 78.5, 15, 39, 6.4}, false, false},
      {{"bar at head height", 40, 30, 30, 4}, false, true},
  };
  for (const Case& each : cases) {
    Encounter encounter(each.outline);
    encounter.play(200);
    EXPECT_FALSE(encounter.crashed) << each.outline.name;
    EXPECT_EQ(encounter.highestFeet > each.outline.bottom + each.outline.height, each.jumps) << each.outline.name;
    EXPECT_EQ(encounter.ducked, each.ducks) << each.outline.name;
    EXPECT_LT(encounter.highestFeet, kSecondPressHeight) << each.outline.name << ": a second press only when needed";
  }

  // Too long for one jump: only a second press in the air carries the figure over it.
  Encounter wall({"long low wall", 0, 40, 360, 10});
  wall.play(200);
  EXPECT_FALSE(wall.crashed);
  EXPECT_GT(wall.highestFeet, kSecondPressHeight);
}

// The player's keys are written down as a plain script while it plays a session in process, until
// the game has gone from the menu through a run, a crash and the next run.
TEST(Autoplay, PlaysThroughACrashAndIsExactlyItsKeysForASeed) {
  const HeadlessOptions options = quietOptions(18);
  std::ostringstream ignored;
  HeadlessSession session(options, ignored);
  session.run(LaunchCommand{});
  Autoplayer player;
  std::string script = "launch\n";
  std::vector<GameState> states{session.scene()->gameState};
  uint64_t frames = 0;
  for (; states.size() < 4 && frames < 60'000; ++frames) {
    for (const KeyStroke& stroke : player.play(*session.scene())) {
      script += std::string("key ") + (stroke.down ? "down " : "up ") + std::to_string(stroke.keyCode) + "\n";
      session.run(KeyCommand{stroke.down, stroke.keyCode, false});
    }
    script += "step\n";
    session.run(StepCommand{1});
    if (session.scene()->gameState != states.back()) states.push_back(session.scene()->gameState);
  }
  ASSERT_EQ(states, (std::vector{GameState::menu, GameState::playing, GameState::gameOver, GameState::playing}));

  const HeadlessRun autoplay = runScript("autoplay " + std::to_string(frames) + "\ndump\n", options);
  ASSERT_EQ(autoplay.status, 0) << autoplay.err;
  // Autoplay is nothing but keys and frames: the same keys in a plain script give the same game.
  EXPECT_EQ(runScript(script + "dump\n", options).out, autoplay.out);
  const Json dump = autoplay.dumps().at(0);
  EXPECT_EQ(dump["gameState"].get<std::string>(), "playing");
  EXPECT_GT(dump["highScore"].get<double>(), dump["score"].get<double>()) << "the first run scored more than the new one";
}

}  // namespace
}  // namespace zb::test

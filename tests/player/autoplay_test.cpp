// The built-in player: its choice per obstacle, its autoplay being only keys, its jump being the figure's.
#include "player/autoplay.hpp"
#include "player/jump_planner.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "headless/headless_session.hpp"
#include "headless/headless_test_support.hpp"
#include "engine/path.hpp"
#include "scene/scene_fixture.hpp"

namespace zb::test {
namespace {

using GameState = GameScene::GameState;

// A hand-made outline (points above the ground) met alone in a run, and what the player should do.
struct Outline {
  const char* name;
  double bottom, height, width, speed;
  bool jumps, ducks, pressesTwice;
};

TEST(Autoplayer, ChoosesJumpDuckOrNothingFromTheOutlineAlone) {
  // A single jump peaks at 114 points; only a second press in the air lifts the feet past this.
  constexpr double kSecondPressHeight = 120;
  const Outline outlines[] = {
      {"box on the ground", 0, 33, 29, 4, true, false, false},
      {"plane overhead, cleared standing, hit jumping", 78.5, 15, 39, 6.4, false, false, false},
      {"bar at head height", 40, 30, 30, 4, false, true, false},
      {"wall too long for one jump", 0, 40, 360, 10, true, false, true},
  };
  SceneOptions remapped;  // the player presses the keys the preferences give, as a person would
  remapped.preferences->setObject("zindlebop_keys_jump", std::string("w"));
  remapped.preferences->setObject("zindlebop_keys_duck", std::string("s"));
  for (const SceneOptions& options : {SceneOptions{}, remapped}) {
    for (const Outline& outline : outlines) {
      SCOPED_TRACE(outline.name);
      AttachedScene scene(options);
      const uint16_t jump = *scene->comfortOptions().keyFor(InputAction::jump);
      scene.press(jump);
      scene.release(jump);
      scene->spawnTimerFrames = 1'000'000;  // nothing else comes
      scene->obstacleSpeed = outline.speed;
      auto node = std::make_shared<GameScene::ObstacleNode>();
      node->path = Path::rect(Rect::make(0, 0, outline.width, outline.height));
      node->lineWidth = 0;
      node->position = {600, scene->groundHeightFromBottom + outline.bottom};
      scene->addChild(node);
      scene->obstacleNodes.push_back(node);
      Autoplayer player;
      bool crashed = false, ducked = false;
      double highestFeet = 0;
      for (int i = 0; i < 200; ++i) {
        for (const KeyStroke& key : player.play(*scene)) key.down ? scene.press(key.keyCode) : scene.release(key.keyCode);
        scene.step();
        crashed = crashed || scene->gameState != GameState::playing;
        highestFeet = std::max(highestFeet, scene->playerFootAltitude);
        ducked = ducked || scene->isDucking;
      }
      EXPECT_FALSE(crashed);
      EXPECT_EQ(highestFeet > outline.bottom + outline.height, outline.jumps);
      EXPECT_EQ(ducked, outline.ducks);
      EXPECT_EQ(highestFeet > kSecondPressHeight, outline.pressesTwice);
    }
  }
}

// The player's keys, written as a plain script while it plays from the menu through a crash to a new run.
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
  EXPECT_GT(dump["highScore"].get<double>(), dump["score"].get<double>()) << "the first run beat the new one";
}

// The player's idea of the figure's flight must be the flight the figure flies, presses and all.
TEST(JumpPlanner, PredictsTheFigureFrameForFrameThroughTakeOffCoyoteTimeBufferAndLanding) {
  AttachedScene game;
  game.press(keycode::space);
  Body predicted;
  // A take-off, a second press inside the coyote time, a late one held in the buffer, one on the ground.
  for (int frame = 0; frame < 120; ++frame) {
    const bool press = frame == 0 || frame == 5 || frame == 70 || frame == 100;
    if (press) game->requestJump();
    game->updatePlayer();
    stepBody(predicted, press);
    ASSERT_EQ(std::tuple(predicted.footAltitude, predicted.velocityY, predicted.bufferedJumpFrames),
              std::tuple(game->playerFootAltitude, game->playerVelocityY, game->bufferedJumpFramesRemaining))
        << "frame " << frame;
  }
}

}  // namespace
}  // namespace zb::test

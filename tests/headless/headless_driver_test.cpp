// The headless driver: its script lines, its dump, and a session driven through it.
#include "headless/headless_driver.hpp"

#include <gtest/gtest.h>

#include <sstream>

#include "engine/input_event.hpp"
#include "headless/dump_state.hpp"
#include "headless/headless_session.hpp"
#include "headless/headless_test_support.hpp"
#include "headless/script_command.hpp"

namespace zb::test {
namespace {

using Keys = std::vector<std::string>;

// The command a well-formed line stands for; a default one, failing the test, otherwise.
template <typename Command>
Command parsed(std::string_view line) {
  ParsedLine result = parseScriptLine(line);
  const Command* command = result.command ? std::get_if<Command>(&*result.command) : nullptr;
  EXPECT_TRUE(command) << line << ": " << result.error.value_or("parsed as another command");
  return command ? *command : Command{};
}

TEST(ScriptCommand, ReadsTheArgumentsOfEveryCommand) {
  // What the session tests' scripts do not already lean on: big counts, Option, raw key codes, odd values.
  EXPECT_EQ(parsed<StepCommand>("  step   10000000000 \r").frames, 10000000000u);
  EXPECT_EQ(parsed<KeyCommand>("key down return alt").modifierFlags, kOptionModifierFlag);
  parsed<QuitCommand>("quit");
  // A digit key, and longer numbers as raw key codes.
  for (const auto& [line, code] : {std::pair<const char*, uint16_t>{"key down 49", keycode::space},
                                   {"key down 65535", 65535}, {"key down 0", 29}}) {
    EXPECT_EQ(parsed<KeyCommand>(line).keyCode, code) << line;
  }
  EXPECT_EQ(parsed<ClickCommand>("click 400 312.5").location, (Point{400, 312.5}));
  EXPECT_EQ(parsed<MoveCommand>("move -3 7").location, (Point{-3, 7}));
  EXPECT_EQ(parsed<ResizeCommand>("resize 1 16384").size, (Size{1, 16384}));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k int -12").value, PreferenceValue(int64_t{-12}));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k string two  words").value, PreferenceValue(std::string("two  words")));
  EXPECT_EQ(parsed<PrefRemoveCommand>("pref remove k").key, "k");
  EXPECT_EQ(parsed<ScreenshotCommand>("screenshot /tmp/shot.png at 0.25").stepFraction, 0.25);
  for (const char* bad : {"screenshot a.png at 1", "screenshot a.png at -0.1", "screenshot a.png at half",
                          "screenshot a.png at", "screenshot a.png by 0.5", "screenshot a.png at 0.5 more"}) {
    EXPECT_FALSE(parseScriptLine(bad).command) << bad;
  }
}

TEST(HeadlessDriver, EachDumpIsOneLineWithEveryKeyInOrderAndListsTheSoundsSinceTheLastOnce) {
  TempFolder resources("zb-headless-sounds");
  HeadlessOptions options = quietOptions();
  options.resourceFolder = resources.touch("jump.mp3").parent_path().string();
  const HeadlessRun run = runScript(
      "pref set vol float 0.3\r\n  # Windows line ends\r\nstep 10\ndump\nkey down space\nstep\ndump\nmove 5 5\ndump",
      options);  // no final newline
  ASSERT_EQ(run.status, 0) << run.err;
  const std::vector<Json> dumps = run.dumps();  // one per line, or the parse throws; step launches
  ASSERT_EQ(dumps.size(), 3u);
  const Json& json = dumps[0];
  EXPECT_EQ(keysOf(json),
            (Keys{"frame", "time", "size", "gameState", "scenePaused", "isPausedManually", "score", "highScore",
                  "playerFootAltitude", "playerVelocityY", "isDucking", "framesSinceLeftGround",
                  "bufferedJumpFramesRemaining", "runAnimationFrameIndex", "runAnimationFrameCounter",
                  "playerPosition", "rig", "obstacleSpeed", "spawnTimerFrames", "spawnIntervalMin", "spawnIntervalMax",
                  "obstacles", "pool", "lastCollisionPoint", "currentPaletteIndex", "lastPaletteChangeAtScore",
                  "backgroundColor", "currentPrimaryColor", "currentSecondaryColor", "layoutScale", "settingShowFPS",
                  "settingMusicEnabled", "settingMusicVolume", "view", "music", "sounds", "labels", "nodes",
                  "buildings", "clouds", "starCount", "groundLine", "birds", "explosionDots", "nodeCount",
                  "preferences", "gamepads", "reducedMotion", "gameSpeed", "focusedButton"}));
  // The clock is the sum of ten 1/60 s frames, printed with 17 digits so that it reads back exactly.
  EXPECT_NEAR(json["time"].get<double>(), 10.0 / 60.0, 1e-15);
  EXPECT_EQ(json["preferences"]["vol"].get<double>(), 0.3f);
  EXPECT_EQ(keysOf(json["rig"]), (Keys{"head", "body", "armLeft", "armRight", "legLeft", "legRight"}));
  EXPECT_EQ(keysOf(json["view"]), (Keys{"showsFPS", "showsNodeCount", "fullscreen", "cursorHidden"}));
  EXPECT_EQ(keysOf(json["labels"]["titleLabel"]),
            (Keys{"name", "text", "fontSize", "position", "visible", "color", "alignment"}));
  EXPECT_TRUE(json["labels"].contains("restartButton"));
  EXPECT_EQ(dumps[1]["gameState"], "playing");
  EXPECT_EQ(dumps[1]["sounds"], Json::array({"jump"}));
  EXPECT_EQ(dumps[1]["view"]["cursorHidden"], true);
  EXPECT_TRUE(dumps[2]["sounds"].empty()) << "sounds are listed once";
  EXPECT_EQ(dumps[2]["view"]["cursorHidden"], false) << "the mouse shows the cursor";
}

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

  Json after = dump();
  ASSERT_EQ(after["birds"].size(), before["birds"].size() + 1);
  EXPECT_EQ(after["birds"].back()["position"][0].get<double>(), 100);
  ASSERT_EQ(after["explosionDots"].size(), before["explosionDots"].size() + 2);
  EXPECT_EQ(after["explosionDots"].back()["position"][0].get<double>(), 30);
  EXPECT_EQ(after["score"], 1234567890123);
  EXPECT_EQ(after["lastCollisionPoint"][0].get<double>(), 12.5);
  EXPECT_EQ(after["settingMusicVolume"].get<double>(), 0.1f) << "printed to read back exactly";
  EXPECT_EQ(after["rig"]["body"][0].get<double>(), 11);
  scene.lastCollisionPoint.reset();
  scene.pauseOverlay->removeAllChildren();
  after = dump();
  EXPECT_TRUE(after["lastCollisionPoint"].is_null());
  EXPECT_TRUE(after["labels"]["restartButton"].is_null());
}

TEST(HeadlessDriver, ABadLineNamesItsLineAndNothingAfterItRuns) {
  const std::pair<const char*, const char*> cases[] = {
      {"bogus", "unknown command 'bogus'"},
      {"step -1", "step: frame count must be a whole number of 0 or more, not '-1'"},
      {"resize 800 1e300", "resize: height must be a whole number from 1 to 16384, not '1e300'"},
      {"resize 0 600", "resize: width must be a whole number from 1 to 16384, not '0'"},
      {"pref set k int 99999999999999999999", "pref: int value must be a whole number, not '99999999999999999999'"},
      {"pad down z", "pad: unknown button 'z'"},
      {"pad axis lefty 1.5", "pad: value must be a number from -1 to 1, not '1.5'"},
      {"focus elsewhere", "focus: expected 'lost' or 'gained', not 'elsewhere'"},
  };
  for (const auto& [line, reason] : cases) {
    SCOPED_TRACE(line);
    // Blank lines, comments and Windows line ends count as lines.
    HeadlessRun run = runScript(std::string("launch\n# the menu\r\n\ndump\n") + line + "\ndump\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, std::string("line 5: ") + reason + "\n");
    EXPECT_EQ(run.dumps().size(), 1u);
  }
  std::string pads;
  for (int i = 0; i < 17; ++i) pads += "pad add\n";
  const HeadlessRun run = runScript(pads + "dump\n");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "line 17: pad: 16 pads are connected already\n");
}

TEST(HeadlessDriver, PadCommandsPlayAndTheDumpReportsPadsAndComfortOptions) {
  HeadlessRun run = runScript(
      "pad add\nlaunch\ndump\n"
      "pad down a\npad down a\npad up a\nstep 3\npad axis lefty 0.75\ndump\n"  // a held button presses once
      "pad axis lefty 0\npad add\npad remove\ndump\n"  // the waiting pad goes; the run goes on
      "pad remove\ndump\n"                              // the playing pad goes: paused
      "pref set zindlebop_gameSpeed float 0.25\npref set zindlebop_reducedMotion bool true\nrelaunch\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  const auto dumps = run.dumps();
  ASSERT_EQ(dumps.size(), 5u);
  const std::pair<const char*, int> stateAndPads[] = {
      {"menu", 1}, {"playing", 1}, {"playing", 1}, {"paused", 0}, {"menu", 0}};
  for (size_t i = 0; i < dumps.size(); ++i) {
    EXPECT_EQ(dumps[i]["gameState"], stateAndPads[i].first) << "dump " << i;
    EXPECT_EQ(dumps[i]["gamepads"], stateAndPads[i].second) << "dump " << i;
  }
  EXPECT_TRUE(dumps[1]["isDucking"].get<bool>());
  EXPECT_EQ(dumps[1]["playerFootAltitude"].get<double>(), 0) << "the second press of a held A jumped";
  EXPECT_EQ(dumps[0]["reducedMotion"], false);
  EXPECT_EQ(dumps[0]["gameSpeed"], 1);
  EXPECT_EQ(dumps[4]["reducedMotion"], true);
  EXPECT_EQ(dumps[4]["gameSpeed"], 0.5) << "the slowest speed offered";
}

}  // namespace
}  // namespace zb::test

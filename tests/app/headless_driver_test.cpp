#include "app/headless_driver.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "app/headless_test_support.hpp"

namespace zb::test {
namespace {

const std::vector<std::string> kDumpKeys = {
    "frame", "time", "size", "gameState", "scenePaused", "isPausedManually", "score", "highScore",
    "playerFootAltitude", "playerVelocityY", "isDucking", "framesSinceLeftGround", "bufferedJumpFramesRemaining",
    "runAnimationFrameIndex", "runAnimationFrameCounter", "playerPosition", "rig", "obstacleSpeed",
    "spawnTimerFrames", "spawnIntervalMin", "spawnIntervalMax", "obstacles", "pool", "lastCollisionPoint",
    "currentPaletteIndex", "lastPaletteChangeAtScore", "backgroundColor", "currentPrimaryColor",
    "currentSecondaryColor", "layoutScale", "settingShowFPS", "settingMusicEnabled", "settingMusicVolume", "view",
    "music", "sounds", "labels", "nodes", "buildings", "clouds", "starCount", "groundLine", "birds",
    "explosionDots", "nodeCount", "preferences"};

TEST(HeadlessDriver, ScriptErrorsNameTheirLineAndStopTheRun) {
  HeadlessRun run = runScript("launch\n\n# the menu\ndump\nstep -3\ndump\n");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "line 5: step: frame count must be a whole number of 0 or more, not '-3'\n");
  EXPECT_EQ(run.lines().size(), 1u) << "the dump after the bad line must not run";

  run = runScript("bogus\n");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "line 1: unknown command 'bogus'\n");
  EXPECT_EQ(run.out, "");

  // Windows line ends and a missing final newline are fine.
  run = runScript("launch\r\nstep 2\r\n# done\r\ndump");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.lines().size(), 1u);
}

TEST(HeadlessDriver, EmptyScriptSucceedsSilently) {
  HeadlessRun run = runScript("");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "");
}

TEST(HeadlessDriver, DumpIsOneWellFormedLineWithEveryKeyInOrder) {
  HeadlessRun run = runScript("launch\nstep 10\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  ASSERT_EQ(run.lines().size(), 1u);
  std::string error;
  auto dump = parseJson(run.lines()[0], &error);
  ASSERT_TRUE(dump) << error;
  EXPECT_EQ(dump->keys(), kDumpKeys);

  const Json& json = *dump;
  EXPECT_EQ(json["frame"].text, "10");
  EXPECT_NEAR(json["time"].number, 10.0 / 60.0, 1e-12);
  EXPECT_EQ(json["size"][0].number, 800);
  EXPECT_EQ(json["size"][1].number, 600);
  EXPECT_EQ(json["gameState"].text, "menu");
  using Keys = std::vector<std::string>;
  EXPECT_EQ(json["rig"].keys(), (Keys{"head", "body", "armLeft", "armRight", "legLeft", "legRight"}));
  EXPECT_EQ(json["view"].keys(), (Keys{"showsFPS", "showsNodeCount", "fullscreen", "cursorHidden"}));
  EXPECT_EQ(json["nodes"].keys(),
            (Keys{"dimBackground", "menuOverlay", "settingsOverlay", "gameOverOverlay", "pauseOverlay", "uiLayer"}));
  for (const char* label : {"scoreLabel", "titleLabel", "fullscreenButton", "pauseMenuButton", "restartButton"}) {
    ASSERT_TRUE(json["labels"].has(label)) << label;
  }
  EXPECT_EQ(json["labels"]["titleLabel"].keys(),
            (Keys{"name", "text", "fontSize", "position", "visible", "color", "alignment"}));
  EXPECT_GT(json["nodeCount"].number, 1);
}

TEST(HeadlessDriver, DoublesPrintWithSeventeenDigits) {
  HeadlessRun run = runScript("step 10\npref set vol float 0.3\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  Json dump = run.dumps().at(0);
  // The clock is the sum of ten 1/60 s frames, printed so that it reads back exactly.
  EXPECT_EQ(dump["time"].text.size(), std::string("0.16666666666666666").size()) << dump["time"].text;
  EXPECT_EQ(dump["preferences"]["vol"].text, "0.30000001192092896");
}

TEST(HeadlessDriver, FirstSceneCommandLaunchesAndFrameCountRestartsOnRelaunch) {
  HeadlessRun run = runScript("dump\nstep 5\ndump\nrelaunch\nstep 2\ndump\nlaunch\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<Json> dumps = run.dumps();
  ASSERT_EQ(dumps.size(), 4u);
  EXPECT_EQ(dumps[0]["frame"].number, 0);
  EXPECT_EQ(dumps[1]["frame"].number, 5);
  EXPECT_EQ(dumps[2]["frame"].number, 2);
  EXPECT_NEAR(dumps[2]["time"].number, 2.0 / 60.0, 1e-12);
  // A launch with a scene already running changes nothing.
  EXPECT_EQ(dumps[3]["frame"].number, 2);
}

TEST(HeadlessDriver, PreferencesPreparedBeforeLaunchReachTheSceneAndSurviveRelaunch) {
  HeadlessRun run = runScript(
      "pref set quorraHighScore int 4321\n"
      "pref set quorra_settingShowFPS bool true\n"
      "pref set note string a \"quoted\" word\n"
      "pref set gone int 1\n"
      "pref remove gone\n"
      "dump\n"
      "relaunch\n"
      "dump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<Json> dumps = run.dumps();
  ASSERT_EQ(dumps.size(), 2u);
  for (const Json& dump : dumps) {
    EXPECT_EQ(dump["highScore"].number, 4321);
    EXPECT_TRUE(dump["settingShowFPS"].boolean);
    const Json& store = dump["preferences"];
    EXPECT_EQ(store["quorraHighScore"].text, "4321");
    EXPECT_EQ(store["quorra_settingShowFPS"].type, Json::Type::boolean);
    EXPECT_EQ(store["note"].text, "a \"quoted\" word");
    EXPECT_FALSE(store.has("gone"));
  }
}

TEST(HeadlessDriver, PrefsFileIsReadAndWritten) {
  TempFolder folder("zb-headless-prefs");
  HeadlessOptions options = quietOptions();
  options.prefsFile = (folder.path() / "prefs.ini").string();
  HeadlessRun first = runScript("pref set quorraHighScore int 77\n", options);
  ASSERT_EQ(first.status, 0) << first.err;
  HeadlessRun second = runScript("dump\n", options);
  ASSERT_EQ(second.status, 0) << second.err;
  EXPECT_EQ(second.dumps().at(0)["highScore"].number, 77);
  // Without the option the store is private and starts empty.
  EXPECT_EQ(runScript("dump\n").dumps().at(0)["preferences"].members.size(), 0u);
}

TEST(HeadlessDriver, SpaceStartsARunAndTheDumpListsItsSoundOnce) {
  TempFolder resources("zb-headless-sounds");
  resources.touch("jump.mp3");
  HeadlessOptions options = quietOptions();
  options.resourceFolder = resources.path().string();
  HeadlessRun run = runScript("launch\nkey down space\nstep\ndump\nstep\ndump\n", options);
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<Json> dumps = run.dumps();
  ASSERT_EQ(dumps.size(), 2u);
  EXPECT_EQ(dumps[0]["gameState"].text, "playing");
  EXPECT_TRUE(dumps[0]["view"]["cursorHidden"].boolean);
  ASSERT_EQ(dumps[0]["sounds"].items.size(), 1u);
  EXPECT_EQ(dumps[0]["sounds"][0].text, "jump");
  EXPECT_EQ(dumps[1]["sounds"].items.size(), 0u) << "sounds are listed once";
}

TEST(HeadlessDriver, FullScreenFromTheWindowManagerIsImmediateFromTheGameAFrameLater) {
  HeadlessRun run = runScript(
      "fullscreen\ndump\n"
      "key down return alt\ndump\nstep\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<Json> dumps = run.dumps();
  ASSERT_EQ(dumps.size(), 3u);
  EXPECT_TRUE(dumps[0]["view"]["fullscreen"].boolean);
  EXPECT_EQ(dumps[0]["labels"]["fullscreenButton"]["text"].text, "Exit Full Screen");
  EXPECT_TRUE(dumps[1]["view"]["fullscreen"].boolean) << "the game's toggle waits for the next frame";
  EXPECT_FALSE(dumps[2]["view"]["fullscreen"].boolean);
  EXPECT_EQ(dumps[2]["labels"]["fullscreenButton"]["text"].text, "Full Screen");
}

TEST(HeadlessDriver, MovingTheMouseShowsTheCursorAndResizeReachesTheScene) {
  HeadlessRun run = runScript("key down space\ndump\nmove 5 5\nresize 1000 500\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<Json> dumps = run.dumps();
  EXPECT_TRUE(dumps.at(0)["view"]["cursorHidden"].boolean);
  EXPECT_FALSE(dumps.at(1)["view"]["cursorHidden"].boolean);
  EXPECT_EQ(dumps.at(1)["size"][0].number, 1000);
  EXPECT_EQ(dumps.at(1)["size"][1].number, 500);
  // A resize before the launch sets the size the scene starts with.
  EXPECT_EQ(runScript("resize 640 480\ndump\n").dumps().at(0)["size"][0].number, 640);
}

TEST(HeadlessDriver, SameSeedAndScriptGiveTheSameBytes) {
  const std::string script = "launch\nkey down space\nstep 200\ndump\nkey down space\nstep 300\ndump\n";
  HeadlessRun first = runScript(script, quietOptions(99));
  HeadlessRun second = runScript(script, quietOptions(99));
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(first.out, second.out);
  EXPECT_EQ(first.dumps().size(), 2u);
}

// runHeadlessMain reads the process's own streams; these cases only need its exit status.
int mainWith(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"zindlebop", "--headless"});
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  testing::internal::CaptureStderr();
  int status = runHeadlessMain(static_cast<int>(argv.size()), argv.data());
  std::string err = testing::internal::GetCapturedStderr();
  if (status != 0) {
    EXPECT_NE(err, "") << "a failure must say why";
  }
  return status;
}

TEST(HeadlessDriver, BadOptionsAndMissingScriptsExitWithTwo) {
  EXPECT_EQ(mainWith({"--size", "800"}), 2);
  EXPECT_EQ(mainWith({"--size", "0x600"}), 2);
  EXPECT_EQ(mainWith({"--size", "axb"}), 2);
  EXPECT_EQ(mainWith({"--seed", "-1"}), 2);
  EXPECT_EQ(mainWith({"--seed"}), 2);
  EXPECT_EQ(mainWith({"--colour", "red"}), 2);
  EXPECT_EQ(mainWith({"--script", "/nonexistent/zindlebop/script.txt"}), 2);

  TempFolder folder("zb-headless-main");
  std::filesystem::path script = folder.path() / "script.txt";
  std::ofstream(script) << "# nothing to do\n";
  EXPECT_EQ(mainWith({"--size=640x480", "--seed", "3", "--fallback", "none", "--script", script.string()}), 0);
}

}  // namespace
}  // namespace zb::test

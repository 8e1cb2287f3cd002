#include "headless/headless_driver.hpp"

#include <gtest/gtest.h>

#include "headless/headless_test_support.hpp"

namespace zb::test {
namespace {

using Keys = std::vector<std::string>;

TEST(HeadlessDriver, DumpIsOneWellFormedLineWithEveryKeyInOrder) {
  HeadlessRun run = runScript("pref set vol float 0.3\nlaunch\nstep 10\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  ASSERT_EQ(run.lines().size(), 1u);
  const Json json = Json::parse(run.lines()[0]);
  EXPECT_EQ(keysOf(json),
            (Keys{"frame", "time", "size", "gameState", "scenePaused", "isPausedManually", "score", "highScore",
                  "playerFootAltitude", "playerVelocityY", "isDucking", "framesSinceLeftGround",
                  "bufferedJumpFramesRemaining", "runAnimationFrameIndex", "runAnimationFrameCounter",
                  "playerPosition", "rig", "obstacleSpeed", "spawnTimerFrames", "spawnIntervalMin", "spawnIntervalMax",
                  "obstacles", "pool", "lastCollisionPoint", "currentPaletteIndex", "lastPaletteChangeAtScore",
                  "backgroundColor", "currentPrimaryColor", "currentSecondaryColor", "layoutScale", "settingShowFPS",
                  "settingMusicEnabled", "settingMusicVolume", "view", "music", "sounds", "labels", "nodes",
                  "buildings", "clouds", "starCount", "groundLine", "birds", "explosionDots", "nodeCount",
                  "preferences", "gamepads", "reducedMotion", "gameSpeed"}));
  EXPECT_EQ(json["frame"], 10);
  // The clock is the sum of ten 1/60 s frames, printed with 17 digits so that it reads back exactly.
  EXPECT_NEAR(json["time"].get<double>(), 10.0 / 60.0, 1e-15);
  EXPECT_EQ(json["preferences"]["vol"].get<double>(), 0.3f);
  EXPECT_EQ(json["size"][0].get<double>(), 800);
  EXPECT_EQ(json["gameState"].get<std::string>(), "menu");
  EXPECT_EQ(keysOf(json["rig"]), (Keys{"head", "body", "armLeft", "armRight", "legLeft", "legRight"}));
  EXPECT_EQ(keysOf(json["view"]), (Keys{"showsFPS", "showsNodeCount", "fullscreen", "cursorHidden"}));
  EXPECT_EQ(keysOf(json["labels"]["titleLabel"]),
            (Keys{"name", "text", "fontSize", "position", "visible", "color", "alignment"}));
  EXPECT_TRUE(json["labels"].contains("restartButton"));
}

TEST(HeadlessDriver, ABadLineNamesItsLineAndNothingAfterItRuns) {
  const std::pair<const char*, const char*> cases[] = {
      {"bogus", "unknown command 'bogus'"},
      {"step -1", "step: frame count must be a whole number of 0 or more, not '-1'"},
      {"key press space", "key: expected 'down' or 'up', not 'press'"},
      {"resize 800 inf", "resize: height must be a number of 0 or more, not 'inf'"},
      {"pref set k int 99999999999999999999", "pref: int value must be a whole number, not '99999999999999999999'"},
  };
  for (const auto& [line, reason] : cases) {
    SCOPED_TRACE(line);
    // Blank lines, comments and Windows line ends count as lines.
    HeadlessRun run = runScript(std::string("launch\n# the menu\r\n\ndump\n") + line + "\ndump\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, std::string("line 5: ") + reason + "\n");
    EXPECT_EQ(run.lines().size(), 1u);
  }
  HeadlessRun run = runScript("launch\r\nstep 2\r\n  # done\r\ndump");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.lines().size(), 1u) << "a missing final newline is fine";
}

TEST(HeadlessDriver, SpaceStartsARunWithItsSoundOnceAndTheMouseShowsTheCursor) {
  TempFolder resources("zb-headless-sounds");
  resources.touch("jump.mp3");
  HeadlessOptions options = quietOptions();
  options.resourceFolder = resources.path().string();
  HeadlessRun run = runScript("key down space\nstep\ndump\nmove 5 5\nresize 1000 500\ndump\n", options);
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<Json> dumps = run.dumps();
  ASSERT_EQ(dumps.size(), 2u);
  EXPECT_EQ(dumps[0]["gameState"].get<std::string>(), "playing");
  EXPECT_TRUE(dumps[0]["view"]["cursorHidden"].get<bool>());
  ASSERT_EQ(dumps[0]["sounds"].size(), 1u);
  EXPECT_EQ(dumps[0]["sounds"][0].get<std::string>(), "jump");
  EXPECT_TRUE(dumps[1]["sounds"].empty()) << "sounds are listed once";
  EXPECT_FALSE(dumps[1]["view"]["cursorHidden"].get<bool>());
  EXPECT_EQ(dumps[1]["size"][0].get<double>(), 1000);
}

}  // namespace
}  // namespace zb::test

// The real binary, end to end: options, a script file, standard input as a pipe, screenshots.
#include <cairo.h>
#include <gtest/gtest.h>

#include "e2e/child_process.hpp"
#include "headless/headless_test_support.hpp"
#include "support/files.hpp"

namespace zb::test {
namespace {

std::vector<std::string> headless(std::vector<std::string> options) {
  options.insert(options.begin(), {ZB_BINARY, "--headless", "--fallback", "none"});
  return options;
}

TEST(HeadlessBinary, AScriptFileRunsToWellFormedDumpsAndScreenshotsOfTheScenesSize) {
  TempFolder folder("zb-e2e-script");
  const std::string script = (folder.path() / "menu.txt").string(), shot = (folder.path() / "shot.png").string();
  writeBytes(script, "# ten frames on the menu\nlaunch\nstep 10\ndump\nkey down space\nresize 400 300\nstep\n"
                     "screenshot " + shot + "\ndump\n");
  const BinaryRun run = runBinary(headless({"--seed", "1", "--size", "320x200", "--script", script}));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  const std::vector<Json> states = HeadlessRun{run.status, run.out, run.err}.dumps();
  ASSERT_EQ(states.size(), 2u) << run.out;
  EXPECT_EQ(states[0]["frame"].get<double>(), 10);
  EXPECT_EQ(states[0]["gameState"].get<std::string>(), "menu");
  EXPECT_EQ(states[0]["size"], Json::parse("[320, 200]"));
  EXPECT_EQ(states[1]["gameState"].get<std::string>(), "playing");
  cairo_surface_t* png = cairo_image_surface_create_from_png(shot.c_str());
  EXPECT_EQ(cairo_surface_status(png), CAIRO_STATUS_SUCCESS);
  EXPECT_EQ(cairo_image_surface_get_width(png), 400);
  EXPECT_EQ(cairo_image_surface_get_height(png), 300);
  cairo_surface_destroy(png);

  const BinaryRun again = runBinary(headless({"--seed", "1", "--size", "320x200", "--script", script}));
  EXPECT_EQ(again.out, run.out) << "the same seed gives the same output, byte for byte";
  const BinaryRun missing = runBinary(headless({"--script", "/nonexistent/zindlebop.script"}));
  EXPECT_EQ(missing.status, 2);
  EXPECT_NE(missing.err.find("/nonexistent/zindlebop.script"), std::string::npos) << missing.err;
}

TEST(HeadlessBinary, PipeModeAnswersEachDumpBeforeTheNextCommandArrives) {
  ChildProcess game(headless({"--seed", "5"}));
  game.send("launch\nstep 2\ndump\n");
  std::optional<std::string> first = game.readLine();
  ASSERT_TRUE(first) << "no dump while standard input is still open";
  EXPECT_EQ(Json::parse(*first)["frame"], 2);
  game.send("key down space\nstep 3\ndump\n");
  std::optional<std::string> second = game.readLine();
  ASSERT_TRUE(second);
  EXPECT_EQ(Json::parse(*second)["gameState"], "playing");
  EXPECT_EQ(game.finish(), 0) << game.error();
}

}  // namespace
}  // namespace zb::test

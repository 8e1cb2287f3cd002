// The real binary, end to end: options, a script file, standard input as a pipe, screenshots.
#include <cairo.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "headless/headless_test_support.hpp"
#include "e2e/child_process.hpp"

namespace zb::test {
namespace {

std::vector<std::string> headless(std::vector<std::string> options) {
  options.insert(options.begin(), {ZB_BINARY, "--headless", "--fallback", "none"});
  return options;
}

std::vector<Json> dumps(const BinaryRun& run) { return HeadlessRun{run.status, run.out, run.err}.dumps(); }

TEST(HeadlessBinary, AScriptFileRunsToWellFormedDumps) {
  TempFolder folder("zb-e2e-script");
  std::ofstream(folder.path() / "menu.txt") << "# ten frames on the menu\nlaunch\nstep 10\ndump\nkey down space\nstep\ndump\n";
  BinaryRun run = runBinary(headless({"--seed", "1", "--script", (folder.path() / "menu.txt").string()}));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  const std::vector<Json> states = dumps(run);
  ASSERT_EQ(states.size(), 2u) << run.out;
  EXPECT_EQ(states[0]["frame"].get<double>(), 10);
  EXPECT_EQ(states[0]["gameState"].get<std::string>(), "menu");
  EXPECT_EQ(states[0]["size"][1].get<double>(), 600);
  EXPECT_EQ(states[1]["gameState"].get<std::string>(), "playing");
  const BinaryRun again = runBinary(headless({"--seed", "1", "--script", (folder.path() / "menu.txt").string()}));
  EXPECT_EQ(again.out, run.out) << "the same seed gives the same output, byte for byte";
  const BinaryRun missing = runBinary(headless({"--script", "/nonexistent/zindlebop.script"}));
  EXPECT_EQ(missing.status, 2);
  EXPECT_NE(missing.err.find("/nonexistent/zindlebop.script"), std::string::npos) << missing.err;
}


TEST(HeadlessBinary, ScreenshotsDecodeAsPngsOfTheScenesSize) {
  TempFolder folder("zb-e2e-shot");
  const std::string menu = (folder.path() / "menu.png").string(), wider = (folder.path() / "wider.png").string();
  BinaryRun run = runBinary(headless({"--size", "320x200", "--seed", "4"}),
                            "step 3\nscreenshot " + menu + "\nresize 400 300\nscreenshot " + wider + "\n");
  ASSERT_EQ(run.status, 0) << run.err;
  for (const auto& [file, width, height] : {std::tuple{menu, 320, 200}, std::tuple{wider, 400, 300}}) {
    cairo_surface_t* png = cairo_image_surface_create_from_png(file.c_str());
    EXPECT_EQ(cairo_surface_status(png), CAIRO_STATUS_SUCCESS) << file;
    EXPECT_EQ(cairo_image_surface_get_width(png), width);
    EXPECT_EQ(cairo_image_surface_get_height(png), height);
    cairo_surface_destroy(png);
  }
  run = runBinary(headless({"--seed", "4"}), "screenshot /nonexistent/folder/shot.png\ndump\n");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err.rfind("line 1: ", 0), 0u) << run.err;
}

TEST(HeadlessBinary, PipeModeAnswersEachDumpBeforeTheNextCommandArrives) {
  ChildProcess game(headless({"--seed", "5"}));
  ASSERT_TRUE(game.started());
  game.send("launch\nstep 2\ndump\n");
  std::optional<std::string> first = game.readLine();
  ASSERT_TRUE(first) << "no dump while standard input is still open: " << game.error();
  EXPECT_EQ(Json::parse(*first)["frame"], 2);
  game.send("key down space\nstep 3\ndump\n");
  std::optional<std::string> second = game.readLine();
  ASSERT_TRUE(second);
  EXPECT_EQ(Json::parse(*second)["gameState"], "playing");
  EXPECT_EQ(game.finish(), 0) << game.error();
}

}  // namespace
}  // namespace zb::test

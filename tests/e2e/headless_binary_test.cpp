// The real binary, end to end: options, a script file, standard input as a pipe, screenshots.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "app/headless_test_support.hpp"
#include "e2e/child_process.hpp"

namespace zb::test {
namespace {

using namespace std::chrono_literals;

std::vector<std::string> headless(std::vector<std::string> options) {
  options.insert(options.begin(), {ZB_BINARY, "--headless"});
  return options;
}

std::vector<std::string> outputLines(const std::string& out) {
  HeadlessRun run;
  run.out = out;
  return run.lines();
}

Json onlyDump(const BinaryRun& run) {
  std::vector<std::string> lines = outputLines(run.out);
  EXPECT_EQ(lines.size(), 1u) << run.out;
  std::string error;
  auto dump = parseJson(lines.empty() ? "" : lines[0], &error);
  EXPECT_TRUE(dump) << error;
  return dump.value_or(Json{});
}

// Width and height from a PNG's header, or nothing when the file is not a PNG.
std::optional<std::array<uint32_t, 2>> pngSize(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::array<unsigned char, 24> header{};
  if (!in.read(reinterpret_cast<char*>(header.data()), header.size())) return std::nullopt;
  const unsigned char signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  if (!std::equal(signature, signature + 8, header.begin())) return std::nullopt;
  if (std::string(header.begin() + 12, header.begin() + 16) != "IHDR") return std::nullopt;
  auto bigEndian = [&](size_t at) {
    return uint32_t{header[at]} << 24 | uint32_t{header[at + 1]} << 16 | uint32_t{header[at + 2]} << 8 | header[at + 3];
  };
  return std::array<uint32_t, 2>{bigEndian(16), bigEndian(20)};
}

TEST(HeadlessBinary, ScriptFileRunsToAMenuDumpAndSpaceStartsARun) {
  TempFolder folder("zb-e2e-script");
  std::filesystem::path script = folder.path() / "menu.txt";
  std::ofstream(script) << "# ten frames on the menu\nlaunch\nstep 10\ndump\nkey down space\nstep\ndump\n";
  BinaryRun run = runBinary(headless({"--seed", "1", "--fallback", "none", "--script", script.string()}));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  std::vector<std::string> lines = outputLines(run.out);
  ASSERT_EQ(lines.size(), 2u) << run.out;
  auto menu = parseJson(lines[0]);
  auto playing = parseJson(lines[1]);
  ASSERT_TRUE(menu && playing);
  EXPECT_EQ((*menu)["frame"].number, 10);
  EXPECT_NEAR((*menu)["time"].number, 10.0 / 60.0, 1e-12);
  EXPECT_EQ((*menu)["size"][0].number, 800);
  EXPECT_EQ((*menu)["size"][1].number, 600);
  EXPECT_EQ((*menu)["gameState"].text, "menu");
  EXPECT_EQ((*playing)["gameState"].text, "playing");
  // A standard tool agrees that the dump is JSON.
  if (std::system("python3 -c 'import json' 2>/dev/null") == 0) {
    const char* check = "import json,sys; json.loads(sys.stdin.readline())";
    BinaryRun checked = runBinary({"/usr/bin/env", "python3", "-c", check}, lines[0] + "\n");
    EXPECT_EQ(checked.status, 0) << checked.err;
  }
}

TEST(HeadlessBinary, BadLinesAndOptionsExitWithTwoAndSayWhy) {
  BinaryRun run = runBinary(headless({"--seed", "1"}), "launch\ndump\nkey down space bar\ndump\n");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "line 3: key: expected 'alt', not 'bar'\n");
  EXPECT_EQ(outputLines(run.out).size(), 1u);

  run = runBinary(headless({"--size", "big"}));
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("usage"), std::string::npos) << run.err;

  run = runBinary(headless({"--script", "/nonexistent/zindlebop.script"}));
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("/nonexistent/zindlebop.script"), std::string::npos) << run.err;
}

TEST(HeadlessBinary, SizeOptionAndScreenshotAtTheScenesSize) {
  TempFolder folder("zb-e2e-shot");
  std::filesystem::path shot = folder.path() / "menu.png";
  BinaryRun run = runBinary(headless({"--size", "320x200", "--seed", "4", "--fallback", "none"}),
                            "step 3\nscreenshot " + shot.string() + "\nresize 400 300\nscreenshot " +
                                (folder.path() / "wider.png").string() + "\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(pngSize(shot), (std::array<uint32_t, 2>{320, 200}));
  EXPECT_EQ(pngSize(folder.path() / "wider.png"), (std::array<uint32_t, 2>{400, 300}));
  EXPECT_EQ(onlyDump(run)["size"][0].number, 400);

  run = runBinary(headless({"--seed", "4"}), "screenshot /nonexistent/folder/shot.png\ndump\n");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_NE(run.err.find("line 1: "), std::string::npos) << run.err;
}

TEST(HeadlessBinary, SameSeedGivesTheSameOutputByteForByte) {
  const std::string script = "key down space\nstep 240\ndump\nkey down space\nstep 120\nkey down down\nstep 30\ndump\n";
  BinaryRun first = runBinary(headless({"--seed", "2024", "--fallback", "none"}), script);
  BinaryRun second = runBinary(headless({"--seed", "2024", "--fallback", "none"}), script);
  ASSERT_EQ(first.status, 0) << first.err;
  ASSERT_EQ(second.status, 0) << second.err;
  EXPECT_EQ(outputLines(first.out).size(), 2u);
  EXPECT_EQ(first.out, second.out);
}

TEST(HeadlessBinary, PipeModeAnswersEachDumpBeforeTheNextCommandArrives) {
  ChildProcess game(headless({"--seed", "5", "--fallback", "none"}));
  ASSERT_TRUE(game.started());
  game.send("launch\nstep 2\ndump\n");
  std::optional<std::string> first = game.readLine(60s);
  ASSERT_TRUE(first) << "no dump while standard input is still open: " << game.error();
  auto menu = parseJson(*first);
  ASSERT_TRUE(menu);
  EXPECT_EQ((*menu)["frame"].number, 2);

  // Decide on what was read, as a player program would, and carry on.
  game.send((*menu)["gameState"].text == "menu" ? "key down space\nstep 3\ndump\n" : "step 3\ndump\n");
  std::optional<std::string> second = game.readLine(60s);
  ASSERT_TRUE(second);
  auto playing = parseJson(*second);
  ASSERT_TRUE(playing);
  EXPECT_EQ((*playing)["frame"].number, 5);
  EXPECT_EQ((*playing)["gameState"].text, "playing");

  EXPECT_EQ(game.finish(60s), 0) << game.error();
}

TEST(HeadlessBinary, PrefsFileOptionKeepsTheStoreBetweenRuns) {
  TempFolder folder("zb-e2e-prefs");
  std::string prefs = (folder.path() / "prefs.ini").string();
  BinaryRun first = runBinary(headless({"--prefs", prefs}), "pref set quorra_settingMusicVolume float 0.25\n");
  ASSERT_EQ(first.status, 0) << first.err;
  BinaryRun second = runBinary(headless({"--prefs", prefs}), "dump\n");
  ASSERT_EQ(second.status, 0) << second.err;
  Json dump = onlyDump(second);
  EXPECT_EQ(dump["settingMusicVolume"].number, 0.25);
  EXPECT_EQ(dump["preferences"]["quorra_settingMusicVolume"].number, 0.25);
}

}  // namespace
}  // namespace zb::test

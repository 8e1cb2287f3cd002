// The real binary on a broken machine: no audio device, damaged or unwritable preferences, and a
// view squeezed to nothing in every state. The game must play on, silently.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "headless/headless_test_support.hpp"
#include "e2e/child_process.hpp"
#include "support/files.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

constexpr double kDefaultVolume = 0.6f;

std::vector<std::string> headless(std::vector<std::string> options) {
  options.insert(options.begin(), {ZB_BINARY, "--headless", "--seed", "11"});
  return options;
}

std::vector<Json> dumpsOf(const BinaryRun& run) { return HeadlessRun{run.status, run.out, run.err}.dumps(); }

TEST(Faults, WithoutAnAudioDeviceTheWindowedGamePlaysOnSilently) {
  if (!hasProgram("xvfb-run")) GTEST_SKIP() << "xvfb-run is not installed";
  TempFolder folder("zb-fault-audio");
  // Leaks are not the point here, and the virtual display's GL driver leaves some behind in a library
  // it unloads, where no suppression can name it.
  BinaryRun run = runBinary({"/usr/bin/env", "SDL_AUDIODRIVER=nonexistent", "ASAN_OPTIONS=detect_leaks=0", "xvfb-run",
                             "-a", ZB_BINARY, "--frames", "30", "--seed", "3", "--prefs",
                             (folder.path() / "prefs.ini").string()});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err.find("zindlebop:"), std::string::npos) << run.err;
}

// What the game read from the store: music volume, music on, frame-rate counter on.
struct Settings {
  double volume = kDefaultVolume;
  bool music = true;
  bool fps = false;
};

void expectSettings(const Json& dump, const Settings& expected) {
  EXPECT_EQ(dump["settingMusicVolume"].get<double>(), expected.volume);
  EXPECT_EQ(dump["settingMusicEnabled"].get<bool>(), expected.music);
  EXPECT_EQ(dump["settingShowFPS"].get<bool>(), expected.fps);
}

// Opens the settings page and presses the frame-rate toggle, which writes all three settings.
const std::string kToggleFPS = "dump\nstep\nclick 400 250\nstep\nclick 400 355\nstep\ndump\n";

TEST(Faults, DamagedPreferencesGiveTheDefaultsOrWhatCanBeReadAndTheNextWriteKeepsIt) {
  const std::string good = "[preferences]\nquorra_settingMusicVolume=float:0.25\nquorra_settingMusicEnabled=bool:false\n";
  std::string garbage;
  for (int i = 0; i < 4096; ++i) garbage += static_cast<char>((i * 37) & 0xFF);

  struct Case {
    const char* name;
    std::function<void(const fs::path&)> prepare;
    Settings expected;
  };
  const std::vector<Case> cases = {
      {"missing, folders too", [](const fs::path&) {}, {}},
      {"empty", [](const fs::path& file) { writeBytes(file, ""); }, {}},
      {"truncated", [&](const fs::path& file) { writeBytes(file, good + "quorra_settingShowFPS=bo"); },
       {0.25, false, false}},
      {"binary garbage", [&](const fs::path& file) { writeBytes(file, garbage); }, {}},
      {"a directory", [](const fs::path& file) { fs::create_directories(file / "inside"); }, {}},
      {"values of another type",
       [](const fs::path& file) {
         writeBytes(file, "[preferences]\nquorra_settingMusicVolume=string:0.25\nquorra_settingMusicEnabled=int:0\n"
                          "quorra_settingShowFPS=string:yes\n");
       },
       {0.25, false, true}},
      {"values that do not parse",
       [](const fs::path& file) {
         writeBytes(file, "[preferences]\nquorra_settingMusicVolume=float:loud\nquorra_settingMusicEnabled=maybe\n"
                          "quorra_settingShowFPS=bool:1\n");
       },
       {}},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    TempFolder folder("zb-fault-prefs");
    const fs::path file = folder.path() / "deep" / "er" / "prefs.ini";
    each.prepare(file);
    BinaryRun run = runBinary(headless({"--prefs", file.string(), "--fallback", "none"}), kToggleFPS);
    ASSERT_EQ(run.status, 0) << run.err;
    const std::vector<Json> dumps = dumpsOf(run);
    ASSERT_EQ(dumps.size(), 2u);
    expectSettings(dumps[0], each.expected);
    Settings toggled = each.expected;
    toggled.fps = !toggled.fps;
    expectSettings(dumps[1], toggled);

    // The toggle's write either reached the disk, where the next launch finds all three settings,
    // or left what stood there untouched.
    BinaryRun next = runBinary(headless({"--prefs", file.string(), "--fallback", "none"}), "dump\n");
    ASSERT_EQ(next.status, 0) << next.err;
    if (fs::is_directory(file)) {
      EXPECT_TRUE(fs::exists(file / "inside"));
      expectSettings(dumpsOf(next).at(0), {});
    } else {
      expectSettings(dumpsOf(next).at(0), toggled);
    }
  }
}

// A full disk, for root as well: with the file-size limit at zero every write fails (SIGXFSZ is
// ignored, so the write returns an error instead of killing the game), while the file stays readable.
TEST(Faults, AFailedWriteLeavesAGoodFileAsItWas) {
  TempFolder folder("zb-fault-full");
  const fs::path file = folder.path() / "prefs.ini";
  writeBytes(file, "[preferences]\nquorra_settingMusicVolume=float:0.25\nquorra_settingShowFPS=bool:false\n");
  const std::string before = readBytes(file);
  std::vector<std::string> arguments = headless({"--prefs", file.string(), "--fallback", "none"});
  arguments.insert(arguments.begin(), {"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "sh"});
  BinaryRun run = runBinary(arguments, kToggleFPS);
  ASSERT_EQ(run.status, 0) << run.err;
  const std::vector<Json> dumps = dumpsOf(run);
  ASSERT_EQ(dumps.size(), 2u);
  expectSettings(dumps[0], {0.25, true, false});
  expectSettings(dumps[1], {0.25, true, true});
  EXPECT_EQ(readBytes(file), before);
}

// Every null in the dump, by path, except where null is a value the game means.
void collectNulls(const Json& value, const std::string& path, std::vector<std::string>& found) {
  if (value.is_null() && path != "/lastCollisionPoint" && path != "/music") found.push_back(path);
  if (!value.is_structured()) return;
  for (const auto& [key, member] : value.items()) collectNulls(member, path + "/" + key, found);
}

std::string labelPositions(const Json& dump) {
  std::string positions;
  for (const auto& [name, label] : dump["labels"].items()) {
    positions += name + " " + label["position"].dump() + "; ";
  }
  return positions;
}

TEST(Faults, AViewSqueezedToNothingAndBackInEveryStateKeepsEveryNumberFinite) {
  struct State {
    const char* name;
    const char* reach;
  };
  const State states[] = {
      {"menu", "step 5\n"},
      {"settings", "step 5\nclick 400 250\n"},
      {"playing", "key down space\nstep 100\n"},
      {"paused", "key down space\nstep 100\nkey down p\n"},
      {"gameOver", "key down space\nstep 900\n"},
  };
  for (const State& state : states) {
    SCOPED_TRACE(state.name);
    TempFolder folder("zb-fault-resize");
    std::string script = std::string(state.reach) + "dump\n";
    for (const char* size : {"1 1", "0 0", "800 600"}) {
      script += std::string("resize ") + size + "\nstep 5\ndump\nscreenshot " + (folder.path() / "shot.png").string() + "\n";
    }
    BinaryRun run = runBinary(headless({"--fallback", "none"}), script);
    ASSERT_EQ(run.status, 0) << run.err;
    const std::vector<Json> dumps = dumpsOf(run);
    ASSERT_EQ(dumps.size(), 4u);
    for (const Json& dump : dumps) {
      EXPECT_EQ(dump["gameState"].get<std::string>(), state.name);
      std::vector<std::string> nulls;
      collectNulls(dump, "", nulls);
      EXPECT_TRUE(nulls.empty()) << "at size " << dump["size"] << ": "
                                 << testing::PrintToString(nulls);
    }
    EXPECT_EQ(dumps[2]["layoutScale"].get<double>(), 0);
    EXPECT_EQ(labelPositions(dumps[3]), labelPositions(dumps[0]));
  }
}

}  // namespace
}  // namespace zb::test

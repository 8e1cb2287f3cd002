// The real binary on a broken machine: a full disk, and a view squeezed to nothing in every state.
// The game must play on. A machine without a sound device is in the window pixel test.
#include <gtest/gtest.h>

#include <filesystem>

#include "e2e/child_process.hpp"
#include "headless/headless_test_support.hpp"
#include "support/files.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> headless(std::vector<std::string> options) {
  options.insert(options.begin(), {ZB_BINARY, "--headless", "--seed", "11", "--fallback", "none"});
  return options;
}

std::vector<Json> dumpsOf(const BinaryRun& run) { return HeadlessRun{run.status, run.out, run.err}.dumps(); }

// A full disk, for any user: with the file-size limit at zero every write fails (SIGXFSZ is ignored,
// so the write returns an error instead of killing the game), while the file stays readable.
TEST(Faults, AFailedWriteLeavesAGoodFileAsItWas) {
  TempFolder folder("zb-fault-full");
  const fs::path file = folder.path() / "prefs.ini";
  writeBytes(file, "[preferences]\nquorra_settingMusicVolume=float:0.25\nquorra_settingShowFPS=bool:false\n");
  const std::string before = readBytes(file);
  std::vector<std::string> arguments = headless({"--prefs", file.string()});
  arguments.insert(arguments.begin(), {"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "sh"});
  // Opens the settings page and presses the frame-rate toggle, which writes all three settings.
  BinaryRun run = runBinary(arguments, "step\nclick 400 250\nstep\nclick 400 355\nstep\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  const Json toggled = dumpsOf(run).at(0);
  EXPECT_EQ(toggled["settingMusicVolume"].get<double>(), 0.25f);
  EXPECT_TRUE(toggled["settingShowFPS"].get<bool>()) << "the setting lives on in memory";
  EXPECT_EQ(readBytes(file), before);
}

// A number that is not finite is dumped as null: every null, by path, except where null is a value.
void collectNulls(const Json& value, const std::string& path, std::vector<std::string>& found) {
  if (value.is_null() && path != "/lastCollisionPoint" && path != "/music") found.push_back(path);
  if (!value.is_structured()) return;
  for (const auto& [key, member] : value.items()) collectNulls(member, path + "/" + key, found);
}

TEST(Faults, AViewSqueezedToNothingAndBackInEveryStateKeepsEveryNumberFinite) {
  const std::pair<const char*, const char*> states[] = {
      {"menu", "step 5\n"},
      {"settings", "step 5\nclick 400 250\n"},
      {"playing", "key down space\nstep 100\n"},
      {"paused", "key down space\nstep 100\nkey down p\n"},
      {"gameOver", "key down space\nstep 900\n"},
  };
  const auto labelPositions = [](const Json& dump) {
    std::string positions;
    for (const auto& [name, label] : dump["labels"].items()) positions += name + " " + label["position"].dump() + "; ";
    return positions;
  };
  for (const auto& [state, reach] : states) {
    SCOPED_TRACE(state);
    TempFolder folder("zb-fault-resize");
    const std::string shot = (folder.path() / "shot.png").string();
    std::string script = std::string(reach) + "dump\n";
    for (const char* size : {"1 1", "0 0", "800 600"}) {
      script += std::string("resize ") + size + "\nstep 5\ndump\nscreenshot " + shot + "\n";
    }
    BinaryRun run = runBinary(headless({}), script);
    ASSERT_EQ(run.status, 0) << run.err;
    const std::vector<Json> dumps = dumpsOf(run);
    ASSERT_EQ(dumps.size(), 4u);
    for (const Json& dump : dumps) {
      EXPECT_EQ(dump["gameState"].get<std::string>(), state);
      std::vector<std::string> nulls;
      collectNulls(dump, "", nulls);
      EXPECT_TRUE(nulls.empty()) << "at size " << dump["size"] << ": " << testing::PrintToString(nulls);
    }
    EXPECT_EQ(dumps[2]["layoutScale"].get<double>(), 0);
    EXPECT_EQ(labelPositions(dumps[3]), labelPositions(dumps[0]));
  }
}

}  // namespace
}  // namespace zb::test

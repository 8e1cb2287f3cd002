// The script's gamepad and focus commands and the dump's comfort keys, as a test script sees them.
#include <gtest/gtest.h>

#include <string>

#include "headless/headless_test_support.hpp"

namespace zb::test {
namespace {

TEST(HeadlessPadAndFocus, PadsPlayFocusPausesAndTheDumpReportsThem) {
  HeadlessRun run = runScript(
      "pad add\nlaunch\ndump\n"
      "pad down a\npad down a\npad up a\nstep 3\npad axis lefty 0.75\ndump\n"  // a held button presses once
      "pad axis lefty 0\npad add\npad remove\ndump\n"  // the waiting pad goes; the run goes on
      "pad remove\ndump\n"                              // the playing pad goes: paused
      "pad down a\nfocus gained\ndump\n"                // no pad left; regaining focus resumes nothing
      "key down space\nstep\nfocus lost\ndump\n"
      "pref set zindlebop_gameSpeed float 0.25\npref set zindlebop_reducedMotion bool true\nrelaunch\ndump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  const auto dumps = run.dumps();
  ASSERT_EQ(dumps.size(), 7u);
  const auto state = [&](size_t i) { return dumps[i]["gameState"].get<std::string>(); };
  EXPECT_EQ(dumps[0]["gamepads"], 1);
  EXPECT_FALSE(dumps[0]["reducedMotion"].get<bool>());
  EXPECT_EQ(dumps[0]["gameSpeed"].get<double>(), 1);
  EXPECT_EQ(state(1), "playing");
  EXPECT_TRUE(dumps[1]["isDucking"].get<bool>());
  EXPECT_EQ(dumps[1]["playerFootAltitude"].get<double>(), 0) << "the second press of a held A jumped";
  EXPECT_EQ(state(2), "playing");
  EXPECT_EQ(dumps[2]["gamepads"], 1);
  EXPECT_EQ(state(3), "paused");
  EXPECT_EQ(dumps[3]["gamepads"], 0);
  EXPECT_EQ(state(4), "paused");
  EXPECT_EQ(state(5), "paused");
  EXPECT_TRUE(dumps[6]["reducedMotion"].get<bool>());
  EXPECT_EQ(dumps[6]["gameSpeed"].get<double>(), 0.5);
}

TEST(HeadlessPadAndFocus, MalformedPadAndFocusLinesStopTheScript) {
  for (const char* line : {"pad shake", "pad down z", "pad axis lefty 1.5", "pad add 2", "focus elsewhere"}) {
    HeadlessRun run = runScript(std::string("launch\n") + line + "\ndump\n");
    EXPECT_EQ(run.status, 2) << line;
    EXPECT_EQ(run.err.rfind("line 2: ", 0), 0u) << line << ": " << run.err;
    EXPECT_TRUE(run.lines().empty()) << line;
  }
}

}  // namespace
}  // namespace zb::test

// Runs the real binary: in a virtual X display, without any display, and with bad options.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct Outcome {
  int status = -1;
  std::string output;
};

// Runs a shell command with a time limit and collects its standard output (and stderr if redirected).
Outcome runCommand(const std::string& command) {
  Outcome outcome;
  FILE* pipe = popen(("timeout 120 " + command).c_str(), "r");
  if (pipe == nullptr) return outcome;
  std::array<char, 512> buffer;
  while (std::fgets(buffer.data(), buffer.size(), pipe) != nullptr) outcome.output += buffer.data();
  const int raw = pclose(pipe);
  outcome.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  return outcome;
}

int lineCount(const std::string& text) {
  int lines = 0;
  for (char c : text) lines += c == '\n';
  return lines;
}

const std::string kBinary = ZB_BINARY;

TEST(WindowSmoke, RunsFramesInAVirtualDisplayAndQuitsCleanly) {
  if (std::system("command -v xvfb-run >/dev/null 2>&1") != 0) GTEST_SKIP() << "xvfb-run is not installed";
  const std::string prefs = testing::TempDir() + "zb_window_smoke_prefs.ini";
  const Outcome outcome =
      runCommand("xvfb-run -a -s '-screen 0 1024x768x24' " + kBinary + " --frames 30 --seed 7 --prefs " + prefs + " 2>&1");
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  std::remove(prefs.c_str());
}

TEST(WindowSmoke, WithoutADisplayItSaysSoInOneLineAndFails) {
  const Outcome outcome =
      runCommand("env -u DISPLAY -u WAYLAND_DISPLAY -u SDL_VIDEODRIVER " + kBinary + " 2>&1 >/dev/null");
  EXPECT_NE(outcome.status, 0);
  EXPECT_EQ(lineCount(outcome.output), 1) << outcome.output;
  EXPECT_NE(outcome.output.find("no display available"), std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find("--headless"), std::string::npos) << outcome.output;
}

TEST(WindowSmoke, BadOptionsPrintUsageAndExitWithStatusTwo) {
  const Outcome unknown = runCommand(kBinary + " --bogus 2>&1 >/dev/null");
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.output.find("unknown option '--bogus'"), std::string::npos) << unknown.output;
  EXPECT_NE(unknown.output.find("usage: zindlebop"), std::string::npos) << unknown.output;
  EXPECT_EQ(runCommand(kBinary + " --size 0x5 2>/dev/null").status, 2);
}

TEST(WindowSmoke, VersionAndHelpGoToStandardOutput) {
  const Outcome version = runCommand(kBinary + " --version 2>/dev/null");
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.output.rfind("zindlebop ", 0), 0u) << version.output;
  EXPECT_EQ(lineCount(version.output), 1);
  const Outcome help = runCommand(kBinary + " --help 2>/dev/null");
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.output.find("--fullscreen"), std::string::npos);
}

}  // namespace

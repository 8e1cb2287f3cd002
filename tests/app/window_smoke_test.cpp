// Runs the real windowed game without any display and with bad options (a virtual display: faults_test).
#include <gtest/gtest.h>

#include <cstdlib>

#include "e2e/child_process.hpp"

namespace zb::test {
namespace {

TEST(WindowSmoke, WithoutADisplayItSaysSoInOneLineAndFails) {
  const BinaryRun run =
      runBinary({"/usr/bin/env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", "-u", "SDL_VIDEODRIVER", ZB_BINARY});
  EXPECT_NE(run.status, 0);
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  EXPECT_NE(run.err.find("no display available"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("--headless"), std::string::npos) << run.err;
}

TEST(WindowSmoke, BadOptionsPrintUsageAndExitWithTwoAndVersionPrintsOneLine) {
  const BinaryRun unknown = runBinary({ZB_BINARY, "--bogus"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.err.find("unknown option '--bogus'"), std::string::npos) << unknown.err;
  EXPECT_NE(unknown.err.find("usage: zindlebop"), std::string::npos) << unknown.err;
  const BinaryRun version = runBinary({ZB_BINARY, "--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.rfind("zindlebop ", 0), 0u) << version.out;
  EXPECT_EQ(std::count(version.out.begin(), version.out.end(), '\n'), 1);
}

}  // namespace
}  // namespace zb::test

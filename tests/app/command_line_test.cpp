#include "app/command_line.hpp"
#include "app/startup_report.hpp"

#include <gtest/gtest.h>

#include <ctime>
#include <vector>

namespace zb {
namespace {

using Action = CommandLineOptions::Action;

CommandLineOptions options(std::vector<std::string_view> words) {
  const CommandLineResult result = parseCommandLine(words);
  if (const auto* error = std::get_if<CommandLineError>(&result)) ADD_FAILURE() << error->message;
  const auto* options = std::get_if<CommandLineOptions>(&result);
  return options ? *options : CommandLineOptions{};
}

TEST(CommandLine, ReadsEveryOption) {
  EXPECT_EQ(options({}).action, Action::play);
  const CommandLineOptions o = options({"--fullscreen", "--size", "1280x720", "--seed", "18446744073709551615",
                                        "--prefs", "/tmp/p.ini", "--frames", "30", "--autoplay", "--screenshot",
                                        "s.png"});
  EXPECT_TRUE(o.fullScreen);
  EXPECT_EQ(o.size, (Size{1280, 720}));
  EXPECT_EQ(o.seed, 18446744073709551615ull);
  EXPECT_EQ(o.prefsFile, "/tmp/p.ini");
  EXPECT_EQ(o.frameLimit, 30);
  EXPECT_TRUE(o.autoplay);
  EXPECT_EQ(o.screenshotFile, "s.png");
  EXPECT_EQ(options({"--help"}).action, Action::help);
  // The headless driver's options, in either spelling, wherever --headless stands.
  const CommandLineOptions h = options({"--script=x.txt", "--headless", "--fallback", "none", "--size=320x200"});
  EXPECT_EQ(h.action, Action::headless);
  EXPECT_EQ(h.scriptFile, "x.txt");
  EXPECT_EQ(h.fallbackFolder, "");
  EXPECT_EQ(h.size, (Size{320, 200}));
}

TEST(CommandLine, RejectsBadValuesAndUnknownOptionsNamingTheProblem) {
  const std::pair<std::vector<std::string_view>, std::string> cases[] = {
      {{"--size", "0x5"}, "--size"},        {{"--size", "800x600x2"}, "--size"},
      {{"--size", "99999x600"}, "--size"},  {{"--seed", "18446744073709551616"}, "--seed"},
      {{"--frames", "0"}, "--frames"},      {{"--prefs"}, "missing value for --prefs"},
      {{"--screenshot", ""}, "--screenshot"}, {{"game.txt"}, "unknown option 'game.txt'"},
      {{"--script", "x.txt"}, "--script needs --headless"},
      {{"--headless", "--frames", "3"}, "--frames is only for the window"},
      {{"--headless", "--size", "800.5x600"}, "--size"},
  };
  for (const auto& [words, message] : cases) {
    SCOPED_TRACE(testing::PrintToString(words));
    const CommandLineResult result = parseCommandLine(words);
    const auto* error = std::get_if<CommandLineError>(&result);
    ASSERT_NE(error, nullptr);
    EXPECT_NE(error->message.find(message), std::string::npos) << error->message;
  }
}

// Milliseconds on the clock that keeps counting through a suspend, as the kernel's process start does.
double bootClockMs() {
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return static_cast<double>(now.tv_sec) * 1000 + static_cast<double>(now.tv_nsec) * 1e-6;
}

// When this program's first code ran: after its process started and its libraries were loaded.
const double programLoadedMs = bootClockMs();
// Loading the libraries under the sanitizers on a busy machine; a misread start is hours or negative.
constexpr double kLoadingAllowanceMs = 10'000;

TEST(StartupReport, TheProcessStartsBeforeItsFirstCodeRunsAndAtMostTheLoadingTimeEarlier) {
  const double sinceLoadedBefore = bootClockMs() - programLoadedMs;
  const std::optional<double> ms = millisecondsSinceProcessStart();
  const double sinceLoadedAfter = bootClockMs() - programLoadedMs;
  ASSERT_TRUE(ms.has_value());
  EXPECT_GE(*ms, sinceLoadedBefore);
  EXPECT_LT(*ms, sinceLoadedAfter + kLoadingAllowanceMs);
}

}  // namespace
}  // namespace zb

#include "app/command_line.hpp"
#include "app/startup_report.hpp"

#include <gtest/gtest.h>

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
  EXPECT_EQ(options({"--version"}).action, Action::version);
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

TEST(StartupReport, ProcessStartLiesShortlyInThePast) {
  // A misread field of the kernel's process record gives nonsense far outside this range.
  const std::optional<double> ms = millisecondsSinceProcessStart();
  ASSERT_TRUE(ms.has_value());
  EXPECT_GE(*ms, 0);
  EXPECT_LT(*ms, 24 * 60 * 60 * 1000.0);
}

}  // namespace
}  // namespace zb

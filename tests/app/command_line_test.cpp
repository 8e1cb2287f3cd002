#include "app/command_line.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace zb {
namespace {

CommandLineResult parse(std::initializer_list<std::string_view> words) {
  const std::vector<std::string_view> args(words);
  return parseCommandLine(args);
}

CommandLineOptions options(std::initializer_list<std::string_view> words) {
  const CommandLineResult result = parse(words);
  if (const auto* error = std::get_if<CommandLineError>(&result)) ADD_FAILURE() << error->message;
  return std::holds_alternative<CommandLineOptions>(result) ? std::get<CommandLineOptions>(result) : CommandLineOptions{};
}

std::string errorFor(std::initializer_list<std::string_view> words) {
  const CommandLineResult result = parse(words);
  const auto* error = std::get_if<CommandLineError>(&result);
  return error != nullptr ? error->message : std::string();
}

TEST(CommandLine, NoOptionsPlaysWithEveryDefault) {
  const CommandLineOptions o = options({});
  EXPECT_EQ(o.action, CommandLineOptions::Action::play);
  EXPECT_FALSE(o.fullScreen);
  EXPECT_FALSE(o.size.has_value());
  EXPECT_FALSE(o.seed.has_value());
  EXPECT_FALSE(o.prefsFile.has_value());
  EXPECT_FALSE(o.frameLimit.has_value());
}

TEST(CommandLine, ReadsEveryOptionOfTheWindowedGame) {
  const CommandLineOptions o =
      options({"--fullscreen", "--size", "1280x720", "--seed", "18446744073709551615", "--prefs", "/tmp/p.ini", "--frames", "30"});
  EXPECT_EQ(o.action, CommandLineOptions::Action::play);
  EXPECT_TRUE(o.fullScreen);
  EXPECT_EQ(o.size, (Size{1280, 720}));
  EXPECT_EQ(o.seed, 18446744073709551615ull);
  EXPECT_EQ(o.prefsFile, "/tmp/p.ini");
  EXPECT_EQ(o.frameLimit, 30);
  EXPECT_EQ(options({"--seed", "0"}).seed, 0u);
}

TEST(CommandLine, HelpVersionAndHeadlessAreActions) {
  EXPECT_EQ(options({"--help"}).action, CommandLineOptions::Action::help);
  EXPECT_EQ(options({"-h"}).action, CommandLineOptions::Action::help);
  EXPECT_EQ(options({"--version"}).action, CommandLineOptions::Action::version);
  // Everything after --headless belongs to the headless driver, even options unknown here.
  EXPECT_EQ(options({"--headless", "--script", "x.txt", "--size", "800x600"}).action,
            CommandLineOptions::Action::headless);
  EXPECT_EQ(options({"--bogus", "--headless"}).action, CommandLineOptions::Action::headless);
  EXPECT_EQ(versionText().rfind("zindlebop ", 0), 0u);
  EXPECT_NE(usageText().find("--size WxH"), std::string::npos);
}

TEST(CommandLine, RejectsMalformedSizes) {
  for (std::string_view size : {"0x5", "5x0", "axb", "800", "800x", "x600", "-800x600", "800x600x2", "800 x600",
                                "1e3x600", "99999x600", ""}) {
    EXPECT_NE(errorFor({"--size", size}).find("--size"), std::string::npos) << '"' << size << '"';
  }
}

TEST(CommandLine, RejectsBadNumbersMissingValuesAndUnknownOptions) {
  EXPECT_NE(errorFor({"--seed", "-1"}).find("--seed"), std::string::npos);
  EXPECT_NE(errorFor({"--seed", "18446744073709551616"}).find("--seed"), std::string::npos);
  EXPECT_NE(errorFor({"--seed", "12abc"}).find("--seed"), std::string::npos);
  EXPECT_NE(errorFor({"--frames", "0"}).find("--frames"), std::string::npos);
  for (std::string_view option : {"--size", "--seed", "--prefs", "--frames"}) {
    EXPECT_EQ(errorFor({option}), "missing value for " + std::string(option));
  }
  EXPECT_EQ(errorFor({"--fullscreen", "--bogus"}), "unknown option '--bogus'");
  EXPECT_EQ(errorFor({"game.txt"}), "unknown option 'game.txt'");
}

}  // namespace
}  // namespace zb

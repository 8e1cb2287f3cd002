// The window's demo and test options on the command line.
#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "app/command_line.hpp"

namespace zb::test {
namespace {

CommandLineResult parse(std::vector<std::string_view> words) { return parseCommandLine(words); }

TEST(WindowOptions, AutoplayAndScreenshotAreReadAndAMissingFileIsRefused) {
  const CommandLineResult demo = parse({"--autoplay", "--screenshot", "shot.png", "--frames", "10"});
  const auto* options = std::get_if<CommandLineOptions>(&demo);
  ASSERT_NE(options, nullptr);
  EXPECT_TRUE(options->autoplay);
  EXPECT_EQ(options->screenshotFile, "shot.png");
  EXPECT_EQ(options->frameLimit, 10);


  for (const auto& words : {std::vector<std::string_view>{"--screenshot"}, {"--screenshot", ""}}) {
    const CommandLineResult refused = parse(words);
    const auto* error = std::get_if<CommandLineError>(&refused);
    ASSERT_NE(error, nullptr);
    EXPECT_NE(error->message.find("--screenshot"), std::string::npos) << error->message;
  }
  EXPECT_NE(usageText().find("--autoplay"), std::string::npos);
}

}  // namespace
}  // namespace zb::test

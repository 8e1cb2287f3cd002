#include <cstdio>
#include <string_view>
#include <variant>
#include <vector>

#include "app/command_line.hpp"
#include "headless/headless_driver.hpp"
#include "app/windowed_app.hpp"

namespace {

zb::HeadlessOptions headlessOptionsFrom(const zb::CommandLineOptions& options) {
  zb::HeadlessOptions headless;
  if (options.size) headless.size = *options.size;
  headless.seed = options.seed;
  headless.prefsFile = options.prefsFile;
  headless.resourceFolder = options.resourceFolder;
  headless.fallbackFolder = options.fallbackFolder;
  return headless;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> args(argv + (argc > 0 ? 1 : 0), argv + argc);
  const zb::CommandLineResult parsed = zb::parseCommandLine(args);
  if (const auto* error = std::get_if<zb::CommandLineError>(&parsed)) {
    std::fprintf(stderr, "zindlebop: %s\n%s", error->message.c_str(), zb::usageText().c_str());
    return zb::kExitUsage;
  }
  const auto& options = std::get<zb::CommandLineOptions>(parsed);
  switch (options.action) {
    case zb::CommandLineOptions::Action::headless:
      return zb::runHeadlessMain(headlessOptionsFrom(options), options.scriptFile);
    case zb::CommandLineOptions::Action::help:
      std::fputs(zb::usageText().c_str(), stdout);
      return 0;
    case zb::CommandLineOptions::Action::version:
      std::puts(zb::versionText().c_str());
      return 0;
    case zb::CommandLineOptions::Action::play:
      break;
  }
  return zb::runWindowedGame(options);
}

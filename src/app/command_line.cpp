#include "app/command_line.hpp"

#include <charconv>

namespace zb {

namespace {

// Sizes beyond this are typing mistakes, not windows.
constexpr uint64_t kMaxWindowExtent = 16384;

// A whole decimal number with nothing else around it (no sign, no spaces).
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
  Number value{};
  const char* end = text.data() + text.size();
  if (text.empty() || text.front() == '-' || text.front() == '+') return std::nullopt;
  const auto [ptr, ec] = std::from_chars(text.data(), end, value);
  if (ec != std::errc() || ptr != end) return std::nullopt;
  return value;
}

std::optional<Size> parseSize(std::string_view text) {
  const std::size_t x = text.find('x');
  if (x == std::string_view::npos) return std::nullopt;
  const auto width = parseNumber<uint64_t>(text.substr(0, x));
  const auto height = parseNumber<uint64_t>(text.substr(x + 1));
  if (!width || !height) return std::nullopt;
  if (*width == 0 || *height == 0 || *width > kMaxWindowExtent || *height > kMaxWindowExtent) return std::nullopt;
  return Size{static_cast<double>(*width), static_cast<double>(*height)};
}

CommandLineError badValue(std::string_view option, std::string_view value, std::string_view expected) {
  return {"bad value '" + std::string(value) + "' for " + std::string(option) + " (expected " + std::string(expected) + ")"};
}

}  // namespace

CommandLineResult parseCommandLine(std::span<const std::string_view> args) {
  CommandLineOptions options;
  for (std::string_view arg : args) {
    if (arg == "--headless") {
      options.action = CommandLineOptions::Action::headless;
      return options;
    }
  }
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string_view arg = args[i];
    if (arg == "--help" || arg == "-h") {
      options.action = CommandLineOptions::Action::help;
      continue;
    }
    if (arg == "--version") {
      options.action = CommandLineOptions::Action::version;
      continue;
    }
    if (arg == "--fullscreen") {
      options.fullScreen = true;
      continue;
    }
    if (arg == "--autoplay") {
      options.autoplay = true;
      continue;
    }
    const bool takesValue = arg == "--size" || arg == "--seed" || arg == "--prefs" || arg == "--frames" ||
                            arg == "--screenshot";
    if (!takesValue) return CommandLineError{"unknown option '" + std::string(arg) + "'"};
    if (i + 1 >= args.size()) return CommandLineError{"missing value for " + std::string(arg)};
    const std::string_view value = args[++i];
    if (arg == "--size") {
      options.size = parseSize(value);
      if (!options.size) return badValue(arg, value, "WIDTHxHEIGHT, each 1 to 16384");
    } else if (arg == "--seed") {
      options.seed = parseNumber<uint64_t>(value);
      if (!options.seed) return badValue(arg, value, "a whole number from 0 to 18446744073709551615");
    } else if (arg == "--screenshot") {
      if (value.empty()) return badValue(arg, value, "a file name");
      options.screenshotFile = std::string(value);
    } else if (arg == "--prefs") {
      if (value.empty()) return badValue(arg, value, "a file name");
      options.prefsFile = std::string(value);
    } else {
      options.frameLimit = parseNumber<int64_t>(value);
      if (!options.frameLimit || *options.frameLimit <= 0) return badValue(arg, value, "a positive whole number");
    }
  }
  return options;
}

std::string versionText() { return std::string("zindlebop ") + ZB_VERSION; }

std::string usageText() {
  return "usage: zindlebop [options]\n"
         "  --fullscreen     start in full screen\n"
         "  --size WxH       window size in points (default 960x540)\n"
         "  --seed N         seed of the game's random source (default: a fresh one)\n"
         "  --prefs FILE     preferences file (default: in the user's config folder)\n"
         "  --frames N       quit after N frames\n"
         "  --autoplay       the built-in player plays (a demo)\n"
         "  --screenshot F   write a PNG of the window to F at exit\n"
         "  --headless ...   run without a window, driven by a script, with its own options\n"
         "  --version        print the version and exit\n"
         "  --help           print this help and exit\n";
}

}  // namespace zb

#include "app/command_line.hpp"

#include <algorithm>
#include <charconv>

#include "engine/quoted_text.hpp"
#include "engine/view.hpp"

namespace zb {

namespace {

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
  if (*width == 0 || *height == 0 || *width > kMaxViewExtent || *height > kMaxViewExtent) return std::nullopt;
  return Size{static_cast<double>(*width), static_cast<double>(*height)};
}

CommandLineError badValue(std::string_view option, std::string_view value, std::string_view expected) {
  return {"bad value " + quotedForMessage(value) + " for " + std::string(option) + " (expected " +
          std::string(expected) + ")"};
}

constexpr std::string_view kValueOptions[] = {"--size",      "--seed",     "--prefs",  "--frames", "--screenshot",
                                              "--resources", "--fallback", "--script"};
constexpr std::string_view kWindowOnly[] = {"--fullscreen", "--frames", "--autoplay", "--screenshot"};
constexpr std::string_view kHeadlessOnly[] = {"--resources", "--fallback", "--script"};

bool isOneOf(std::string_view name, std::span<const std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Sets one option from its value; an error when the value is not acceptable.
std::optional<CommandLineError> apply(std::string_view name, std::string_view value, CommandLineOptions& options) {
  if (name == "--size") {
    options.size = parseSize(value);
    if (!options.size) return badValue(name, value, "WIDTHxHEIGHT, each 1 to 16384");
  } else if (name == "--seed") {
    options.seed = parseNumber<uint64_t>(value);
    if (!options.seed) return badValue(name, value, "a whole number from 0 to 18446744073709551615");
  } else if (name == "--frames") {
    options.frameLimit = parseNumber<int64_t>(value);
    if (!options.frameLimit || *options.frameLimit <= 0) return badValue(name, value, "a positive whole number");
  } else if (value.empty()) {
    return badValue(name, value, "a file or folder name");
  } else if (name == "--prefs") {
    options.prefsFile = std::string(value);
  } else if (name == "--screenshot") {
    options.screenshotFile = std::string(value);
  } else if (name == "--resources") {
    options.resourceFolder = std::string(value);
  } else if (name == "--fallback") {
    options.fallbackFolder = value == "none" ? std::string() : std::string(value);
  } else {
    options.scriptFile = std::string(value);
  }
  return std::nullopt;
}

}  // namespace

CommandLineResult parseCommandLine(std::span<const std::string_view> args) {
  CommandLineOptions options;
  // The mode decides which options make sense, so it is known before any option is read.
  const bool headless = std::find(args.begin(), args.end(), "--headless") != args.end();
  const std::span<const std::string_view> otherModesOptions =
      headless ? std::span<const std::string_view>(kWindowOnly) : std::span<const std::string_view>(kHeadlessOnly);
  bool help = false;
  bool version = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string_view arg = args[i];
    const std::string_view name = arg.substr(0, arg.find('='));
    if (isOneOf(name, otherModesOptions)) {
      return CommandLineError{std::string(name) + (headless ? " is only for the window" : " needs --headless")};
    }
    if (arg == "--headless") continue;
    if (arg == "--help" || arg == "-h") {
      help = true;
      continue;
    }
    if (arg == "--version") {
      version = true;
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
    if (!isOneOf(name, kValueOptions)) return CommandLineError{"unknown option " + quotedForMessage(arg)};
    std::string_view value;
    if (name.size() < arg.size()) {
      value = arg.substr(name.size() + 1);  // --name=value
    } else if (i + 1 < args.size()) {
      value = args[++i];
    } else {
      return CommandLineError{"missing value for " + std::string(name)};
    }
    if (auto error = apply(name, value, options)) return *error;
  }
  using Action = CommandLineOptions::Action;
  options.action = help ? Action::help : version ? Action::version : headless ? Action::headless : Action::play;
  return options;
}

std::string versionText() { return std::string("zindlebop ") + ZB_VERSION; }

std::string usageText() {
  return "usage: zindlebop [options]\n"
         "       zindlebop --headless [options]   (no window; driven by a script)\n"
         "  --size WxH       window or view size in points (default 960x540; headless 800x600)\n"
         "  --seed N         seed of the game's random source (default: a fresh one)\n"
         "  --prefs FILE     preferences file (default: in the user's config folder;\n"
         "                   headless: a private store discarded at exit)\n"
         "  --fullscreen     start in full screen (window only)\n"
         "  --frames N       quit after N frames (window only)\n"
         "  --autoplay       the built-in player plays, as a demo (window only)\n"
         "  --screenshot F   write a PNG of what the window shows to F at exit (window only)\n"
         "  --script FILE    the headless script (default: standard input)\n"
         "  --resources DIR  headless: the resource folder searched first for sounds\n"
         "  --fallback DIR   headless: the fallback sound folder, or none\n"
         "  --version        print the version and exit\n"
         "  --help           print this help and exit\n";
}

}  // namespace zb

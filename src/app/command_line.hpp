#pragma once
// The windowed game's command line. Parsing is pure: it reads the words and says what to do, and the
// caller prints and exits.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "engine/geometry.hpp"

namespace zb {

struct CommandLineOptions {
  enum class Action { play, help, version, headless };
  Action action = Action::play;
  bool fullScreen = false;
  std::optional<Size> size;         // window content in points; the default size when unset
  std::optional<uint64_t> seed;     // a fresh seed when unset
  std::optional<std::string> prefsFile;  // the default preferences location when unset
  std::optional<int64_t> frameLimit;     // run this many frames, then quit (for smoke tests)
  bool autoplay = false;                 // the built-in player plays from the first frame
  std::optional<std::string> screenshotFile;  // a PNG of the window, written at exit
};

struct CommandLineError {
  std::string message;  // one line, without the program name
};

using CommandLineResult = std::variant<CommandLineOptions, CommandLineError>;

// `args` are the words after the program name. "--headless" anywhere hands the whole command line to
// the headless driver, which reads its own options.
CommandLineResult parseCommandLine(std::span<const std::string_view> args);

// "zindlebop VERSION".
std::string versionText();
// The options, one per line, for --help and after a bad option.
std::string usageText();

// Exit statuses of the command line.
inline constexpr int kExitUsage = 2;
inline constexpr int kExitNoDisplay = 1;

}  // namespace zb

#pragma once
// The game's one command line, for the window and for the headless driver. Parsing is pure: it reads the words and says what to do, and the
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
  bool autoplay = false;                 // the built-in player plays from the first frame (window only)
  std::optional<std::string> screenshotFile;  // a PNG of the window, written at exit (window only)
  // Headless only.
  std::optional<std::string> scriptFile;      // standard input when unset
  std::optional<std::string> resourceFolder;  // the built or installed one when unset
  std::optional<std::string> fallbackFolder;  // the compiled-in one when unset; "" means none
};

struct CommandLineError {
  std::string message;  // one line, without the program name
};

using CommandLineResult = std::variant<CommandLineOptions, CommandLineError>;

// `args` are the words after the program name; "--headless" anywhere chooses the headless driver.
// Options may be written "--name value" or "--name=value"; an option of the other mode is an error.
CommandLineResult parseCommandLine(std::span<const std::string_view> args);

// "zindlebop VERSION".
std::string versionText();
// The options, one per line, for --help and after a bad option.
std::string usageText();

// Exit statuses of the command line.
inline constexpr int kExitUsage = 2;
inline constexpr int kExitNoDisplay = 1;

}  // namespace zb

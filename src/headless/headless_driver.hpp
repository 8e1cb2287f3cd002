#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "engine/geometry.hpp"

namespace zb {

// Everything the headless command line can set. Empty optionals mean "use the default".
struct HeadlessOptions {
  Size size{800, 600};
  std::optional<uint64_t> seed;           // a fresh seed when unset
  std::optional<std::string> prefsFile;   // a private in-memory store when unset
  std::optional<std::string> resourceFolder;
  std::optional<std::string> fallbackFolder;  // "" means no fallback folder
};

// Runs a script against the game with no window and no audio device. Dumps go to `out`, errors
// (`line N: reason`) to `err`. Returns the process exit status: 0 on success, 2 on a bad line.
int runHeadless(const HeadlessOptions& options, std::istream& script, std::ostream& out, std::ostream& err);

// The `zindlebop --headless ...` entry point: runs the script file, or standard input without one.
int runHeadlessMain(const HeadlessOptions& options, const std::optional<std::string>& scriptFile);

}  // namespace zb

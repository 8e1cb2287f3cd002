#pragma once
// One line of a headless script, parsed. Parsing only checks the words; running is the session's job.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "engine/gamepad_event.hpp"
#include "engine/geometry.hpp"
#include "engine/preferences.hpp"

namespace zb {

struct LaunchCommand {};
struct RelaunchCommand {};
struct StepCommand {
  uint64_t frames = 1;
};
struct AutoplayCommand {
  uint64_t frames = 0;
};
struct KeyCommand {
  bool down = true;
  uint16_t keyCode = 0;
  uint64_t modifierFlags = 0;  // alt, shift and ctrl as the window reports them
};
struct ClickCommand {
  Point location;
};
struct MoveCommand {
  Point location;
};
struct ResizeCommand {
  Size size;
};
struct FullscreenCommand {};
struct PrefSetCommand {
  std::string key;
  PreferenceValue value;
};
struct PrefRemoveCommand {
  std::string key;
};
struct PadCommand {
  enum class Kind : uint8_t { add, remove, down, up, axis } kind = Kind::add;
  GamepadButton button = GamepadButton::a;
  GamepadAxis axis = GamepadAxis::leftX;
  double value = 0;
};
struct FocusCommand {
  bool lost = true;
};
struct DumpCommand {};
struct QuitCommand {};
struct ScreenshotCommand {
  std::string file;
  // How far past the last step the pictured display is, in steps: 0 up to 1 (0: the last step itself).
  double stepFraction = 0;
};

using ScriptCommand = std::variant<LaunchCommand, RelaunchCommand, StepCommand, AutoplayCommand, KeyCommand,
                                   ClickCommand, MoveCommand, ResizeCommand, FullscreenCommand, PrefSetCommand,
                                   PrefRemoveCommand, DumpCommand, ScreenshotCommand, PadCommand, FocusCommand,
                                   QuitCommand>;

struct ParsedLine {
  std::optional<ScriptCommand> command;  // nothing for a blank or comment line
  std::optional<std::string> error;      // why the line is malformed
};

ParsedLine parseScriptLine(std::string_view line);

// A key name of the script (`space`, `down`, `a`, `7`, ...) or a decimal key code from 0 to 65535.
std::optional<uint16_t> parseKeyName(std::string_view name);

}  // namespace zb

#include "headless/script_command.hpp"

#include <charconv>
#include <cmath>
#include <vector>

#include "engine/input_event.hpp"
#include "engine/key_names.hpp"
#include "engine/quoted_text.hpp"
#include "engine/view.hpp"

namespace zb {
namespace {

// Thrown inside this file only, to leave a line's parser at its first problem.
struct BadLine {
  std::string reason;
};

std::vector<std::string_view> splitWords(std::string_view line) {
  std::vector<std::string_view> words;
  size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    size_t start = i;
    while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
    if (i > start) words.push_back(line.substr(start, i - start));
  }
  return words;
}

std::string quoted(std::string_view word) { return quotedForMessage(word); }

// The words of one line, consumed from the left.
class Words {
 public:
  explicit Words(std::string_view line) : line_(line), words_(splitWords(line)) {}

  bool empty() const { return words_.empty(); }
  std::string_view command() const { return words_.front(); }
  // How a complaint about this line begins: "step: ".
  std::string prefix() const { return std::string(command()) + ": "; }

  std::optional<std::string_view> next() {
    if (index_ >= words_.size()) return std::nullopt;
    return words_[index_++];
  }
  std::string_view require(std::string_view what) {
    auto word = next();
    if (!word) throw BadLine{prefix() + "missing " + std::string(what)};
    return *word;
  }
  // Everything after the words consumed so far, as written (inner spacing kept).
  std::string_view rest() {
    if (index_ >= words_.size()) return {};
    std::string_view remaining = line_.substr(static_cast<size_t>(words_[index_].data() - line_.data()));
    index_ = words_.size();
    return remaining.substr(0, remaining.find_last_not_of(" \t") + 1);
  }
  void finish() {
    if (index_ < words_.size()) throw BadLine{prefix() + "unexpected " + quoted(words_[index_])};
  }

 private:
  std::string_view line_;
  std::vector<std::string_view> words_;
  size_t index_ = 1;
};

template <typename Int>
std::optional<Int> parseInteger(std::string_view word) {
  Int number{};
  auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
  return number;
}

std::optional<double> parseFiniteDouble(std::string_view word) {
  double number = 0;
  auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error != std::errc() || end != word.data() + word.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

// The frame count argument; `fallback` when it is left out, and required when there is none.
uint64_t frameCount(Words& words, std::optional<uint64_t> fallback) {
  auto word = fallback ? words.next() : words.require("frame count");
  if (!word) return *fallback;
  auto frames = parseInteger<uint64_t>(*word);
  if (!frames) throw BadLine{words.prefix() + "frame count must be a whole number of 0 or more, not " + quoted(*word)};
  return *frames;
}

double coordinate(Words& words, std::string_view what) {
  std::string_view word = words.require(what);
  auto number = parseFiniteDouble(word);
  if (!number) throw BadLine{words.prefix() + std::string(what) + " must be a number, not " + quoted(word)};
  return *number;
}

// The sizes --size takes, so that a script cannot ask for a picture of gigabytes.
double extent(Words& words, std::string_view what) {
  std::string_view word = words.require(what);
  auto number = parseInteger<uint64_t>(word);
  if (!number || *number == 0 || *number > kMaxViewExtent) {
    throw BadLine{words.prefix() + std::string(what) + " must be a whole number from 1 to " +
                  std::to_string(kMaxViewExtent) + ", not " + quoted(word)};
  }
  return static_cast<double>(*number);
}

ScriptCommand parseStep(Words& words) {
  StepCommand step{frameCount(words, 1)};
  words.finish();
  return step;
}

ScriptCommand parseAutoplay(Words& words) {
  AutoplayCommand autoplay{frameCount(words, std::nullopt)};
  words.finish();
  return autoplay;
}

ScriptCommand parseKey(Words& words) {
  std::string_view direction = words.require("'down' or 'up'");
  if (direction != "down" && direction != "up") throw BadLine{"key: expected 'down' or 'up', not " + quoted(direction)};
  KeyCommand key;
  key.down = direction == "down";
  std::string_view name = words.require("key name");
  auto code = parseKeyName(name);
  if (!code) throw BadLine{"key: unknown key " + quoted(name)};
  key.keyCode = *code;
  if (key.down) {
    while (auto modifier = words.next()) {
      if (*modifier == "alt") {
        key.modifierFlags |= kOptionModifierFlag;
      } else if (*modifier == "shift") {
        key.modifierFlags |= kShiftModifierFlag;
      } else if (*modifier == "ctrl") {
        key.modifierFlags |= kControlModifierFlag;
      } else {
        throw BadLine{"key: expected 'alt', 'shift' or 'ctrl', not " + quoted(*modifier)};
      }
    }
  }
  words.finish();
  return key;
}

template <typename Command>
ScriptCommand parseLocation(Words& words) {
  double x = coordinate(words, "X");
  double y = coordinate(words, "Y");
  words.finish();
  return Command{Point{x, y}};
}

ScriptCommand parseResize(Words& words) {
  double width = extent(words, "width");
  double height = extent(words, "height");
  words.finish();
  return ResizeCommand{Size{width, height}};
}

ScriptCommand parsePref(Words& words) {
  std::string_view action = words.require("'set' or 'remove'");
  if (action == "remove") {
    PrefRemoveCommand remove{std::string(words.require("key"))};
    words.finish();
    return remove;
  }
  if (action != "set") throw BadLine{"pref: expected 'set' or 'remove', not " + quoted(action)};
  std::string key(words.require("key"));
  std::string_view type = words.require("type");
  if (type == "string") {
    // A string is the rest of the line, so that it may hold spaces.
    std::string_view text = words.rest();
    if (text.empty()) throw BadLine{"pref: missing value"};
    return PrefSetCommand{key, std::string(text)};
  }
  std::string_view word = words.require("value");
  PreferenceValue value;
  if (type == "int") {
    auto number = parseInteger<int64_t>(word);
    if (!number) throw BadLine{"pref: int value must be a whole number, not " + quoted(word)};
    value = *number;
  } else if (type == "bool") {
    if (word != "true" && word != "false") {
      throw BadLine{"pref: bool value must be 'true' or 'false', not " + quoted(word)};
    }
    value = word == "true";
  } else if (type == "float") {
    float number = 0;
    auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size()) {
      throw BadLine{"pref: float value must be a number, not " + quoted(word)};
    }
    value = number;
  } else {
    throw BadLine{"pref: type must be int, bool, float or string, not " + quoted(type)};
  }
  words.finish();
  return PrefSetCommand{key, value};
}

ScriptCommand parseScreenshot(Words& words) {
  ScreenshotCommand screenshot{std::string(words.require("file name"))};
  if (std::optional<std::string_view> word = words.next()) {
    if (*word != "at") throw BadLine{words.prefix() + "unexpected " + quoted(*word)};
    const std::string_view fraction = words.require("fraction of a step");
    const std::optional<double> number = parseFiniteDouble(fraction);
    if (!number || *number < 0 || *number >= 1) {
      throw BadLine{words.prefix() + "the fraction must be a number from 0 up to 1, not " + quoted(fraction)};
    }
    screenshot.stepFraction = *number;
  }
  words.finish();
  return screenshot;
}

// Pad buttons and axes by the names SDL's controller layer gives them, in the engine's order.
constexpr std::string_view kPadButtonNames[kGamepadButtonCount] = {
    "a", "b", "x", "y", "back", "guide", "start", "leftstick", "rightstick", "leftshoulder", "rightshoulder",
    "dpup", "dpdown", "dpleft", "dpright",
};
constexpr std::string_view kPadAxisNames[kGamepadAxisCount] = {"leftx", "lefty", "rightx", "righty",
                                                               "lefttrigger", "righttrigger"};

template <typename Enum, size_t N>
Enum namedEnum(Words& words, const std::string_view (&names)[N], std::string_view what) {
  std::string_view word = words.require(what);
  for (size_t i = 0; i < N; ++i) {
    if (names[i] == word) return static_cast<Enum>(i);
  }
  throw BadLine{"pad: unknown " + std::string(what) + " " + quoted(word)};
}

ScriptCommand parsePad(Words& words) {
  std::string_view action = words.require("'add', 'remove', 'down', 'up' or 'axis'");
  PadCommand pad;
  if (action == "add") {
    pad.kind = PadCommand::Kind::add;
  } else if (action == "remove") {
    pad.kind = PadCommand::Kind::remove;
  } else if (action == "down" || action == "up") {
    pad.kind = action == "down" ? PadCommand::Kind::down : PadCommand::Kind::up;
    pad.button = namedEnum<GamepadButton>(words, kPadButtonNames, "button");
  } else if (action == "axis") {
    pad.kind = PadCommand::Kind::axis;
    pad.axis = namedEnum<GamepadAxis>(words, kPadAxisNames, "axis");
    std::string_view word = words.require("value");
    auto value = parseFiniteDouble(word);
    if (!value || *value < -1 || *value > 1) throw BadLine{"pad: value must be a number from -1 to 1, not " + quoted(word)};
    pad.value = *value + 0.0;
  } else {
    throw BadLine{"pad: expected 'add', 'remove', 'down', 'up' or 'axis', not " + quoted(action)};
  }
  words.finish();
  return pad;
}

ScriptCommand parseFocus(Words& words) {
  std::string_view state = words.require("'lost' or 'gained'");
  if (state != "lost" && state != "gained") throw BadLine{"focus: expected 'lost' or 'gained', not " + quoted(state)};
  words.finish();
  return FocusCommand{state == "lost"};
}

template <typename Command>
ScriptCommand parseBare(Words& words) {
  words.finish();
  return Command{};
}

ScriptCommand parseCommand(Words& words) {
  std::string_view name = words.command();
  if (name == "launch") return parseBare<LaunchCommand>(words);
  if (name == "relaunch") return parseBare<RelaunchCommand>(words);
  if (name == "step") return parseStep(words);
  if (name == "autoplay") return parseAutoplay(words);
  if (name == "key") return parseKey(words);
  if (name == "click") return parseLocation<ClickCommand>(words);
  if (name == "move") return parseLocation<MoveCommand>(words);
  if (name == "resize") return parseResize(words);
  if (name == "fullscreen") return parseBare<FullscreenCommand>(words);
  if (name == "pref") return parsePref(words);
  if (name == "dump") return parseBare<DumpCommand>(words);
  if (name == "screenshot") return parseScreenshot(words);
  if (name == "pad") return parsePad(words);
  if (name == "focus") return parseFocus(words);
  if (name == "quit") return parseBare<QuitCommand>(words);
  throw BadLine{"unknown command " + quoted(name)};
}

}  // namespace

ParsedLine parseScriptLine(std::string_view line) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  Words words(line);
  if (words.empty() || words.command().front() == '#') return {};
  try {
    return {parseCommand(words), std::nullopt};
  } catch (const BadLine& bad) {
    return {std::nullopt, bad.reason};
  }
}

std::optional<uint16_t> parseKeyName(std::string_view name) {
  if (auto code = keyCodeForName(name)) return code;
  return parseInteger<uint16_t>(name);
}

}  // namespace zb

#include "settings/comfort_options.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>
#include <variant>

#include "engine/input_event.hpp"
#include "engine/key_names.hpp"
#include "engine/quoted_text.hpp"
#include "scene/game_scene.hpp"
#include "settings/preference_keys.hpp"

namespace zb {

namespace {

struct ActionKeys {
  InputAction action;
  std::string_view preferenceKey;
  uint16_t defaultKey;
};
constexpr ActionKeys kActionKeys[] = {
    {InputAction::jump, kJumpKeysKey, keycode::space},
    {InputAction::duck, kDuckKeysKey, keycode::downArrow},
    {InputAction::pause, kPauseKeysKey, keycode::p},
    {InputAction::leave, kLeaveKeysKey, keycode::escape},
};

std::vector<std::string> splitOnBlanks(const std::string& text) {
  std::vector<std::string> words;
  std::string word;
  for (char c : text + ' ') {
    if (c == ' ' || c == '\t') {
      if (!word.empty()) words.push_back(word);
      word.clear();
    } else {
      // People write "Space" as readily as "space".
      word += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
  }
  return words;
}

// The keys stored for an action; nothing when none is stored or none of the names is known, so that an
// action never ends up without a key.
std::vector<uint16_t> storedKeys(Preferences& store, std::string_view preferenceKey,
                                 std::vector<std::string>& unknownNames) {
  std::optional<PreferenceValue> value = store.objectForKey(preferenceKey);
  const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
  if (text == nullptr) return {};
  std::vector<uint16_t> codes;
  for (const std::string& name : splitOnBlanks(*text)) {
    if (auto code = keyCodeForNameOrNumber(name)) {
      codes.push_back(*code);
    } else {
      unknownNames.push_back(name);
    }
  }
  return codes;
}

// How a stored value reads in a message: "string 'abc'", "bool false".
std::string describedValue(const PreferenceValue& value) {
  struct {
    std::string operator()(int64_t v) const { return "int " + std::to_string(v); }
    std::string operator()(bool v) const { return v ? "bool true" : "bool false"; }
    std::string operator()(float v) const {
      char text[32];
      return "float " + std::string(text, std::to_chars(text, text + sizeof text, v).ptr);
    }
    std::string operator()(const std::string& v) const { return "string " + quotedForMessage(v); }
  } describe;
  return std::visit(describe, value);
}

// The value stored for an option that takes one of the `Accepted` types; nothing when none is stored,
// and nothing with a line in `wrongTypes` when it is of another type, so that the option keeps its
// default rather than reading "abc" as 0 or false as half speed.
template <typename... Accepted>
std::optional<PreferenceValue> storedOption(Preferences& store, std::string_view key, std::string_view wanted,
                                            std::vector<std::string>& wrongTypes) {
  std::optional<PreferenceValue> value = store.objectForKey(key);
  if (!value || (std::holds_alternative<Accepted>(*value) || ...)) return value;
  wrongTypes.push_back(std::string(key) + " in the preferences is " + describedValue(*value) + ", not " +
                       std::string(wanted) + "; using its default");
  return std::nullopt;
}

std::map<uint16_t, InputAction> keyActionsFrom(Preferences& store, std::vector<std::string>& unknownNames) {
  std::map<uint16_t, InputAction> actions;
  std::vector<std::pair<uint16_t, InputAction>> remapped;
  for (const ActionKeys& entry : kActionKeys) {
    std::vector<uint16_t> codes = storedKeys(store, entry.preferenceKey, unknownNames);
    if (codes.empty()) actions[entry.defaultKey] = entry.action;
    for (uint16_t code : codes) remapped.emplace_back(code, entry.action);
  }
  // A key the player chose wins over a default that happens to use it.
  for (const auto& [code, action] : remapped) actions[code] = action;
  return actions;
}

}  // namespace

std::map<uint16_t, InputAction> defaultKeyActions() {
  std::map<uint16_t, InputAction> actions;
  for (const ActionKeys& entry : kActionKeys) actions[entry.defaultKey] = entry.action;
  return actions;
}

std::optional<InputAction> ComfortOptions::actionForKey(uint16_t keyCode) const {
  auto it = keyActions.find(keyCode);
  if (it == keyActions.end()) return std::nullopt;
  return it->second;
}

ComfortOptions readComfortOptions(Preferences& store, bool desktopRequestsReducedMotion) {
  ComfortOptions options;
  if (auto pause = storedOption<bool>(store, kPauseOnFocusLossKey, "a bool", options.wrongTypes)) {
    options.pauseOnFocusLoss = std::get<bool>(*pause);
  }
  const auto reduced = storedOption<bool>(store, kReducedMotionKey, "a bool", options.wrongTypes);
  options.reducedMotion = reduced ? std::get<bool>(*reduced) : desktopRequestsReducedMotion;
  if (auto stored = storedOption<float, int64_t>(store, kGameSpeedKey, "a number", options.wrongTypes)) {
    const auto* fraction = std::get_if<float>(&*stored);
    const float speed = fraction ? *fraction : static_cast<float>(std::get<int64_t>(*stored));
    if (!std::isnan(speed)) options.gameSpeed = std::clamp(speed, kMinGameSpeed, kMaxGameSpeed);
  }
  options.keyActions = keyActionsFrom(store, options.unknownKeyNames);
  return options;
}

void GameScene::loadComfortOptions() {
  comfort_ = readComfortOptions(*services().preferences, services().desktopRequestsReducedMotion);
  for (const std::string& line : comfort_.wrongTypes) sayOnStandardError(line);
  if (comfort_.unknownKeyNames.empty()) return;
  // One line, whatever the file holds: as many names as fit, then how many more there are.
  constexpr size_t kLongestNameShown = 40;
  constexpr std::string_view kHeading = "ignoring unknown key names in the preferences:";
  constexpr size_t kRoomForCount = 24;  // "zindlebop: " and " and 12345 more"
  std::string names;
  size_t shown = 0;
  for (const std::string& name : comfort_.unknownKeyNames) {
    const std::string piece = " " + quotedForMessage(name, kLongestNameShown);
    if (kHeading.size() + names.size() + piece.size() + kRoomForCount > kMaxMessageBytes) break;
    names += piece;
    ++shown;
  }
  if (shown < comfort_.unknownKeyNames.size()) {
    names += " and " + std::to_string(comfort_.unknownKeyNames.size() - shown) + " more";
  }
  sayOnStandardError(std::string(kHeading) + names);
}

}  // namespace zb

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

struct NamedKey {
  std::string name;
  uint16_t code;
};

// The keys stored for an action, by name only: a bare number would be some keyboard's code that the
// player cannot see, so it is reported with the unknown names.
std::vector<NamedKey> storedKeys(Preferences& store, std::string_view preferenceKey,
                                 std::vector<std::string>& unknownNames) {
  std::optional<PreferenceValue> value = store.objectForKey(preferenceKey);
  const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
  if (text == nullptr) return {};
  std::vector<NamedKey> keys;
  for (const std::string& name : splitOnBlanks(*text)) {
    if (auto code = keyCodeForName(name)) {
      keys.push_back({name, *code});
    } else {
      unknownNames.push_back(name);
    }
  }
  return keys;
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

// A key the player gave to two actions stays with the first of jump, duck, pause and leave. An action
// left with no key of its own keeps its default, unless the player gave that key to another action.
std::map<uint16_t, InputAction> keyActionsFrom(Preferences& store, ComfortOptions& options) {
  std::map<uint16_t, InputAction> chosen;
  std::vector<const ActionKeys*> withoutKeys;
  for (const ActionKeys& entry : kActionKeys) {
    bool hasKey = false;
    for (const NamedKey& key : storedKeys(store, entry.preferenceKey, options.unknownKeyNames)) {
      auto [at, added] = chosen.emplace(key.code, entry.action);
      if (!added && at->second != entry.action) options.keyClashes.push_back({key.name, at->second, entry.action});
      hasKey = hasKey || at->second == entry.action;
    }
    if (!hasKey) withoutKeys.push_back(&entry);
  }
  for (const ActionKeys* entry : withoutKeys) chosen.emplace(entry->defaultKey, entry->action);
  return chosen;
}

void reportKeyClashes(const std::vector<KeyClash>& clashes) {
  for (const KeyClash& clash : clashes) {
    sayOnStandardError("the key " + quotedForMessage(clash.name) + " is given to both " + toString(clash.keptBy) +
                       " and " + toString(clash.alsoAskedBy) + " in the preferences; it stays with " +
                       toString(clash.keptBy));
  }
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

std::optional<uint16_t> ComfortOptions::keyFor(InputAction action) const {
  for (const ActionKeys& entry : kActionKeys) {
    if (entry.action == action && actionForKey(entry.defaultKey) == action) return entry.defaultKey;
  }
  for (const auto& [code, each] : keyActions) {
    if (each == action) return code;
  }
  return std::nullopt;
}

const char* toString(InputAction action) {
  switch (action) {
    case InputAction::jump: return "jump";
    case InputAction::duck: return "duck";
    case InputAction::pause: return "pause";
    case InputAction::leave: return "leave";
  }
  return "";
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
  options.keyActions = keyActionsFrom(store, options);
  return options;
}

void GameScene::loadComfortOptions() {
  comfort_ = readComfortOptions(*services().preferences, services().desktopRequestsReducedMotion);
  reportKeyClashes(comfort_.keyClashes);
  for (const std::string& line : comfort_.wrongTypes) sayOnStandardError(line);
  if (comfort_.unknownKeyNames.empty()) return;
  // One line, whatever the file holds: as many names as fit, then how many more there are.
  constexpr size_t kLongestNameShown = 40;
  constexpr std::string_view kHeading = "ignoring unknown key names in the preferences:";
  // "zindlebop: " before the heading and " and N more" after the names, N as long as a count can be.
  constexpr size_t kRoomForCount =
      std::string_view("zindlebop: ").size() + std::string_view(" and 18446744073709551615 more").size();
  std::string names;
  size_t shown = 0;
  for (const std::string& name : comfort_.unknownKeyNames) {
    std::string piece = " ";  // appended in place, as GCC 12 at -O3 warns falsely on " " + a temporary
    piece += quotedForMessage(name, kLongestNameShown);
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

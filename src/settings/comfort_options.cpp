#include "settings/comfort_options.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <variant>

#include "engine/input_event.hpp"
#include "engine/key_names.hpp"
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
    std::fprintf(stderr, "zindlebop: the key '%s' is given to both %s and %s in the preferences; it stays with %s\n",
                 clash.name.c_str(), toString(clash.keptBy), toString(clash.alsoAskedBy), toString(clash.keptBy));
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
  if (store.objectForKey(kPauseOnFocusLossKey)) options.pauseOnFocusLoss = store.boolForKey(kPauseOnFocusLossKey);
  options.reducedMotion =
      store.objectForKey(kReducedMotionKey) ? store.boolForKey(kReducedMotionKey) : desktopRequestsReducedMotion;
  if (store.objectForKey(kGameSpeedKey)) {
    const float speed = store.floatForKey(kGameSpeedKey);
    if (!std::isnan(speed)) options.gameSpeed = std::clamp(speed, kMinGameSpeed, kMaxGameSpeed);
  }
  options.keyActions = keyActionsFrom(store, options);
  return options;
}

void GameScene::loadComfortOptions() {
  comfort_ = readComfortOptions(*services().preferences, services().desktopRequestsReducedMotion);
  reportKeyClashes(comfort_.keyClashes);
  if (comfort_.unknownKeyNames.empty()) return;
  // One line, whatever the file holds: control characters and overlong names are cut down.
  constexpr size_t kLongestNameShown = 40;
  std::string names;
  for (const std::string& name : comfort_.unknownKeyNames) {
    std::string shown = name.substr(0, kLongestNameShown);
    std::replace_if(shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
    names += " '" + shown + "'";
  }
  std::fprintf(stderr, "zindlebop: ignoring unknown key names in the preferences:%s\n", names.c_str());
}

}  // namespace zb

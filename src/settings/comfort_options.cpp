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
  if (store.objectForKey(kPauseOnFocusLossKey)) options.pauseOnFocusLoss = store.boolForKey(kPauseOnFocusLossKey);
  options.reducedMotion =
      store.objectForKey(kReducedMotionKey) ? store.boolForKey(kReducedMotionKey) : desktopRequestsReducedMotion;
  if (store.objectForKey(kGameSpeedKey)) {
    const float speed = store.floatForKey(kGameSpeedKey);
    if (!std::isnan(speed)) options.gameSpeed = std::clamp(speed, kMinGameSpeed, kMaxGameSpeed);
  }
  options.keyActions = keyActionsFrom(store, options.unknownKeyNames);
  return options;
}

void GameScene::loadComfortOptions() {
  comfort_ = readComfortOptions(*services().preferences, services().desktopRequestsReducedMotion);
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

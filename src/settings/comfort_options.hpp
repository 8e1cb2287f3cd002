#pragma once
// Options that live only in the preferences file: pausing when the window loses focus, reduced motion,
// a slower game and remapped keys. Read once when the scene attaches. A value of a type the option does
// not take reads as its default, and an unknown key name is left out; the scene reports both.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "engine/preferences.hpp"

namespace zb {

// What a key or a gamepad button asks of the game.
enum class InputAction : uint8_t { jump, duck, pause, leave };

inline constexpr float kMinGameSpeed = 0.5f;
inline constexpr float kMaxGameSpeed = 1.0f;

const char* toString(InputAction action);

// A key the player gave to two actions, by the name written first.
struct KeyClash {
  std::string name;
  InputAction keptBy;
  InputAction alsoAskedBy;
};

// Space jumps, Down ducks, P pauses and Escape leaves.
std::map<uint16_t, InputAction> defaultKeyActions();

struct ComfortOptions {
  bool pauseOnFocusLoss = true;
  bool reducedMotion = false;
  float gameSpeed = kMaxGameSpeed;
  // Virtual key code to action; Space, Down, P and Escape unless the store says otherwise.
  std::map<uint16_t, InputAction> keyActions = defaultKeyActions();
  // Names in the stored key lists that name no key, as written.
  std::vector<std::string> unknownKeyNames;
  std::vector<KeyClash> keyClashes;
  // One line for each option stored with a type it does not take.
  std::vector<std::string> wrongTypes;

  std::optional<InputAction> actionForKey(uint16_t keyCode) const;
  // A key that does `action`: its default key if that still does it, else the lowest one; nothing if
  // the player gave every key of it away.
  std::optional<uint16_t> keyFor(InputAction action) const;
};

// `desktopRequestsReducedMotion` decides reduced motion when the store has no word on it.
ComfortOptions readComfortOptions(Preferences& store, bool desktopRequestsReducedMotion);

}  // namespace zb

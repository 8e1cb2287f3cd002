#pragma once
// The connected gamepads in the order they arrived, and what each one holds. The first connected pad
// is the one that plays; the others wait their turn. Pads have no key repeat, so a press of a button
// already held is not news, and neither is a release of one that is not.
#include <array>
#include <bitset>
#include <cstddef>
#include <optional>
#include <vector>

#include "engine/gamepad_event.hpp"

namespace zb {

// More pads than anyone plugs in: past it a pad is not taken, and every look-up stays a short walk.
inline constexpr std::size_t kMaxGamepads = 16;

class GamepadRoster {
 public:
  // What a removed pad still held, so that its buttons and sticks can be let go of.
  struct Leftovers {
    std::vector<GamepadButton> buttons;
    std::vector<GamepadAxis> axes;  // those not at rest
  };

  // A pad already connected stays where it is. False when kMaxGamepads pads are connected already.
  bool connect(GamepadId id);
  // Nothing for a pad that was not connected.
  std::optional<Leftovers> disconnect(GamepadId id);

  std::size_t count() const { return pads_.size(); }
  std::optional<GamepadId> playingPad() const;
  std::optional<GamepadId> newestPad() const;

  // Each true when the change is news from the playing pad, i.e. something the game should hear.
  bool press(GamepadId id, GamepadButton button);
  bool release(GamepadId id, GamepadButton button);
  bool moveAxis(GamepadId id, GamepadAxis axis, double value);

 private:
  struct Pad {
    GamepadId id;
    std::bitset<kGamepadButtonCount> held;
    std::array<double, kGamepadAxisCount> axes{};
  };
  Pad* find(GamepadId id);
  bool plays(const Pad& pad) const { return &pad == &pads_.front(); }

  std::vector<Pad> pads_;
};

}  // namespace zb

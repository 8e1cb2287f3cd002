#include "engine/gamepad_roster.hpp"

#include <algorithm>

namespace zb {

bool GamepadRoster::connect(GamepadId id) {
  if (find(id) != nullptr) return true;
  if (pads_.size() >= kMaxGamepads) return false;
  pads_.push_back(Pad{id, {}, {}});
  return true;
}

std::optional<GamepadRoster::Leftovers> GamepadRoster::disconnect(GamepadId id) {
  auto it = std::find_if(pads_.begin(), pads_.end(), [id](const Pad& pad) { return pad.id == id; });
  if (it == pads_.end()) return std::nullopt;
  Leftovers leftovers;
  for (int i = 0; i < kGamepadButtonCount; ++i) {
    if (it->held.test(static_cast<size_t>(i))) leftovers.buttons.push_back(static_cast<GamepadButton>(i));
  }
  for (int i = 0; i < kGamepadAxisCount; ++i) {
    if (it->axes[static_cast<size_t>(i)] != 0) leftovers.axes.push_back(static_cast<GamepadAxis>(i));
  }
  pads_.erase(it);
  return leftovers;
}

std::optional<GamepadId> GamepadRoster::playingPad() const {
  if (pads_.empty()) return std::nullopt;
  return pads_.front().id;
}

std::optional<GamepadId> GamepadRoster::newestPad() const {
  if (pads_.empty()) return std::nullopt;
  return pads_.back().id;
}

GamepadRoster::Pad* GamepadRoster::find(GamepadId id) {
  auto it = std::find_if(pads_.begin(), pads_.end(), [id](const Pad& pad) { return pad.id == id; });
  return it == pads_.end() ? nullptr : &*it;
}

bool GamepadRoster::press(GamepadId id, GamepadButton button) {
  Pad* pad = find(id);
  const auto bit = static_cast<size_t>(button);
  if (pad == nullptr || bit >= kGamepadButtonCount || pad->held.test(bit)) return false;
  pad->held.set(bit);
  return plays(*pad);
}

bool GamepadRoster::release(GamepadId id, GamepadButton button) {
  Pad* pad = find(id);
  const auto bit = static_cast<size_t>(button);
  if (pad == nullptr || bit >= kGamepadButtonCount || !pad->held.test(bit)) return false;
  pad->held.reset(bit);
  return plays(*pad);
}

bool GamepadRoster::moveAxis(GamepadId id, GamepadAxis axis, double value) {
  Pad* pad = find(id);
  const auto index = static_cast<size_t>(axis);
  if (pad == nullptr || index >= kGamepadAxisCount) return false;
  pad->axes[index] = value;
  return plays(*pad);
}

}  // namespace zb

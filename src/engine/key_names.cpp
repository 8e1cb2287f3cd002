#include "engine/key_names.hpp"

#include <utility>

#include "engine/input_event.hpp"

namespace zb {

namespace {

constexpr std::pair<std::string_view, uint16_t> kNamedKeys[] = {
    {"space", keycode::space},       {"return", keycode::returnKey}, {"enter", keycode::keypadEnter},
    {"escape", keycode::escape},     {"down", keycode::downArrow},   {"up", keycode::upArrow},
    {"left", keycode::leftArrow},    {"right", keycode::rightArrow},
    {"tab", keycode::tab},
};

}  // namespace

std::optional<uint16_t> keyCodeForName(std::string_view name) {
  if (name.size() == 1) {
    const char c = name[0];
    if (c >= 'a' && c <= 'z') return kLetterKeyCodes[static_cast<size_t>(c - 'a')];
    if (c >= '0' && c <= '9') return kDigitKeyCodes[static_cast<size_t>(c - '0')];
    return std::nullopt;
  }
  for (const auto& [keyName, code] : kNamedKeys) {
    if (keyName == name) return code;
  }
  return std::nullopt;
}

}  // namespace zb

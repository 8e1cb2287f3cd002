#include "engine/quoted_text.hpp"

#include <cstdint>
#include <iostream>

namespace zb {
namespace {

constexpr std::string_view kCutMark = "...";
constexpr char32_t kDelete = 0x7F;
constexpr char32_t kLastC1 = 0x9F;

struct Character {
  size_t length;  // bytes; 0 when the bytes there are not UTF-8
  char32_t code;
};

// The UTF-8 character at the start of `text`, refusing overlong forms, surrogates and code points
// past U+10FFFF.
Character characterAt(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return {1, lead};
  size_t length = 0;
  char32_t code = 0, least = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 2, code = lead & 0x1F, least = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, code = lead & 0x0F, least = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, code = lead & 0x07, least = 0x10000;
  } else {
    return {0, 0};
  }
  if (text.size() < length) return {0, 0};
  for (size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0) != 0x80) return {0, 0};
    code = code << 6 | (next & 0x3F);
  }
  if (code < least || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {0, 0};
  return {length, code};
}

bool isControl(char32_t code) { return code < 0x20 || (code >= kDelete && code <= kLastC1); }

std::string hexEscape(uint32_t value) {
  static constexpr char kHex[] = "0123456789abcdef";
  return std::string("\\x") + kHex[(value >> 4) & 0xF] + kHex[value & 0xF];
}

// The next piece of `text` as it is shown, and how many bytes of `text` it stands for.
std::pair<std::string, size_t> shownPiece(std::string_view text, bool escapeBackslash) {
  const Character character = characterAt(text);
  if (character.length == 0) return {hexEscape(static_cast<unsigned char>(text[0])), 1};
  if (isControl(character.code)) return {hexEscape(character.code), character.length};
  if (escapeBackslash && character.code == '\\') return {"\\\\", 1};
  return {std::string(text.substr(0, character.length)), character.length};
}

// `text` shown in at most `maxBytes` bytes; `cut` tells whether some of it was left out.
std::string shown(std::string_view text, size_t maxBytes, bool escapeBackslash, bool& cut) {
  std::string out;
  cut = false;
  while (!text.empty()) {
    auto [piece, used] = shownPiece(text, escapeBackslash);
    if (out.size() + piece.size() > maxBytes) {
      cut = true;
      break;
    }
    out += piece;
    text.remove_prefix(used);
  }
  return out;
}

}  // namespace

std::string quotedForMessage(std::string_view text, size_t maxBytes) {
  bool cut = false;
  // Appended in place: GCC 12 at -O3 warns falsely (-Wrestrict) on a literal prepended to a temporary.
  std::string out = "'";
  out += shown(text, maxBytes, true, cut);
  out += '\'';
  if (cut) out += kCutMark;
  return out;
}

std::string oneLine(std::string_view line) {
  bool cut = false;
  std::string out = shown(line, kMaxMessageBytes, false, cut);
  if (!cut) return out;
  // Room for the mark: a cut line loses a little more.
  return shown(line, kMaxMessageBytes - kCutMark.size(), false, cut) + std::string(kCutMark);
}

void sayOnStandardError(std::string_view message) {
  std::cerr << oneLine("zindlebop: " + std::string(message)) << std::endl;
}

}  // namespace zb

#include "headless/error_quote.hpp"

namespace zb {
namespace {

bool isContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

std::string quotedForError(std::string_view text) {
  size_t end = 0;
  size_t characters = 0;
  while (end < text.size() && characters < kMaxQuotedChars) {
    ++end;
    while (end < text.size() && isContinuationByte(text[end])) ++end;
    ++characters;
  }
  std::string quoted = "'" + std::string(text.substr(0, end)) + "'";
  if (end < text.size()) quoted += "...";
  return quoted;
}

}  // namespace zb

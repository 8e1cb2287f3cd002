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
  // Appended in place: GCC 12 at -O3 warns falsely (-Wrestrict) when prepending to a temporary string.
  std::string quoted = "'";
  quoted.append(text.substr(0, end)).append("'");
  if (end < text.size()) quoted += "...";
  return quoted;
}

}  // namespace zb

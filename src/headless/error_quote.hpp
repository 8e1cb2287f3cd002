#pragma once
// How an error line shows the text it complains about: in single quotes, cut after a fixed number of
// characters, so that a runaway token (a megabyte without a space) still gives a one-line message.
#include <string>
#include <string_view>

namespace zb {

inline constexpr size_t kMaxQuotedChars = 80;

// 'text', or 'the first kMaxQuotedChars characters'... when it is longer. A cut never splits a UTF-8
// character.
std::string quotedForError(std::string_view text);

}  // namespace zb

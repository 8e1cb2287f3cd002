#pragma once
// How a message on standard error shows text the game did not write itself: a file name, a stored
// value, a script line, an environment variable. Such text may hold terminal escape codes, line breaks
// or a megabyte without a space; the player still gets one readable line that cannot repaint the
// terminal.
#include <string>
#include <string_view>

namespace zb {

// The shown part of quoted text, escapes included, stays within this many bytes.
inline constexpr size_t kMaxQuotedBytes = 80;
// A whole message line, without its newline, stays within this many bytes.
inline constexpr size_t kMaxMessageBytes = 200;

// 'text' with control characters (C0, DEL, C1 whether as UTF-8 or as raw bytes), bytes that are not
// UTF-8, and the backslash written as \xNN (or \\); cut after at most `maxBytes` bytes, never inside a
// character or an escape, and then followed by "...".
std::string quotedForMessage(std::string_view text, size_t maxBytes = kMaxQuotedBytes);

// `line` as one line of at most kMaxMessageBytes bytes: control characters and bytes that are not
// UTF-8 escaped as in quotedForMessage(), backslashes left as they are, and a longer line cut and ended with "...".
std::string oneLine(std::string_view line);

// Prints "zindlebop: <message>" on standard error as oneLine() shows it, flushed.
void sayOnStandardError(std::string_view message);

}  // namespace zb

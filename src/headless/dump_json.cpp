#include "headless/dump_json.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace zb {
namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// The length of the well-formed UTF-8 character at the start of `text`, or 0 when there is none
// (a stray continuation byte, a cut sequence, an overlong form, a surrogate, or past U+10FFFF).
size_t utf8SequenceLength(std::string_view text) {
  auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  size_t length = 0;
  unsigned char low = 0x80, high = 0xBF;  // the range of the second byte
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (text.size() < length || byte(1) < low || byte(1) > high) return 0;
  for (size_t i = 2; i < length; ++i) {
    if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
  }
  return length;
}

}  // namespace

void JsonWriter::separate() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (!hasElement_.empty()) {
    if (hasElement_.back()) out_ << ',';
    hasElement_.back() = true;
  }
}

void JsonWriter::beginObject() {
  separate();
  out_ << '{';
  hasElement_.push_back(false);
}

void JsonWriter::endObject() {
  hasElement_.pop_back();
  out_ << '}';
}

void JsonWriter::beginArray() {
  separate();
  out_ << '[';
  hasElement_.push_back(false);
}

void JsonWriter::endArray() {
  hasElement_.pop_back();
  out_ << ']';
}

void JsonWriter::key(std::string_view name) {
  separate();
  out_ << escape(name) << ':';
  afterKey_ = true;
}

std::string JsonWriter::formatDouble(double number) {
  char buffer[40];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::general, 17);
  return std::string(buffer, result.ptr);
}

void JsonWriter::value(double number) {
  if (!std::isfinite(number)) {
    null();
    return;
  }
  separate();
  out_ << formatDouble(number);
}

void JsonWriter::value(int64_t number) {
  separate();
  out_ << number;
}

void JsonWriter::value(uint64_t number) {
  separate();
  out_ << number;
}

void JsonWriter::value(bool flag) {
  separate();
  out_ << (flag ? "true" : "false");
}

void JsonWriter::value(std::string_view text) {
  separate();
  out_ << escape(text);
}

void JsonWriter::null() {
  separate();
  out_ << "null";
}

void JsonWriter::numbers(std::initializer_list<double> items) {
  beginArray();
  for (double item : items) value(item);
  endArray();
}

void JsonWriter::value(Point p) { numbers({p.x, p.y}); }
void JsonWriter::value(Size s) { numbers({s.width, s.height}); }
void JsonWriter::value(const Rect& r) { numbers({r.origin.x, r.origin.y, r.size.width, r.size.height}); }
void JsonWriter::value(const Color& c) { numbers({c.r, c.g, c.b, c.a}); }
void JsonWriter::segment(Point from, Point to) { numbers({from.x, from.y, to.x, to.y}); }

std::string JsonWriter::escape(std::string_view text) {
  std::string escaped = "\"";
  for (size_t i = 0; i < text.size();) {
    const char ch = text[i];
    switch (ch) {
      case '"': escaped += "\\\""; break;
      case '\\': escaped += "\\\\"; break;
      case '\n': escaped += "\\n"; break;
      case '\r': escaped += "\\r"; break;
      case '\t': escaped += "\\t"; break;
      case '\b': escaped += "\\b"; break;
      case '\f': escaped += "\\f"; break;
      default:
        if (static_cast<unsigned char>(ch) < 0x20 || ch == 0x7f) {
          char code[8];
          std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned char>(ch));
          escaped += code;
        } else if (static_cast<unsigned char>(ch) >= 0x80) {
          // A reader of the dump expects UTF-8; a byte that does not start a well-formed character
          // stands as U+FFFD, and the next byte is looked at afresh.
          const size_t length = utf8SequenceLength(text.substr(i));
          escaped += length > 0 ? text.substr(i, length) : kReplacementCharacter;
          i += length > 0 ? length : 1;
          continue;
        } else {
          escaped += ch;
        }
    }
    ++i;
  }
  escaped += '"';
  return escaped;
}

}  // namespace zb

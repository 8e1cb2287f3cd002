#include "headless/dump_json.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace zb {

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
  for (char ch : text) {
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
        } else {
          escaped += ch;  // UTF-8 passes through unchanged
        }
    }
  }
  escaped += '"';
  return escaped;
}

}  // namespace zb

#pragma once
// A strict little JSON reader for tests: it rejects anything a standard parser would (trailing
// commas, bare control characters, malformed numbers, duplicate keys, trailing text) and keeps object
// members in their written order, so tests can check both well-formedness and key order.
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zb::test {

struct Json {
  enum class Type { null, boolean, number, string, array, object };
  Type type = Type::null;
  bool boolean = false;
  double number = 0;
  std::string text;  // a string's value, or a number exactly as written
  std::vector<Json> items;
  std::vector<std::pair<std::string, Json>> members;

  bool isNull() const { return type == Type::null; }
  bool has(std::string_view key) const { return find(key) != nullptr; }
  const Json& operator[](std::string_view key) const {
    if (const Json* value = find(key)) return *value;
    throw std::out_of_range("no key " + std::string(key));
  }
  const Json& operator[](size_t index) const { return items.at(index); }
  std::vector<std::string> keys() const {
    std::vector<std::string> names;
    for (const auto& member : members) names.push_back(member.first);
    return names;
  }

 private:
  const Json* find(std::string_view key) const {
    for (const auto& member : members) {
      if (member.first == key) return &member.second;
    }
    return nullptr;
  }
};

class JsonReader {
 public:
  explicit JsonReader(std::string_view text) : text_(text) {}

  // The value, or nothing with `error` describing the first problem.
  std::optional<Json> read(std::string* error = nullptr) {
    try {
      Json value = readValue(0);
      skipSpace();
      if (at_ != text_.size()) fail("trailing text");
      return value;
    } catch (const std::runtime_error& problem) {
      if (error) *error = problem.what();
      return std::nullopt;
    }
  }

 private:
  static constexpr int kMaxDepth = 64;

  [[noreturn]] void fail(const std::string& what) const {
    throw std::runtime_error(what + " at offset " + std::to_string(at_));
  }
  char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  bool accept(char ch) { return peek() == ch && ++at_; }
  void expect(char ch) {
    if (!accept(ch)) fail(std::string("expected '") + ch + "'");
  }
  void skipSpace() {
    while (peek() == ' ' || peek() == '\t' || peek() == '\n' || peek() == '\r') ++at_;
  }
  void digits() {
    if (peek() < '0' || peek() > '9') fail("expected a digit");
    while (peek() >= '0' && peek() <= '9') ++at_;
  }

  Json readValue(int depth) {
    if (depth > kMaxDepth) fail("too deep");
    skipSpace();
    Json value;
    const size_t start = at_;
    if (peek() == '{' || peek() == '[') {
      readContainer(value, depth);
    } else if (peek() == '"') {
      value.type = Json::Type::string;
      value.text = readString();
    } else if (peek() == 'n' || peek() == 't' || peek() == 'f') {
      const std::string_view word = peek() == 'n' ? "null" : peek() == 't' ? "true" : "false";
      if (text_.substr(at_, word.size()) != word) fail("bad literal");
      at_ += word.size();
      value.type = word == "null" ? Json::Type::null : Json::Type::boolean;
      value.boolean = word == "true";
    } else {
      accept('-');
      if (!accept('0')) digits();
      if (accept('.')) digits();
      if (accept('e') || accept('E')) {
        if (!accept('+')) accept('-');
        digits();
      }
      value.type = Json::Type::number;
      value.text = std::string(text_.substr(start, at_ - start));
      value.number = std::strtod(value.text.c_str(), nullptr);
    }
    return value;
  }

  // An object or an array: members or items separated by commas, none after the last.
  void readContainer(Json& value, int depth) {
    const bool object = accept('{');
    if (!object) expect('[');
    value.type = object ? Json::Type::object : Json::Type::array;
    skipSpace();
    if (accept(object ? '}' : ']')) return;
    do {
      if (object) {
        skipSpace();
        std::string key = readString();
        if (value.has(key)) fail("duplicate key " + key);
        skipSpace();
        expect(':');
        value.members.emplace_back(std::move(key), readValue(depth + 1));
      } else {
        value.items.push_back(readValue(depth + 1));
      }
      skipSpace();
    } while (accept(','));
    expect(object ? '}' : ']');
  }

  std::string readString() {
    static constexpr std::string_view kEscapes = "\"\"\\\\//b\bf\fn\nr\rt\t";  // pairs: escape, character
    expect('"');
    std::string out;
    while (!accept('"')) {
      if (at_ >= text_.size()) fail("unterminated string");
      const char ch = text_[at_++];
      if (static_cast<unsigned char>(ch) < 0x20) fail("control character in string");
      const size_t escape = ch == '\\' ? kEscapes.find(peek()) : std::string_view::npos;
      if (ch != '\\') {
        out += ch;
      } else if (accept('u')) {
        appendUnicodeEscape(out);
      } else if (escape % 2 == 0 && escape != std::string_view::npos && ++at_) {
        out += kEscapes[escape + 1];
      } else {
        fail("bad escape");
      }
    }
    return out;
  }

  // The code unit of a \u escape, as UTF-8; surrogate pairs are not joined.
  void appendUnicodeEscape(std::string& out) {
    const std::string hex(text_.substr(at_, 4));
    if (hex.size() != 4 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) fail("bad \\u escape");
    at_ += 4;
    const auto code = static_cast<unsigned>(std::strtoul(hex.c_str(), nullptr, 16));
    if (code < 0x80) {
      out += static_cast<char>(code);
    } else if (code < 0x800) {
      out += {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
    } else {
      out += {static_cast<char>(0xE0 | (code >> 12)), static_cast<char>(0x80 | ((code >> 6) & 0x3F)),
              static_cast<char>(0x80 | (code & 0x3F))};
    }
  }

  std::string_view text_;
  size_t at_ = 0;
};

inline std::optional<Json> parseJson(std::string_view text, std::string* error = nullptr) {
  return JsonReader(text).read(error);
}

}  // namespace zb::test

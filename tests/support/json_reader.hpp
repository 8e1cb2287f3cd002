#pragma once
// A strict little JSON reader for tests: it rejects anything a standard parser would (trailing
// commas, bare control characters, malformed numbers, duplicate keys, trailing text) and keeps object
// members in their written order, so tests can check both well-formedness and key order.
#include <cmath>
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
  bool has(std::string_view key) const {
    for (const auto& member : members) {
      if (member.first == key) return true;
    }
    return false;
  }
  const Json& operator[](std::string_view key) const {
    for (const auto& member : members) {
      if (member.first == key) return member.second;
    }
    throw std::out_of_range("no key " + std::string(key));
  }
  const Json& operator[](size_t index) const { return items.at(index); }
  std::vector<std::string> keys() const {
    std::vector<std::string> names;
    for (const auto& member : members) names.push_back(member.first);
    return names;
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
  void expect(char ch) {
    if (peek() != ch) fail(std::string("expected '") + ch + "'");
    ++at_;
  }
  void skipSpace() {
    while (at_ < text_.size() && std::string_view(" \t\n\r").find(text_[at_]) != std::string_view::npos) ++at_;
  }
  void literal(std::string_view word) {
    if (text_.substr(at_, word.size()) != word) fail("bad literal");
    at_ += word.size();
  }

  Json readValue(int depth) {
    if (depth > kMaxDepth) fail("too deep");
    skipSpace();
    Json value;
    char ch = peek();
    if (ch == '{') {
      readObject(value, depth);
    } else if (ch == '[') {
      readArray(value, depth);
    } else if (ch == '"') {
      value.type = Json::Type::string;
      value.text = readString();
    } else if (ch == 't' || ch == 'f') {
      value.type = Json::Type::boolean;
      value.boolean = ch == 't';
      literal(ch == 't' ? "true" : "false");
    } else if (ch == 'n') {
      literal("null");
    } else {
      readNumber(value);
    }
    return value;
  }

  void readObject(Json& value, int depth) {
    value.type = Json::Type::object;
    expect('{');
    skipSpace();
    if (peek() == '}') {
      ++at_;
      return;
    }
    while (true) {
      skipSpace();
      std::string key = readString();
      if (value.has(key)) fail("duplicate key " + key);
      skipSpace();
      expect(':');
      value.members.emplace_back(std::move(key), readValue(depth + 1));
      skipSpace();
      if (peek() == ',') {
        ++at_;
        continue;
      }
      expect('}');
      return;
    }
  }

  void readArray(Json& value, int depth) {
    value.type = Json::Type::array;
    expect('[');
    skipSpace();
    if (peek() == ']') {
      ++at_;
      return;
    }
    while (true) {
      value.items.push_back(readValue(depth + 1));
      skipSpace();
      if (peek() == ',') {
        ++at_;
        continue;
      }
      expect(']');
      return;
    }
  }

  static bool isDigit(char ch) { return ch >= '0' && ch <= '9'; }

  void digits() {
    if (!isDigit(peek())) fail("expected a digit");
    while (isDigit(peek())) ++at_;
  }

  void readNumber(Json& value) {
    size_t start = at_;
    if (peek() == '-') ++at_;
    if (peek() == '0') {
      ++at_;
    } else {
      digits();
    }
    if (peek() == '.') {
      ++at_;
      digits();
    }
    if (peek() == 'e' || peek() == 'E') {
      ++at_;
      if (peek() == '+' || peek() == '-') ++at_;
      digits();
    }
    value.type = Json::Type::number;
    value.text = std::string(text_.substr(start, at_ - start));
    value.number = std::strtod(value.text.c_str(), nullptr);
  }

  static void appendUtf8(std::string& out, unsigned code) {
    if (code < 0x80) {
      out += static_cast<char>(code);
    } else if (code < 0x800) {
      out += static_cast<char>(0xC0 | (code >> 6));
      out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
      out += static_cast<char>(0xE0 | (code >> 12));
      out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (code >> 18));
      out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (code & 0x3F));
    }
  }

  unsigned hex4() {
    if (at_ + 4 > text_.size()) fail("short \\u escape");
    unsigned code = 0;
    for (int i = 0; i < 4; ++i) {
      char ch = text_[at_++];
      code <<= 4;
      if (isDigit(ch)) code |= static_cast<unsigned>(ch - '0');
      else if (ch >= 'a' && ch <= 'f') code |= static_cast<unsigned>(ch - 'a' + 10);
      else if (ch >= 'A' && ch <= 'F') code |= static_cast<unsigned>(ch - 'A' + 10);
      else fail("bad \\u escape");
    }
    return code;
  }

  std::string readString() {
    expect('"');
    std::string out;
    while (true) {
      if (at_ >= text_.size()) fail("unterminated string");
      char ch = text_[at_++];
      if (ch == '"') return out;
      if (static_cast<unsigned char>(ch) < 0x20) fail("control character in string");
      if (ch != '\\') {
        out += ch;
        continue;
      }
      char escape = peek();
      ++at_;
      switch (escape) {
        case '"': out += '"'; break;
        case '\\': out += '\\'; break;
        case '/': out += '/'; break;
        case 'b': out += '\b'; break;
        case 'f': out += '\f'; break;
        case 'n': out += '\n'; break;
        case 'r': out += '\r'; break;
        case 't': out += '\t'; break;
        case 'u': appendUtf8(out, hex4()); break;
        default: fail("bad escape");
      }
    }
  }

  std::string_view text_;
  size_t at_ = 0;
};

inline std::optional<Json> parseJson(std::string_view text, std::string* error = nullptr) {
  return JsonReader(text).read(error);
}

}  // namespace zb::test

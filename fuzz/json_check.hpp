#pragma once
// Whether a text is exactly one well-formed JSON value: strings without raw control characters or
// bad escapes, numbers in JSON's own syntax (no NaN, no infinity), nothing after the value.
#include <cctype>
#include <cstring>
#include <string_view>

namespace zb::fuzz {

class JsonCheck {
 public:
  static bool valid(std::string_view text) {
    JsonCheck check(text);
    if (!check.value(0)) return false;
    check.space();
    return check.at_ == text.size();
  }

 private:
  static constexpr int kMaxDepth = 64;

  explicit JsonCheck(std::string_view text) : text_(text) {}

  char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  void space() {
    while (peek() == ' ' || peek() == '\t' || peek() == '\n' || peek() == '\r') ++at_;
  }
  bool digits() {
    size_t start = at_;
    while (peek() >= '0' && peek() <= '9') ++at_;
    return at_ > start;
  }

  bool value(int depth) {
    space();
    if (depth > kMaxDepth) return false;
    if (peek() == '{') return sequence('}', depth, true);
    if (peek() == '[') return sequence(']', depth, false);
    if (peek() == '"') return string();
    for (std::string_view word : {"true", "false", "null"}) {
      if (text_.substr(at_, word.size()) == word) {
        at_ += word.size();
        return true;
      }
    }
    return number();
  }

  bool sequence(char close, int depth, bool members) {
    ++at_;
    space();
    if (peek() == close) return ++at_, true;
    while (true) {
      if (members) {
        space();
        if (!string()) return false;
        space();
        if (peek() != ':') return false;
        ++at_;
      }
      if (!value(depth + 1)) return false;
      space();
      if (peek() == close) return ++at_, true;
      if (peek() != ',') return false;
      ++at_;
    }
  }

  bool string() {
    if (peek() != '"') return false;
    for (++at_; at_ < text_.size(); ++at_) {
      auto c = static_cast<unsigned char>(text_[at_]);
      if (c == '"') return ++at_, true;
      if (c < 0x20) return false;
      if (c != '\\') continue;
      char escape = ++at_ < text_.size() ? text_[at_] : '\0';
      if (escape == 'u') {
        for (int i = 0; i < 4; ++i) {
          if (!std::isxdigit(static_cast<unsigned char>(++at_ < text_.size() ? text_[at_] : 'x'))) return false;
        }
      } else if (escape == '\0' || !std::strchr("\"\\/bfnrt", escape)) {
        return false;
      }
    }
    return false;
  }

  bool number() {
    if (peek() == '-') ++at_;
    if (peek() == '0') {
      ++at_;
    } else if (!digits()) {
      return false;
    }
    if (peek() == '.' && (++at_, !digits())) return false;
    if (peek() == 'e' || peek() == 'E') {
      ++at_;
      if (peek() == '+' || peek() == '-') ++at_;
      if (!digits()) return false;
    }
    return true;
  }

  std::string_view text_;
  size_t at_ = 0;
};

}  // namespace zb::fuzz

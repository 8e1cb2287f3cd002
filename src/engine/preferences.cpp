#include "engine/preferences.hpp"

#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

namespace zb {

namespace {

std::string_view trimLeft(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  return s;
}

// from_chars accepts no leading '+'.
std::string_view withoutPlus(std::string_view s) {
  if (s.size() > 1 && s.front() == '+' && s[1] != '-') s.remove_prefix(1);
  return s;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) return false;
  }
  return true;
}

// The leading number of a string, or 0 when it does not start with one.
double leadingDouble(std::string_view s) {
  s = withoutPlus(trimLeft(s));
  double value = 0;
  auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
  if (error == std::errc::result_out_of_range) return s.front() == '-' ? -HUGE_VAL : HUGE_VAL;
  return error == std::errc() ? value : 0.0;
}

int64_t leadingInteger(std::string_view s) {
  s = withoutPlus(trimLeft(s));
  int64_t value = 0;
  auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
  if (error == std::errc::result_out_of_range) {
    return s.front() == '-' ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
  }
  return error == std::errc() ? value : 0;
}

int64_t saturatingTruncate(double v) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (std::isnan(v)) return 0;
  if (v >= kLimit) return std::numeric_limits<int64_t>::max();
  if (v < -kLimit) return std::numeric_limits<int64_t>::min();
  return static_cast<int64_t>(v);
}

bool stringIsTrue(std::string_view s) {
  s = trimLeft(s);
  std::string_view word = s;
  while (!word.empty() && std::isspace(static_cast<unsigned char>(word.back()))) word.remove_suffix(1);
  if (equalsIgnoringCase(word, "true") || equalsIgnoringCase(word, "yes")) return true;
  double number = leadingDouble(s);
  return number != 0 && !std::isnan(number);
}

}  // namespace

int64_t Preferences::integerForKey(std::string_view key) {
  std::optional<PreferenceValue> value = objectForKey(key);
  if (!value) return 0;
  if (auto* i = std::get_if<int64_t>(&*value)) return *i;
  if (auto* b = std::get_if<bool>(&*value)) return *b ? 1 : 0;
  if (auto* f = std::get_if<float>(&*value)) return saturatingTruncate(*f);
  return leadingInteger(std::get<std::string>(*value));
}

bool Preferences::boolForKey(std::string_view key) {
  std::optional<PreferenceValue> value = objectForKey(key);
  if (!value) return false;
  if (auto* i = std::get_if<int64_t>(&*value)) return *i != 0;
  if (auto* b = std::get_if<bool>(&*value)) return *b;
  if (auto* f = std::get_if<float>(&*value)) return *f != 0 && !std::isnan(*f);
  return stringIsTrue(std::get<std::string>(*value));
}

float Preferences::floatForKey(std::string_view key) {
  std::optional<PreferenceValue> value = objectForKey(key);
  if (!value) return 0;
  if (auto* i = std::get_if<int64_t>(&*value)) return static_cast<float>(*i);
  if (auto* b = std::get_if<bool>(&*value)) return *b ? 1.0f : 0.0f;
  if (auto* f = std::get_if<float>(&*value)) return *f;
  return static_cast<float>(leadingDouble(std::get<std::string>(*value)));
}

std::optional<PreferenceValue> MemoryPreferences::objectForKey(std::string_view key) {
  auto it = values_.find(key);
  if (it == values_.end()) return std::nullopt;
  return it->second;
}

void MemoryPreferences::setObject(std::string_view key, PreferenceValue value) {
  values_.insert_or_assign(std::string(key), std::move(value));
}

void MemoryPreferences::removeObject(std::string_view key) {
  auto it = values_.find(key);
  if (it != values_.end()) values_.erase(it);
}

std::map<std::string, PreferenceValue> MemoryPreferences::dictionaryRepresentation() {
  return {values_.begin(), values_.end()};
}

}  // namespace zb

// Each line of the [preferences] group holds one value with its type in front, so that a value reads
// back as the type it was written with:
//
//   [preferences]
//   quorraHighScore=int:1234
//   quorra_settingShowFPS=bool:false
//   quorra_settingMusicVolume=float:0.70000005
//   playerName=string:Anna
//
// Floats are written in their shortest form that reads back to the same bits. Key characters other
// than letters, digits, '_', '-' and '.' are written as %XX. A hand edit such as "bool: FALSE" or
// "Float:0.25 " reads as meant: spaces around a type or a number and the case of a type or a boolean
// do not matter. A string keeps every character after the colon.
#include "platform/preference_key_file.hpp"

#include <glib.h>

#include <charconv>
#include <memory>

namespace zb {
namespace {

constexpr const char* kGroup = "preferences";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

using KeyFilePtr = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;
using GCharPtr = std::unique_ptr<gchar, decltype(&g_free)>;

KeyFilePtr newKeyFile() { return KeyFilePtr(g_key_file_new(), &g_key_file_free); }

bool isPlainKeyChar(char c) { return g_ascii_isalnum(c) || c == '_' || c == '-' || c == '.'; }

std::string encodeKey(std::string_view key) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (char c : key) {
    if (isPlainKeyChar(c)) {
      out += c;
    } else {
      auto byte = static_cast<unsigned char>(c);
      out += '%';
      out += kHex[byte >> 4];
      out += kHex[byte & 0xF];
    }
  }
  return out;
}

std::optional<std::string> decodeKey(std::string_view encoded) {
  std::string out;
  for (size_t i = 0; i < encoded.size(); ++i) {
    if (encoded[i] != '%') {
      out += encoded[i];
      continue;
    }
    if (i + 2 >= encoded.size() || !g_ascii_isxdigit(encoded[i + 1]) || !g_ascii_isxdigit(encoded[i + 2])) {
      return std::nullopt;
    }
    out += static_cast<char>(g_ascii_xdigit_value(encoded[i + 1]) * 16 + g_ascii_xdigit_value(encoded[i + 2]));
    i += 2;
  }
  return out;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && g_ascii_isspace(text.front())) text.remove_prefix(1);
  while (!text.empty() && g_ascii_isspace(text.back())) text.remove_suffix(1);
  return text;
}

bool sameWord(std::string_view a, std::string_view b) {
  return a.size() == b.size() && g_ascii_strncasecmp(a.data(), b.data(), a.size()) == 0;
}

template <typename Number>
std::string numberText(Number value) {
  char buffer[64];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
  text = trimmed(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  Number value{};
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string encodeValue(const PreferenceValue& value) {
  struct {
    std::string operator()(int64_t v) const { return "int:" + numberText(v); }
    std::string operator()(bool v) const { return v ? "bool:true" : "bool:false"; }
    std::string operator()(float v) const { return "float:" + numberText(v); }
    std::string operator()(const std::string& v) const { return "string:" + v; }
  } encoder;
  return std::visit(encoder, value);
}

std::optional<PreferenceValue> decodeValue(std::string_view text) {
  size_t colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  std::string_view type = trimmed(text.substr(0, colon));
  std::string_view body = text.substr(colon + 1);
  if (sameWord(type, "string")) return std::string(body);
  if (sameWord(type, "bool")) {
    if (sameWord(trimmed(body), "true")) return true;
    if (sameWord(trimmed(body), "false")) return false;
    return std::nullopt;
  }
  if (sameWord(type, "int")) {
    if (auto v = parseNumber<int64_t>(body)) return *v;
    return std::nullopt;
  }
  if (sameWord(type, "float")) {
    if (auto v = parseNumber<float>(body)) return *v;
    return std::nullopt;
  }
  return std::nullopt;
}

// The key file of `text`, comments kept; nothing when the text is not one.
KeyFilePtr loadKeyFile(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  KeyFilePtr keyFile = newKeyFile();
  auto flags = static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
  if (!g_key_file_load_from_data(keyFile.get(), text.data(), text.size(), flags, nullptr)) {
    return KeyFilePtr(nullptr, &g_key_file_free);
  }
  return keyFile;
}

}  // namespace

std::optional<PreferenceMap> parsePreferenceText(std::string_view text) {
  KeyFilePtr keyFile = loadKeyFile(text);
  if (!keyFile) return std::nullopt;
  PreferenceMap values;
  gchar** keys = g_key_file_get_keys(keyFile.get(), kGroup, nullptr, nullptr);
  if (!keys) return values;
  for (gchar** key = keys; *key; ++key) {
    GCharPtr text(g_key_file_get_string(keyFile.get(), kGroup, *key, nullptr), &g_free);
    auto name = decodeKey(*key);
    if (!text || !name) continue;
    if (auto value = decodeValue(text.get())) values[*name] = std::move(*value);
  }
  g_strfreev(keys);
  return values;
}

std::string preferenceTextWith(std::string_view previous, const PreferenceMap& values,
                               const std::set<std::string, std::less<>>& dropped) {
  KeyFilePtr keyFile = loadKeyFile(previous);
  if (!keyFile) keyFile = newKeyFile();
  // Lines of our keys go, whatever spelling they had; they are written again below in ours.
  if (gchar** keys = g_key_file_get_keys(keyFile.get(), kGroup, nullptr, nullptr)) {
    for (gchar** key = keys; *key; ++key) {
      auto name = decodeKey(*key);
      if (name && (values.contains(*name) || dropped.contains(*name))) {
        g_key_file_remove_key(keyFile.get(), kGroup, *key, nullptr);
      }
    }
    g_strfreev(keys);
  }
  for (const auto& [key, value] : values) {
    std::string text = encodeValue(value);
    // A key file holds only UTF-8; a string that is not stays in memory rather than corrupt the file.
    if (!g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr)) continue;
    g_key_file_set_string(keyFile.get(), kGroup, encodeKey(key).c_str(), text.c_str());
  }
  gsize length = 0;
  GCharPtr data(g_key_file_to_data(keyFile.get(), &length, nullptr), &g_free);
  return data ? std::string(data.get(), length) : std::string();
}

}  // namespace zb

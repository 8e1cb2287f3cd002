// The preferences file is a GLib key file with one group, [preferences]. Each line holds one value
// with its type in front, so that a value reads back as the type it was written with:
//
//   [preferences]
//   quorraHighScore=int:1234
//   quorra_settingShowFPS=bool:false
//   quorra_settingMusicVolume=float:0.70000005
//   playerName=string:Anna
//
// Floats are written in their shortest form that reads back to the same bits. Key characters other
// than letters, digits, '_', '-' and '.' are written as %XX. Lines of an unknown type, or that do not
// parse, are skipped; a file that is missing, not a regular file, larger than kMaxFileBytes or not a
// key file at all reads as an empty store.
#include "platform/preferences_file.hpp"

#include <glib.h>
#include <glib/gstdio.h>
#include <sys/stat.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace zb {
namespace {

constexpr const char* kGroup = "preferences";
constexpr uintmax_t kMaxFileBytes = 1 << 20;
// How stale a read may be: often enough that another copy's best score shows at once, seldom enough
// that a frame does not touch the disk.
constexpr auto kRefreshInterval = std::chrono::milliseconds(250);
constexpr int kFileMode = 0644;
constexpr int kFolderMode = 0755;

using KeyFilePtr = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;
using GCharPtr = std::unique_ptr<gchar, decltype(&g_free)>;

KeyFilePtr newKeyFile() { return KeyFilePtr(g_key_file_new(), &g_key_file_free); }

bool isPlainKeyChar(char c) {
  return g_ascii_isalnum(c) || c == '_' || c == '-' || c == '.';
}

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

template <typename Number>
std::string numberText(Number value) {
  char buffer[64];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
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
  std::string_view type = text.substr(0, colon);
  std::string_view body = text.substr(colon + 1);
  if (type == "string") return std::string(body);
  if (type == "bool") {
    if (body == "true") return true;
    if (body == "false") return false;
    return std::nullopt;
  }
  if (type == "int") {
    if (auto v = parseNumber<int64_t>(body)) return *v;
    return std::nullopt;
  }
  if (type == "float") {
    if (auto v = parseNumber<float>(body)) return *v;
    return std::nullopt;
  }
  return std::nullopt;
}

// The whole file, or nothing when it is missing, not a regular file, or too large to be ours.
std::optional<std::string> readSmallFile(const std::filesystem::path& file) {
  struct stat info {};
  if (::stat(file.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  std::unique_ptr<FILE, decltype(&std::fclose)> stream(std::fopen(file.c_str(), "rb"), &std::fclose);
  if (!stream) return std::nullopt;
  std::string contents;
  char buffer[16384];
  size_t count;
  while ((count = std::fread(buffer, 1, sizeof buffer, stream.get())) > 0) {
    contents.append(buffer, count);
    if (contents.size() > kMaxFileBytes) return std::nullopt;
  }
  if (std::ferror(stream.get())) return std::nullopt;
  return contents;
}

std::map<std::string, PreferenceValue, std::less<>> parseContents(const std::string& contents) {
  std::map<std::string, PreferenceValue, std::less<>> values;
  KeyFilePtr keyFile = newKeyFile();
  if (!g_key_file_load_from_data(keyFile.get(), contents.data(), contents.size(), G_KEY_FILE_NONE, nullptr)) {
    return values;
  }
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

std::string serialize(const std::map<std::string, PreferenceValue, std::less<>>& values) {
  KeyFilePtr keyFile = newKeyFile();
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

std::filesystem::path configHome() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  if (xdg && *xdg && std::filesystem::path(xdg).is_absolute()) return xdg;
  const char* home = std::getenv("HOME");
  if (home && *home) return std::filesystem::path(home) / ".config";
  return std::filesystem::path(g_get_home_dir()) / ".config";
}

}  // namespace

FilePreferences::FilePreferences(std::filesystem::path file) : file_(std::move(file)) { reloadIfChanged(); }

std::filesystem::path FilePreferences::defaultLocation() {
  return configHome() / "zindlebop" / "preferences.ini";
}

std::optional<PreferenceValue> FilePreferences::objectForKey(std::string_view key) {
  refreshIfDue();
  return MemoryPreferences::objectForKey(key);
}

void FilePreferences::setObject(std::string_view key, PreferenceValue value) {
  reloadIfChanged();
  MemoryPreferences::setObject(key, std::move(value));
  unsavedKeys_.emplace(key);
  save();
}

void FilePreferences::removeObject(std::string_view key) {
  reloadIfChanged();
  MemoryPreferences::removeObject(key);
  unsavedKeys_.emplace(key);
  save();
}

std::map<std::string, PreferenceValue> FilePreferences::dictionaryRepresentation() {
  refreshIfDue();
  return MemoryPreferences::dictionaryRepresentation();
}

FilePreferences::FileStamp FilePreferences::stampOf(const std::filesystem::path& file) {
  struct stat info {};
  if (::stat(file.c_str(), &info) != 0) return {};
  return FileStamp{true,
                   static_cast<uint64_t>(info.st_dev),
                   static_cast<uint64_t>(info.st_ino),
                   static_cast<uint64_t>(info.st_size),
                   info.st_mtim.tv_sec * int64_t{1000000000} + info.st_mtim.tv_nsec,
                   info.st_ctim.tv_sec * int64_t{1000000000} + info.st_ctim.tv_nsec};
}

void FilePreferences::refreshIfDue() {
  auto now = std::chrono::steady_clock::now();
  if (now - lastCheck_ < kRefreshInterval) return;
  reloadIfChanged();
}

// Reads the file again if it changed since the last look. Keys written here that have not reached
// the disk yet keep their values in memory; every other key takes the disk's value.
void FilePreferences::reloadIfChanged() {
  lastCheck_ = std::chrono::steady_clock::now();
  FileStamp stamp = stampOf(file_);
  if (stamp == loadedStamp_) return;
  auto fresh = stamp.exists ? readSmallFile(file_) : std::nullopt;
  auto diskValues = fresh ? parseContents(*fresh) : decltype(values_){};
  for (const auto& key : unsavedKeys_) {
    auto mine = values_.find(key);
    if (mine != values_.end()) {
      diskValues.insert_or_assign(key, mine->second);
    } else if (auto theirs = diskValues.find(key); theirs != diskValues.end()) {
      diskValues.erase(theirs);
    }
  }
  values_ = std::move(diskValues);
  loadedStamp_ = stamp;
}

// Replaces the file in one step (temporary file, flush to disk, rename), so that a failure leaves
// the previous file as it was; the values then stay in memory and the next write tries again.
void FilePreferences::save() {
  std::string data = serialize(values_);
  GCharPtr folder(g_path_get_dirname(file_.c_str()), &g_free);
  g_mkdir_with_parents(folder.get(), kFolderMode);
  auto flags = static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT | G_FILE_SET_CONTENTS_DURABLE);
  if (!g_file_set_contents_full(file_.c_str(), data.data(), static_cast<gssize>(data.size()), flags, kFileMode,
                                nullptr)) {
    return;
  }
  unsavedKeys_.clear();
  loadedStamp_ = stampOf(file_);
  lastCheck_ = std::chrono::steady_clock::now();
}

}  // namespace zb

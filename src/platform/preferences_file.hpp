#pragma once
// The player's preferences, kept in a key file under $XDG_CONFIG_HOME/zindlebop/ (or
// ~/.config/zindlebop/). Every write replaces the file atomically; a file that cannot be read or
// parsed reads as an empty store, and a folder that cannot be written keeps the values in memory.
#include <chrono>
#include <filesystem>
#include <set>

#include "engine/preferences.hpp"

namespace zb {

class FilePreferences : public MemoryPreferences {
 public:
  explicit FilePreferences(std::filesystem::path file);
  static std::filesystem::path defaultLocation();

  std::optional<PreferenceValue> objectForKey(std::string_view key) override;
  void setObject(std::string_view key, PreferenceValue value) override;
  void removeObject(std::string_view key) override;
  std::map<std::string, PreferenceValue> dictionaryRepresentation() override;

  const std::filesystem::path& file() const { return file_; }

 private:
  // What identifies one version of the file on disk; another writer's atomic replace changes it.
  struct FileStamp {
    bool exists = false;
    uint64_t device = 0, inode = 0, size = 0;
    int64_t modifiedNs = 0, changedNs = 0;
    bool operator==(const FileStamp&) const = default;
  };
  static FileStamp stampOf(const std::filesystem::path& file);

  void refreshIfDue();
  void reloadIfChanged();
  void save();

  std::filesystem::path file_;
  FileStamp loadedStamp_;
  std::chrono::steady_clock::time_point lastCheck_;
  // Keys set or removed here since the last load; they win over the disk until a write succeeds.
  std::set<std::string, std::less<>> unsavedKeys_;
};

}  // namespace zb

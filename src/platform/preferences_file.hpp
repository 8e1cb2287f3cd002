#pragma once
// The player's preferences, kept in a key file under $XDG_CONFIG_HOME/zindlebop/ (or
// ~/.config/zindlebop/). Every write replaces the file atomically (the file a symbolic link points at,
// the link kept); a path that is not a regular file is never written, and a file that cannot be read or
// parsed reads as an empty store and is kept beside the new one under another name before the first
// write. Two copies of the game on one file keep each other's keys: a save reads what the other wrote
// under a lock first. Whatever cannot be saved (including a file over the size the game reads back)
// stays in memory, with one line on standard error naming the file and why.
#include <chrono>
#include <filesystem>
#include <functional>
#include <set>
#include <string>

#include "engine/preferences.hpp"

namespace zb {

class FilePreferences : public MemoryPreferences {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;
  // How stale a read may be: often enough that another copy's best score shows at once, seldom enough
  // that a frame does not touch the disk.
  static constexpr auto kRefreshInterval = std::chrono::milliseconds(250);

  // `now` times the refreshes; tests pass a clock of their own.
  explicit FilePreferences(std::filesystem::path file, Clock now = std::chrono::steady_clock::now);
  static std::filesystem::path defaultLocation();

  std::optional<PreferenceValue> objectForKey(std::string_view key) override;
  void setObject(std::string_view key, PreferenceValue value) override;
  void removeObject(std::string_view key) override;
  std::map<std::string, PreferenceValue> dictionaryRepresentation() override;

  const std::filesystem::path& file() const { return file_; }
  std::string whereKept() const override;

 private:
  // What identifies one version of the file on disk; another writer's atomic replace changes it.
  struct FileStamp {
    bool exists = false;
    uint64_t device = 0, inode = 0, size = 0;
    int64_t modifiedNs = 0, changedNs = 0;
    bool operator==(const FileStamp&) const = default;
  };
  static FileStamp stampOf(const std::filesystem::path& file);

  enum ReadState { missing, notRegular, unreadable, readable };
  struct FileRead {
    ReadState state;
    std::string text;
  };
  static FileRead readFile(const std::filesystem::path& file);

  void refreshIfDue();
  void reloadIfChanged();
  void save();
  // One line on standard error, once per launch for each distinct line.
  void say(const std::string& line);
  void sayCannotSave(const std::string& reason);

  std::filesystem::path file_;
  Clock now_;
  FileStamp loadedStamp_;
  std::chrono::steady_clock::time_point lastCheck_;
  // Keys set or removed here since the last load; they win over the disk until a write succeeds.
  std::set<std::string, std::less<>> unsavedKeys_;
  // The file as last read, so that a save keeps what the game does not know; empty when it was not a
  // key file, which then also counts as damaged until a copy of it is kept.
  std::string loadedText_;
  bool loadedDamaged_ = false;
  std::set<std::string, std::less<>> said_;
};

}  // namespace zb

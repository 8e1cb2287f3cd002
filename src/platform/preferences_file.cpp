// The preferences file on disk. What is read and written is the key file of preference_key_file.cpp;
// this file decides when, and keeps the player's system safe from the writes: a save lands in the file
// a symbolic link points at, never turns a FIFO, device or folder into a file, and never overwrites a
// file it could not read without first keeping a copy of it beside it.
#include "platform/preferences_file.hpp"

#include <fcntl.h>
#include <glib.h>
#include <glib/gstdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>

#include "engine/quoted_text.hpp"
#include "platform/file_replace.hpp"
#include "platform/preference_key_file.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

// Far more than the game writes; a larger file is not ours, and reading it would stall the launch.
constexpr uintmax_t kMaxFileBytes = 1 << 20;
constexpr mode_t kFileMode = 0644;
constexpr int kFolderMode = 0755;
// Copies of unreadable files made within the same second get a number after the time.
constexpr int kMaxCopyAttempts = 100;

using GCharPtr = std::unique_ptr<gchar, decltype(&g_free)>;

struct FileDescriptor {
  int fd;
  ~FileDescriptor() {
    if (fd >= 0) ::close(fd);
  }
};

// Holds the lock on the folder of the preferences while one copy of the game reads what the others
// wrote and writes its own, so that two copies saving at once both keep their keys. Not had within
// the patience, the save goes ahead without it rather than stall the game.
class FolderLock {
 public:
  explicit FolderLock(const char* folder) : fd_(::open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (fd_ < 0) return;
    const auto giveUp = std::chrono::steady_clock::now() + kLockPatience;
    while (::flock(fd_, LOCK_EX | LOCK_NB) != 0 && std::chrono::steady_clock::now() < giveUp) {
      std::this_thread::sleep_for(kLockRetry);
    }
  }
  ~FolderLock() {
    if (fd_ >= 0) ::close(fd_);  // closing lets go of the lock
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  static constexpr auto kLockPatience = std::chrono::seconds(1);
  static constexpr auto kLockRetry = std::chrono::milliseconds(1);
  int fd_;
};

std::string timeStamp() {
  GDateTime* now = g_date_time_new_now_local();
  GCharPtr text(g_date_time_format(now, "%Y%m%d-%H%M%S"), &g_free);
  g_date_time_unref(now);
  return text ? text.get() : "copy";
}

// Keeps the file's present contents under a new name beside it: a hard link when the file system
// has them, which needs no permission to read the file, else a copy. Nothing when neither works.
std::optional<fs::path> keepCopyOf(const fs::path& file) {
  const std::string base = file.string() + ".unreadable-" + timeStamp();
  for (int attempt = 1; attempt <= kMaxCopyAttempts; ++attempt) {
    fs::path copy = attempt == 1 ? fs::path(base) : fs::path(base + "-" + std::to_string(attempt));
    if (::link(file.c_str(), copy.c_str()) == 0) return copy;
    if (errno == EEXIST) continue;
    std::error_code error;
    if (fs::copy_file(file, copy, fs::copy_options::none, error)) return copy;
    if (!fs::exists(copy, error)) return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

FilePreferences::FilePreferences(std::filesystem::path file, Clock now) : file_(std::move(file)), now_(std::move(now)) {
  reloadIfChanged();
}

std::filesystem::path FilePreferences::defaultLocation() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  std::filesystem::path home;
  if (xdg && *xdg && std::filesystem::path(xdg).is_absolute()) {
    home = xdg;
  } else if (const char* user = std::getenv("HOME"); user && *user) {
    home = std::filesystem::path(user) / ".config";
  } else {
    home = std::filesystem::path(g_get_home_dir()) / ".config";
  }
  return home / "zindlebop" / "preferences.ini";
}

std::optional<PreferenceValue> FilePreferences::objectForKey(std::string_view key) {
  refreshIfDue();
  return MemoryPreferences::objectForKey(key);
}

void FilePreferences::setObject(std::string_view key, PreferenceValue value) {
  MemoryPreferences::setObject(key, std::move(value));
  unsavedKeys_.emplace(key);
  save();
}

void FilePreferences::removeObject(std::string_view key) {
  MemoryPreferences::removeObject(key);
  unsavedKeys_.emplace(key);
  save();
}

std::map<std::string, PreferenceValue> FilePreferences::dictionaryRepresentation() {
  refreshIfDue();
  return MemoryPreferences::dictionaryRepresentation();
}

std::string FilePreferences::whereKept() const { return file_.string(); }

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

// The file's text. Never blocks: a FIFO or a device is not opened at all, and the open itself asks
// not to wait should one appear there in between.
FilePreferences::FileRead FilePreferences::readFile(const std::filesystem::path& file) {
  struct stat info {};
  if (::stat(file.c_str(), &info) != 0) return {errno == ENOENT || errno == ENOTDIR ? missing : unreadable, {}};
  if (!S_ISREG(info.st_mode)) return {notRegular, {}};
  FileDescriptor stream{::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)};
  if (stream.fd < 0) return {unreadable, {}};
  if (::fstat(stream.fd, &info) != 0 || !S_ISREG(info.st_mode)) return {notRegular, {}};
  if (static_cast<uintmax_t>(info.st_size) > kMaxFileBytes) return {unreadable, {}};
  std::string contents;
  char buffer[16384];
  for (;;) {
    const ssize_t count = ::read(stream.fd, buffer, sizeof buffer);
    if (count == 0) break;
    if (count < 0) {
      if (errno == EINTR) continue;
      return {unreadable, {}};
    }
    contents.append(buffer, static_cast<size_t>(count));
    if (contents.size() > kMaxFileBytes) return {unreadable, {}};
  }
  return {readable, std::move(contents)};
}

void FilePreferences::refreshIfDue() {
  if (now_() - lastCheck_ < kRefreshInterval) return;
  reloadIfChanged();
}

// Reads the file again if it changed since the last look. Keys written here that have not reached
// the disk yet keep their values in memory; every other key takes the disk's value.
void FilePreferences::reloadIfChanged() {
  lastCheck_ = now_();
  FileStamp stamp = stampOf(file_);
  if (stamp == loadedStamp_) return;
  FileRead read = readFile(file_);
  std::optional<PreferenceMap> parsed = read.state == readable ? parsePreferenceText(read.text) : PreferenceMap{};
  loadedDamaged_ = read.state == unreadable || !parsed;
  loadedText_ = parsed ? std::move(read.text) : std::string();
  PreferenceMap diskValues = parsed ? std::move(*parsed) : PreferenceMap{};
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

void FilePreferences::say(const std::string& line) {
  // A player pressing the toggle ten times hears about the same trouble once.
  if (!said_.insert(line).second) return;
  sayOnStandardError(line);
}

void FilePreferences::sayCannotSave(const std::string& reason) {
  say("cannot save the preferences to " + quotedForMessage(file_.string()) + ": " + reason +
      "; settings are kept for this session only");
}

// Replaces the file in one step (temporary file beside it, flush to disk, rename), so that a failure
// leaves the previous file as it was; the values then stay in memory and the next write tries again.
// What other copies of the game wrote since the last read is read again first, under the lock.
void FilePreferences::save() {
  const std::optional<fs::path> target = linkTarget(file_);
  if (!target) return sayCannotSave(FileReplace{FileReplace::linkLoop}.reason());
  GCharPtr folder(g_path_get_dirname(target->c_str()), &g_free);
  if (g_mkdir_with_parents(folder.get(), kFolderMode) != 0) return sayCannotSave(std::strerror(errno));
  FolderLock lock(folder.get());
  reloadIfChanged();
  struct stat info {};
  const bool exists = ::lstat(target->c_str(), &info) == 0;
  if (exists && !S_ISREG(info.st_mode)) return sayCannotSave(FileReplace{FileReplace::notRegular}.reason());
  if (exists && loadedDamaged_ && stampOf(*target) == loadedStamp_) {
    const std::optional<fs::path> copy = keepCopyOf(*target);
    const std::string shown = quotedForMessage(file_.string());
    if (!copy) {
      say("cannot read the preferences in " + shown + " nor keep a copy of them; leaving the file as it is");
      return;
    }
    say("cannot read the preferences in " + shown + "; kept them as " + quotedForMessage(copy->string()));
    loadedDamaged_ = false;
  }
  const std::string data = preferenceTextWith(loadedText_, values_, unsavedKeys_);
  // A file the next start would refuse to read would cost the player every setting.
  if (data.size() > kMaxFileBytes) return sayCannotSave("they would be larger than the 1 MiB the game reads back");
  const FileReplace written =
      writeThroughRename(*target, kFileMode, [&data](int fd) { return writeAll(fd, data); }, true);
  if (!written) return sayCannotSave(written.reason());
  unsavedKeys_.clear();
  loadedText_ = data;
  loadedStamp_ = stampOf(file_);
  lastCheck_ = now_();
}

}  // namespace zb

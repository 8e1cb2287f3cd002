#include "platform/file_replace.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace zb {
namespace {

namespace fs = std::filesystem;

// As many links as the kernel itself follows before it gives up with ELOOP.
constexpr int kMaxLinkHops = 40;

// 0 when the descriptor was closed without a delayed write error, else its errno.
int closeReportingError(int fd) { return ::close(fd) == 0 || errno == EINTR ? 0 : errno; }

}  // namespace

std::optional<fs::path> linkTarget(fs::path path) {
  for (int hop = 0; hop < kMaxLinkHops; ++hop) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(path, error))) return path;
    fs::path next = fs::read_symlink(path, error);
    if (error) return std::nullopt;
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return std::nullopt;
}

int writeAll(int fd, std::string_view data) {
  while (!data.empty()) {
    const ssize_t count = ::write(fd, data.data(), data.size());
    if (count < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    data.remove_prefix(static_cast<size_t>(count));
  }
  return 0;
}

std::string FileReplace::reason() const {
  switch (outcome) {
    case written: return "written";
    case linkLoop: return "it is a loop of symbolic links";
    case notRegular: return "it is not a regular file";
    case failed: break;
  }
  return std::strerror(error);
}

FileReplace writeThroughRename(const fs::path& target, mode_t newFileMode, const FileFiller& fill, bool durable) {
  struct stat old {};
  const mode_t mode = ::stat(target.c_str(), &old) == 0 ? old.st_mode & 07777 : newFileMode;
  std::string name = target.string() + ".XXXXXX";
  std::vector<char> pattern(name.begin(), name.end());
  pattern.push_back('\0');
  const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (fd < 0) return {FileReplace::failed, errno};
  int error = ::fchmod(fd, mode) == 0 ? 0 : errno;
  if (error == 0) error = fill(fd);
  if (error == 0 && durable && ::fsync(fd) != 0) error = errno;
  const int closed = closeReportingError(fd);
  if (error == 0) error = closed;
  if (error == 0 && ::rename(pattern.data(), target.c_str()) != 0) error = errno;
  if (error == 0) return {};
  ::unlink(pattern.data());
  return {FileReplace::failed, error};
}

FileReplace replaceRegularFile(const fs::path& path, mode_t newFileMode, const FileFiller& fill) {
  const std::optional<fs::path> target = linkTarget(path);
  if (!target) return {FileReplace::linkLoop, ELOOP};
  struct stat info {};
  if (::lstat(target->c_str(), &info) == 0 && !S_ISREG(info.st_mode)) return {FileReplace::notRegular, EINVAL};
  return writeThroughRename(*target, newFileMode, fill, false);
}

}  // namespace zb

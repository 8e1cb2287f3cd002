#pragma once
// Writing files the player names: the preferences and the screenshots. A write goes to a new file
// beside the target and is renamed over it once whole, so a full disk or a crash leaves the old file
// as it was and nothing half-written. Only a regular file or a path with nothing there is replaced;
// a FIFO, device, socket or folder is never opened for writing, so a write cannot hang on one.
#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zb {

// The file a chain of symbolic links ends at (it need not exist yet); nothing for a loop. A write goes
// there, so a link the player made stays a link.
std::optional<std::filesystem::path> linkTarget(std::filesystem::path path);

// Fills the new file through its descriptor; 0, or the errno of what went wrong.
using FileFiller = std::function<int(int fd)>;

// Writes all of `data` to `fd`; 0, or the errno of the write that failed.
int writeAll(int fd, std::string_view data);

struct FileReplace {
  enum Outcome { written, linkLoop, notRegular, failed } outcome = written;
  int error = 0;  // the errno of a failed write
  explicit operator bool() const { return outcome == written; }
  // Why nothing was written, for a message: "it is not a regular file", "No space left on device".
  std::string reason() const;
};

// Writes `target` (a path already resolved by linkTarget) through a new file in its folder and a
// rename; the new file has the old one's permissions, or `newFileMode`. With `durable` the data reach
// the disk before the rename. A failure removes the new file and leaves `target` untouched.
FileReplace writeThroughRename(const std::filesystem::path& target, mode_t newFileMode, const FileFiller& fill,
                               bool durable);

// The whole of it for a path as named: links followed, anything but a regular file or nothing refused.
FileReplace replaceRegularFile(const std::filesystem::path& path, mode_t newFileMode, const FileFiller& fill);

}  // namespace zb

#include "platform/resource_paths.hpp"

#include <system_error>

namespace zb {

namespace {

bool isFolder(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_directory(path, error);
}

// The folder that holds the running executable; empty when the system will not say.
std::filesystem::path executableFolder() {
  std::error_code error;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : exe.parent_path();
}

}  // namespace

std::filesystem::path defaultResourceFolder() {
  // A build tree runs with the sounds it just copied; an installed game with the installed ones; a
  // relocated one with a "resources" folder next to it.
  if (isFolder(ZB_BUILD_RESOURCES)) return ZB_BUILD_RESOURCES;
  if (isFolder(ZB_INSTALL_RESOURCES)) return ZB_INSTALL_RESOURCES;
  return executableFolder() / "resources";
}

std::filesystem::path defaultFallbackFolder() { return ZB_FALLBACK_SOUNDS; }

}  // namespace zb

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
  // An installed game plays the sounds installed beside it, wherever its tree was moved to (and
  // whatever build tree is still lying around); a build tree runs with the sounds it just copied;
  // then the install prefix it was built for; then a "resources" folder next to the executable.
  const std::filesystem::path exeFolder = executableFolder();
  if (!exeFolder.empty()) {
    const std::filesystem::path installed = (exeFolder / ZB_SOUNDS_FROM_EXECUTABLE).lexically_normal();
    if (isFolder(installed)) return installed;
  }
  if (isFolder(ZB_BUILD_RESOURCES)) return ZB_BUILD_RESOURCES;
  if (isFolder(ZB_INSTALL_RESOURCES)) return ZB_INSTALL_RESOURCES;
  return exeFolder / "resources";
}

std::filesystem::path defaultFallbackFolder() { return ZB_FALLBACK_SOUNDS; }

}  // namespace zb

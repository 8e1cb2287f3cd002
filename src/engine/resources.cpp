#include "engine/resources.hpp"

#include <string>
#include <system_error>

namespace zb {

std::optional<std::filesystem::path> ResourceBundle::urlForResource(std::string_view name,
                                                                    std::string_view extension) const {
  if (folder_.empty() || name.empty()) return std::nullopt;
  std::string file(name);
  if (!extension.empty()) {
    if (extension.front() != '.') file += '.';
    file += extension;
  }
  std::filesystem::path path = folder_ / file;
  if (!fileExistsAtPath(path)) return std::nullopt;
  return path;
}

bool fileExistsAtPath(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

}  // namespace zb

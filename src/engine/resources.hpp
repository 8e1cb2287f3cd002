#pragma once
// The application's resource folder: looks a resource up by name and extension.
#include <filesystem>
#include <optional>
#include <string_view>

namespace zb {

class ResourceBundle {
 public:
  ResourceBundle() = default;  // an empty bundle finds nothing
  explicit ResourceBundle(std::filesystem::path folder) : folder_(std::move(folder)) {}

  // The path of folder/name.extension when that is an existing regular file.
  std::optional<std::filesystem::path> urlForResource(std::string_view name, std::string_view extension) const;
  const std::filesystem::path& folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

// True for an existing regular file (or a link to one); never throws.
bool fileExistsAtPath(const std::filesystem::path& path);

}  // namespace zb

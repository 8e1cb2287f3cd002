#pragma once
// The player's preferences, kept in a key file under $XDG_CONFIG_HOME/zindlebop/ (or
// ~/.config/zindlebop/). Every write replaces the file atomically; a file that cannot be read or
// parsed reads as an empty store, and a folder that cannot be written keeps the values in memory.
#include <filesystem>

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
  std::filesystem::path file_;
};

}  // namespace zb

#pragma once
// A per-user key-value store with typed reads that convert between stored types the way a desktop
// preferences store does. MemoryPreferences keeps it in memory; the platform adds a file-backed one.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace zb {

using PreferenceValue = std::variant<int64_t, bool, float, std::string>;

class Preferences {
 public:
  virtual ~Preferences() = default;

  virtual std::optional<PreferenceValue> objectForKey(std::string_view key) = 0;
  virtual void setObject(std::string_view key, PreferenceValue value) = 0;
  virtual void removeObject(std::string_view key) = 0;
  virtual std::map<std::string, PreferenceValue> dictionaryRepresentation() = 0;
  // Where the values are kept, for a message a person can act on.
  virtual std::string whereKept() const { return "memory"; }

  // Typed reads: 0 / false when absent or not convertible. Numbers convert between each other (a
  // float truncates toward zero, saturating at the int64 range); a bool reads as 0 or 1; a string is
  // parsed ("true"/"yes" read as true, a leading number as that number).
  int64_t integerForKey(std::string_view key);
  bool boolForKey(std::string_view key);
  float floatForKey(std::string_view key);

  void setInteger(int64_t value, std::string_view key) { setObject(key, value); }
  void setBool(bool value, std::string_view key) { setObject(key, value); }
  void setFloat(float value, std::string_view key) { setObject(key, value); }
};

class MemoryPreferences : public Preferences {
 public:
  std::optional<PreferenceValue> objectForKey(std::string_view key) override;
  void setObject(std::string_view key, PreferenceValue value) override;
  void removeObject(std::string_view key) override;
  std::map<std::string, PreferenceValue> dictionaryRepresentation() override;

 protected:
  std::map<std::string, PreferenceValue, std::less<>> values_;
};

}  // namespace zb

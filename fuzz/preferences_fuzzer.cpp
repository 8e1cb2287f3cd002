// Arbitrary bytes as the preferences file. Loading never fails and every typed read answers; a
// write of what was read, read back again, gives the same store, so a file the game can read is
// never damaged by the game writing it.
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <glib.h>

#include "platform/preferences_file.hpp"
#include "settings/preference_keys.hpp"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kGameKeys[] = {zb::kHighScoreKey, zb::kShowFPSKey, zb::kMusicEnabledKey,
                                          zb::kMusicVolumeKey};
constexpr std::string_view kMarkerKey = "zb_fuzz_marker";

[[noreturn]] void fail() { __builtin_trap(); }

// The file under test lives in memory when the system offers it, because every write is flushed to
// disk, which would otherwise set the pace. It goes away with the process.
class ScratchFile {
 public:
  ScratchFile() {
    fs::path base = fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
    folder_ = base / ("zb-fuzz-prefs-" + std::to_string(::getpid()));
    fs::create_directories(folder_);
  }
  ~ScratchFile() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  fs::path path() const { return folder_ / "preferences.ini"; }

  // The copies the game keeps of files it could not read, oldest first; removed once looked at, so
  // that every input gets a fresh name for its copy.
  std::vector<fs::path> takeKeptCopies() const {
    std::vector<fs::path> copies;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      if (entry.path().filename() != path().filename()) copies.push_back(entry.path());
    }
    return copies;
  }

 private:
  fs::path folder_;
};

void readEverything(zb::Preferences& store) {
  for (const auto& [key, value] : store.dictionaryRepresentation()) {
    if (!store.objectForKey(key)) fail();
    store.integerForKey(key);
    store.boolForKey(key);
    store.floatForKey(key);
  }
  for (std::string_view key : kGameKeys) {
    store.integerForKey(key);
    store.boolForKey(key);
    store.floatForKey(key);
  }
}

// A string that is not UTF-8 cannot go into the file, so it stays in memory only.
bool reachesTheFile(const zb::PreferenceValue& value) {
  const auto* text = std::get_if<std::string>(&value);
  return !text || g_utf8_validate(text->data(), static_cast<gssize>(text->size()), nullptr);
}

bool sameValue(const zb::PreferenceValue& a, const zb::PreferenceValue& b) {
  const auto* x = std::get_if<float>(&a);
  const auto* y = std::get_if<float>(&b);
  if (x && y) return (std::isnan(*x) && std::isnan(*y)) || std::bit_cast<uint32_t>(*x) == std::bit_cast<uint32_t>(*y);
  return a == b;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const ScratchFile scratch;
  const fs::path file = scratch.path();
  std::ofstream(file, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data),
                                                                static_cast<std::streamsize>(size));
  std::map<std::string, zb::PreferenceValue> before;
  {
    zb::FilePreferences store(file);
    readEverything(store);
    before = store.dictionaryRepresentation();
    store.setInteger(1, kMarkerKey);  // writes the whole store
  }
  // A file the game could not read is kept beside the new one, byte for byte.
  for (const fs::path& copy : scratch.takeKeptCopies()) {
    std::ifstream in(copy, std::ios::binary);
    const std::string kept{std::istreambuf_iterator<char>(in), {}};
    if (kept != std::string(reinterpret_cast<const char*>(data), size)) fail();
    fs::remove(copy);
  }
  zb::FilePreferences reread(file);
  readEverything(reread);
  std::map<std::string, zb::PreferenceValue> after = reread.dictionaryRepresentation();
  if (after.erase(std::string(kMarkerKey)) != 1) fail();
  before.erase(std::string(kMarkerKey));
  for (const auto& [key, value] : before) {
    if (!reachesTheFile(value)) continue;
    auto found = after.find(key);
    if (found == after.end() || !sameValue(found->second, value)) fail();
    after.erase(found);
  }
  if (!after.empty()) fail();
  return 0;
}

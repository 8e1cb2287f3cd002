#include "platform/preferences_file.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <memory>

#include "headless/headless_test_support.hpp"
#include "support/files.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

fs::path fileInNewFolder(const test::TempFolder& folder) { return folder.path() / "zindlebop" / "preferences.ini"; }

// Floats and bools through the file are covered with the settings; here the awkward keys and values.
TEST(PreferencesFile, AwkwardKeysAndValuesKeepTheirTypeThroughTheFileAndRemovalsStick) {
  test::TempFolder folder("zb-prefs-types");
  const std::map<std::string, PreferenceValue> stored = {{"odd key [x]=1", std::string("Zoë = \"best\"\nsecond")},
                                                         {"negative", int64_t{-7}}};
  FilePreferences prefs(fileInNewFolder(folder));
  for (const auto& [key, value] : stored) prefs.setObject(key, value);
  prefs.setInteger(1, "gone");
  prefs.removeObject("gone");
  EXPECT_EQ(FilePreferences(fileInNewFolder(folder)).dictionaryRepresentation(), stored);
}

// Two copies on one file merge each other's writes. A full disk (a file-size limit) leaves the old file
// whole, and the unsaved value stays in memory across the other copy's change until a write saves it.
TEST(PreferencesFile, TwoCopiesSeeAndMergeEachOthersWritesAndAFullDiskLosesNothing) {
  test::TempFolder folder("zb-prefs-copies");
  const fs::path file = fileInNewFolder(folder);
  // A clock moved by hand, past the point where a store looks at its file again.
  const auto now = std::make_shared<std::chrono::steady_clock::time_point>();
  const FilePreferences::Clock clock = [now] { return *now; };
  FilePreferences mine(file, clock), theirs(file, clock);
  mine.setInteger(10, "quorraHighScore");
  theirs.setInteger(250, "quorraHighScore");
  EXPECT_EQ(mine.integerForKey("quorraHighScore"), 10) << "within the interval the store does not read";
  *now += FilePreferences::kRefreshInterval;
  EXPECT_EQ(mine.integerForKey("quorraHighScore"), 250);
  theirs.setInteger(300, "other");
  mine.setFloat(0.5f, "quorra_settingMusicVolume");
  EXPECT_EQ(FilePreferences(file).integerForKey("other"), 300);
  EXPECT_EQ(FilePreferences(file).integerForKey("quorraHighScore"), 250);

  const std::string before = test::readBytes(file);
  const PreferenceValue longText = std::string(1000, 'z');
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const rlimit small{200, old.rlim_max};
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  mine.setObject("long", longText);
  EXPECT_EQ(test::readBytes(file), before);
  EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), {}), 1) << "left-over temporary file";
  theirs.setInteger(5, "other");
  *now += FilePreferences::kRefreshInterval;
  EXPECT_EQ(mine.objectForKey("long"), longText);
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, oldHandler);
  mine.setInteger(78, "quorraHighScore");
  EXPECT_EQ(FilePreferences(file).objectForKey("long"), longText);
}

// Two copies saving their own keys at once lose none; a save too big to read back is refused, said once.
TEST(PreferencesFile, CopiesSavingAtOnceKeepEveryKeyAndNoSaveOutgrowsWhatIsReadBack) {
  test::TempFolder folder("zb-prefs-race");
  const fs::path file = fileInNewFolder(folder);
  constexpr int kKeysEach = 150;
  auto writeKeys = [&file](const std::string& prefix) {
    FilePreferences copy(file);
    for (int i = 0; i < kKeysEach; ++i) copy.setInteger(i, prefix + std::to_string(i));
  };
  std::thread first(writeKeys, "first"), second(writeKeys, "second");
  first.join();
  second.join();
  EXPECT_EQ(FilePreferences(file).dictionaryRepresentation().size(), 2u * kKeysEach);

  const std::string before = test::readBytes(file);
  FilePreferences prefs(file);
  testing::internal::CaptureStderr();
  for (int attempt = 0; attempt < 2; ++attempt) prefs.setObject("huge", std::string(1 << 20, 'x'));
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(test::readBytes(file) == before) << "the file changed";
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
  EXPECT_NE(said.find(file.string()), std::string::npos) << said;
  EXPECT_EQ(FilePreferences(file).dictionaryRepresentation().size(), 2u * kKeysEach);
}

TEST(PreferencesFileLocation, FollowsAnAbsoluteConfigHomeOrFallsBackToDotConfig) {
  const std::string savedXdg = std::getenv("XDG_CONFIG_HOME") ? std::getenv("XDG_CONFIG_HOME") : "";
  const std::string savedHome = std::getenv("HOME") ? std::getenv("HOME") : "";
  ::setenv("XDG_CONFIG_HOME", "/tmp/cfg", 1);
  EXPECT_EQ(FilePreferences::defaultLocation(), fs::path("/tmp/cfg/zindlebop/preferences.ini"));
  ::setenv("XDG_CONFIG_HOME", "relative/ignored", 1);
  ::setenv("HOME", "/home/player", 1);
  EXPECT_EQ(FilePreferences::defaultLocation(), fs::path("/home/player/.config/zindlebop/preferences.ini"));
  savedXdg.empty() ? ::unsetenv("XDG_CONFIG_HOME") : ::setenv("XDG_CONFIG_HOME", savedXdg.c_str(), 1);
  ::setenv("HOME", savedHome.c_str(), 1);
}

}  // namespace
}  // namespace zb

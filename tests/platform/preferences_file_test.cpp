#include "platform/preferences_file.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <thread>

namespace zb {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// A fresh folder per test, removed afterwards.
class PreferencesFileTest : public ::testing::Test {
 protected:
  void SetUp() override { fs::remove_all(folder); }
  void TearDown() override { fs::remove_all(folder); }
  std::string contents() const {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  const fs::path folder = fs::temp_directory_path() / ("zb-prefs-" + std::to_string(::getpid()) + "-" +
                                                       testing::UnitTest::GetInstance()->current_test_info()->name());
  const fs::path file = folder / "zindlebop" / "preferences.ini";
};

TEST_F(PreferencesFileTest, ValuesKeepTheirTypeThroughTheFile) {
  const std::map<std::string, PreferenceValue> stored = {
      {"quorraHighScore", int64_t{1234}},
      {"quorra_settingShowFPS", false},
      {"quorra_settingMusicVolume", 0.70000005f},
      {"name", std::string("Zoë = \"best\"\nsecond line")},
      {"odd key [x]=1", int64_t{-7}},
  };
  FilePreferences prefs(file);
  for (const auto& [key, value] : stored) prefs.setObject(key, value);
  prefs.setInteger(1, "gone");
  prefs.removeObject("gone");
  EXPECT_EQ(FilePreferences(file).dictionaryRepresentation(), stored);  // floats compare bit for bit
}

// A full disk, made with a file-size limit so that it works for any user: a write of more than the
// limit fails half-way, while smaller writes, like another copy's, still succeed. The old file must
// stay whole, and the value that could not be saved must survive in memory, across another copy's
// change, until the next write can save it.
TEST_F(PreferencesFileTest, AWriteThatFailsHalfWayLeavesTheOldFileWholeAndKeepsTheValue) {
  FilePreferences prefs(file), otherCopy(file);
  prefs.setInteger(77, "quorraHighScore");
  const std::string before = contents();
  const PreferenceValue longText = std::string(1000, 'z');
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const rlimit small{200, old.rlim_max};
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  prefs.setObject("long", longText);
  EXPECT_EQ(contents(), before);
  EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), {}), 1) << "left-over temporary file";
  otherCopy.setInteger(5, "other");
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(prefs.integerForKey("other"), 5);
  EXPECT_EQ(prefs.objectForKey("long"), longText);
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, oldHandler);

  prefs.setInteger(78, "quorraHighScore");
  EXPECT_EQ(FilePreferences(file).objectForKey("long"), longText);
  EXPECT_EQ(FilePreferences(file).integerForKey("other"), 5);
}

// Another copy of the game writing its best score: this copy sees it within a quarter of a second,
// and its own writes merge with what the other copy stored instead of writing over it.
TEST_F(PreferencesFileTest, AnotherWritersChangeShowsAfterTheRefreshIntervalAndWritesMerge) {
  FilePreferences mine(file), theirs(file);
  mine.setInteger(10, "quorraHighScore");
  std::this_thread::sleep_for(300ms);
  theirs.setInteger(250, "quorraHighScore");
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(mine.integerForKey("quorraHighScore"), 250);
  theirs.setInteger(300, "other");
  mine.setFloat(0.5f, "quorra_settingMusicVolume");
  EXPECT_EQ(FilePreferences(file).integerForKey("other"), 300);
  EXPECT_EQ(FilePreferences(file).integerForKey("quorraHighScore"), 250);
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

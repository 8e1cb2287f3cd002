#include "platform/preferences_file.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>

namespace zb {
namespace {

namespace fs = std::filesystem;

// A fresh folder per test, removed afterwards.
class PreferencesFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    folder = fs::temp_directory_path() /
             ("zb-prefs-" + std::to_string(::getpid()) + "-" + info->name());
    fs::remove_all(folder);
    fs::create_directories(folder);
    file = folder / "zindlebop" / "preferences.ini";
  }
  void TearDown() override {
    std::error_code ignored;
    fs::permissions(file.parent_path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(folder, ignored);
  }

  void writeFile(const std::string& contents) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
  }
  std::string readFile() const {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  fs::path folder;
  fs::path file;
};

TEST_F(PreferencesFileTest, ValuesKeepTheirTypeThroughTheFile) {
  {
    FilePreferences prefs(file);
    prefs.setInteger(1234, "quorraHighScore");
    prefs.setBool(false, "quorra_settingShowFPS");
    prefs.setBool(true, "quorra_settingMusicEnabled");
    prefs.setFloat(0.70000005f, "quorra_settingMusicVolume");
    prefs.setObject("name", std::string("Zoë = \"best\"\nsecond line"));
    prefs.setObject("odd key [x]=1", int64_t{-7});
  }
  ASSERT_TRUE(fs::is_regular_file(file));

  FilePreferences reread(file);
  EXPECT_EQ(reread.objectForKey("quorraHighScore"), PreferenceValue(int64_t{1234}));
  EXPECT_EQ(reread.objectForKey("quorra_settingShowFPS"), PreferenceValue(false));
  EXPECT_EQ(reread.objectForKey("quorra_settingMusicEnabled"), PreferenceValue(true));
  auto volume = reread.objectForKey("quorra_settingMusicVolume");
  ASSERT_TRUE(volume && std::holds_alternative<float>(*volume));
  EXPECT_EQ(std::bit_cast<uint32_t>(std::get<float>(*volume)), std::bit_cast<uint32_t>(0.70000005f));
  EXPECT_EQ(reread.objectForKey("name"), PreferenceValue(std::string("Zoë = \"best\"\nsecond line")));
  EXPECT_EQ(reread.objectForKey("odd key [x]=1"), PreferenceValue(int64_t{-7}));
  EXPECT_FALSE(reread.objectForKey("missing"));
  EXPECT_EQ(reread.dictionaryRepresentation().size(), 6u);
}

TEST_F(PreferencesFileTest, StoredFalseAndZeroArePresentAndTypedReadsConvert) {
  writeFile(
      "[preferences]\n"
      "flag=bool:false\n"
      "zero=int:0\n"
      "volume=float:0.6\n"
      "count=string:42 apples\n"
      "yes=string:yes\n");
  FilePreferences prefs(file);
  EXPECT_TRUE(prefs.objectForKey("flag"));
  EXPECT_TRUE(prefs.objectForKey("zero"));
  EXPECT_FALSE(prefs.boolForKey("flag"));
  EXPECT_EQ(prefs.integerForKey("zero"), 0);
  EXPECT_EQ(prefs.floatForKey("volume"), 0.6f);
  EXPECT_EQ(prefs.integerForKey("volume"), 0);
  EXPECT_EQ(prefs.integerForKey("count"), 42);
  EXPECT_TRUE(prefs.boolForKey("yes"));
  EXPECT_EQ(prefs.integerForKey("absent"), 0);
}

TEST_F(PreferencesFileTest, RemovingAKeyRemovesItFromTheFile) {
  FilePreferences prefs(file);
  prefs.setInteger(5, "a");
  prefs.setInteger(6, "b");
  prefs.removeObject("a");
  FilePreferences reread(file);
  EXPECT_FALSE(reread.objectForKey("a"));
  EXPECT_EQ(reread.integerForKey("b"), 6);
}

// Well-formed, but far larger than any preferences file of ours.
std::string enormousFile() {
  std::string contents = "[preferences]\n";
  for (int i = 0; contents.size() < (2 << 20); ++i) contents += "key" + std::to_string(i) + "=int:1\n";
  return contents;
}

TEST_F(PreferencesFileTest, DamagedFilesReadAsEmptyAndAreReplacedOnTheNextWrite) {
  std::mt19937 noise(7);
  std::string garbage(4096, '\0');
  for (char& c : garbage) c = static_cast<char>(noise());
  const std::string cases[] = {
      "",
      "[preferences]\nquorraHighScore=int:12",  // cut off mid-line: what parses is kept
      garbage,
      "not a key file at all",
      "[preferences]\nbad=int:12x\nhuge=int:99999999999999999999\nodd=colour:red\nnomark=5\ngood=int:3\n",
      enormousFile(),
  };
  for (const std::string& contents : cases) {
    SCOPED_TRACE(contents.substr(0, 40));
    writeFile(contents);
    FilePreferences prefs(file);
    auto all = prefs.dictionaryRepresentation();
    all.erase("quorraHighScore");
    all.erase("good");
    EXPECT_TRUE(all.empty());
    prefs.setInteger(1, "after");
    EXPECT_EQ(FilePreferences(file).integerForKey("after"), 1);
  }
  writeFile("[preferences]\nquorraHighScore=int:12");
  EXPECT_EQ(FilePreferences(file).integerForKey("quorraHighScore"), 12);
  writeFile("[preferences]\nbad=int:12x\nodd=colour:red\ngood=int:3\n");
  EXPECT_EQ(FilePreferences(file).dictionaryRepresentation().size(), 1u);
}

TEST_F(PreferencesFileTest, AFolderInPlaceOfTheFileKeepsValuesInMemory) {
  fs::create_directories(file);
  FilePreferences prefs(file);
  EXPECT_TRUE(prefs.dictionaryRepresentation().empty());
  prefs.setInteger(9, "quorraHighScore");
  EXPECT_EQ(prefs.integerForKey("quorraHighScore"), 9);
  EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(PreferencesFileTest, TheFolderIsCreatedOnTheFirstWriteOnly) {
  FilePreferences prefs(file);
  EXPECT_FALSE(prefs.objectForKey("x"));
  EXPECT_FALSE(fs::exists(file.parent_path()));
  prefs.setBool(true, "x");
  EXPECT_TRUE(fs::is_regular_file(file));
}

// A full disk, made with a file-size limit so that it works for any user: a write of more than the
// limit fails half-way, and the old file must still be there, whole. Smaller writes, like another
// copy's, still succeed.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : oldHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &old_);
    rlimit limit = old_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, oldHandler_);
  }

 private:
  rlimit old_{};
  void (*oldHandler_)(int);
};

TEST_F(PreferencesFileTest, AFailedWriteLeavesTheOldFileWholeAndKeepsTheValue) {
  FilePreferences prefs(file);
  FilePreferences otherCopy(file);
  prefs.setInteger(77, "quorraHighScore");
  const std::string before = readFile();
  ASSERT_FALSE(before.empty());
  const PreferenceValue longText = std::string(1000, 'z');
  {
    FileSizeLimit limit(200);
    prefs.setObject("long", longText);
    EXPECT_EQ(readFile(), before);
    EXPECT_EQ(FilePreferences(file).integerForKey("quorraHighScore"), 77);
    EXPECT_EQ(prefs.objectForKey("long"), longText);
    for (const auto& entry : fs::directory_iterator(file.parent_path())) {
      EXPECT_EQ(entry.path(), file) << "left-over temporary file";
    }

    // Another copy's change arrives; the value that only lives in memory here survives the reload.
    otherCopy.setInteger(5, "other");
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(prefs.integerForKey("other"), 5);
    EXPECT_EQ(prefs.objectForKey("long"), longText);
  }

  // Once the disk has room again, the value kept in memory reaches the file with the next write.
  prefs.setInteger(78, "quorraHighScore");
  FilePreferences reread(file);
  EXPECT_EQ(reread.objectForKey("long"), longText);
  EXPECT_EQ(reread.integerForKey("quorraHighScore"), 78);
  EXPECT_EQ(reread.integerForKey("other"), 5);
}

// A folder the player cannot write to. Root writes anywhere, so then the check runs in a child
// process that has given up root.
TEST_F(PreferencesFileTest, AReadOnlyFolderKeepsSettingsInMemory) {
  FilePreferences(file).setInteger(5, "quorraHighScore");
  const std::string before = readFile();
  fs::permissions(file.parent_path(), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);

  auto check = [&] {
    FilePreferences prefs(file);
    prefs.setInteger(6, "quorraHighScore");
    prefs.setBool(false, "quorra_settingMusicEnabled");
    bool ok = prefs.integerForKey("quorraHighScore") == 6 && prefs.objectForKey("quorra_settingMusicEnabled") &&
              FilePreferences(file).integerForKey("quorraHighScore") == 5;
    return ok;
  };
  if (::geteuid() == 0) {
    EXPECT_EXIT(
        {
          if (::setgid(65534) != 0 || ::setuid(65534) != 0) std::_Exit(3);
          std::_Exit(check() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
  } else {
    EXPECT_TRUE(check());
  }
  EXPECT_EQ(readFile(), before);
}

// Another copy of the game writing its best score: this copy sees it within a quarter of a second,
// and a key this copy wrote itself and could not save is not overwritten by the disk.
TEST_F(PreferencesFileTest, AnotherWritersChangeShowsAfterTheRefreshInterval) {
  FilePreferences mine(file);
  FilePreferences theirs(file);
  mine.setInteger(10, "quorraHighScore");
  EXPECT_EQ(mine.integerForKey("quorraHighScore"), 10);

  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  theirs.setInteger(250, "quorraHighScore");
  theirs.setBool(false, "quorra_settingShowFPS");
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(mine.integerForKey("quorraHighScore"), 250);
  EXPECT_EQ(mine.objectForKey("quorra_settingShowFPS"), PreferenceValue(false));

  // A write merges with what the other copy stored instead of writing over it.
  theirs.setInteger(300, "other");
  mine.setFloat(0.5f, "quorra_settingMusicVolume");
  FilePreferences reread(file);
  EXPECT_EQ(reread.integerForKey("other"), 300);
  EXPECT_EQ(reread.integerForKey("quorraHighScore"), 250);
  EXPECT_EQ(reread.floatForKey("quorra_settingMusicVolume"), 0.5f);
}

TEST(PreferencesFileLocation, FollowsTheConfigHomeOrFallsBackToDotConfig) {
  const char* oldXdg = std::getenv("XDG_CONFIG_HOME");
  const std::string savedXdg = oldXdg ? oldXdg : "";
  const char* oldHome = std::getenv("HOME");
  const std::string savedHome = oldHome ? oldHome : "";

  ::setenv("XDG_CONFIG_HOME", "/tmp/cfg", 1);
  EXPECT_EQ(FilePreferences::defaultLocation(), fs::path("/tmp/cfg/zindlebop/preferences.ini"));
  ::setenv("XDG_CONFIG_HOME", "relative/ignored", 1);
  ::setenv("HOME", "/home/player", 1);
  EXPECT_EQ(FilePreferences::defaultLocation(), fs::path("/home/player/.config/zindlebop/preferences.ini"));
  ::unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(FilePreferences::defaultLocation(), fs::path("/home/player/.config/zindlebop/preferences.ini"));

  if (oldXdg) ::setenv("XDG_CONFIG_HOME", savedXdg.c_str(), 1);
  if (oldHome) ::setenv("HOME", savedHome.c_str(), 1);
}

}  // namespace
}  // namespace zb

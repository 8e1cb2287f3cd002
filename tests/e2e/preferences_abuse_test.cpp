// The real binary given odd preference paths and files: nothing destroyed, no hang, each refusal one line.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <filesystem>

#include "e2e/child_process.hpp"
#include "headless/headless_test_support.hpp"
#include "support/files.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

BinaryRun runWithPrefs(const fs::path& file, const std::string& script) {
  return runBinary({ZB_BINARY, "--headless", "--seed", "3", "--fallback", "none", "--prefs", file.string()}, script);
}

std::vector<Json> dumpsOf(const BinaryRun& run) { return HeadlessRun{run.status, run.out, run.err}.dumps(); }

size_t lineCount(const std::string& text) { return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')); }

// Opens the settings page and presses the frame-rate toggle, the one button that saves.
const std::string kToggleFPS = "step\nclick 400 250\nstep\nclick 400 355\nstep\ndump\n";

TEST(PreferencesAbuse, ASymbolicLinkIsFollowedAndKeptWhileItsTargetIsReplaced) {
  TempFolder folder("zb-abuse-link");
  writeBytes(folder.path() / "store" / "real.ini", "[preferences]\nquorra_settingMusicVolume=float:0.25\n");
  const fs::path link = folder.path() / "prefs.ini", dangling = folder.path() / "dangling.ini";
  fs::create_symlink("store/real.ini", link);
  fs::create_symlink("store/later.ini", dangling);
  for (const fs::path& path : {link, dangling}) {
    SCOPED_TRACE(path);
    ASSERT_EQ(runWithPrefs(path, kToggleFPS).status, 0);
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_TRUE(dumpsOf(runWithPrefs(path, "dump\n")).at(0)["settingShowFPS"].get<bool>());
  }
  EXPECT_EQ(dumpsOf(runWithPrefs(link, "dump\n")).at(0)["settingMusicVolume"].get<double>(), 0.25f);
}

TEST(PreferencesAbuse, APathThatIsNotARegularFileIsNeitherBlockedOnNorReplaced) {
  TempFolder folder("zb-abuse-special");
  const std::pair<const char*, mode_t> kinds[] = {
      {"fifo", S_IFIFO}, {"null-device", S_IFCHR}, {"socket", S_IFSOCK}, {"folder", S_IFDIR}};
  for (const auto& [name, type] : kinds) {
    SCOPED_TRACE(name);
    const fs::path path = folder.path() / name;
    if (type == S_IFDIR ? !fs::create_directory(path) : ::mknod(path.c_str(), type | 0600, makedev(1, 3)) != 0) {
      // Only a device node needs a privilege that a container may withhold.
      EXPECT_EQ(type, S_IFCHR) << "cannot make one here";
      continue;
    }
    // Toggled twice: the settings live on in memory, and the refusal is said once.
    BinaryRun run = runWithPrefs(path, kToggleFPS + "click 400 355\nstep\ndump\n");
    ASSERT_EQ(run.status, 0) << "a hang or a crash: " << run.err;
    const std::vector<Json> dumps = dumpsOf(run);
    ASSERT_EQ(dumps.size(), 2u);
    EXPECT_TRUE(dumps[0]["settingShowFPS"].get<bool>());
    EXPECT_FALSE(dumps[1]["settingShowFPS"].get<bool>());
    struct stat after {};
    EXPECT_EQ(::lstat(path.c_str(), &after), 0);
    EXPECT_EQ(after.st_mode & S_IFMT, type);
    EXPECT_EQ(lineCount(run.err), 1u) << run.err;
    EXPECT_NE(run.err.find(path.string()), std::string::npos) << run.err;
  }
}

// A hand-edited file: a byte-order mark, loose spelling, a value that does not parse, a line cut short.
TEST(PreferencesAbuse, HandEditsReadAsMeantAndWhatTheGameDoesNotKnowSurvivesASave) {
  TempFolder folder("zb-abuse-edits");
  const fs::path file = folder.path() / "prefs.ini";
  writeBytes(file, "\xEF\xBB\xBF# my note\n[window]\nx=3\n[preferences]\nquorra_settingMusicEnabled = Bool: FALSE \n"
                   "quorra_settingMusicVolume=float:loud\nfutureKey=colour:#ff0000\nquorra_settingShowFPS=bo");
  BinaryRun first = runWithPrefs(file, "dump\n" + kToggleFPS);
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_TRUE(first.err.empty()) << first.err;
  const Json read = dumpsOf(first).at(0);
  EXPECT_EQ(read["settingMusicEnabled"].get<bool>(), false);
  EXPECT_EQ(read["settingMusicVolume"].get<double>(), 0.6f);
  EXPECT_EQ(read["settingShowFPS"].get<bool>(), false);

  const std::string saved = readBytes(file);
  for (const char* kept : {"# my note", "[window]", "x=3", "futureKey=colour:#ff0000"}) {
    EXPECT_NE(saved.find(kept), std::string::npos) << kept << " lost from:\n" << saved;
  }
  const Json again = dumpsOf(runWithPrefs(file, "dump\n")).at(0);
  EXPECT_EQ(again["settingMusicEnabled"].get<bool>(), false);
  EXPECT_EQ(again["settingShowFPS"].get<bool>(), true);
}

TEST(PreferencesAbuse, AnUnreadableFileIsKeptBesideTheNewOneAndThePlayerToldWhere) {
  std::string garbage(4096, '\0');
  for (size_t i = 0; i < garbage.size(); ++i) garbage[i] = static_cast<char>((i * 37) & 0xFF);
  std::string oversized = "[preferences]\n";
  while (oversized.size() < (2u << 20)) oversized += "# " + std::string(1000, 'x') + "\n";
  for (const std::string* original : {&garbage, &oversized}) {
    SCOPED_TRACE(original->size());
    TempFolder folder("zb-abuse-unreadable");
    const fs::path file = folder.path() / "prefs.ini";
    writeBytes(file, *original);
    BinaryRun run = runWithPrefs(file, kToggleFPS);
    ASSERT_EQ(run.status, 0) << run.err;
    std::vector<fs::path> copies;
    for (const auto& entry : fs::directory_iterator(folder.path())) {
      if (entry.path() != file) copies.push_back(entry.path());
    }
    ASSERT_EQ(copies.size(), 1u);
    EXPECT_TRUE(copies[0].filename().string().starts_with("prefs.ini.unreadable-")) << copies[0];
    EXPECT_TRUE(readBytes(copies[0]) == *original);
    EXPECT_EQ(lineCount(run.err), 1u) << run.err;
    EXPECT_NE(run.err.find(copies[0].string()), std::string::npos) << run.err;
    EXPECT_EQ(dumpsOf(runWithPrefs(file, "dump\n")).at(0)["settingShowFPS"].get<bool>(), true);
  }
}

// A full disk, for any user: a zero file-size limit (SIGXFSZ ignored) fails every write. Toggled twice,
// the failure is said once, with the file and the reason.
TEST(PreferencesAbuse, AFailedWriteLeavesAGoodFileAsItWasAndSaysWhyOnce) {
  TempFolder folder("zb-abuse-full");
  const fs::path file = folder.path() / "prefs.ini";
  writeBytes(file, "[preferences]\nquorra_settingMusicVolume=float:0.25\nquorra_settingShowFPS=bool:false\n");
  BinaryRun run = runBinary({"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "sh", ZB_BINARY, "--headless",
                             "--fallback", "none", "--prefs", file.string()},
                            kToggleFPS + "click 400 355\nstep\n");
  ASSERT_EQ(run.status, 0) << run.err;
  const Json toggled = dumpsOf(run).at(0);
  EXPECT_EQ(toggled["settingMusicVolume"].get<double>(), 0.25f);
  EXPECT_TRUE(toggled["settingShowFPS"].get<bool>()) << "the setting lives on in memory";
  EXPECT_EQ(readBytes(file), "[preferences]\nquorra_settingMusicVolume=float:0.25\nquorra_settingShowFPS=bool:false\n");
  EXPECT_EQ(lineCount(run.err), 1u) << run.err;
  EXPECT_NE(run.err.find("'" + file.string() + "': File too large"), std::string::npos) << run.err;

  // A folder that cannot be made, under a regular file whose name holds a line break and an escape code.
  writeBytes(folder.path() / "note\n\x1B[2J.txt", "not a folder");
  const fs::path under = folder.path() / "note\n\x1B[2J.txt" / "prefs.ini";
  run = runWithPrefs(under, kToggleFPS);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(lineCount(run.err), 1u) << run.err;
  EXPECT_NE(run.err.find("note\\x0a\\x1b[2J.txt/prefs.ini': Not a directory"), std::string::npos) << run.err;
}

TEST(PreferencesAbuse, AnUnshowableStoredVolumeStillStopsTheGameButSaysWhatAndWhere) {
  TempFolder folder("zb-abuse-volume");
  const fs::path file = folder.path() / "prefs.ini";
  for (const auto& [value, said] : {std::pair{"nan", "nan"}, {"-3e38", "-3e+38"}}) {
    SCOPED_TRACE(value);
    writeBytes(file, std::string("[preferences]\nquorra_settingMusicVolume=float:") + value + "\n");
    BinaryRun run = runWithPrefs(file, "step\nclick 400 250\nstep\ndump\n");
    EXPECT_EQ(run.status, -1) << "the game should stop abnormally, as it always has";
    EXPECT_TRUE(run.out.empty());
    EXPECT_EQ(lineCount(run.err), 1u) << run.err;
    for (const std::string& named : {std::string(said), std::string("quorra_settingMusicVolume"), file.string()}) {
      EXPECT_NE(run.err.find(named), std::string::npos) << named << " missing from: " << run.err;
    }
  }
}

}  // namespace
}  // namespace zb::test

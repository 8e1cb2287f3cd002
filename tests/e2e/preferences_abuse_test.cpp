// The real binary given preference paths and files that users and their systems produce: links,
// FIFOs, device nodes, hand edits, files from somewhere else. Nothing may be destroyed, nothing may
// hang, and every refusal is said in one line.
#include <glib.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "e2e/child_process.hpp"
#include "support/files.hpp"
#include "headless/headless_test_support.hpp"

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
const std::string kGood = "[preferences]\nquorra_settingMusicVolume=float:0.25\n";

TEST(PreferencesAbuse, ASymbolicLinkIsFollowedAndKeptWhileItsTargetIsReplaced) {
  TempFolder folder("zb-abuse-link");
  const fs::path real = folder.path() / "store" / "real.ini";
  writeBytes(real, kGood);
  const fs::path link = folder.path() / "prefs.ini", dangling = folder.path() / "dangling.ini";
  fs::create_symlink("store/real.ini", link);
  fs::create_symlink("store/later.ini", dangling);

  for (const fs::path& path : {link, dangling}) {
    SCOPED_TRACE(path);
    BinaryRun run = runWithPrefs(path, kToggleFPS);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(fs::is_symlink(path));
  }
  EXPECT_EQ(dumpsOf(runWithPrefs(link, "dump\n")).at(0)["settingShowFPS"].get<bool>(), true);
  EXPECT_NE(readBytes(real).find("quorra_settingShowFPS=bool:true"), std::string::npos);
  EXPECT_NE(readBytes(folder.path() / "store" / "later.ini").find("bool:true"), std::string::npos);
  // The temporary file was made beside the target, and none is left behind.
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 3);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path() / "store"), {}), 2);
}

TEST(PreferencesAbuse, APathThatIsNotARegularFileIsNeitherBlockedOnNorReplaced) {
  TempFolder folder("zb-abuse-special");
  struct Case {
    const char* name;
    std::function<bool(const fs::path&)> make;  // false when this machine cannot make one
    std::function<bool(const fs::path&)> stillThere;
  };
  auto isFifo = [](const fs::path& p) { return fs::is_fifo(fs::symlink_status(p)); };
  const std::vector<Case> cases = {
      {"FIFO", [](const fs::path& p) { return ::mkfifo(p.c_str(), 0600) == 0; }, isFifo},
      {"link to a FIFO",
       [&](const fs::path& p) {
         fs::path fifo = p.string() + ".fifo";
         if (::mkfifo(fifo.c_str(), 0600) != 0) return false;
         fs::create_symlink(fifo, p);
         return true;
       },
       [&](const fs::path& p) { return fs::is_symlink(p) && isFifo(p.string() + ".fifo"); }},
      {"null device",
       [](const fs::path& p) { return ::mknod(p.c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0; },
       [](const fs::path& p) { return fs::is_character_file(fs::symlink_status(p)); }},
      {"socket",
       [](const fs::path& p) {
         sockaddr_un address{};
         address.sun_family = AF_UNIX;
         if (p.string().size() >= sizeof address.sun_path) return false;
         p.string().copy(address.sun_path, sizeof address.sun_path - 1);
         const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
         const bool bound = ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
         ::close(fd);
         return bound;
       },
       [](const fs::path& p) { return fs::is_socket(fs::symlink_status(p)); }},
      {"folder", [](const fs::path& p) { return fs::create_directory(p); },
       [](const fs::path& p) { return fs::is_directory(fs::symlink_status(p)); }},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    const fs::path path = folder.path() / (std::string("p-") + std::to_string(&each - cases.data()));
    if (!each.make(path)) {
      // Only a device node needs a privilege that a container may withhold.
      EXPECT_STREQ(each.name, "null device") << "cannot make one here";
      continue;
    }
    // Toggled twice: the settings live on in memory, and the refusal is said once.
    BinaryRun run = runWithPrefs(path, kToggleFPS + "click 400 355\nstep\ndump\n");
    ASSERT_EQ(run.status, 0) << "a hang or a crash: " << run.err;
    const std::vector<Json> dumps = dumpsOf(run);
    ASSERT_EQ(dumps.size(), 2u);
    EXPECT_TRUE(dumps[0]["settingShowFPS"].get<bool>());
    EXPECT_FALSE(dumps[1]["settingShowFPS"].get<bool>());
    EXPECT_TRUE(each.stillThere(path));
    EXPECT_EQ(lineCount(run.err), 1u) << run.err;
    EXPECT_NE(run.err.find(path.string()), std::string::npos) << run.err;
  }
}

TEST(PreferencesAbuse, HandEditsReadAsMeantAndWhatTheGameDoesNotKnowSurvivesASave) {
  TempFolder folder("zb-abuse-edits");
  const fs::path file = folder.path() / "prefs.ini";
  const std::string notOurs = "# my note\n[window]\nx=3\n";
  writeBytes(file, "\xEF\xBB\xBF" + notOurs +
                       "[preferences]\nquorra_settingMusicEnabled = Bool: FALSE \nquorra_settingMusicVolume=FLOAT: "
                       "0.25\nfutureKey=colour:#ff0000\nquorra_settingShowFPS=bool:True\n");
  BinaryRun first = runWithPrefs(file, "dump\n" + kToggleFPS);
  ASSERT_EQ(first.status, 0) << first.err;
  const Json read = dumpsOf(first).at(0);
  EXPECT_EQ(read["settingMusicEnabled"].get<bool>(), false);
  EXPECT_EQ(read["settingMusicVolume"].get<double>(), 0.25f);
  EXPECT_EQ(read["settingShowFPS"].get<bool>(), true);
  EXPECT_TRUE(first.err.empty()) << first.err;

  const std::string saved = readBytes(file);
  for (const char* kept : {"# my note", "[window]", "x=3", "futureKey=colour:#ff0000"}) {
    EXPECT_NE(saved.find(kept), std::string::npos) << kept << " lost from:\n" << saved;
  }
  const Json again = dumpsOf(runWithPrefs(file, "dump\n")).at(0);
  EXPECT_EQ(again["settingMusicEnabled"].get<bool>(), false);
  EXPECT_EQ(again["settingShowFPS"].get<bool>(), false);
}

TEST(PreferencesAbuse, AnUnreadableFileIsKeptBesideTheNewOneAndThePlayerToldWhere) {
  std::string garbage(4096, '\0');
  for (size_t i = 0; i < garbage.size(); ++i) garbage[i] = static_cast<char>((i * 37) & 0xFF);
  std::string oversized = kGood;
  while (oversized.size() < (2u << 20)) oversized += "# " + std::string(1000, 'x') + "\n";
  for (const std::string* original : {&garbage, &oversized}) {
    SCOPED_TRACE(original->size());
    TempFolder folder("zb-abuse-unreadable");
    const fs::path file = folder.path() / "prefs.ini";
    writeBytes(file, *original);
    BinaryRun run = runWithPrefs(file, kToggleFPS + "click 400 355\nstep\n");
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
    EXPECT_EQ(dumpsOf(runWithPrefs(file, "dump\n")).at(0)["settingShowFPS"].get<bool>(), false);
  }
}

TEST(PreferencesAbuse, AnUnshowableStoredVolumeStillStopsTheGameButSaysWhatAndWhere) {
  TempFolder folder("zb-abuse-volume");
  const std::pair<std::string, std::string> storedAndSaid[] = {
      {"inf", "inf"}, {"nan", "nan"}, {"1e20", "1e+20"}, {"-3e38", "-3e+38"}};
  for (const auto& [value, said] : storedAndSaid) {
    SCOPED_TRACE(value);
    const fs::path file = folder.path() / "prefs.ini";
    writeBytes(file, "[preferences]\nquorra_settingMusicVolume=float:" + value + "\n");
    BinaryRun run = runWithPrefs(file, "step\nclick 400 250\nstep\ndump\n");
    EXPECT_EQ(run.status, -1) << "the game should stop abnormally, as it always has";
    EXPECT_TRUE(run.out.empty());
    EXPECT_EQ(lineCount(run.err), 1u) << run.err;
    for (const std::string& named : {said, std::string("quorra_settingMusicVolume"), file.string()}) {
      EXPECT_NE(run.err.find(named), std::string::npos) << named << " missing from: " << run.err;
    }
  }
}

}  // namespace
}  // namespace zb::test

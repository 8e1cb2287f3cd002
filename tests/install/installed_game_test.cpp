// The game as `cmake --install` lays it out in a private folder, moved and shown in a virtual display,
// and the .deb.
#include <cairo.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "e2e/child_process.hpp"
#include "headless/headless_test_support.hpp"
#include "support/files.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

// Runs a program found on the PATH.
BinaryRun runTool(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "/usr/bin/env");
  return runBinary(arguments);
}

// The first group of `pattern` in `text`; empty when it does not match.
std::string firstMatch(const std::string& text, const std::string& pattern) {
  std::smatch match;
  return std::regex_search(text, match, std::regex(pattern)) ? match[1].str() : std::string();
}

// A PNG as a window's icon property holds it: width, height, premultiplied ARGB words; empty if unreadable.
std::vector<std::uint32_t> pngWords(const fs::path& file) {
  cairo_surface_t* image = cairo_image_surface_create_from_png(file.c_str());
  std::vector<std::uint32_t> words;
  if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
    const int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
    const auto* pixels = reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(image));
    words = {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
    words.insert(words.end(), pixels, pixels + width * height);
  }
  cairo_surface_destroy(image);
  return words;
}

// The file under `folder` whose path ends with `ending`; empty when there is none.
fs::path findFile(const fs::path& folder, const std::string& ending) {
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && entry.path().string().ends_with(ending)) return entry.path();
  }
  return {};
}

struct InstalledTree {
  explicit InstalledTree(const std::string& name)
      : folder(name), install(runBinary({ZB_CMAKE, "--install", ZB_BUILD_DIR, "--prefix", prefix()})) {}
  fs::path prefix() const { return folder.path() / "usr"; }
  fs::path file(const std::string& ending) const { return findFile(folder.path(), ending); }
  std::string desktopKey(const std::string& key) const {
    return firstMatch(readBytes(file(".desktop")), "(?:^|\n)" + key + "=([^\n]*)");
  }

  TempFolder folder;
  BinaryRun install;
};

// Opens the game, finds its window by process id, prints the window's class and icon, and closes it.
constexpr const char* kInspectWindow = R"(
"$1" --frames 1800 --prefs "$2" & game=$!
window=$(timeout 30 xdotool search --sync --pid "$game" | head -n 1)
xprop -id "$window" WM_CLASS
xprop -id "$window" -notype 32c _NET_WM_ICON
kill "$game"; wait "$game"
)";

// The window, in a virtual display, carries the entry's class and the installed icon.
void expectWindowClassAndIcon(const InstalledTree& tree) {
  // The virtual display's GL driver leaks where no suppression can name it; headless runs check leaks.
  const BinaryRun run = runTool({"ASAN_OPTIONS=detect_leaks=0", "xvfb-run", "-a", "-s", "-screen 0 1024x768x24",
                                 "sh", "-c", kInspectWindow, "sh", tree.file("/zindlebop"),
                                 tree.folder.path() / "prefs.ini"});
  const std::string windowClass = tree.desktopKey("StartupWMClass");
  EXPECT_NE(run.out.find("WM_CLASS(STRING) = \"" + windowClass + "\", \"" + windowClass + "\""), std::string::npos)
      << run.out << run.err;

  // Width, height and the pixels; split by hand, as std::regex would recurse through some 180 kB.
  const std::size_t start = run.out.find("_NET_WM_ICON = ");
  std::istringstream numbers(start == std::string::npos ? "" : run.out.substr(start + 15));
  std::vector<std::uint32_t> shown;
  for (std::string number; numbers >> number;) shown.push_back(static_cast<std::uint32_t>(std::stoul(number)));
  ASSERT_GE(shown.size(), 2u) << run.out << run.err;
  const std::string size = std::to_string(shown[0]) + "x" + std::to_string(shown[1]);
  const std::vector<std::uint32_t> installed = pngWords(tree.file("/" + size + "/apps/" + windowClass + ".png"));
  ASSERT_EQ(shown.size(), installed.size()) << "no installed icon of the window icon's size, " << size;
  // Alpha everywhere, and colour where the picture is opaque (elsewhere cairo's reading is rounded).
  int differing = 0;
  for (std::size_t i = 0; i < installed.size(); ++i) {
    const bool opaque = (installed[i] >> 24) == 0xff;
    if ((shown[i] >> 24) != (installed[i] >> 24) || (opaque && shown[i] != installed[i])) ++differing;
  }
  EXPECT_EQ(differing, 0);
}

// Whether starting a run with the installed program plays the jump sound.
bool playsTheJump(const fs::path& binary) {
  const BinaryRun run = runBinary({binary, "--headless", "--fallback", "none"}, "key down space\nstep\ndump\n");
  const Json sounds = Json::parse(run.out)["sounds"];
  return std::find(sounds.begin(), sounds.end(), "jump") != sounds.end();
}

TEST(InstalledGame, PassesTheValidatorsShowsItsIconNamesThisVersionAndEveryOptionAndPlaysMovedSounds) {
  ZB_REQUIRE_PROGRAMS("desktop-file-validate", "appstreamcli", "man", "xvfb-run", "xdotool", "xprop");
  InstalledTree tree("zb-install-files");
  ASSERT_EQ(tree.install.status, 0) << tree.install.out << tree.install.err;
  expectWindowClassAndIcon(tree);
  const BinaryRun desktop = runTool({"desktop-file-validate", tree.file(".desktop")});
  EXPECT_EQ(desktop.status, 0);
  EXPECT_EQ(desktop.out + desktop.err, "");
  // Pedantic hints count too; the tree check also finds the desktop entry the metainfo launches.
  for (const BinaryRun& metainfo :
       {runTool({"appstreamcli", "validate", "--no-net", "--pedantic", tree.file(".metainfo.xml")}),
        runTool({"appstreamcli", "validate-tree", "--no-net", "--pedantic", tree.prefix()})}) {
    EXPECT_EQ(metainfo.status, 0);
    EXPECT_FALSE(std::regex_search(metainfo.out + metainfo.err, std::regex("(^|\n)[PIWE]: "))) << metainfo.out;
  }
  const std::string metainfo = readBytes(tree.file(".metainfo.xml"));
  const std::string id = firstMatch(metainfo, "<id>([^<]*)</id>");
  EXPECT_EQ(firstMatch(metainfo, R"(<launchable type="desktop-id">([^<]*)<)"), id + ".desktop");
  EXPECT_EQ(tree.desktopKey("Icon"), id);
  EXPECT_EQ(tree.desktopKey("StartupWMClass"), id);
  EXPECT_FALSE(tree.file("/scalable/apps/" + id + ".svg").empty());

  const std::string version = runBinary({tree.file("/zindlebop"), "--version"}).out;
  EXPECT_EQ(firstMatch(metainfo, R"re(<release version="([^"]*)")re"), firstMatch(version, R"(zindlebop (\S+))"));
  const BinaryRun man = runTool({"LC_ALL=C", "MANWIDTH=80", "man", "--warnings", "-l", tree.file("zindlebop.6.gz")});
  EXPECT_EQ(man.status, 0);
  EXPECT_EQ(man.err, "");
  EXPECT_NE(man.out.find(version.substr(0, version.find('\n'))), std::string::npos) << version;
  const std::string help = runBinary({tree.file("/zindlebop"), "--help"}).out;
  const std::regex option("--[a-z]+");
  for (std::sregex_iterator it(help.begin(), help.end(), option), end; it != end; ++it) {
    EXPECT_NE(man.out.find(it->str()), std::string::npos) << it->str() << " is not in the man page";
  }

  fs::rename(tree.prefix(), tree.folder.path() / "elsewhere");
  EXPECT_TRUE(playsTheJump(tree.file("/zindlebop")));
  // Proof that the moved tree's own folder was used, and not the build tree's or the original prefix's.
  fs::remove(tree.file("/jump.mp3"));
  EXPECT_FALSE(playsTheJump(tree.file("/zindlebop")));
}

TEST(InstalledGame, TheDebDependsOnItsLibrariesCarriesDebiansHardeningAndPassesLintian) {
  ZB_REQUIRE_PROGRAMS("dpkg-shlibdeps", "dpkg-deb", "lintian", "hardening-check");
  TempFolder folder("zb-install-deb");
  const BinaryRun pack =
      runBinary({ZB_CPACK, "-G", "DEB", "--config", ZB_BUILD_DIR "/CPackConfig.cmake", "-B", folder.path()});
  ASSERT_EQ(pack.status, 0) << pack.out << pack.err;
  const fs::path deb = findFile(folder.path(), ".deb");
  ASSERT_FALSE(deb.empty()) << pack.out;
  const std::string depends = runTool({"dpkg-deb", "--field", deb, "Depends"}).out;
  for (const char* library : {"libsdl2-2.0-0 (", "libsdl2-mixer-2.0-0 (", "libcairo2 (", "libpangocairo-1.0-0 ("}) {
    EXPECT_NE(depends.find(library), std::string::npos) << library << " missing from: " << depends;
  }
  EXPECT_NE(runTool({"dpkg-deb", "--contents", deb}).out.find("./usr/share/zindlebop/jump.mp3"), std::string::npos);
  // Debian's hardening, by its own checker; Debian 12's C runtime lacks control-flow protection.
  ASSERT_EQ(runTool({"dpkg-deb", "--extract", deb, folder.path() / "tree"}).status, 0);
  const BinaryRun hardening =
      runTool({"hardening-check", "--nocfprotection", folder.path() / "tree/usr/games/zindlebop"});
  // A sanitizer build replaces those checks with its own and is never packaged for players.
  if (ZB_HARDENED) {
    EXPECT_EQ(hardening.status, 0) << hardening.out << hardening.err;
  }
  // Hardening tags are only informational, so they are shown and looked for by name.
  const BinaryRun lintian = runTool({"lintian", "--fail-on", "error,warning", "--display-info", deb});
  EXPECT_EQ(lintian.status, 0) << lintian.out << lintian.err;
  if (ZB_HARDENED) {
    EXPECT_EQ(lintian.out.find("hardening-"), std::string::npos) << lintian.out;
  }
}

}  // namespace
}  // namespace zb::test

// The installed game's window under a virtual X display: the class a dock matches against the
// desktop entry, and the icon a window manager shows for it.
#include <gtest/gtest.h>

#include <sstream>

#include "install/installed_tree.hpp"

namespace zb::test {
namespace {

// Opens the game, finds its window by process id, prints the window's class and icon, and closes it.
constexpr const char* kInspectWindow = R"(
"$1" --frames 1800 --prefs "$2" & game=$!
window=$(timeout 30 xdotool search --sync --pid "$game" | head -n 1)
xprop -id "$window" WM_CLASS
xprop -id "$window" -notype 32c _NET_WM_ICON
kill "$game"; wait "$game"
)";

// The numbers xprop prints for a cardinal list: width, height, then one ARGB word a pixel.
std::vector<std::uint32_t> iconWords(const std::string& xprop) {
  std::vector<std::uint32_t> words;
  // std::regex recurses per character, and the list is some 180 kB: read it by hand.
  const std::string key = "_NET_WM_ICON = ";
  const std::size_t start = xprop.find(key);
  if (start == std::string::npos) return words;
  std::istringstream numbers(xprop.substr(start + key.size(), xprop.find('\n', start) - start - key.size()));
  for (unsigned long word = 0; numbers >> word;) {
    words.push_back(static_cast<std::uint32_t>(word));
    numbers.ignore(1, ',');
  }
  return words;
}

TEST(InstalledWindow, CarriesTheEntrysClassAndTheInstalledIcon) {
  for (const char* tool : {"xvfb-run", "xdotool", "xprop"}) {
    if (!hasProgram(tool)) GTEST_SKIP() << tool << " is not installed";
  }
  InstalledTree tree("zb-install-window");
  ASSERT_TRUE(tree.installed()) << tree.log();
  // The virtual display's GL driver leaves allocations behind in a library it unloads, where no
  // leak suppression can name it; the game's own leaks are checked by the headless tests.
  const BinaryRun run = runTool({"ASAN_OPTIONS=detect_leaks=0", "xvfb-run", "-a", "-s", "-screen 0 1024x768x24", "sh",
                                 "-c", kInspectWindow, "sh", (tree.prefix() / ZB_INSTALL_BINDIR / "zindlebop").string(),
                                 (tree.folder() / "prefs.ini").string()});
  const std::string windowClass = tree.desktopKey("StartupWMClass");
  EXPECT_NE(run.out.find("WM_CLASS(STRING) = \"" + windowClass + "\", \"" + windowClass + "\""), std::string::npos)
      << run.out << run.err;

  const std::vector<std::uint32_t> words = iconWords(run.out);
  ASSERT_GE(words.size(), 2u) << run.out << run.err;
  const Picture installed = readPng(tree.icon(static_cast<int>(words[0])));
  ASSERT_EQ(installed.width, static_cast<int>(words[0])) << "no installed icon of the window icon's size";
  ASSERT_EQ(installed.height, static_cast<int>(words[1]));
  ASSERT_EQ(words.size(), 2 + installed.argb.size());
  // Alpha everywhere, and colour where the picture is opaque (elsewhere cairo's reading is rounded).
  int differing = 0;
  for (std::size_t i = 0; i < installed.argb.size(); ++i) {
    const std::uint32_t shown = words[2 + i], expected = installed.argb[i];
    const bool opaque = (expected >> 24) == 0xff;
    if ((shown >> 24) != (expected >> 24) || (opaque && shown != expected)) ++differing;
  }
  EXPECT_EQ(differing, 0);
}

}  // namespace
}  // namespace zb::test

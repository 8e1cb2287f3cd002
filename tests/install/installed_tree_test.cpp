// The game as cmake --install lays it out: what desktops, software centres and man read from it, and
// the installed program moved elsewhere as a whole.
#include <gtest/gtest.h>

#include "install/installed_tree.hpp"

namespace zb::test {
namespace {

TEST(InstalledTree, DesktopEntryAndMetainfoPassTheValidators) {
  if (!hasProgram("desktop-file-validate") || !hasProgram("appstreamcli")) GTEST_SKIP() << "validators missing";
  InstalledTree tree("zb-install-validators");
  ASSERT_TRUE(tree.installed()) << tree.log();
  const BinaryRun desktop = runTool({"desktop-file-validate", tree.desktopEntry()});
  EXPECT_EQ(desktop.status, 0);
  EXPECT_EQ(desktop.out + desktop.err, "");
  // Pedantic hints, infos, warnings and errors all count: a software centre lists a clean entry. The
  // tree check also reads the metainfo together with the desktop entry it launches.
  for (const BinaryRun& metainfo :
       {runTool({"appstreamcli", "validate", "--no-net", "--pedantic", tree.metainfo()}),
        runTool({"appstreamcli", "validate-tree", "--no-net", "--pedantic", tree.prefix()})}) {
    EXPECT_EQ(metainfo.status, 0);
    EXPECT_FALSE(std::regex_search(metainfo.out + metainfo.err, std::regex("(^|\n)[PIWE]: "))) << metainfo.out;
  }
}

TEST(InstalledTree, OneIdNamesTheEntryTheLaunchableTheIconsAndTheWindowClass) {
  InstalledTree tree("zb-install-names");
  ASSERT_TRUE(tree.installed()) << tree.log();
  const std::string id = tree.appId();
  ASSERT_TRUE(std::regex_match(id, std::regex(R"([a-z0-9]+(\.[a-z0-9_]+){2,})"))) << id;
  EXPECT_TRUE(fs::exists(tree.desktopEntry()));
  EXPECT_EQ(tree.desktopKey("Icon"), id);
  EXPECT_EQ(tree.desktopKey("StartupWMClass"), id);
  EXPECT_EQ(firstMatch(readText(tree.metainfo()), R"(<launchable type="desktop-id">([^<]*)<)"), id + ".desktop");
  EXPECT_TRUE(fs::exists(tree.data() / "icons/hicolor/scalable/apps" / (id + ".svg")));
  for (int size : {48, 128, 256}) {
    const Picture icon = readPng(tree.icon(size));
    EXPECT_EQ(icon.width, size) << tree.icon(size);
    EXPECT_EQ(icon.height, size) << tree.icon(size);
  }
}

TEST(InstalledTree, MetainfoAndManPageNameThisVersionAndWhatExists) {
  if (!hasProgram("man")) GTEST_SKIP() << "man is not installed";
  InstalledTree tree("zb-install-man");
  ASSERT_TRUE(tree.installed()) << tree.log();
  const fs::path binary = tree.prefix() / ZB_INSTALL_BINDIR / "zindlebop";
  const std::string version = runBinary({binary.string(), "--version"}).out;
  const std::string metainfo = readText(tree.metainfo());
  EXPECT_EQ(firstMatch(metainfo, R"re(<release version="([^"]*)")re"), firstMatch(version, R"(zindlebop (\S+))"));
  // Each screenshot is a picture in this repository at the address the home page serves it from.
  const std::string home = firstMatch(metainfo, R"(<url type="homepage">([^<]*)<)");
  const std::regex image(R"re(<image type="source" width="(\d+)" height="(\d+)">([^<]*)<)re");
  int screenshots = 0;
  for (std::sregex_iterator it(metainfo.begin(), metainfo.end(), image), end; it != end; ++it, ++screenshots) {
    const std::string url = (*it)[3].str();
    ASSERT_EQ(url.rfind(home + "/raw/main/", 0), 0u) << url;
    const Picture picture = readPng(fs::path(ZB_SOURCE_DIR) / url.substr(home.size() + 10));
    EXPECT_EQ(picture.width, std::stoi((*it)[1].str())) << url;
    EXPECT_EQ(picture.height, std::stoi((*it)[2].str())) << url;
  }
  EXPECT_GE(screenshots, 1);
  const fs::path page = tree.prefix() / ZB_INSTALL_MANDIR / "man6" / "zindlebop.6.gz";
  const BinaryRun man = runTool({"LC_ALL=C", "MANWIDTH=80", "man", "--warnings", "-l", page.string()});
  EXPECT_EQ(man.status, 0);
  EXPECT_EQ(man.err, "");
  EXPECT_NE(man.out.find(version.substr(0, version.find('\n'))), std::string::npos) << "the page is not of " << version;
  const BinaryRun help = runBinary({binary.string(), "--help"});
  const std::regex option("--[a-z]+");
  for (std::sregex_iterator it(help.out.begin(), help.out.end(), option), end; it != end; ++it) {
    EXPECT_NE(man.out.find(it->str()), std::string::npos) << it->str() << " is not in the man page";
  }
}

// Starts a run and jumps; the last dump lists the sounds played.
std::string soundsOfAJump(const fs::path& binary) {
  const BinaryRun run = runBinary({binary.string(), "--headless", "--seed", "11", "--fallback", "none"},
                                  "launch\nkey down space\nkey up space\nstep 30\nkey down space\nkey up space\nstep 5\ndump\n");
  const std::vector<Json> dumps = HeadlessRun{run.status, run.out, run.err}.dumps();
  std::string sounds;
  if (!dumps.empty()) {
    for (const Json& sound : dumps.back()["sounds"]) sounds += sound.get<std::string>() + " ";
  }
  return sounds;
}

TEST(InstalledTree, AMovedTreePlaysTheSoundsInstalledBesideIt) {
  InstalledTree tree("zb-install-moved");
  ASSERT_TRUE(tree.installed()) << tree.log();
  const fs::path moved = tree.folder() / "elsewhere" / "games";
  fs::create_directories(moved.parent_path());
  fs::rename(tree.prefix(), moved);
  const fs::path binary = moved / ZB_INSTALL_BINDIR / "zindlebop";
  EXPECT_NE(soundsOfAJump(binary).find("jump"), std::string::npos);
  // Proof that the moved tree's own folder was used, and not the build tree's or the original prefix's.
  fs::remove(moved / ZB_INSTALL_DATADIR / "zindlebop" / "jump.mp3");
  EXPECT_EQ(soundsOfAJump(binary).find("jump"), std::string::npos);
}

}  // namespace
}  // namespace zb::test

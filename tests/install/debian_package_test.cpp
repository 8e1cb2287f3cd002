// The .deb that cpack makes from the build: what apt would install with it, and lintian's verdict.
#include <gtest/gtest.h>

#include "install/installed_tree.hpp"

namespace zb::test {
namespace {

TEST(DebianPackage, DependsOnTheLinkedLibrariesAndPassesLintian) {
  for (const char* tool : {"dpkg-shlibdeps", "dpkg-deb", "lintian"}) {
    if (!hasProgram(tool)) GTEST_SKIP() << tool << " is not installed";
  }
  TempFolder folder("zb-install-deb");
  const BinaryRun pack = runBinary({ZB_CPACK, "-G", "DEB", "--config", std::string(ZB_BUILD_DIR) + "/CPackConfig.cmake",
                                    "-B", folder.path().string()});
  ASSERT_EQ(pack.status, 0) << pack.out << pack.err;
  fs::path deb;
  for (const auto& entry : fs::directory_iterator(folder.path())) {
    if (entry.path().extension() == ".deb") deb = entry.path();
  }
  ASSERT_FALSE(deb.empty()) << pack.out;

  const std::string depends = runTool({"dpkg-deb", "--field", deb.string(), "Depends"}).out;
  for (const char* library : {"libsdl2-2.0-0 (", "libsdl2-mixer-2.0-0 (", "libcairo2 (", "libpangocairo-1.0-0 ("}) {
    EXPECT_NE(depends.find(library), std::string::npos) << library << " missing from: " << depends;
  }
  const BinaryRun contents = runTool({"dpkg-deb", "--contents", deb.string()});
  EXPECT_NE(contents.out.find("./usr/share/zindlebop/jump.mp3"), std::string::npos) << contents.out;

  const BinaryRun lintian = runTool({"lintian", "--fail-on", "error,warning", deb.string()});
  EXPECT_EQ(lintian.status, 0) << lintian.out << lintian.err;
}

}  // namespace
}  // namespace zb::test

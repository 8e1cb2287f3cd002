// The override's words and the drivers that do not count as hardware; the choice is checked with the window.
#include "platform/present_path.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>

namespace zb::test {
namespace {

TEST(PresentPath, TheOverrideNamesAnythingButTheTwoPathsAndSoftwareDriversAreToldFromCards) {
  const std::tuple<const char*, std::optional<PresentPath>, bool> cases[] = {
      {nullptr, std::nullopt, false}, {"", std::nullopt, false}, {"GL", PresentPath::gl, false},
      {"framebuffer", PresentPath::framebuffer, false}, {"gl ", std::nullopt, true}};
  for (const auto& [value, path, complains] : cases) {
    std::string complaint = "left over";
    EXPECT_EQ(requestedPresentPath(value, complaint), path) << (value ? value : "unset");
    EXPECT_EQ(!complaint.empty(), complains) << complaint;
  }
  // Escape codes and a line break are shown, not played, and a long value is cut.
  std::string complaint;
  requestedPresentPath(("gl\x1B]0;owned\x07\n\x9B" + std::string(5000, 'x')).c_str(), complaint);
  EXPECT_TRUE(complaint.starts_with("ZINDLEBOP_PRESENT must be gl or framebuffer, not 'gl\\x1b]0;owned\\x07\\x0a\\x9b"))
      << complaint;
  EXPECT_LE(complaint.size(), 150u);

  EXPECT_TRUE(isSoftwareGlRenderer("llvmpipe (LLVM 15.0.6, 256 bits)"));
  EXPECT_TRUE(isSoftwareGlRenderer(""));
  EXPECT_FALSE(isSoftwareGlRenderer("NVIDIA GeForce GTX 1660/PCIe/SSE2"));
}

}  // namespace
}  // namespace zb::test

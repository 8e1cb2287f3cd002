// Which way frames reach the screen: the override's words and the drivers that do not count as hardware.
// The choice itself, on a display without a graphics card, is checked with the real window.
#include "platform/present_path.hpp"

#include <gtest/gtest.h>

namespace zb::test {
namespace {

TEST(PresentPath, TheOverrideNamesAnythingButTheTwoPathsAndSoftwareDriversAreToldFromCards) {
  struct Case {
    const char* value;
    std::optional<PresentPath> path;
    bool complains;
  };
  const Case cases[] = {{nullptr, std::nullopt, false}, {"", std::nullopt, false}, {"GL", PresentPath::gl, false},
                        {"framebuffer", PresentPath::framebuffer, false}, {"gl ", std::nullopt, true}};
  for (const Case& each : cases) {
    std::string complaint = "left over";
    EXPECT_EQ(requestedPresentPath(each.value, complaint), each.path) << (each.value ? each.value : "unset");
    EXPECT_EQ(!complaint.empty(), each.complains) << complaint;
  }

  EXPECT_TRUE(isSoftwareGlRenderer("llvmpipe (LLVM 15.0.6, 256 bits)"));
  EXPECT_TRUE(isSoftwareGlRenderer(""));
  EXPECT_FALSE(isSoftwareGlRenderer("NVIDIA GeForce GTX 1660/PCIe/SSE2"));
}

}  // namespace
}  // namespace zb::test

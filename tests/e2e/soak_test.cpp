// A long autoplay under watch: the scene's tree and the obstacle pool stay small and the process's
// resident memory stays flat once warmed up, run after run. The test command plays a short soak;
// the `soak` target plays a million frames by setting ZB_SOAK_FRAMES. Leaks and undefined behaviour
// are the sanitizers' part, in the sanitizer build.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "headless/headless_session.hpp"
#include "headless/headless_test_support.hpp"

#if defined(__SANITIZE_ADDRESS__)
#define ZB_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZB_ADDRESS_SANITIZER 1
#endif
#endif

#ifdef ZB_ADDRESS_SANITIZER
extern "C" void __sanitizer_purge_allocator();
#endif

namespace zb::test {
namespace {

constexpr uint64_t kShortSoakFrames = 100'000;
constexpr uint64_t kSampleFrames = 5'000;
constexpr uint64_t kWarmUpFrames = 20'000;
constexpr double kMaxNodeCount = 400;
constexpr double kMaxPoolList = 20;
// Enough to catch memory kept a few bytes a frame. The address sanitizer's own record of where
// blocks were allocated grows by about 2 MB in a million frames.
constexpr long kMaxGrowthKB = 8 * 1024;

uint64_t soakFrames() {
  const char* text = std::getenv("ZB_SOAK_FRAMES");
  if (text == nullptr) return kShortSoakFrames;
  const uint64_t frames = std::strtoull(text, nullptr, 10);
  return frames > 0 ? frames : kShortSoakFrames;
}

// VmRSS in kB. The address sanitizer holds freed blocks back to catch late uses; they are handed
// back first, so that only memory still in use counts.
long residentKB() {
#ifdef ZB_ADDRESS_SANITIZER
  __sanitizer_purge_allocator();
#endif
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
  }
  return -1;
}

TEST(Soak, LongAutoplayKeepsTreePoolAndMemoryBounded) {
  const uint64_t frames = soakFrames();
  std::ostringstream out;
  HeadlessSession session(quietOptions(5), out);
  long warmKB = -1, largestKB = 0;
  for (uint64_t at = kSampleFrames; at <= frames; at += kSampleFrames) {
    session.run(AutoplayCommand{kSampleFrames});
    out.str("");
    session.run(DumpCommand{});
    const Json dump = Json::parse(out.str());
    EXPECT_LT(dump["nodeCount"].get<double>(), kMaxNodeCount) << "frame " << at;
    for (const auto& [kind, count] : dump["pool"].items()) EXPECT_LT(count.get<double>(), kMaxPoolList) << kind << " at " << at;
    const long rssKB = residentKB();
    ASSERT_GT(rssKB, 0);
    if (at < kWarmUpFrames) continue;
    if (warmKB < 0) warmKB = rssKB;
    largestKB = std::max(largestKB, rssKB);
  }
  EXPECT_LT(largestKB - std::max(warmKB, 0L), kMaxGrowthKB) << "resident memory grew after warm-up, from " << warmKB;
  std::cout << "soak: " << frames << " frames; resident " << warmKB << " kB after warm-up, at most " << largestKB << " kB\n";
}

}  // namespace
}  // namespace zb::test

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

#include "headless/headless_session.hpp"
#include "headless/headless_test_support.hpp"

// The address sanitizer's, when it is linked in: it hands back the freed blocks that the sanitizer
// holds back to catch late uses, so that only memory still in use counts.
extern "C" [[gnu::weak]] void __sanitizer_purge_allocator();

namespace zb::test {
namespace {

long residentKB() {
  if (__sanitizer_purge_allocator != nullptr) __sanitizer_purge_allocator();
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
  }
  return -1;
}

TEST(Soak, LongAutoplayKeepsTreePoolAndMemoryBounded) {
  constexpr uint64_t kSampleFrames = 5'000, kWarmUpFrames = 20'000;
  const char* asked = std::getenv("ZB_SOAK_FRAMES");
  const uint64_t frames = asked != nullptr ? std::strtoull(asked, nullptr, 10) : 100'000;
  ASSERT_GT(frames, kWarmUpFrames) << "ZB_SOAK_FRAMES asks for too few frames";
  std::ostringstream out;
  HeadlessSession session(quietOptions(5), out);
  long warmKB = -1, largestKB = 0;
  for (uint64_t at = kSampleFrames; at <= frames; at += kSampleFrames) {
    session.run(AutoplayCommand{kSampleFrames});
    out.str("");
    session.run(DumpCommand{});
    const Json dump = Json::parse(out.str());
    EXPECT_LT(dump["nodeCount"].get<double>(), 400) << "frame " << at;
    for (const auto& [kind, count] : dump["pool"].items()) EXPECT_LT(count.get<double>(), 20) << kind << " at " << at;
    const long rssKB = residentKB();
    ASSERT_GT(rssKB, 0);
    if (at < kWarmUpFrames) continue;
    if (warmKB < 0) warmKB = rssKB;
    largestKB = std::max(largestKB, rssKB);
  }
  // Enough to catch memory kept a few bytes a frame. The address sanitizer's own record of where
  // blocks were allocated grows by about 2 MB in a million frames.
  EXPECT_LT(largestKB - warmKB, 8 * 1024) << "resident memory grew after warm-up, from " << warmKB << " kB";
  std::cout << "soak: " << frames << " frames; resident " << warmKB << " kB after warm-up, at most " << largestKB
            << " kB\n";
}

}  // namespace
}  // namespace zb::test

// The headless driver's own input and output under abuse: runaway tokens, NUL bytes, text that is not
// UTF-8, and a picture too large for the memory it is given.
#include <glib.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "e2e/child_process.hpp"
#include "headless/headless_test_support.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

BinaryRun runScriptThroughBinary(const std::string& script) {
  return runBinary({ZB_BINARY, "--headless", "--seed", "5", "--fallback", "none"}, script);
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

TEST(HeadlessAbuse, AnErrorLineQuotesOnlyTheStartOfARunawayToken) {
  const std::string huge(1 << 20, 'k');
  const std::string accented = std::string(79, 'a') + "\xC3\xA9\xC3\xA9";  // the 80th character is two bytes
  struct Case {
    std::string line, quotedStart;
  };
  const std::vector<Case> cases = {
      {"step " + huge, "'" + std::string(80, 'k') + "'"},
      {huge, "'" + std::string(80, 'k') + "'"},
      {"screenshot a b" + huge, "'b" + std::string(79, 'k') + "'"},
      {"key down " + accented, "'" + std::string(79, 'a') + "\xC3\xA9'"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.line.substr(0, 20));
    BinaryRun run = runScriptThroughBinary("dump\n" + each.line + "\ndump\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << "nothing after the bad line runs";
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
    EXPECT_TRUE(run.err.starts_with("line 2: ")) << firstLine(run.err);
    EXPECT_NE(run.err.find(each.quotedStart), std::string::npos) << firstLine(run.err);
    EXPECT_LT(run.err.size(), 200u);
  }
}

TEST(HeadlessAbuse, ANulInALineIsAnErrorAndNamesNoFile) {
  TempFolder folder("zb-abuse-nul");
  const fs::path before = folder.path() / "shot.png";
  BinaryRun run = runScriptThroughBinary("step\nscreenshot " + before.string() + std::string(1, '\0') + ".txt\n");
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.err.starts_with("line 2: ")) << run.err;
  EXPECT_FALSE(fs::exists(before));
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(HeadlessAbuse, DumpsAreValidUtf8WithEachBadByteReplaced) {
  struct Case {
    std::string stored, dumped;
  };
  const std::string kReplacement = "\xEF\xBF\xBD";
  const std::vector<Case> cases = {
      {"caf\xE9", "caf" + kReplacement},
      {"\xC3\xA9t\xC3\xA9", "\xC3\xA9t\xC3\xA9"},                           // good UTF-8 stays
      {"\xE2\x82", kReplacement + kReplacement},                              // cut short
      {"\xC0\xAF", kReplacement + kReplacement},                              // overlong '/'
      {"\xED\xA0\x80x", kReplacement + kReplacement + kReplacement + "x"},    // a surrogate
      {"\xF4\x90\x80\x80", kReplacement + kReplacement + kReplacement + kReplacement},  // past U+10FFFF
      {"\xF0\x9F\x99\x82!", "\xF0\x9F\x99\x82!"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.dumped);
    BinaryRun run = runScriptThroughBinary("pref set k\xFF" "ey string " + each.stored + "\ndump\n");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(g_utf8_validate(run.out.data(), static_cast<gssize>(run.out.size()), nullptr));
    const Json dump = HeadlessRun{run.status, run.out, run.err}.dumps().at(0);
    EXPECT_EQ(dump["preferences"]["k" + kReplacement + "ey"].get<std::string>(), each.dumped);
  }
}

// A screenshot at a size whose pixels do not fit in the memory the process may use.
TEST(HeadlessAbuse, AScreenshotThatRunsOutOfMemorySaysSo) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the address sanitizer reserves more address space than the limit allows";
#endif
  TempFolder folder("zb-abuse-memory");
  const fs::path shot = folder.path() / "big.png";
  const std::string script = "resize 30000 30000\nstep\nscreenshot " + shot.string() + "\n";
  constexpr const char* kLimitKilobytes = "1500000";  // far more than the game needs, less than the picture
  BinaryRun run = runBinary({"/bin/sh", "-c", std::string("ulimit -v ") + kLimitKilobytes + " && exec \"$0\" \"$@\"",
                             ZB_BINARY, "--headless", "--fallback", "none"},
                            script);
  EXPECT_EQ(run.status, 2) << run.err;
  EXPECT_TRUE(run.err.starts_with("line 3: screenshot: not enough memory")) << run.err;
  EXPECT_FALSE(fs::exists(shot));

  BinaryRun unwritable = runScriptThroughBinary("screenshot " + (folder.path() / "no" / "shot.png").string() + "\n");
  EXPECT_EQ(unwritable.status, 2);
  EXPECT_TRUE(unwritable.err.starts_with("line 1: screenshot: cannot write")) << unwritable.err;
}

}  // namespace
}  // namespace zb::test

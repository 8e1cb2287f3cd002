// The headless driver's input and output under abuse: runaway or NUL lines, bad UTF-8, a one-point
// view, pictures too large for memory or sent to a FIFO, a device or a full disk.
#include <glib.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>

#include "e2e/child_process.hpp"
#include "headless/headless_test_support.hpp"
#include "support/files.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

BinaryRun runScriptThroughBinary(const std::string& script) {
  return runBinary({ZB_BINARY, "--headless", "--seed", "5", "--fallback", "none"}, script);
}

// Error lines quote at most 80 bytes, never half a character, with control bytes escaped.
TEST(HeadlessAbuse, ARunawayOrNulLineIsAnErrorThatQuotesOnlyItsStartAndNamesNoFile) {
  TempFolder folder("zb-abuse-lines");
  const std::string shot = (folder.path() / "shot.png").string(), huge(1 << 20, 'k'), a79(79, 'a');
  const std::pair<std::string, std::string> lineAndSaid[] = {
      {"step " + huge, "'" + std::string(80, 'k') + "'"},
      {"screenshot a b" + huge, "'b" + std::string(79, 'k') + "'"},
      {"key down " + a79 + "\xC3\xA9", "'" + a79 + "'..."},  // the 80th character is two bytes
      {"key down \x1B]0;x\x07\x7F\xC2\x85\x85\\", "'\\x1b]0;x\\x07\\x7f\\x85\\x85\\\\'"},  // C0, DEL, C1
      {"screenshot " + shot + std::string(1, '\0') + ".txt", "NUL"},
  };
  for (const auto& [line, said] : lineAndSaid) {
    SCOPED_TRACE(line.substr(0, 20));
    BinaryRun run = runScriptThroughBinary("dump\n" + line + "\ndump\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << "nothing after the bad line runs";
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
    EXPECT_TRUE(run.err.starts_with("line 2: ")) << run.err.substr(0, 200);
    EXPECT_NE(run.err.find(said), std::string::npos) << run.err.substr(0, 200);
    EXPECT_LT(run.err.size(), 200u);
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(HeadlessAbuse, DumpsAreValidUtf8WithEachBadByteReplaced) {
  const std::string r = "\xEF\xBF\xBD";  // the replacement character
  const std::pair<std::string, std::string> storedAndDumped[] = {
      {"caf\xE9", "caf" + r},
      {"\xC3\xA9t\xC3\xA9", "\xC3\xA9t\xC3\xA9"},  // good UTF-8 stays
      {"\xE2\x82", r + r},                        // cut short
      {"\xC0\xAF", r + r},                        // overlong '/'
      {"\xED\xA0\x80x", r + r + r + "x"},         // a surrogate
      {"\xF4\x90\x80\x80", r + r + r + r},        // past U+10FFFF
  };
  std::string script = "pref set k\xFF" "ey string x\n";
  for (size_t i = 0; i < std::size(storedAndDumped); ++i) {
    script += "pref set k" + std::to_string(i) + " string " + storedAndDumped[i].first + "\n";
  }
  BinaryRun run = runScriptThroughBinary(script + "dump\n");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(g_utf8_validate(run.out.data(), static_cast<gssize>(run.out.size()), nullptr));
  const Json preferences = HeadlessRun{run.status, run.out, run.err}.dumps().at(0)["preferences"];
  EXPECT_EQ(preferences["k" + r + "ey"].get<std::string>(), "x");
  for (size_t i = 0; i < std::size(storedAndDumped); ++i) {
    EXPECT_EQ(preferences["k" + std::to_string(i)].get<std::string>(), storedAndDumped[i].second) << i;
  }
}

// A number that is not finite is dumped as null: every null, by path, except where null is a value.
void collectNulls(const Json& value, const std::string& path, std::vector<std::string>& found) {
  const bool nullable = path == "/lastCollisionPoint" || path == "/music" || path == "/focusedButton";
  if (value.is_null() && !nullable) found.push_back(path);
  if (!value.is_structured()) return;
  for (const auto& [key, member] : value.items()) collectNulls(member, path + "/" + key, found);
}

TEST(HeadlessAbuse, AViewSqueezedToOnePointAndBackInEveryStateKeepsEveryNumberFinite) {
  const std::pair<const char*, const char*> states[] = {
      {"menu", "step 5\nkey down tab\n"},  // with the focus outline showing
      {"settings", "step 5\nclick 400 250\n"},
      {"playing", "key down space\nstep 100\n"},
      {"paused", "key down space\nstep 100\nkey down p\n"},
      {"gameOver", "key down space\nstep 900\n"},
  };
  const auto labelPositions = [](const Json& dump) {
    std::string positions;
    for (const auto& [name, label] : dump["labels"].items()) positions += name + " " + label["position"].dump() + "; ";
    return positions;
  };
  for (const auto& [state, reach] : states) {
    SCOPED_TRACE(state);
    TempFolder folder("zb-abuse-resize");
    const std::string shot = (folder.path() / "shot.png").string();
    std::string script = std::string(reach) + "dump\n";
    for (const char* size : {"1 1", "800 600"}) {
      script += std::string("resize ") + size + "\nstep 5\ndump\nscreenshot " + shot + "\n";
    }
    BinaryRun run = runScriptThroughBinary(script);
    ASSERT_EQ(run.status, 0) << run.err;
    const std::vector<Json> dumps = HeadlessRun{run.status, run.out, run.err}.dumps();
    ASSERT_EQ(dumps.size(), 3u);
    for (const Json& dump : dumps) {
      EXPECT_EQ(dump["gameState"].get<std::string>(), state);
      std::vector<std::string> nulls;
      collectNulls(dump, "", nulls);
      EXPECT_TRUE(nulls.empty()) << "at size " << dump["size"] << ": " << testing::PrintToString(nulls);
    }
    EXPECT_EQ(labelPositions(dumps[2]), labelPositions(dumps[0]));
  }
}

// A FIFO or a device is refused unopened (a FIFO would wait for ever), a write that fails half-way
// (the file-size limit standing in for a full disk) leaves the old picture, and a picture too large
// for the memory the process may use is said to be so.
TEST(HeadlessAbuse, AScreenshotGoesOnlyToAWritableRegularFileAndAFailedOneLeavesTheOldPicture) {
  TempFolder folder("zb-abuse-shots");
  const fs::path fifo = folder.path() / "fifo.png", device = folder.path() / "null.png";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  fs::create_symlink("/dev/null", device);
  for (const auto& [path, why] : {std::pair{fifo, "it is not a regular file"}, {device, "it is not a regular file"},
                                   {folder.path() / "no" / "shot.png", "No such file or directory"}}) {
    BinaryRun run = runScriptThroughBinary("screenshot " + path.string() + "\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "line 1: screenshot: cannot write '" + path.string() + "': " + why + "\n");
  }
  EXPECT_TRUE(fs::is_fifo(fifo));

  const fs::path old = folder.path() / "old.png";
  writeBytes(old, "the old picture");
  BinaryRun full = runBinary({"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 8; exec \"$@\"", "sh", ZB_BINARY, "--headless",
                              "--fallback", "none"},
                             "step\nscreenshot " + old.string() + "\n");
  EXPECT_EQ(full.status, 2);
  EXPECT_EQ(full.err, "line 2: screenshot: cannot write '" + old.string() + "': File too large\n");
  EXPECT_TRUE(readBytes(old) == "the old picture") << "the old picture was cut short";
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 3) << "a partial picture was left";

#if !defined(__SANITIZE_ADDRESS__)  // which reserves more address space than the limit allows
  const fs::path big = folder.path() / "big.png";
  constexpr const char* kLimitKilobytes = "800000";  // far more than the game needs, less than the picture
  BinaryRun run = runBinary({"/bin/sh", "-c", std::string("ulimit -v ") + kLimitKilobytes + " && exec \"$0\" \"$@\"",
                             ZB_BINARY, "--headless", "--fallback", "none"},
                            "resize 16384 16384\nstep\nscreenshot " + big.string() + "\n");
  EXPECT_EQ(run.status, 2) << run.err;
  EXPECT_TRUE(run.err.starts_with("line 3: screenshot: not enough memory")) << run.err;
  EXPECT_FALSE(fs::exists(big));
#endif
}

}  // namespace
}  // namespace zb::test

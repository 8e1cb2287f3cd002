#include "engine/quoted_text.hpp"

#include <gtest/gtest.h>

namespace zb {
namespace {

TEST(QuotedText, ControlBytesAreShownAsEscapesAndLongTextIsCutBetweenCharacters) {
  // C0, DEL, C1 as UTF-8 and as a raw byte, a byte that is not UTF-8, a backslash; é stays.
  EXPECT_EQ(quotedForMessage("a\tb\x7F\xC2\x9B\x9B\xFF\\\xC3\xA9"), "'a\\x09b\\x7f\\x9b\\x9b\\xff\\\\\xC3\xA9'");
  EXPECT_EQ(quotedForMessage(std::string(100, '\x01'), 10), "'\\x01\\x01'...") << "never half an escape";
  EXPECT_EQ(quotedForMessage("\xC3\xA9\xC3\xA9", 3), "'\xC3\xA9'...") << "never half a character";

  const std::string line = oneLine("bad \x1B[2J " + std::string(1000, 'y'));
  EXPECT_TRUE(line.starts_with("bad \\x1b[2J yyy")) << line;
  EXPECT_EQ(line.size(), kMaxMessageBytes);
  EXPECT_TRUE(line.ends_with("y...")) << line;
}

}  // namespace
}  // namespace zb

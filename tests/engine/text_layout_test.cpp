#include "engine/text_layout.hpp"

#include <gtest/gtest.h>

#include "engine/label_node.hpp"

namespace zb {
namespace {

LabelNodePtr label(const std::string& text, double size = 18) {
  auto l = std::make_shared<LabelNode>();
  l->setText(text);
  l->setFontSize(size);
  return l;
}

TEST(TextLayoutTest, MenloIsDejaVuSansMono) { EXPECT_EQ(resolvedFamilyFor("Menlo"), "DejaVu Sans Mono"); }

TEST(TextLayoutTest, FramesFollowTheTextAndTheAlignment) {
  LabelNodePtr shortText = label("Score: 0");
  LabelNodePtr longText = label("Score: 12345");
  Rect a = shortText->frame();
  Rect b = longText->frame();
  EXPECT_GT(b.width(), a.width());
  // A monospaced face: four more characters, four more advances.
  EXPECT_NEAR(b.width() / a.width(), 12.0 / 8.0, 0.01);
  // Centred on the position, standing on the baseline with the descent below it.
  EXPECT_NEAR(a.midX(), 0, 1e-6);
  EXPECT_LT(a.minY(), 0);
  EXPECT_GT(a.maxY(), 0.5 * 18);

  shortText->position = {100, 50};
  shortText->horizontalAlignment = HorizontalAlignment::left;
  EXPECT_NEAR(shortText->frame().minX(), 100, 1e-6);
  shortText->horizontalAlignment = HorizontalAlignment::right;
  EXPECT_NEAR(shortText->frame().maxX(), 100, 1e-6);
  EXPECT_NEAR(shortText->frame().width(), a.width(), 1e-6);

  // Doubling the font size doubles the frame.
  shortText->setFontSize(36);
  EXPECT_NEAR(shortText->frame().width(), 2 * a.width(), 1e-3);
  EXPECT_FALSE(label("")->contentBounds().has_value());
}

TEST(TextLayoutTest, WrapsAtTheWidthAndKeepsAtMostTheAllowedLines) {
  const std::string taunt = "You ran into a box. The box did not even move. Think about that for a moment.";
  double lineHeight = label("Mg", 16)->frame().height();

  LabelNodePtr wrapped = label(taunt, 16);
  wrapped->setPreferredMaxLayoutWidth(300);
  wrapped->setNumberOfLines(2);
  Rect two = wrapped->frame();
  EXPECT_LE(two.width(), 300);
  EXPECT_GT(two.width(), 200);
  EXPECT_NEAR(two.height(), 2 * lineHeight, 0.5);
  EXPECT_NEAR(two.midX(), 0, 1e-6);

  wrapped->setNumberOfLines(0);
  Rect all = wrapped->frame();
  EXPECT_NEAR(all.height(), 3 * lineHeight, 0.5);
  // The first line stays on the position: more lines grow downwards.
  EXPECT_NEAR(all.maxY(), two.maxY(), 1e-6);

  // Without a width, only explicit line breaks make lines.
  LabelNodePtr broken = label("one\ntwo", 16);
  EXPECT_NEAR(broken->frame().height(), lineHeight, 0.5);
  broken->setNumberOfLines(0);
  EXPECT_NEAR(broken->frame().height(), 2 * lineHeight, 0.5);
}

}  // namespace
}  // namespace zb

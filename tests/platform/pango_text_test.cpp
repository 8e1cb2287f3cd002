#include "platform/pango_text.hpp"

#include <gtest/gtest.h>

#include "engine/label_node.hpp"

namespace zb {
namespace {

LabelNodePtr label(const std::string& text, double size) {
  auto l = std::make_shared<LabelNode>();
  l->setText(text);
  l->setFontSize(size);
  return l;
}

// The labels' default face is the game's Menlo, which Linux lacks: it must still come out monospaced.
TEST(TextLayoutTest, FramesFollowTheTextSizeAndAlignmentAndWrapAtTheWidth) {
  LabelNodePtr text = label("Score: 0", 18);
  const Rect a = text->frame();
  EXPECT_NEAR(label("Score: 1234", 18)->frame().width() / a.width(), 11.0 / 8.0, 0.01);
  // Centred on the position, standing on the baseline with the descent below it.
  EXPECT_NEAR(a.midX(), 0, 1e-6);
  EXPECT_LT(a.minY(), 0);
  EXPECT_GT(a.maxY(), 0.5 * 18);
  text->position = {100, 50};
  text->horizontalAlignment = HorizontalAlignment::left;
  EXPECT_NEAR(text->frame().minX(), 100, 1e-6);
  text->horizontalAlignment = HorizontalAlignment::right;
  EXPECT_NEAR(text->frame().maxX(), 100, 1e-6);
  text->setFontSize(36);
  EXPECT_NEAR(text->frame().width(), 2 * a.width(), 1e-3);
  EXPECT_FALSE(label("", 18)->contentBounds().has_value());

  const double lineHeight = label("Mg", 16)->frame().height();
  LabelNodePtr wrapped = label("You ran into a box. The box did not even move. Think about that for a moment.", 16);
  wrapped->setPreferredMaxLayoutWidth(300);
  wrapped->setNumberOfLines(2);
  const Rect two = wrapped->frame();
  EXPECT_LE(two.width(), 300);
  EXPECT_NEAR(two.height(), 2 * lineHeight, 0.5);
  wrapped->setNumberOfLines(0);
  EXPECT_NEAR(wrapped->frame().height(), 3 * lineHeight, 0.5);
  EXPECT_NEAR(wrapped->frame().maxY(), two.maxY(), 1e-6) << "more lines grow downwards";
}

}  // namespace
}  // namespace zb

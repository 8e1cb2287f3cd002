#include "render/pango_text.hpp"

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

// Placement and size show in the HUD and screenshot tests; wrapping and the monospaced Menlo stand-in do not.
TEST(TextLayoutTest, TheDefaultFaceIsMonospacedAndTextWrapsAtTheWidthToTheAllowedLines) {
  EXPECT_NEAR(label("Score: 1234", 18)->frame().width() / label("Score: 0", 18)->frame().width(), 11.0 / 8.0, 0.01);
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

#include "render/pango_text.hpp"

#include <cairo.h>
#include <gtest/gtest.h>
#include <pango/pangocairo.h>

#include <cstring>

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

using Image = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

// A label's coverage, drawn with its left end at 8 and its baseline at 40 of a 400x60 mask.
template <typename Draw>
Image coverage(Draw draw) {
  Image image(cairo_image_surface_create(CAIRO_FORMAT_A8, 400, 60), cairo_surface_destroy);
  cairo_t* cr = cairo_create(image.get());
  draw(cr);
  cairo_destroy(cr);
  cairo_surface_flush(image.get());
  return image;
}

bool samePixels(cairo_surface_t* a, cairo_surface_t* b) {
  const std::size_t bytes = static_cast<std::size_t>(cairo_image_surface_get_stride(a) * cairo_image_surface_get_height(a));
  return std::memcmp(cairo_image_surface_get_data(a), cairo_image_surface_get_data(b), bytes) == 0;
}

// A counting score shares one layout across its numbers, and labels are drawn glyph by glyph: what
// shows must still be exactly what pango itself draws for that text, at a width that does not change
// with the digits.
TEST(TextLayoutTest, ACountingLabelShowsExactlyItsOwnDigits) {
  const auto drawnByLabel = [](const std::string& text) {
    LabelNodePtr l = label(text, 24);
    l->horizontalAlignment = HorizontalAlignment::left;
    return coverage([&](cairo_t* cr) {
      std::vector<LabelGlyph> glyphs;
      labelGlyphs(*l, glyphs);
      for (const LabelGlyph& g : glyphs) {
        cairo_identity_matrix(cr);
        cairo_translate(cr, 8 + g.origin.x, 40 - g.origin.y);  // the label's y runs up
        showGlyph(cr, g.font, g.glyph);
      }
    });
  };
  const auto drawnByPango = [](const std::string& text) {
    return coverage([&](cairo_t* cr) {
      PangoLayout* layout = pango_layout_new(sharedTextContext());
      PangoFontDescription* font = pango_font_description_from_string("Menlo");
      pango_font_description_set_absolute_size(font, 24 * PANGO_SCALE);
      pango_layout_set_font_description(layout, font);
      pango_layout_set_text(layout, text.c_str(), -1);
      PangoRectangle logical;
      pango_layout_get_extents(layout, nullptr, &logical);
      cairo_move_to(cr, 8 - static_cast<double>(logical.x) / PANGO_SCALE,
                    40 - static_cast<double>(pango_layout_get_baseline(layout)) / PANGO_SCALE);
      pango_cairo_show_layout(cr, layout);
      pango_font_description_free(font);
      g_object_unref(layout);
    });
  };
  EXPECT_EQ(label("Score: 1111", 24)->frame().width(), label("Score: 8888", 24)->frame().width());
  for (const char* text : {"Score: 0", "Score: 1289", "High: 9999", "Score: 3457 of 6"}) {
    SCOPED_TRACE(text);
    drawnByLabel("Score: 0000");  // the shared layout already exists when the real text comes
    EXPECT_TRUE(samePixels(drawnByLabel(text).get(), drawnByPango(text).get()));
  }
  EXPECT_FALSE(samePixels(drawnByLabel("Score: 1289").get(), drawnByLabel("Score: 1298").get()));
}

}  // namespace
}  // namespace zb

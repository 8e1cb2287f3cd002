#include "platform/pango_text.hpp"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <mutex>

#include "engine/label_node.hpp"

namespace zb {

namespace {

// "Menlo" is not installed on Linux; fontconfig would fall back to a proportional face, which would
// change every label's width.
constexpr const char* kFontAliases = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <alias binding="same">
    <family>Menlo</family>
    <prefer><family>DejaVu Sans Mono</family></prefer>
  </alias>
</fontconfig>
)";

// Pango measures in 1/1024 points in an int: keep sizes and widths well inside that.
constexpr double kMaxFontSize = 10000;
constexpr double kMaxWrapWidth = 1e6;

// One font map and context for every label. Metric hinting and glyph-position rounding are off, so a
// layout measures the same whatever scale it is later drawn at.
void installFontAliases() {
  static std::once_flag once;
  std::call_once(once, [] {
    if (!FcInit()) return;
    FcConfig* config = FcConfigGetCurrent();
    FcConfigParseAndLoadFromMemory(config, reinterpret_cast<const FcChar8*>(kFontAliases), FcFalse);
  });
}

PangoContext* sharedContext() {
  static PangoContext* context = [] {
    installFontAliases();
    PangoFontMap* fontMap = pango_cairo_font_map_new();
    PangoContext* c = pango_font_map_create_context(fontMap);
    g_object_unref(fontMap);  // the context keeps it
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    pango_cairo_context_set_font_options(c, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(c, FALSE);
    return c;
  }();
  return context;
}

double points(int pangoUnits) { return static_cast<double>(pangoUnits) / PANGO_SCALE; }

PangoAlignment pangoAlignment(HorizontalAlignment alignment) {
  switch (alignment) {
    case HorizontalAlignment::left: return PANGO_ALIGN_LEFT;
    case HorizontalAlignment::right: return PANGO_ALIGN_RIGHT;
    case HorizontalAlignment::center: break;
  }
  return PANGO_ALIGN_CENTER;
}

}  // namespace

// A label's text laid out by pango, with its extent in pango's own frame: x to the right and y down
// from the top of the layout.
struct LabelLayout : LaidOutText {
  PangoLayout* layout = nullptr;
  unsigned long revision = 0;
  HorizontalAlignment alignment = HorizontalAlignment::center;
  bool empty = true;
  Rect logical;            // the text's logical extent
  double boxLeft = 0;      // the span the alignment refers to
  double boxWidth = 0;
  double baseline = 0;     // of the first line, below the top

  LabelLayout() = default;
  LabelLayout(const LabelLayout&) = delete;
  LabelLayout& operator=(const LabelLayout&) = delete;
  ~LabelLayout() override {
    if (layout) g_object_unref(layout);
  }

  // Where the layout's top-left corner goes, in the label's coordinates (y up).
  Point origin() const {
    double x = -boxLeft;
    if (alignment == HorizontalAlignment::center) x -= boxWidth / 2;
    if (alignment == HorizontalAlignment::right) x -= boxWidth;
    return {x, baseline};
  }
};

class LabelLayoutCache {
 public:
  static const LabelLayout& of(const LabelNode& label) {
    std::shared_ptr<LaidOutText>& slot = label.laidOutText();
    const auto* cached = dynamic_cast<const LabelLayout*>(slot.get());
    if (!cached || cached->revision != label.layoutRevision() || cached->alignment != label.horizontalAlignment) {
      auto fresh = build(label);
      cached = fresh.get();
      slot = std::move(fresh);
    }
    return *cached;
  }

 private:
  static std::shared_ptr<LabelLayout> build(const LabelNode& label) {
    auto result = std::make_shared<LabelLayout>();
    result->revision = label.layoutRevision();
    result->alignment = label.horizontalAlignment;
    const double size = label.fontSize();
    result->empty = label.text().empty() || !std::isfinite(size) || size <= 0;
    if (result->empty) return result;

    PangoLayout* layout = pango_layout_new(sharedContext());
    result->layout = layout;
    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_family(font, label.fontName().c_str());
    pango_font_description_set_absolute_size(font, std::min(size, kMaxFontSize) * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    pango_font_description_free(font);
    pango_layout_set_alignment(layout, pangoAlignment(label.horizontalAlignment));
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_NONE);
    const double wrapWidth = std::min(label.preferredMaxLayoutWidth(), kMaxWrapWidth);
    bool wraps = wrapWidth > 0;  // false for NaN as well
    if (wraps) {
      pango_layout_set_width(layout, static_cast<int>(wrapWidth * PANGO_SCALE));
      pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }
    pango_layout_set_text(layout, label.text().data(), static_cast<int>(label.text().size()));
    limitLines(layout, label.numberOfLines());

    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    result->logical = Rect::make(points(logical.x), points(logical.y), points(logical.width), points(logical.height));
    if (wraps) {
      // A line broken at a space keeps that space in its extent; the frame stops at the wrap width.
      double right = std::min(result->logical.maxX(), wrapWidth);
      double left = std::max(result->logical.minX(), 0.0);
      result->logical = Rect::make(left, result->logical.minY(), std::max(right - left, 0.0), result->logical.height());
    }
    result->boxLeft = wraps ? 0 : result->logical.minX();
    result->boxWidth = wraps ? wrapWidth : result->logical.width();
    result->baseline = points(pango_layout_get_baseline(layout));
    return result;
  }

  // Lines past the limit are dropped, not ellipsized.
  static void limitLines(PangoLayout* layout, int maxLines) {
    if (maxLines <= 0 || pango_layout_get_line_count(layout) <= maxLines) return;
    PangoLayoutLine* last = pango_layout_get_line_readonly(layout, maxLines - 1);
    std::string kept(pango_layout_get_text(layout), static_cast<std::size_t>(last->start_index + last->length));
    pango_layout_set_text(layout, kept.data(), static_cast<int>(kept.size()));
  }
};

namespace {

class PangoMeasurer final : public TextMeasurer {
 public:
  std::optional<Rect> measure(const LabelNode& label) const override {
    const LabelLayout& l = LabelLayoutCache::of(label);
    if (l.empty) return std::nullopt;
    Point origin = l.origin();
    // Pango's y runs down from the layout's top, which sits at the baseline's height above the position.
    return Rect::make(origin.x + l.logical.minX(), origin.y - l.logical.maxY(), l.logical.width(), l.logical.height());
  }
};

}  // namespace

// Fonts are set up on the first layout, not here, so that a program that never shows text never
// starts fontconfig.
void installPangoText() {
  static const PangoMeasurer measurer;
  installTextMeasurer(&measurer);
}

void showLabelText(cairo_t* cr, const LabelNode& label) {
  const LabelLayout& l = LabelLayoutCache::of(label);
  if (l.empty || !cr) return;
  Point origin = l.origin();
  cairo_save(cr);
  cairo_translate(cr, origin.x, origin.y);
  cairo_scale(cr, 1, -1);
  cairo_new_path(cr);
  cairo_move_to(cr, 0, 0);
  pango_cairo_show_layout(cr, l.layout);
  cairo_new_path(cr);
  cairo_restore(cr);
}

PangoContext* sharedTextContext() { return sharedContext(); }

std::string resolvedFamilyFor(const char* family) {
  PangoContext* context = sharedContext();
  PangoFontDescription* description = pango_font_description_new();
  pango_font_description_set_family(description, family ? family : "");
  pango_font_description_set_absolute_size(description, 12 * PANGO_SCALE);
  PangoFont* font = pango_font_map_load_font(pango_context_get_font_map(context), context, description);
  pango_font_description_free(description);
  if (!font) return {};
  PangoFontDescription* actual = pango_font_describe(font);
  const char* name = pango_font_description_get_family(actual);
  std::string result = name ? name : "";
  pango_font_description_free(actual);
  g_object_unref(font);
  return result;
}

}  // namespace zb

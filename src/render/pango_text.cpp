#include "render/pango_text.hpp"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

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

// Digits are set in the cells of a "0": a counting score keeps its width, and texts that differ only
// in their digits share one layout, laid out once, with the digits' glyphs swapped in when drawn.
std::string digitsAsZeros(std::string_view text) {
  std::string cells(text);
  for (char& c : cells) {
    if (c >= '0' && c <= '9') c = '0';
  }
  return cells;
}

PangoAlignment pangoAlignment(HorizontalAlignment alignment) {
  switch (alignment) {
    case HorizontalAlignment::left: return PANGO_ALIGN_LEFT;
    case HorizontalAlignment::right: return PANGO_ALIGN_RIGHT;
    case HorizontalAlignment::center: break;
  }
  return PANGO_ALIGN_CENTER;
}

}  // namespace

// One pango layout of a text, shared by every label showing that text or one differing from it only
// in its digits, with its extent in pango's own frame: x to the right and y down from the top.
struct SharedLayout {
  PangoLayout* layout = nullptr;
  std::string text;
  Rect logical;            // the text's logical extent
  double boxLeft = 0;      // the span the alignment refers to
  double boxWidth = 0;
  double baseline = 0;     // of the first line, below the top
  // Each run of glyphs with the start of its baseline, in pango units, found once with everything
  // drawing it needs: walking a layout costs more than drawing it.
  struct Run {
    const PangoGlyphItem* glyphs = nullptr;
    int x = 0, baseline = 0;
    uint64_t fontKey = 0;                 // names the run's face, size and style
    std::vector<Rect> inks;               // each glyph's ink around its origin, in points, y down
    std::array<PangoGlyph, 10> digits{};  // the glyphs of "0" to "9" in the run's font
    std::array<Rect, 10> digitInks{};
  };
  std::vector<Run> runs;
  // Every "0" is a glyph of its own (not part of a ligature, say) and every run knows its digits'
  // glyphs; otherwise the layout serves its own text only.
  bool swapsDigits = false;

  SharedLayout() = default;
  SharedLayout(const SharedLayout&) = delete;
  SharedLayout& operator=(const SharedLayout&) = delete;
  ~SharedLayout() {
    if (layout) g_object_unref(layout);
  }
};

// A label's text as laid out: its shared layout and the digits to show in it.
struct LabelLayout : LaidOutText {
  std::shared_ptr<const SharedLayout> shared;
  std::string text;
  unsigned long revision = 0;
  HorizontalAlignment alignment = HorizontalAlignment::center;
  bool empty = true;

  // Where the layout's top-left corner goes, in the label's coordinates (y up).
  Point origin() const {
    double x = -shared->boxLeft;
    if (alignment == HorizontalAlignment::center) x -= shared->boxWidth / 2;
    if (alignment == HorizontalAlignment::right) x -= shared->boxWidth;
    return {x, shared->baseline};
  }
};

namespace {

// Layouts kept for reuse: a handful of labels, each with a few texts that come back.
constexpr std::size_t kKeptLayouts = 64;

// True when every "0" of the run is one glyph standing for that one character alone.
bool zerosAreSingleGlyphs(const std::string& text, const PangoGlyphItem& run) {
  const PangoItem& item = *run.item;
  const PangoGlyphString& glyphs = *run.glyphs;
  std::vector<int> starts;
  for (int i = 0; i < glyphs.num_glyphs; ++i) starts.push_back(item.offset + glyphs.log_clusters[i]);
  std::vector<int> sorted = starts;
  std::sort(sorted.begin(), sorted.end());
  for (int start : starts) {
    if (text[static_cast<std::size_t>(start)] != '0') continue;
    if (std::count(sorted.begin(), sorted.end(), start) != 1) return false;
    const auto next = std::upper_bound(sorted.begin(), sorted.end(), start);
    const int end = next != sorted.end() ? *next : item.offset + item.length;
    if (end != start + 1) return false;
  }
  return true;
}

Rect inkOf(PangoFont* font, PangoGlyph glyph) {
  PangoRectangle ink;
  pango_font_get_glyph_extents(font, glyph, &ink, nullptr);
  return Rect::make(points(ink.x), points(ink.y), points(ink.width), points(ink.height));
}

// A name for the font's look, the same for every font object of that face, size and style.
uint64_t fontKeyOf(PangoFont* font) {
  PangoFontDescription* description = pango_font_describe_with_absolute_size(font);
  char* name = pango_font_description_to_string(description);
  const uint64_t key = std::hash<std::string_view>{}(name);
  g_free(name);
  pango_font_description_free(description);
  return key;
}

// Finds the glyphs of the ten digits in the run's font and script; false unless each is a glyph of
// its own.
bool findDigits(SharedLayout::Run& run) {
  constexpr char kDigits[] = "0123456789";
  PangoGlyphString* glyphs = pango_glyph_string_new();
  pango_shape(kDigits, 10, &run.glyphs->item->analysis, glyphs);
  bool found = glyphs->num_glyphs == 10;
  for (int i = 0; i < 10 && found; ++i) {
    found = glyphs->log_clusters[i] == i;
    const auto digit = static_cast<std::size_t>(i);
    run.digits[digit] = glyphs->glyphs[i].glyph;
    run.digitInks[digit] = inkOf(run.glyphs->item->analysis.font, run.digits[digit]);
  }
  pango_glyph_string_free(glyphs);
  return found;
}

std::vector<SharedLayout::Run> runsOf(PangoLayout* layout) {
  std::vector<SharedLayout::Run> runs;
  PangoLayoutIter* iter = pango_layout_get_iter(layout);
  do {
    const PangoLayoutRun* run = pango_layout_iter_get_run_readonly(iter);
    if (run == nullptr) continue;  // the end of a line
    PangoRectangle logical;
    pango_layout_iter_get_run_extents(iter, nullptr, &logical);
    PangoFont* font = run->item->analysis.font;
    SharedLayout::Run found;
    found.glyphs = run;
    found.x = logical.x;
    found.baseline = pango_layout_iter_get_baseline(iter);
    found.fontKey = fontKeyOf(font);
    for (int i = 0; i < run->glyphs->num_glyphs; ++i) found.inks.push_back(inkOf(font, run->glyphs->glyphs[i].glyph));
    runs.push_back(std::move(found));
  } while (pango_layout_iter_next_run(iter));
  pango_layout_iter_free(iter);
  return runs;
}

}  // namespace

// Each label keeps its own layout; this keeps the layouts that labels showing the same text share.
class LabelLayoutCache {
 public:
  const LabelLayout& of(const LabelNode& label) {
    std::shared_ptr<LaidOutText>& slot = label.laidOutText();
    const auto* cached = dynamic_cast<const LabelLayout*>(slot.get());
    if (!cached || cached->revision != label.layoutRevision() || cached->alignment != label.horizontalAlignment) {
      auto fresh = std::make_shared<LabelLayout>();
      fresh->revision = label.layoutRevision();
      fresh->alignment = label.horizontalAlignment;
      fresh->text = label.text();
      const double size = label.fontSize();
      fresh->empty = label.text().empty() || !std::isfinite(size) || size <= 0;
      if (!fresh->empty) fresh->shared = sharedLayout(label);
      cached = fresh.get();
      slot = std::move(fresh);
    }
    return *cached;
  }

 private:
  // The layout of the label's text with its digits as zeros, when it can show the real digits;
  // otherwise one of the text itself.
  std::shared_ptr<const SharedLayout> sharedLayout(const LabelNode& label) {
    const std::string cells = digitsAsZeros(label.text());
    std::shared_ptr<const SharedLayout> layout = kept(label, cells);
    if (cells == label.text() || layout->swapsDigits) return layout;
    return kept(label, label.text());
  }

  std::shared_ptr<const SharedLayout> kept(const LabelNode& label, const std::string& text) {
    std::string key = text;
    key.push_back('\0');
    key += label.fontName();
    for (double number : {label.fontSize(), label.preferredMaxLayoutWidth()}) {
      key.append(reinterpret_cast<const char*>(&number), sizeof number);
    }
    key += std::to_string(label.numberOfLines()) + "/" + std::to_string(static_cast<int>(label.horizontalAlignment));
    const auto found = std::find_if(layouts_.begin(), layouts_.end(), [&](const Kept& k) { return k.key == key; });
    if (found != layouts_.end()) {
      std::rotate(found, found + 1, layouts_.end());
      return layouts_.back().layout;
    }
    if (layouts_.size() >= kKeptLayouts) layouts_.erase(layouts_.begin());
    layouts_.push_back({std::move(key), build(label, text)});
    return layouts_.back().layout;
  }

  static std::shared_ptr<const SharedLayout> build(const LabelNode& label, const std::string& text) {
    auto result = std::make_shared<SharedLayout>();
    PangoLayout* layout = pango_layout_new(sharedContext());
    result->layout = layout;
    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_family(font, label.fontName().c_str());
    pango_font_description_set_absolute_size(font, std::min(label.fontSize(), kMaxFontSize) * PANGO_SCALE);
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
    pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
    limitLines(layout, label.numberOfLines());
    result->text = pango_layout_get_text(layout);

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
    result->runs = runsOf(layout);
    findDigitGlyphs(*result);
    return result;
  }

  static void findDigitGlyphs(SharedLayout& shared) {
    if (shared.text.find('0') == std::string::npos) return;
    shared.swapsDigits = true;
    for (SharedLayout::Run& run : shared.runs) {
      const bool found = findDigits(run);  // every run, so that each knows its digits
      shared.swapsDigits = shared.swapsDigits && found && zerosAreSingleGlyphs(shared.text, *run.glyphs);
    }
  }

  // Lines past the limit are dropped, not ellipsized.
  static void limitLines(PangoLayout* layout, int maxLines) {
    if (maxLines <= 0 || pango_layout_get_line_count(layout) <= maxLines) return;
    PangoLayoutLine* last = pango_layout_get_line_readonly(layout, maxLines - 1);
    std::string kept(pango_layout_get_text(layout), static_cast<std::size_t>(last->start_index + last->length));
    pango_layout_set_text(layout, kept.data(), static_cast<int>(kept.size()));
  }

  struct Kept {
    std::string key;
    std::shared_ptr<const SharedLayout> layout;
  };
  std::vector<Kept> layouts_;  // most recently used last
};

namespace {

// The text backend. Labels are measured (by the engine, through the installed measurer) and drawn (by
// every renderer) from the same layouts, so the one backend keeps them.
class PangoMeasurer final : public TextMeasurer {
 public:
  std::optional<Rect> measure(const LabelNode& label) const override {
    const LabelLayout& l = layouts_.of(label);
    if (l.empty) return std::nullopt;
    Point origin = l.origin();
    const Rect& logical = l.shared->logical;
    // Pango's y runs down from the layout's top, which sits at the baseline's height above the position.
    return Rect::make(origin.x + logical.minX(), origin.y - logical.maxY(), logical.width(), logical.height());
  }
  LabelLayoutCache& layouts() const { return layouts_; }

 private:
  // Measuring is const to the engine, yet lays text out and keeps the layouts for drawing.
  mutable LabelLayoutCache layouts_;
};

PangoMeasurer& pangoText() {
  static PangoMeasurer text;
  return text;
}

}  // namespace

// Fonts are set up on the first layout, not here, so that a program that never shows text never
// starts fontconfig.
void installPangoText() { installTextMeasurer(&pangoText()); }

void labelGlyphs(const LabelNode& label, std::vector<LabelGlyph>& glyphs) {
  glyphs.clear();
  const LabelLayout& l = pangoText().layouts().of(label);
  if (l.empty) return;
  const SharedLayout& shared = *l.shared;
  const Point origin = l.origin();
  for (const SharedLayout::Run& run : shared.runs) {
    const PangoGlyphString& string = *run.glyphs->glyphs;
    int x = run.x;
    for (int i = 0; i < string.num_glyphs; ++i) {
      const PangoGlyphInfo& info = string.glyphs[i];
      PangoGlyph glyph = info.glyph;
      Rect ink = run.inks[static_cast<std::size_t>(i)];
      if (shared.swapsDigits) {
        // The text may be longer than the layout's when lines were dropped; those digits are not shown.
        const std::size_t at = static_cast<std::size_t>(run.glyphs->item->offset + string.log_clusters[i]);
        const char c = at < l.text.size() ? l.text[at] : '0';
        if (shared.text[at] == '0' && c >= '0' && c <= '9') {
          glyph = run.digits[static_cast<std::size_t>(c - '0')];
          ink = run.digitInks[static_cast<std::size_t>(c - '0')];
        }
      }
      // Pango's frame has y down from the layout's top; the label's has y up.
      const Point at{origin.x + points(x + info.geometry.x_offset), origin.y - points(run.baseline + info.geometry.y_offset)};
      x += info.geometry.width;
      if (glyph == PANGO_GLYPH_EMPTY || !(ink.width() > 0) || !(ink.height() > 0)) continue;
      glyphs.push_back({run.glyphs->item->analysis.font, run.fontKey, glyph, at, ink});
    }
  }
}

void showGlyph(cairo_t* cr, void* font, uint32_t glyph) {
  PangoGlyphString* string = pango_glyph_string_new();
  pango_glyph_string_set_size(string, 1);
  string->glyphs[0].glyph = glyph;
  string->glyphs[0].geometry = {0, 0, 0};
  string->glyphs[0].attr.is_cluster_start = 1;
  string->log_clusters[0] = 0;
  cairo_move_to(cr, 0, 0);
  pango_cairo_show_glyph_string(cr, static_cast<PangoFont*>(font), string);
  cairo_new_path(cr);
  pango_glyph_string_free(string);
}

PangoContext* sharedTextContext() { return sharedContext(); }

}  // namespace zb

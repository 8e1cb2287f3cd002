#pragma once
// Label text through pango and cairo: the one place that lays out label text, so that a label's
// measured frame and its drawn pixels always agree. "Menlo" is aliased to DejaVu Sans Mono.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/geometry.hpp"

typedef struct _cairo cairo_t;
typedef struct _PangoContext PangoContext;

namespace zb {

class LabelNode;

// Makes pango the labels' measurer; the font aliases are registered with the first layout.
void installPangoText();

// One glyph a label draws: its font (a PangoFont the label's layout keeps alive), a key naming that
// font's look, the glyph, its origin in the label's own coordinates (y up) and the box its ink covers
// around that origin (in points, y down, as glyphs are drawn).
struct LabelGlyph {
  void* font;
  uint64_t fontKey;
  uint32_t glyph;
  Point origin;
  Rect ink;
};

// Fills `glyphs` with the glyphs the label draws, in drawing order; blank ones are left out.
void labelGlyphs(const LabelNode& label, std::vector<LabelGlyph>& glyphs);

// Draws one glyph of `font` (a PangoFont) with its origin at the user-space origin, y down, in the
// current cairo source.
void showGlyph(cairo_t* cr, void* font, uint32_t glyph);

// The one pango context every label is laid out in: the font aliases, no metric hinting and
// unrounded glyph positions, so a layout measures the same at any drawing scale.
PangoContext* sharedTextContext();

}  // namespace zb

#pragma once
// Label text through pango and cairo: the one place that lays out label text, so that a label's
// measured frame and its drawn pixels always agree. "Menlo" is aliased to DejaVu Sans Mono.
#include <optional>
#include <string>

#include "engine/geometry.hpp"

typedef struct _cairo cairo_t;
typedef struct _PangoContext PangoContext;

namespace zb {

class LabelNode;

// Makes pango the labels' measurer; the font aliases are registered with the first layout.
void installPangoText();

// Draws the label's text with the current cairo source, the current user space taken as the label's
// own coordinates with y up (the text is flipped upright internally).
void showLabelText(cairo_t* cr, const LabelNode& label);

// The one pango context every label is laid out in: the font aliases, no metric hinting and
// unrounded glyph positions, so a layout measures the same at any drawing scale.
PangoContext* sharedTextContext();

// Name of the font family that "Menlo" resolves to (for checks and diagnostics).
std::string resolvedFamilyFor(const char* family);

}  // namespace zb

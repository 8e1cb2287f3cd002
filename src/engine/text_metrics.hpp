#pragma once
// What the engine knows of text: a label's extent, as measured by the text backend the program
// installs. The engine itself lays out and draws no text, so it needs no font library.
#include <optional>

#include "engine/geometry.hpp"

namespace zb {

class LabelNode;

// Whatever a text backend keeps with a label between measuring and drawing it.
class LaidOutText {
 public:
  virtual ~LaidOutText() = default;
};

class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;
  // The label's laid-out text extent relative to its position, in its own coordinates (y up): the
  // first line's baseline lies at y = 0 and the alignment decides the x range. Nothing for empty text.
  virtual std::optional<Rect> measure(const LabelNode& label) const = 0;
};

// The measurer every label uses from now on; it must outlive the labels. Until one is installed,
// labels have no extent.
void installTextMeasurer(const TextMeasurer* measurer);
const TextMeasurer* textMeasurer();

}  // namespace zb

#include "engine/label_node.hpp"

#include <utility>


namespace zb {

LabelNode::LabelNode(std::string fontName) : fontName_(std::move(fontName)) {}

void LabelNode::setText(std::string text) {
  if (text == text_) return;
  text_ = std::move(text);
  ++revision_;
}

void LabelNode::setFontSize(double size) {
  if (size == fontSize_) return;
  fontSize_ = size;
  ++revision_;
}

void LabelNode::setNumberOfLines(int lines) {
  if (lines == numberOfLines_) return;
  numberOfLines_ = lines;
  ++revision_;
}

void LabelNode::setPreferredMaxLayoutWidth(double width) {
  if (width == preferredMaxLayoutWidth_) return;
  preferredMaxLayoutWidth_ = width;
  ++revision_;
}

std::optional<Rect> LabelNode::contentBounds() const {
  const TextMeasurer* measurer = textMeasurer();
  return measurer ? measurer->measure(*this) : std::nullopt;
}

}  // namespace zb

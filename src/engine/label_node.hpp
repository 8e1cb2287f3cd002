#pragma once
// A text label. Its position is the baseline of the first line; the horizontal alignment decides
// whether the text starts, is centred, or ends there. Frames come from the real font's metrics.
#include <memory>
#include <optional>
#include <string>

#include "engine/color.hpp"
#include "engine/node.hpp"
#include "engine/text_metrics.hpp"

namespace zb {

enum class HorizontalAlignment { center = 0, left = 1, right = 2 };

class LabelNode : public Node {
 public:
  explicit LabelNode(std::string fontName = "Menlo");

  const std::string& text() const { return text_; }
  void setText(std::string text);
  const std::string& fontName() const { return fontName_; }
  double fontSize() const { return fontSize_; }
  void setFontSize(double size);
  // 0 means as many lines as the text needs.
  int numberOfLines() const { return numberOfLines_; }
  void setNumberOfLines(int lines);
  // 0 means no wrapping.
  double preferredMaxLayoutWidth() const { return preferredMaxLayoutWidth_; }
  void setPreferredMaxLayoutWidth(double width);

  Color fontColor = Color::white();
  HorizontalAlignment horizontalAlignment = HorizontalAlignment::center;

  std::optional<Rect> contentBounds() const override;

  // Changes with every text or font change; lets the text backend cache its layout.
  unsigned long layoutRevision() const { return revision_; }
  // The text backend's layout of this label, shared by measuring and drawing; the backend rebuilds it
  // when the revision changes.
  std::shared_ptr<LaidOutText>& laidOutText() const { return laidOut_; }

 private:
  std::string text_;
  std::string fontName_;
  double fontSize_ = 32;
  int numberOfLines_ = 1;
  double preferredMaxLayoutWidth_ = 0;
  unsigned long revision_ = 0;
  mutable std::shared_ptr<LaidOutText> laidOut_;
};

using LabelNodePtr = std::shared_ptr<LabelNode>;

}  // namespace zb

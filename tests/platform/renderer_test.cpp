#include "platform/renderer.hpp"

#include <cairo.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <numbers>

#include "engine/label_node.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"

namespace zb {
namespace {

constexpr Color kRed = Color::rgba(1, 0, 0, 1);
constexpr Color kBlue = Color::rgba(0, 0, 1, 1);
using Rgb = std::array<int, 3>;
constexpr Rgb kRedPixel{255, 0, 0}, kBluePixel{0, 0, 255}, kWhitePixel{255, 255, 255};

// The PNG the renderer writes for a view, read back pixel by pixel with y up.
class Canvas {
 public:
  explicit Canvas(const View& view, double framesPerSecond = 0) {
    const auto file = std::filesystem::temp_directory_path() / ("zb-renderer-" + std::to_string(::getpid()) + ".png");
    EXPECT_TRUE(Renderer().writePNG(view, file, framesPerSecond));
    surface_ = cairo_image_surface_create_from_png(file.c_str());
    std::filesystem::remove(file);
  }
  // Drawn straight into memory at a device scale, as on a HiDPI window.
  Canvas(int scale, const View& view) {
    const Size size = view.size();
    surface_ = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(size.width) * scale,
                                          static_cast<int>(size.height) * scale);
    cairo_t* cr = cairo_create(surface_);
    Renderer().draw(cr, view, scale, 0);
    cairo_destroy(cr);
    cairo_surface_flush(surface_);
  }
  ~Canvas() { cairo_surface_destroy(surface_); }
  int width() const { return cairo_image_surface_get_width(surface_); }
  int height() const { return cairo_image_surface_get_height(surface_); }
  Rgb at(int x, int y) const {
    if (cairo_surface_status(surface_) != CAIRO_STATUS_SUCCESS) return {-1, -1, -1};
    const unsigned char* row =
        cairo_image_surface_get_data(surface_) + (height() - 1 - y) * cairo_image_surface_get_stride(surface_);
    const uint32_t p = reinterpret_cast<const uint32_t*>(row)[x];
    return {static_cast<int>((p >> 16) & 0xFF), static_cast<int>((p >> 8) & 0xFF), static_cast<int>(p & 0xFF)};
  }
  bool isDark(int x, int y) const { return at(x, y)[0] < 128 && at(x, y)[1] < 128 && at(x, y)[2] < 128; }
  int darkPixels(int x0, int y0, int x1, int y1) const {
    int dark = 0;
    for (int y = y0; y < y1; ++y)
      for (int x = x0; x < x1; ++x) dark += isDark(x, y);
    return dark;
  }

 private:
  cairo_surface_t* surface_;
};

std::shared_ptr<Scene> whiteScene(View& view) {
  auto scene = std::make_shared<Scene>();
  scene->backgroundColor = Color::white();
  view.presentScene(scene);
  return scene;
}

ShapeNodePtr square(Point center, double side, Color fill) {
  auto shape = ShapeNode::withRectOfSize({side, side});
  shape->position = center;
  shape->fillColor = fill;
  shape->strokeColor = Color::clear();
  return shape;
}

TEST(Renderer, ZPositionAloneDecidesTheOrderAndTiesKeepTreeOrder) {
  View view({100, 80});
  auto scene = whiteScene(view);
  // The first child is drawn above its later sibling because its z is higher.
  auto front = square({25, 40}, 20, kRed);
  front->zPosition = 1;
  scene->addChild(front);
  scene->addChild(square({25, 40}, 20, kBlue));
  // z accumulates through parents: 5 + (-4) = 1 is below a sibling subtree at 2.
  auto high = std::make_shared<Node>();
  high->zPosition = 5;
  auto lowered = square({75, 40}, 20, kRed);
  lowered->zPosition = -4;
  high->addChild(lowered);
  auto middle = square({75, 40}, 20, kBlue);
  middle->zPosition = 2;
  scene->addChild(middle);
  scene->addChild(high);
  // Equal z: the later node in the tree is on top.
  scene->addChild(square({50, 70}, 10, kRed));
  scene->addChild(square({50, 70}, 10, kBlue));

  Canvas canvas(view);
  EXPECT_EQ(canvas.at(25, 40), kRedPixel);
  EXPECT_EQ(canvas.at(75, 40), kBluePixel);
  EXPECT_EQ(canvas.at(50, 70), kBluePixel);
  EXPECT_EQ(canvas.at(5, 5), kWhitePixel);
}

TEST(Renderer, HiddenAndDegenerateSubtreesDrawNothingAndAlphaMultipliesDownTheTree) {
  View view({100, 80});
  auto scene = whiteScene(view);
  auto hidden = std::make_shared<Node>();
  hidden->hidden = true;
  hidden->addChild(square({10, 40}, 10, kRed));
  auto flat = square({30, 40}, 10, kRed);
  flat->yScale = 0;
  flat->addChild(square({0, 0}, 5, kRed));
  auto lost = square({50, 40}, 10, kRed);
  lost->position.x = std::nan("");
  auto faded = std::make_shared<Node>();
  faded->alpha = 0.5;
  auto glass = square({70, 40}, 10, Color::black().withAlpha(0.8));
  glass->alpha = 0.5;
  faded->addChild(glass);
  for (const NodePtr& node : {NodePtr(hidden), NodePtr(flat), NodePtr(lost), faded}) scene->addChild(node);
  scene->addChild(square({90, 40}, 10, kBlue));

  Canvas canvas(view);
  EXPECT_EQ(canvas.at(10, 40), kWhitePixel);
  EXPECT_EQ(canvas.at(30, 40), kWhitePixel);
  EXPECT_NEAR(canvas.at(70, 40)[1], 204, 2) << "0.5 * 0.5 * 0.8 of black over white";
  EXPECT_EQ(canvas.at(90, 40), kBluePixel) << "later nodes still draw";
}

TEST(Renderer, PlacesNodesWithYUpPositionRotationAndScale) {
  View view({100, 80});
  auto scene = whiteScene(view);
  scene->addChild(square({10, 10}, 10, kRed));  // near the bottom-left corner
  // A 40x4 bar turned a quarter turn stands upright at x = 60.
  auto bar = square({60, 40}, 1, kBlue);
  bar->path = Path::rectCentered({40, 4});
  bar->zRotation = std::numbers::pi / 2;
  scene->addChild(bar);
  auto wide = square({30, 65}, 10, kRed);
  wide->xScale = 2;  // twice as wide: 20 points across
  scene->addChild(wide);

  Canvas canvas(view);
  EXPECT_EQ(canvas.at(10, 10), kRedPixel);
  EXPECT_EQ(canvas.at(10, 70), kWhitePixel) << "y must grow upwards";
  EXPECT_EQ(canvas.at(60, 58), kBluePixel);
  EXPECT_EQ(canvas.at(70, 40), kWhitePixel);
  EXPECT_EQ(canvas.at(22, 65), kRedPixel);
  EXPECT_EQ(canvas.at(17, 65), kWhitePixel);
}

ShapeNodePtr stroke(Point from, Point to, double width, LineCap cap) {
  auto line = ShapeNode::withPath(Path::line(from, to));
  line->strokeColor = kBlue;
  line->fillColor = Color::clear();
  line->lineWidth = width;
  line->lineCap = cap;
  return line;
}

TEST(Renderer, StrokesCapsTranslucentFillsAndLabelColours) {
  View view({200, 80});
  auto scene = whiteScene(view);
  scene->addChild(stroke({20, 60}, {60, 60}, 6, LineCap::butt));
  scene->addChild(stroke({20, 40}, {60, 40}, 6, LineCap::round));
  scene->addChild(stroke({20, 20}, {60, 20}, 6, LineCap::square));
  scene->addChild(square({100, 40}, 20, kRed.withAlpha(0.5)));
  auto label = std::make_shared<LabelNode>();
  label->setText("MMM");
  label->setFontSize(30);
  label->fontColor = kRed;
  label->position = {160, 30};
  scene->addChild(label);

  Canvas canvas(view);
  for (int y : {20, 40, 60}) {
    EXPECT_EQ(canvas.at(40, y), kBluePixel) << "the stroke at " << y;
    EXPECT_EQ(canvas.at(40, y + 5), kWhitePixel) << "a 6-point stroke is 6 points thick";
  }
  // Past the end point: nothing for a butt cap, half the width for the others, square only at a corner.
  EXPECT_EQ(canvas.at(61, 60), kWhitePixel);
  EXPECT_EQ(canvas.at(61, 40), kBluePixel);
  EXPECT_EQ(canvas.at(61, 20), kBluePixel);
  EXPECT_GT(canvas.at(62, 42)[0], 230) << "a round cap has no corners";
  EXPECT_EQ(canvas.at(62, 22), kBluePixel);
  const Rgb pink = canvas.at(100, 40);
  EXPECT_EQ(pink[0], 255);
  EXPECT_NEAR(pink[1], 128, 2) << "half-transparent red over white";
  int red = 0, other = 0;
  for (int y = 20; y < 60; ++y) {
    for (int x = 120; x < 200; ++x) {
      const Rgb p = canvas.at(x, y);
      if (p == kRedPixel) ++red;
      if (p[1] < 200 && p[0] < 200) ++other;  // dark or bluish: not the label's colour
    }
  }
  EXPECT_GT(red, 30) << "the text is drawn in its colour";
  EXPECT_EQ(other, 0);
}

TEST(Renderer, AtScaleTwoEveryPointIsTwoPixelsAndTextDrawsOnlyInItsMeasuredFrame) {
  View view({100, 80});
  auto scene = whiteScene(view);
  scene->addChild(square({25, 40}, 20, kRed));
  auto label = std::make_shared<LabelNode>();
  label->setText("HWH");
  label->setFontSize(16);
  label->fontColor = Color::black();
  label->position = {70, 30};
  scene->addChild(label);

  const Canvas canvas(2, view);
  ASSERT_EQ(canvas.width(), 200);
  EXPECT_EQ(canvas.at(31, 80), kRedPixel);
  EXPECT_EQ(canvas.at(69, 80), kRedPixel);
  EXPECT_EQ(canvas.at(29, 80), kWhitePixel);
  EXPECT_EQ(canvas.at(71, 80), kWhitePixel);
  const Rect frame = label->frame().insetBy(-1, -1);
  const auto edge = [](double v) { return static_cast<int>(std::lround(2 * v)); };
  const int inside = canvas.darkPixels(edge(frame.minX()), edge(frame.minY()), edge(frame.maxX()), edge(frame.maxY()));
  EXPECT_GT(inside, 100);
  EXPECT_EQ(canvas.darkPixels(100, 0, 200, 160), inside);
}

TEST(Renderer, CountersShowInTheLowerRightCornerOnlyWhenAskedFor) {
  View view({200, 100});
  whiteScene(view);
  EXPECT_EQ(Canvas(view, 60).darkPixels(0, 0, 200, 100), 0);
  view.showsFPS = true;
  view.showsNodeCount = true;
  const Canvas shown(view, 60);
  EXPECT_GT(shown.darkPixels(120, 0, 200, 40), 100);
  EXPECT_EQ(shown.darkPixels(0, 0, 200, 100), shown.darkPixels(120, 0, 200, 40));
  EXPECT_FALSE(Renderer().writePNG(view, "/nonexistent-folder/zb/shot.png", 60));
}

}  // namespace
}  // namespace zb

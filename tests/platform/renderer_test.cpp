#include "platform/renderer.hpp"

#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <memory>

#include "engine/label_node.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"
#include "engine/text_layout.hpp"

namespace zb {
namespace {

constexpr Color kRed = Color::rgba(1, 0, 0, 1);
constexpr Color kBlue = Color::rgba(0, 0, 1, 1);

struct Rgb {
  int r, g, b;
};

// Draws a view into an RGB image of its size times `scale` and reads pixels back with y up.
class Canvas {
 public:
  Canvas(const View& view, double scale = 1, double fps = 0)
      : width_(static_cast<int>(view.size().width * scale)), height_(static_cast<int>(view.size().height * scale)) {
    surface_ = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width_, height_);
    cairo_t* cr = cairo_create(surface_);
    Renderer().draw(cr, view, scale, fps);
    cairo_destroy(cr);
    cairo_surface_flush(surface_);
  }
  ~Canvas() { cairo_surface_destroy(surface_); }

  // The pixel whose lower-left corner is (x, y) in y-up pixel coordinates.
  Rgb at(int x, int y) const {
    const unsigned char* row = cairo_image_surface_get_data(surface_) +
                               static_cast<std::ptrdiff_t>(height_ - 1 - y) * cairo_image_surface_get_stride(surface_);
    const uint32_t p = reinterpret_cast<const uint32_t*>(row)[x];
    return {static_cast<int>((p >> 16) & 0xFF), static_cast<int>((p >> 8) & 0xFF), static_cast<int>(p & 0xFF)};
  }
  bool isDark(int x, int y) const {
    const Rgb p = at(x, y);
    return p.r < 128 && p.g < 128 && p.b < 128;
  }
  int width() const { return width_; }
  int height() const { return height_; }

 private:
  int width_, height_;
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

bool operator==(Rgb a, Rgb b) { return a.r == b.r && a.g == b.g && a.b == b.b; }
std::ostream& operator<<(std::ostream& os, Rgb p) { return os << "(" << p.r << "," << p.g << "," << p.b << ")"; }

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
  EXPECT_EQ(canvas.at(25, 40), (Rgb{255, 0, 0}));
  EXPECT_EQ(canvas.at(75, 40), (Rgb{0, 0, 255}));
  EXPECT_EQ(canvas.at(50, 70), (Rgb{0, 0, 255}));
  EXPECT_EQ(canvas.at(5, 5), (Rgb{255, 255, 255})) << "background";
}

TEST(Renderer, HiddenSubtreesAndTransparentParentsDrawNothing) {
  View view({100, 80});
  auto scene = whiteScene(view);
  auto hiddenParent = std::make_shared<Node>();
  hiddenParent->hidden = true;
  hiddenParent->addChild(square({25, 40}, 20, kRed));
  scene->addChild(hiddenParent);
  auto clearParent = std::make_shared<Node>();
  clearParent->alpha = 0;
  clearParent->addChild(square({75, 40}, 20, kRed));
  scene->addChild(clearParent);

  Canvas canvas(view);
  EXPECT_EQ(canvas.at(25, 40), (Rgb{255, 255, 255}));
  EXPECT_EQ(canvas.at(75, 40), (Rgb{255, 255, 255}));
}

TEST(Renderer, AlphaMultipliesDownTheTree) {
  View view({100, 80});
  auto scene = std::make_shared<Scene>();
  scene->backgroundColor = Color::black();
  view.presentScene(scene);
  auto parent = std::make_shared<Node>();
  parent->alpha = 0.5;
  auto child = square({50, 40}, 20, Color::white().withAlpha(0.8));
  child->alpha = 0.5;
  parent->addChild(child);
  scene->addChild(parent);

  Canvas canvas(view);
  // 0.5 * 0.5 * 0.8 of white over black.
  EXPECT_NEAR(canvas.at(50, 40).g, 0.2 * 255, 2);
}

TEST(Renderer, BackgroundFillsTheViewAndATranslucentOneShowsBlackThrough) {
  View view({40, 30});
  auto scene = std::make_shared<Scene>();
  scene->backgroundColor = Color::rgba(0, 1, 0, 1);
  view.presentScene(scene);
  EXPECT_EQ(Canvas(view).at(0, 0), (Rgb{0, 255, 0}));
  EXPECT_EQ(Canvas(view).at(39, 29), (Rgb{0, 255, 0}));
  scene->backgroundColor = Color::rgba(1, 1, 1, 0.5);
  EXPECT_NEAR(Canvas(view).at(20, 15).r, 128, 1);
  view.dismissScene();
  EXPECT_EQ(Canvas(view).at(20, 15), (Rgb{0, 0, 0})) << "an empty view is black";
}

TEST(Renderer, PlacesNodesWithYUpPositionRotationAndScale) {
  View view({100, 80});
  auto scene = whiteScene(view);
  scene->addChild(square({10, 10}, 10, kRed));  // near the bottom-left corner
  // A 40x4 bar turned a quarter turn stands upright at x = 60.
  auto bar = ShapeNode::withRectOfSize({40, 4});
  bar->fillColor = kBlue;
  bar->strokeColor = Color::clear();
  bar->position = {60, 40};
  bar->zRotation = M_PI / 2;
  scene->addChild(bar);
  // Scaled twice as wide: a 10x10 square covers 20 points across.
  auto wide = square({30, 65}, 10, kRed);
  wide->xScale = 2;
  scene->addChild(wide);

  Canvas canvas(view);
  EXPECT_EQ(canvas.at(10, 10), (Rgb{255, 0, 0}));
  EXPECT_EQ(canvas.at(10, 70), (Rgb{255, 255, 255})) << "y must grow upwards";
  EXPECT_EQ(canvas.at(60, 58), (Rgb{0, 0, 255}));
  EXPECT_EQ(canvas.at(70, 40), (Rgb{255, 255, 255}));
  EXPECT_EQ(canvas.at(22, 65), (Rgb{255, 0, 0}));
  EXPECT_EQ(canvas.at(17, 65), (Rgb{255, 255, 255}));
}

TEST(Renderer, StrokesHonourCapsAndFillsLieUnderStrokes) {
  View view({100, 80});
  auto scene = whiteScene(view);
  auto roundLine = ShapeNode::withPath(Path::line({20, 20}, {60, 20}));
  roundLine->strokeColor = Color::black();
  roundLine->lineWidth = 10;
  roundLine->lineCap = LineCap::round;
  auto buttLine = ShapeNode::withPath(Path::line({20, 50}, {60, 50}));
  buttLine->strokeColor = Color::black();
  buttLine->lineWidth = 10;
  buttLine->lineCap = LineCap::butt;
  scene->addChild(roundLine);
  scene->addChild(buttLine);
  // A circle filled red with a thick blue outline: red inside, blue on the rim.
  auto circle = ShapeNode::withCircleOfRadius(10);
  circle->position = {85, 40};
  circle->fillColor = kRed;
  circle->strokeColor = kBlue;
  circle->lineWidth = 4;
  scene->addChild(circle);

  Canvas canvas(view);
  EXPECT_TRUE(canvas.isDark(62, 20)) << "a round cap reaches past the end";
  EXPECT_FALSE(canvas.isDark(62, 50)) << "a butt cap stops at the end";
  EXPECT_TRUE(canvas.isDark(40, 50));
  EXPECT_EQ(canvas.at(85, 40), (Rgb{255, 0, 0}));
  EXPECT_EQ(canvas.at(94, 40), (Rgb{0, 0, 255}));
  EXPECT_EQ(canvas.at(95, 50), (Rgb{255, 255, 255})) << "a circle, not a square";
}

TEST(Renderer, LabelDrawsDarkPixelsInsideItsMeasuredFrame) {
  View view({160, 80});
  auto scene = whiteScene(view);
  auto label = std::make_shared<LabelNode>();
  label->setText("HWH");
  label->setFontSize(24);
  label->fontColor = Color::black();
  label->position = {80, 30};
  scene->addChild(label);

  Canvas canvas(view);
  const std::optional<Rect> bounds = measureLabel(*label);
  ASSERT_TRUE(bounds.has_value());
  const Rect frame = Rect::make(bounds->minX() + 80, bounds->minY() + 30, bounds->width(), bounds->height());
  int inside = 0, outside = 0;
  for (int y = 0; y < canvas.height(); ++y) {
    for (int x = 0; x < canvas.width(); ++x) {
      if (!canvas.isDark(x, y)) continue;
      (frame.insetBy(-1, -1).contains({x + 0.5, y + 0.5}) ? inside : outside) += 1;
    }
  }
  EXPECT_GT(inside, 50);
  EXPECT_EQ(outside, 0);
  EXPECT_GT(frame.maxY(), 30) << "capitals rise above the baseline";
}

TEST(Renderer, CountersShowInTheLowerRightCornerOnlyWhenAskedFor) {
  View view({200, 100});
  auto scene = whiteScene(view);
  const auto darkInCorner = [](const Canvas& c) {
    int dark = 0;
    for (int y = 0; y < 40; ++y)
      for (int x = 120; x < 200; ++x) dark += c.isDark(x, y);
    return dark;
  };
  EXPECT_EQ(darkInCorner(Canvas(view, 1, 60)), 0);
  view.showsFPS = true;
  view.showsNodeCount = true;
  const Canvas shown(view, 1, 60);
  EXPECT_GT(darkInCorner(shown), 100);
  EXPECT_FALSE(shown.isDark(20, 90)) << "nothing drawn outside the corner";
}

TEST(Renderer, PixelScaleDrawsThePointsLarger) {
  View view({50, 40});
  auto scene = whiteScene(view);
  scene->addChild(square({10, 10}, 10, kRed));  // points 5 to 15
  const Canvas canvas(view, 2);
  EXPECT_EQ(canvas.width(), 100);
  EXPECT_EQ(canvas.at(11, 11), (Rgb{255, 0, 0}));
  EXPECT_EQ(canvas.at(28, 28), (Rgb{255, 0, 0}));
  EXPECT_EQ(canvas.at(32, 32), (Rgb{255, 255, 255}));
}

TEST(Renderer, DegenerateNodesAreSkippedWithoutSpoilingTheFrame) {
  View view({100, 80});
  auto scene = whiteScene(view);
  auto flat = square({25, 40}, 20, kBlue);
  flat->yScale = 0;
  flat->addChild(square({0, 0}, 5, kBlue));
  scene->addChild(flat);
  auto lost = square({50, 40}, 20, kBlue);
  lost->position.x = std::nan("");
  scene->addChild(lost);
  auto after = square({75, 40}, 20, kRed);
  after->zPosition = 10;
  scene->addChild(after);

  Canvas canvas(view);
  EXPECT_EQ(canvas.at(25, 40), (Rgb{255, 255, 255}));
  EXPECT_EQ(canvas.at(75, 40), (Rgb{255, 0, 0})) << "later nodes still draw";
}

TEST(Renderer, WritesAPngOfTheSceneAndFailsCleanlyOnABadPath) {
  View view({64, 48});
  auto scene = whiteScene(view);
  scene->addChild(square({16, 12}, 8, kRed));
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "zb_renderer_test.png";
  ASSERT_TRUE(Renderer().writePNG(view, file, 60));

  cairo_surface_t* png = cairo_image_surface_create_from_png(file.c_str());
  ASSERT_EQ(cairo_surface_status(png), CAIRO_STATUS_SUCCESS);
  EXPECT_EQ(cairo_image_surface_get_width(png), 64);
  EXPECT_EQ(cairo_image_surface_get_height(png), 48);
  const unsigned char* data = cairo_image_surface_get_data(png);
  const int stride = cairo_image_surface_get_stride(png);
  const uint32_t redPixel = reinterpret_cast<const uint32_t*>(data + (48 - 1 - 12) * stride)[16];
  EXPECT_EQ(redPixel & 0xFFFFFF, 0xFF0000u);
  cairo_surface_destroy(png);
  std::filesystem::remove(file);

  EXPECT_FALSE(Renderer().writePNG(view, "/nonexistent-folder/zb/shot.png", 60));
}

}  // namespace
}  // namespace zb

#include "engine/geometry.hpp"

#include <gtest/gtest.h>

#include <numbers>

#include "engine/path.hpp"

namespace zb {
namespace {

TEST(RectTest, TouchingEdgesDoNotIntersectButOverlapsDo) {
  Rect a = Rect::make(0, 0, 10, 10);
  EXPECT_FALSE(a.intersects(Rect::make(10, 0, 5, 5)));   // shares the right edge
  EXPECT_FALSE(a.intersects(Rect::make(0, 10, 5, 5)));   // shares the top edge
  EXPECT_FALSE(a.intersects(Rect::make(10, 10, 5, 5)));  // shares a corner
  EXPECT_TRUE(a.intersects(Rect::make(9.5, 9.5, 5, 5)));
  EXPECT_TRUE(a.intersects(Rect::make(2, 2, 1, 1)));     // inside
  EXPECT_FALSE(a.intersects(Rect::make(5, 5, 0, 0)));    // an empty rectangle overlaps nothing
}

TEST(RectTest, NegativeSizesAreStandardised) {
  Rect r = Rect::make(10, 20, -4, -6);
  EXPECT_EQ(r.standardized(), Rect::make(6, 14, 4, 6));
  EXPECT_EQ(r.minX(), 6);
  EXPECT_EQ(r.maxY(), 20);
  EXPECT_EQ(r.width(), 4);
  EXPECT_EQ(r.height(), 6);
  EXPECT_EQ(r.midX(), 8);
  EXPECT_EQ(r.midY(), 17);
  EXPECT_TRUE(r.intersects(Rect::make(7, 15, 1, 1)));
  EXPECT_TRUE(r.contains({6, 14}));
}

TEST(RectTest, ContainsIncludesOnlyTheMinimumEdges) {
  Rect r = Rect::make(0, 0, 10, 10);
  EXPECT_TRUE(r.contains({0, 0}));
  EXPECT_TRUE(r.contains({9.99, 5}));
  EXPECT_FALSE(r.contains({10, 5}));
  EXPECT_FALSE(r.contains({5, 10}));
  EXPECT_FALSE(r.contains({-0.01, 5}));
}

TEST(RectTest, UnionCoversBothAndInsetShrinks) {
  EXPECT_EQ(Rect::make(0, 0, 2, 2).unionWith(Rect::make(5, -3, 1, 1)), Rect::make(0, -3, 6, 5));
  EXPECT_EQ(Rect::make(0, 0, 10, 4).insetBy(1, 1), Rect::make(1, 1, 8, 2));
  EXPECT_EQ(Rect::make(0, 0, 10, 4).insetBy(-1.5, -1.5), Rect::make(-1.5, -1.5, 13, 7));
}

TEST(AffineTransformTest, NodePlacementScalesThenRotatesThenMoves) {
  AffineTransform t = AffineTransform::forNode({100, 50}, std::numbers::pi / 2, 2, 1);
  Point p = t.apply(Point{1, 0});
  EXPECT_NEAR(p.x, 100, 1e-12);
  EXPECT_NEAR(p.y, 52, 1e-12);
  Point back = t.inverted().apply(p);
  EXPECT_NEAR(back.x, 1, 1e-12);
  EXPECT_NEAR(back.y, 0, 1e-12);
  // Concatenation applies the right-hand transform first.
  AffineTransform shift = AffineTransform::forNode({1, 0}, 0, 1, 1);
  AffineTransform doubled = AffineTransform::forNode({}, 0, 2, 2);
  EXPECT_EQ(doubled.concat(shift).apply(Point{0, 0}), (Point{2, 0}));
  EXPECT_EQ(AffineTransform::forNode({}, 0, 0, 1).inverted().apply(Point{3, 4}), (Point{3, 4}));
}

TEST(PathTest, BoundingBoxesOfTheBasicShapes) {
  EXPECT_EQ(Path::circle(18).boundingBox(), Rect::make(-18, -18, 36, 36));
  EXPECT_EQ(Path::circle(18).strokedBoundingBox(3), Rect::make(-19.5, -19.5, 39, 39));
  EXPECT_EQ(Path::rectCentered({26, 30}).boundingBox(), Rect::make(-13, -15, 26, 30));
  EXPECT_EQ(Path::roundedRect(Rect::make(-17, -25, 34, 50), 4).strokedBoundingBox(3),
            Rect::make(-18.5, -26.5, 37, 53));
  EXPECT_EQ(Path::polyline({{-18, -6}, {18, 0}, {-18, 6}}).boundingBox(), Rect::make(-18, -6, 36, 12));
  EXPECT_FALSE(Path().boundingBox().has_value());
}

TEST(PathTest, TransformedBoxesFollowTheGeometryNotTheBox) {
  AffineTransform turned = AffineTransform::forNode({}, std::numbers::pi / 4, 1, 1);
  // A turning circle keeps its size.
  Rect circle = *Path::circle(18).strokedBoundingBox(3, turned);
  EXPECT_NEAR(circle.minX(), -19.5, 1e-9);
  EXPECT_NEAR(circle.maxY(), 19.5, 1e-9);
  // A line turned by 45 degrees spans 18 / sqrt(2) each way, plus half its width.
  Rect line = *Path::line({-18, 0}, {18, 0}).strokedBoundingBox(2, turned);
  EXPECT_NEAR(line.maxX(), 18 / std::numbers::sqrt2 + 1, 1e-9);
  EXPECT_NEAR(line.minY(), -18 / std::numbers::sqrt2 - 1, 1e-9);
  // A quarter arc only reaches the extremes it sweeps.
  Path arc;
  arc.addArc({0, 0}, 10, 0, std::numbers::pi / 2);
  Rect quarter = *arc.boundingBox();
  EXPECT_NEAR(quarter.minX(), 0, 1e-12);
  EXPECT_NEAR(quarter.maxX(), 10, 1e-12);
  EXPECT_NEAR(quarter.minY(), 0, 1e-12);
}

}  // namespace
}  // namespace zb

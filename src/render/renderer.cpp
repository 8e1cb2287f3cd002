#include "render/renderer.hpp"

#include <cairo.h>
#include <pixman.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "engine/label_node.hpp"
#include "engine/quoted_text.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"
#include "platform/file_replace.hpp"
#include "render/item_stamps.hpp"
#include "render/pango_text.hpp"

namespace zb {

namespace {

constexpr double kCounterFontSize = 11;
constexpr double kCounterMargin = 4;
constexpr double kCounterPadding = 4;
constexpr double kCounterLineSpacing = 1.3;  // line advance, in font sizes
constexpr Color kCounterTextColor = Color::white();
constexpr Color kCounterBackdropColor = Color::rgba(0, 0, 0, 0.55);
// Transforms whose determinant is smaller than this squash a subtree to nothing.
constexpr double kMinDeterminant = 1e-12;

enum class DrawKind : uint8_t { shape, label };

struct DrawItem {
  const Node* node;
  DrawKind kind;
  double z;          // accumulated through the parents
  double alpha;      // multiplied down the tree
  uint32_t order;    // position in the tree walk, to keep ties stable
  cairo_matrix_t toScene;
  std::size_t path;  // the outline drawn between two steps, or kNoPath for the shape's own
};

constexpr std::size_t kNoPath = SIZE_MAX;

// Damage boxes beyond this many are merged: each box costs a pass over the items and an upload of its own.
constexpr std::size_t kMaxDamageRects = 32;

cairo_matrix_t matrixOf(const NodePlacement& p) {
  if (p.zRotation == 0) return {p.xScale, 0, 0, p.yScale, p.position.x, p.position.y};
  const double c = std::cos(p.zRotation);
  const double s = std::sin(p.zRotation);
  // Scale, then rotate counter-clockwise, then translate.
  return {c * p.xScale, s * p.xScale, -s * p.yScale, c * p.yScale, p.position.x, p.position.y};
}

cairo_matrix_t placementOf(const Node& node) { return matrixOf(node.placement()); }

bool isDrawableTransform(const cairo_matrix_t& m) {
  const double det = m.xx * m.yy - m.xy * m.yx;
  return std::isfinite(det) && std::abs(det) > kMinDeterminant && std::isfinite(m.x0) && std::isfinite(m.y0);
}

// What one walk of the tree needs besides the nodes: how far between the last two steps the frame
// is, and where outlines drawn between two steps go.
struct Walk {
  double stepFraction;
  std::vector<Path>& paths;
  std::vector<DrawItem>& out;
};

void collectDrawables(const Node& parent, const cairo_matrix_t& parentToScene, double parentAlpha,
                      double parentZ, Walk& walk) {
  for (const NodePtr& childPtr : parent.children()) {
    const Node& child = *childPtr;
    if (child.hidden) continue;
    const NodePlacement placement = child.placementBetweenSteps(walk.stepFraction);
    const double alpha = parentAlpha * placement.alpha;
    if (!(alpha > 0)) continue;  // a transparent node hides its whole subtree, NaN included
    const double z = parentZ + (std::isfinite(child.zPosition) ? child.zPosition : 0);
    const cairo_matrix_t local = matrixOf(placement);
    cairo_matrix_t toScene;
    cairo_matrix_multiply(&toScene, &local, &parentToScene);
    if (!isDrawableTransform(toScene)) continue;

    const auto order = static_cast<uint32_t>(walk.out.size());
    if (const auto* shape = dynamic_cast<const ShapeNode*>(&child)) {
      DrawItem item{&child, DrawKind::shape, z, alpha, order, toScene, kNoPath};
      if (std::optional<Path> between = shape->pathBetweenSteps(walk.stepFraction)) {
        item.path = walk.paths.size();
        walk.paths.push_back(std::move(*between));
      }
      walk.out.push_back(item);
    } else if (dynamic_cast<const LabelNode*>(&child) != nullptr) {
      walk.out.push_back({&child, DrawKind::label, z, alpha, order, toScene, kNoPath});
    }
    collectDrawables(child, toScene, alpha, z, walk);
  }
}

// Fills `items` with the scene's drawable items in drawing order.
void sortDrawables(const Scene& scene, double stepFraction, std::vector<Path>& paths, std::vector<DrawItem>& items) {
  items.clear();
  paths.clear();
  cairo_matrix_t identity;
  cairo_matrix_init_identity(&identity);
  Walk walk{stepFraction, paths, items};
  collectDrawables(scene, identity, std::isfinite(scene.alpha) ? scene.alpha : 1.0, 0, walk);

  const auto byDepth = [](const DrawItem& a, const DrawItem& b) {
    return a.z < b.z || (a.z == b.z && a.order < b.order);
  };
  if (!std::is_sorted(items.begin(), items.end(), byDepth)) std::sort(items.begin(), items.end(), byDepth);
}

// The two counter lines and their backdrop, kept between frames so that their text is laid out again
// only on change.
struct Counters {
  Counters() {
    for (LabelNode* label : {&fps, &nodes}) {
      label->setFontSize(kCounterFontSize);
      label->fontColor = kCounterTextColor;
      label->horizontalAlignment = HorizontalAlignment::right;
    }
    backdrop.fillColor = kCounterBackdropColor;
    backdrop.strokeColor = Color::clear();
  }
  LabelNode fps;
  LabelNode nodes;
  ShapeNode backdrop;
};

void setTextIfChanged(LabelNode& label, const std::string& text) {
  if (label.text() != text) label.setText(text);
}

// The counters sit in the lower-right corner on a dark backdrop, frame rate on the bottom line, over
// everything else: their items go at the end of the list. Nothing when neither counter is on.
void appendCounters(const View& view, double framesPerSecond, Counters& counters, std::vector<DrawItem>& items) {
  std::array<LabelNode*, 2> lines{};
  std::size_t lineCount = 0;
  if (view.showsFPS) {
    const long rounded = std::isfinite(framesPerSecond) ? std::lround(std::max(0.0, framesPerSecond)) : 0;
    setTextIfChanged(counters.fps, std::to_string(rounded) + " fps");
    lines[lineCount++] = &counters.fps;
  }
  if (view.showsNodeCount) {
    const std::size_t count = view.scene() != nullptr ? view.scene()->nodeCount() : 0;
    setTextIfChanged(counters.nodes, std::to_string(count) + " nodes");
    lines[lineCount++] = &counters.nodes;
  }

  const double right = view.size().width - kCounterMargin - kCounterPadding;
  double baseline = kCounterMargin + kCounterPadding;
  std::optional<Rect> backdrop;
  std::array<LabelNode*, 2> shown{};
  std::size_t shownCount = 0;
  for (std::size_t i = 0; i < lineCount; ++i) {
    LabelNode* label = lines[i];
    const std::optional<Rect> bounds = label->contentBounds();
    if (!bounds) continue;
    if (i == 0) baseline -= bounds->minY();  // lift the descenders off the margin
    label->position = {right, baseline};
    const Rect placed = Rect::make(bounds->minX() + right, bounds->minY() + baseline, bounds->width(), bounds->height());
    backdrop = backdrop ? backdrop->unionWith(placed) : placed;
    baseline += kCounterFontSize * kCounterLineSpacing;
    shown[shownCount++] = label;
  }
  if (!backdrop) return;
  counters.backdrop.path = Path::rect(backdrop->insetBy(-kCounterPadding, -kCounterPadding));
  cairo_matrix_t identity;
  cairo_matrix_init_identity(&identity);
  const double z = items.empty() ? 0 : items.back().z;
  items.push_back({&counters.backdrop, DrawKind::shape, z, 1, static_cast<uint32_t>(items.size()), identity, kNoPath});
  for (std::size_t i = 0; i < shownCount; ++i) {
    items.push_back(
        {shown[i], DrawKind::label, z, 1, static_cast<uint32_t>(items.size()), placementOf(*shown[i]), kNoPath});
  }
}

// Whole pixels covering a length in points, at least one and within what cairo can allocate.
int pixelExtent(double points) {
  if (!std::isfinite(points)) return 1;
  return static_cast<int>(std::ceil(std::clamp(points, 1.0, 32767.0)));
}

// A colour as pixman takes it: premultiplied, 16 bits a channel, rounded as cairo rounds a source.
pixman_color_t pixmanColor(const Color& c) {
  const auto unit = [](double v) { return v > 0 ? std::min(v, 1.0) : 0.0; };
  const auto channel = [](double v) { return static_cast<uint16_t>(v * 65535.0 + 0.5); };
  const double a = unit(c.a);
  return {channel(unit(c.r) * a), channel(unit(c.g) * a), channel(unit(c.b) * a), channel(a)};
}

// The pixels of a cairo image as pixman sees them; nullptr for anything the renderer cannot paint into.
pixman_image_t* pixelsOf(cairo_surface_t* surface) {
  if (cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) return nullptr;
  const cairo_format_t format = cairo_image_surface_get_format(surface);
  if (format != CAIRO_FORMAT_RGB24 && format != CAIRO_FORMAT_ARGB32) return nullptr;
  cairo_surface_flush(surface);
  return pixman_image_create_bits(format == CAIRO_FORMAT_RGB24 ? PIXMAN_x8r8g8b8 : PIXMAN_a8r8g8b8,
                                  cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface),
                                  reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(surface)),
                                  cairo_image_surface_get_stride(surface));
}

void fill(pixman_image_t* target, pixman_op_t op, const Color& color) {
  const pixman_color_t source = pixmanColor(color);
  const pixman_box32_t all{0, 0, pixman_image_get_width(target), pixman_image_get_height(target)};
  pixman_image_fill_boxes(op, target, &source, 1, &all);
}

// The window starts black; a translucent background shows that black through. An opaque one replaces
// it in a single pass.
void paintBackground(pixman_image_t* target, const Scene* scene) {
  const bool opaqueBackground = scene != nullptr && scene->backgroundColor.a >= 1;
  fill(target, PIXMAN_OP_SRC, opaqueBackground ? scene->backgroundColor : Color::black());
  if (scene != nullptr && !opaqueBackground) fill(target, PIXMAN_OP_OVER, scene->backgroundColor);
}

// Composites the part of a stamp inside `area` into `areaPixels`, an image of that area's pixels.
// Without a mask the stamp covers every pixel of its box whole.
void composite(pixman_image_t* areaPixels, const PixelRect& area, pixman_image_t* mask, pixman_image_t* color,
               const Stamp& stamp) {
  const PixelRect part = stamp.box.intersection(area);
  if (part.isEmpty()) return;
  pixman_image_composite32(PIXMAN_OP_OVER, color, mask, areaPixels, 0, 0, part.x - stamp.maskBox.x,
                           part.y - stamp.maskBox.y, part.x - area.x, part.y - area.y, part.width, part.height);
}

bool operator==(const pixman_color_t& a, const pixman_color_t& b) {
  return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
}

}  // namespace

// What the renderer reuses from frame to frame, so that a frame allocates only when the scene grows.
struct Renderer::Scratch {
  std::vector<DrawItem> drawList;
  Counters counters;
  std::vector<LabelGlyph> glyphs;
};

// The budget is set from each frame's size before its masks are looked up.
Renderer::Renderer() : masks_(0), scratch_(std::make_unique<Scratch>()) {}

Renderer::~Renderer() {
  for (const auto& [color, image] : solids_) pixman_image_unref(image);
}

pixman_image_t* Renderer::solidOf(const Color& color) {
  const pixman_color_t wanted = pixmanColor(color);
  for (const auto& [kept, image] : solids_) {
    if (kept == wanted) return image;
  }
  if (solids_.size() >= kKeptColors) {
    pixman_image_unref(solids_.front().second);
    solids_.erase(solids_.begin());
  }
  pixman_image_t* image = pixman_image_create_solid_fill(&wanted);
  if (image != nullptr) solids_.emplace_back(wanted, image);
  return image;
}

void Renderer::stampItems(const View& view, double pixelScale, double framesPerSecond, double stepFraction,
                          PixelSize target) {
  // Scene points have y up: flip once here, every node draws in its own y-up coordinates.
  cairo_matrix_t sceneToDevice;
  cairo_matrix_init_scale(&sceneToDevice, pixelScale, -pixelScale);
  sceneToDevice.y0 = view.size().height * pixelScale;
  std::vector<DrawItem>& items = scratch_->drawList;
  items.clear();
  if (view.scene() != nullptr) sortDrawables(*view.scene(), stepFraction, pathsBetweenSteps_, items);
  if (view.showsFPS || view.showsNodeCount) appendCounters(view, framesPerSecond, scratch_->counters, items);
  masks_.setBudget(static_cast<std::size_t>(target.width) * static_cast<std::size_t>(target.height) *
                   kMaskBytesPerPixel);

  const PixelRect frame{0, 0, target.width, target.height};
  items_.clear();
  stamps_.clear();
  stampMasks_.clear();
  for (const DrawItem& item : items) {
    cairo_matrix_t toDevice;
    cairo_matrix_multiply(&toDevice, &item.toScene, &sceneToDevice);
    if (item.kind == DrawKind::label) {
      items_.push_back(stampLabel(static_cast<const LabelNode&>(*item.node), toDevice, item.alpha, frame, stamps_,
                                  scratch_->glyphs));
      continue;
    }
    const auto& shape = static_cast<const ShapeNode&>(*item.node);
    const Path& outline = item.path == kNoPath ? shape.path : pathsBetweenSteps_[item.path];
    items_.push_back(stampShape(shape, outline, toDevice, item.alpha, frame, stamps_));
  }
  stampMasks_.resize(stamps_.size(), nullptr);
}

pixman_image_t* Renderer::maskOf(const StampedItem& item, const Stamp& stamp) {
  if (pixman_image_t* kept = masks_.find(stamp.key)) return kept;
  cairo_surface_t* mask = cairo_image_surface_create(CAIRO_FORMAT_A8, stamp.maskBox.width, stamp.maskBox.height);
  pixman_image_t* image = nullptr;
  if (cairo_surface_status(mask) == CAIRO_STATUS_SUCCESS) {
    cairo_t* cr = cairo_create(mask);
    rasterizeStamp(cr, item, stamp);
    const bool drawn = cairo_status(cr) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(cr);
    cairo_surface_flush(mask);
    if (drawn) image = masks_.keep(stamp.key, mask);
  }
  cairo_surface_destroy(mask);
  if (image == nullptr) {
    // Out of memory: the item is missing from this frame, which is then not kept as a base for the
    // next, and the player is told once.
    if (!maskFailed_) {
      std::fprintf(stderr, "zindlebop: no memory for a %dx%d pixel mask; an item is missing from the picture\n",
                   stamp.maskBox.width, stamp.maskBox.height);
    }
    maskFailed_ = true;
    missingMasks_ = true;
  }
  return image;
}

void Renderer::paint(pixman_image_t* target, const Scene* scene, const std::vector<PixelRect>& boxes) {
  const PixelRect frame{0, 0, pixman_image_get_width(target), pixman_image_get_height(target)};
  for (const PixelRect& box : boxes) {
    if (const PixelRect onFrame = box.intersection(frame); !onFrame.isEmpty()) paintBox(target, scene, onFrame);
  }
  masks_.endFrame();
}

void Renderer::paintBox(pixman_image_t* target, const Scene* scene, const PixelRect& box) {
  // Every pixel of the box is painted anew, background first, so boxes that overlap paint their
  // common pixels twice alike. The box is painted through an image of its own over the frame's pixels.
  const int stride = pixman_image_get_stride(target);
  auto* corner = reinterpret_cast<unsigned char*>(pixman_image_get_data(target)) +
                 static_cast<std::ptrdiff_t>(box.y) * stride + static_cast<std::ptrdiff_t>(box.x) * 4;
  pixman_image_t* pixels = pixman_image_create_bits(pixman_image_get_format(target), box.width, box.height,
                                                    reinterpret_cast<uint32_t*>(corner), stride);
  if (pixels == nullptr) return;
  paintBackground(pixels, scene);
  for (const StampedItem& item : items_) {
    if (!item.record.box.intersects(box)) continue;
    for (std::size_t i = item.firstStamp; i < item.firstStamp + item.stampCount; ++i) {
      const Stamp& stamp = stamps_[i];
      if (!stamp.box.intersects(box)) continue;
      pixman_image_t* color = solidOf(stamp.color);
      if (color == nullptr) continue;
      if (stamp.layer == StampLayer::solid) {
        composite(pixels, box, nullptr, color, stamp);
        continue;
      }
      // A stamp met by several boxes looks its mask up once.
      pixman_image_t*& mask = stampMasks_[i];
      if (mask == nullptr) mask = maskOf(item, stamp);
      if (mask != nullptr) composite(pixels, box, mask, color, stamp);
    }
  }
  pixman_image_unref(pixels);
}

void Renderer::draw(cairo_t* cr, const View& view, double pixelScale, double framesPerSecond, double stepFraction) {
  if (!(pixelScale > 0) || !std::isfinite(pixelScale)) pixelScale = 1;
  cairo_surface_t* surface = cairo_get_target(cr);
  pixman_image_t* target = pixelsOf(surface);
  if (target == nullptr) {
    // Not an image in a format painted here: paint one and lay it over the target.
    const PixelSize size{pixelExtent(view.size().width * pixelScale), pixelExtent(view.size().height * pixelScale)};
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.width, size.height);
    if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
      cairo_t* imageCr = cairo_create(image);
      draw(imageCr, view, pixelScale, framesPerSecond, stepFraction);
      cairo_destroy(imageCr);
      cairo_save(cr);
      cairo_identity_matrix(cr);
      cairo_set_source_surface(cr, image, 0, 0);
      cairo_paint(cr);
      cairo_restore(cr);
    }
    cairo_surface_destroy(image);
    return;
  }
  const PixelSize size{pixman_image_get_width(target), pixman_image_get_height(target)};
  stampItems(view, pixelScale, framesPerSecond, stepFraction, size);
  paint(target, view.scene(), {PixelRect{0, 0, size.width, size.height}});
  pixman_image_unref(target);
  cairo_surface_mark_dirty(surface);
}

const std::vector<PixelRect>& Renderer::drawChanges(cairo_t* cr, PixelSize target, const View& view, double pixelScale,
                                                    double framesPerSecond, bool targetKept, double stepFraction) {
  if (!(pixelScale > 0) || !std::isfinite(pixelScale)) pixelScale = 1;
  const PixelRect frame{0, 0, target.width, target.height};
  cairo_surface_t* surface = cairo_get_target(cr);
  pixman_image_t* pixels = pixelsOf(surface);
  if (pixels == nullptr || pixman_image_get_width(pixels) != target.width ||
      pixman_image_get_height(pixels) != target.height) {
    // Not pixels this renderer can keep: every frame is drawn whole.
    if (pixels != nullptr) pixman_image_unref(pixels);
    draw(cr, view, pixelScale, framesPerSecond, stepFraction);
    hasPrevious_ = false;
    mismatchedPixels_ = 0;
    damage_.assign(1, frame);
    return damage_;
  }
  stampItems(view, pixelScale, framesPerSecond, stepFraction, target);
  records_.clear();
  for (const StampedItem& item : items_) records_.push_back(item.record);

  const uint64_t backdrop = backdropLook(view.scene(), target, pixelScale, view.size());
  const bool wholeFrame = !targetKept || !tracksDamage_ || !hasPrevious_ || backdrop != previousBackdrop_;
  if (wholeFrame) {
    damage_.assign(1, frame);
  } else {
    damage_ = mergeDamage(damageBetween(previous_, records_), frame, kMaxDamageRects);
  }
  std::swap(previous_, records_);
  previousBackdrop_ = backdrop;

  missingMasks_ = false;
  if (!damage_.empty()) {
    // Every stamp paints each pixel from its mask and what lies below alone, so drawing only inside
    // the damaged boxes, straight over the previous frame, gives exactly a full redraw's pixels.
    paint(pixels, view.scene(), damage_);
    cairo_surface_mark_dirty(surface);
  }
  hasPrevious_ = !missingMasks_;
  mismatchedPixels_ = reference_ ? pixelsUnlikeFullRedraw(pixels, view, pixelScale, framesPerSecond, stepFraction) : 0;
  pixman_image_unref(pixels);
  return damage_;
}

namespace {

// Where cairo's PNG encoder puts its bytes, and the first error it met there.
struct PngSink {
  int fd;
  int error = 0;
};

cairo_status_t writeToSink(void* closure, const unsigned char* data, unsigned int length) {
  auto* sink = static_cast<PngSink*>(closure);
  sink->error = writeAll(sink->fd, std::string_view(reinterpret_cast<const char*>(data), length));
  return sink->error == 0 ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

// A huge scene needs gigabytes of pixels; running out of them is worth telling apart from a bad path.
PngWrite failureOf(cairo_status_t status) {
  if (status == CAIRO_STATUS_NO_MEMORY) return PngWrite{PngWrite::noMemory, {}};
  return PngWrite{PngWrite::cannotWrite, cairo_status_to_string(status)};
}

}  // namespace

std::string PngWrite::description(const std::filesystem::path& file) const {
  if (failure == noMemory) return "not enough memory for the picture to " + quotedForMessage(file.string());
  return "cannot write " + quotedForMessage(file.string()) + ": " + reason;
}

PngWrite writePngFile(cairo_surface_t* image, const std::filesystem::path& file) {
  constexpr mode_t kPictureMode = 0644;
  cairo_status_t encoded = CAIRO_STATUS_SUCCESS;
  const FileReplace written = replaceRegularFile(file, kPictureMode, [&](int fd) {
    PngSink sink{fd};
    encoded = cairo_surface_write_to_png_stream(image, writeToSink, &sink);
    if (sink.error != 0) return sink.error;
    return encoded == CAIRO_STATUS_SUCCESS ? 0 : EIO;
  });
  if (encoded != CAIRO_STATUS_SUCCESS && encoded != CAIRO_STATUS_WRITE_ERROR) return failureOf(encoded);
  if (!written) return PngWrite{PngWrite::cannotWrite, written.reason()};
  return {};
}

void Renderer::setVerifies(bool on) {
  if (!on) {
    reference_.reset();
    mismatchedPixels_ = 0;
  } else if (!reference_) {
    reference_ = std::make_unique<Renderer>();
  }
}

int64_t Renderer::pixelsUnlikeFullRedraw(pixman_image_t* drawn, const View& view, double pixelScale,
                                         double framesPerSecond, double stepFraction) {
  const int width = pixman_image_get_width(drawn), height = pixman_image_get_height(drawn);
  const bool opaque = pixman_image_get_format(drawn) == PIXMAN_x8r8g8b8;
  cairo_surface_t* full = cairo_image_surface_create(opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, width, height);
  if (cairo_surface_status(full) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(full);
    return 0;  // nothing to compare with; the frame itself was drawn
  }
  // Masks kept from earlier frames would hide a mask whose key does not hold all that decides it.
  reference_->masks_.clear();
  cairo_t* cr = cairo_create(full);
  reference_->draw(cr, view, pixelScale, framesPerSecond, stepFraction);
  cairo_destroy(cr);
  cairo_surface_flush(full);
  const uint32_t unused = opaque ? 0xff000000u : 0;  // the fourth byte of an opaque pixel means nothing
  const auto* a = reinterpret_cast<const unsigned char*>(pixman_image_get_data(drawn));
  const auto* b = cairo_image_surface_get_data(full);
  const int strideA = pixman_image_get_stride(drawn), strideB = cairo_image_surface_get_stride(full);
  int64_t differing = 0;
  for (int y = 0; y < height; ++y) {
    const auto* rowA = reinterpret_cast<const uint32_t*>(a + static_cast<std::ptrdiff_t>(y) * strideA);
    const auto* rowB = reinterpret_cast<const uint32_t*>(b + static_cast<std::ptrdiff_t>(y) * strideB);
    for (int x = 0; x < width; ++x) differing += ((rowA[x] ^ rowB[x]) & ~unused) != 0;
  }
  cairo_surface_destroy(full);
  return differing;
}

PngWrite Renderer::writePNG(const View& view, const std::filesystem::path& file, double framesPerSecond,
                            double stepFraction) {
  const Size size = view.scene() != nullptr ? view.scene()->size() : view.size();
  const int width = pixelExtent(size.width);
  const int height = pixelExtent(size.height);
  // The window's pixels are opaque, so the picture is too.
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (const cairo_status_t status = cairo_surface_status(surface); status != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(surface);
    return failureOf(status);
  }
  cairo_t* cr = cairo_create(surface);
  draw(cr, view, 1.0, framesPerSecond, stepFraction);
  const cairo_status_t drawn = cairo_status(cr);
  cairo_destroy(cr);
  if (drawn != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(surface);
    return failureOf(drawn);
  }
  cairo_surface_flush(surface);
  const PngWrite written = writePngFile(surface, file);
  cairo_surface_destroy(surface);
  return written;
}

}  // namespace zb

#include "render/damage_region.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zb {

namespace {

// Redrawing a pixel twice costs less than the bookkeeping of another clip box; boxes whose union wastes
// fewer pixels than this are joined.
constexpr int64_t kJoinSlackPixels = 1024;

}  // namespace

bool PixelRect::intersects(const PixelRect& other) const {
  return !isEmpty() && !other.isEmpty() && x < other.x + other.width && other.x < x + width &&
         y < other.y + other.height && other.y < y + height;
}

PixelRect PixelRect::unionWith(const PixelRect& other) const {
  if (isEmpty()) return other;
  if (other.isEmpty()) return *this;
  const int left = std::min(x, other.x);
  const int top = std::min(y, other.y);
  const int right = std::max(x + width, other.x + other.width);
  const int bottom = std::max(y + height, other.y + other.height);
  return {left, top, right - left, bottom - top};
}

PixelRect PixelRect::intersection(const PixelRect& other) const {
  const int left = std::max(x, other.x);
  const int top = std::max(y, other.y);
  const int right = std::min(x + width, other.x + other.width);
  const int bottom = std::min(y + height, other.y + other.height);
  if (right <= left || bottom <= top) return {};
  return {left, top, right - left, bottom - top};
}

namespace {

PixelRect coveringPixels(double left, double top, double right, double bottom) {
  const auto whole = [](double v, bool up) {
    constexpr double kFar = 1 << 24;
    return static_cast<int>(up ? std::ceil(std::clamp(v, -kFar, kFar)) : std::floor(std::clamp(v, -kFar, kFar)));
  };
  const int x = whole(left, false), y = whole(top, false);
  return {x, y, whole(right, true) - x, whole(bottom, true) - y};
}

// The bands along the sides of a rectangle that moved from `from` to `to`: inside it nothing changes.
void addSlideDamage(const SlidingRect& from, const SlidingRect& to, std::vector<PixelRect>& damage) {
  const double e = std::max(from.reach, to.reach);
  const double top = std::min(from.top, to.top) - e, bottom = std::max(from.bottom, to.bottom) + e;
  const double left = std::min(from.left, to.left) - e, right = std::max(from.right, to.right) + e;
  if (from.left != to.left || from.right != to.right) {
    damage.push_back(coveringPixels(std::min(from.left, to.left) - e, top, std::max(from.left, to.left) + e, bottom));
    damage.push_back(coveringPixels(std::min(from.right, to.right) - e, top, std::max(from.right, to.right) + e, bottom));
  }
  if (from.top != to.top || from.bottom != to.bottom) {
    damage.push_back(coveringPixels(left, std::min(from.top, to.top) - e, right, std::max(from.top, to.top) + e));
    damage.push_back(coveringPixels(left, std::min(from.bottom, to.bottom) - e, right, std::max(from.bottom, to.bottom) + e));
  }
}

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// Old records by a key, each to be taken by at most one new record. Keys repeat only for identical
// twins; of those the earliest is taken first.
class OldRecords {
 public:
  // Takes the records not skipped; with `slides`, those that can slide, by their sliding look.
  OldRecords(const std::vector<DrawRecord>& records, const std::vector<bool>& skip, bool slides) {
    for (std::size_t i = 0; i < records.size(); ++i) {
      if (skip[i] || (slides && records[i].sliding.look == 0)) continue;
      byKey_.push_back({slides ? records[i].sliding.look : records[i].look, i});
    }
    std::sort(byKey_.begin(), byKey_.end());
    taken_.assign(byKey_.size(), false);
  }

  // The index of an old record with this key not taken yet, now taken; kNone when there is none.
  std::size_t take(uint64_t key) {
    auto it = std::lower_bound(byKey_.begin(), byKey_.end(), std::pair<uint64_t, std::size_t>{key, 0});
    for (; it != byKey_.end() && it->first == key; ++it) {
      const auto at = static_cast<std::size_t>(it - byKey_.begin());
      if (taken_[at]) continue;
      taken_[at] = true;
      return it->second;
    }
    return kNone;
  }

 private:
  std::vector<std::pair<uint64_t, std::size_t>> byKey_;
  std::vector<bool> taken_;
};

}  // namespace

std::vector<PixelRect> damageBetween(const std::vector<DrawRecord>& before, const std::vector<DrawRecord>& after) {
  std::vector<bool> matched(before.size(), false);
  std::vector<std::size_t> oldOf(after.size(), kNone);
  std::vector<bool> slid(after.size(), false);
  OldRecords byLook(before, matched, false);
  for (std::size_t j = 0; j < after.size(); ++j) {
    oldOf[j] = byLook.take(after[j].look);
    if (oldOf[j] != kNone) matched[oldOf[j]] = true;
  }
  // What is left over may be a sliding rectangle that only moved.
  OldRecords bySlide(before, matched, true);
  for (std::size_t j = 0; j < after.size(); ++j) {
    if (oldOf[j] != kNone || after[j].sliding.look == 0) continue;
    oldOf[j] = bySlide.take(after[j].sliding.look);
    if (oldOf[j] == kNone) continue;
    matched[oldOf[j]] = true;
    slid[j] = true;
  }

  std::vector<PixelRect> damage;
  // An item kept but now drawn before something it used to follow may cover or be covered differently:
  // its boxes are redrawn. Of any two items that swapped, the later one in the new order is caught here.
  std::size_t latestOld = 0;
  bool anyMatched = false;
  for (std::size_t j = 0; j < after.size(); ++j) {
    const std::size_t old = oldOf[j];
    if (old == kNone) {
      damage.push_back(after[j].box);
      continue;
    }
    if (anyMatched && old < latestOld) {
      damage.push_back(after[j].box);
      if (slid[j]) damage.push_back(before[old].box);
      continue;
    }
    latestOld = old;
    anyMatched = true;
    if (slid[j]) addSlideDamage(before[old].sliding, after[j].sliding, damage);
  }
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!matched[i]) damage.push_back(before[i].box);
  }
  return damage;
}

std::vector<PixelRect> mergeDamage(std::vector<PixelRect> rects, const PixelRect& frame, std::size_t maxRects) {
  const auto waste = [](const PixelRect& a, const PixelRect& b) {
    return a.unionWith(b).area() - a.area() - b.area() + a.intersection(b).area();
  };
  const auto worthJoining = [&](const PixelRect& a, const PixelRect& b) {
    return a.intersects(b) || waste(a, b) <= kJoinSlackPixels;
  };
  // First fit: each box joins the first kept box worth joining, until a pass joins nothing more.
  std::vector<PixelRect> out;
  for (const PixelRect& r : rects) {
    const PixelRect clipped = r.intersection(frame);
    if (!clipped.isEmpty()) out.push_back(clipped);
  }
  for (bool joined = true; joined;) {
    joined = false;
    std::vector<PixelRect> kept;
    kept.reserve(out.size());
    for (const PixelRect& r : out) {
      auto into = std::find_if(kept.begin(), kept.end(), [&](const PixelRect& k) { return worthJoining(k, r); });
      if (into == kept.end()) {
        kept.push_back(r);
      } else {
        *into = into->unionWith(r);
        joined = true;
      }
    }
    out.swap(kept);
  }
  // Then, while there are too many, the pair whose union wastes least.
  maxRects = std::max<std::size_t>(maxRects, 1);
  while (out.size() > maxRects) {
    int64_t bestWaste = std::numeric_limits<int64_t>::max();
    std::size_t bestI = 0, bestJ = 1;
    for (std::size_t i = 0; i < out.size(); ++i) {
      for (std::size_t j = i + 1; j < out.size(); ++j) {
        const int64_t w = waste(out[i], out[j]);
        if (w < bestWaste) {
          bestWaste = w;
          bestI = i;
          bestJ = j;
        }
      }
    }
    out[bestI] = out[bestI].unionWith(out[bestJ]);
    out.erase(out.begin() + static_cast<std::ptrdiff_t>(bestJ));
  }
  return out;
}

}  // namespace zb

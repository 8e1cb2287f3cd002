#include "platform/damage_region.hpp"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace zb {

namespace {

// Redrawing a pixel twice costs less than the bookkeeping of another clip box; boxes whose union wastes
// fewer pixels than this are joined.
constexpr int64_t kJoinSlackPixels = 4096;

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

std::vector<PixelRect> damageBetween(const std::vector<DrawRecord>& before, const std::vector<DrawRecord>& after) {
  // Looks repeat only for identical twins drawn at the same place; each old record matches one new one.
  std::unordered_multimap<uint64_t, std::size_t> oldIndex;
  oldIndex.reserve(before.size());
  for (std::size_t i = 0; i < before.size(); ++i) oldIndex.emplace(before[i].look, i);

  std::vector<bool> matched(before.size(), false);
  std::vector<PixelRect> damage;
  // An item kept but now drawn before something it used to follow may cover or be covered differently:
  // its box is redrawn. Of any two items that swapped, the later one in the new order is caught here.
  std::size_t latestOld = 0;
  bool anyMatched = false;
  for (const DrawRecord& record : after) {
    const auto it = oldIndex.find(record.look);
    if (it == oldIndex.end()) {
      damage.push_back(record.box);
      continue;
    }
    const std::size_t old = it->second;
    oldIndex.erase(it);
    matched[old] = true;
    if (anyMatched && old < latestOld) {
      damage.push_back(record.box);
    } else {
      latestOld = old;
      anyMatched = true;
    }
  }
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!matched[i]) damage.push_back(before[i].box);
  }
  return damage;
}

std::vector<PixelRect> mergeDamage(std::vector<PixelRect> rects, const PixelRect& frame, std::size_t maxRects) {
  std::vector<PixelRect> out;
  for (const PixelRect& r : rects) {
    const PixelRect clipped = r.intersection(frame);
    if (!clipped.isEmpty()) out.push_back(clipped);
  }
  maxRects = std::max<std::size_t>(maxRects, 1);
  // Join pairs until none is worth joining; then, while there are too many, join the cheapest pair.
  bool joined = true;
  while (joined && out.size() > 1) {
    joined = false;
    int64_t bestWaste = std::numeric_limits<int64_t>::max();
    std::size_t bestI = 0, bestJ = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
      for (std::size_t j = i + 1; j < out.size(); ++j) {
        const int64_t waste = out[i].unionWith(out[j]).area() - out[i].area() - out[j].area() +
                              out[i].intersection(out[j]).area();
        if (waste < bestWaste) {
          bestWaste = waste;
          bestI = i;
          bestJ = j;
        }
      }
    }
    if (bestWaste <= kJoinSlackPixels || out[bestI].intersects(out[bestJ]) || out.size() > maxRects) {
      out[bestI] = out[bestI].unionWith(out[bestJ]);
      out.erase(out.begin() + static_cast<std::ptrdiff_t>(bestJ));
      joined = true;
    }
  }
  return out;
}

}  // namespace zb

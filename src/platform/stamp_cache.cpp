#include "platform/stamp_cache.hpp"

#include <cairo.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace zb {

StampCache::StampCache(std::size_t budgetBytes) : budget_(budgetBytes) {}

StampCache::~StampCache() { clear(); }

pixman_image_t* StampCache::find(uint64_t key) {
  const auto it = entries_.find(key);
  if (it == entries_.end()) {
    ++misses_;
    return nullptr;
  }
  ++hits_;
  it->second.lastUsed = frame_;
  return it->second.image;
}

pixman_image_t* StampCache::keep(uint64_t key, cairo_surface_t* mask) {
  if (const auto old = entries_.find(key); old != entries_.end()) drop(old);
  const int height = cairo_image_surface_get_height(mask);
  const int stride = cairo_image_surface_get_stride(mask);
  pixman_image_t* image =
      pixman_image_create_bits(PIXMAN_a8, cairo_image_surface_get_width(mask), height,
                               reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(mask)), stride);
  if (image == nullptr) return nullptr;
  const std::size_t bytes = static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
  entries_.emplace(key, Entry{cairo_surface_reference(mask), image, bytes, frame_});
  bytes_ += bytes;
  return image;
}

void StampCache::endFrame() {
  // Going down to three quarters of the budget at once leaves room for many frames' new masks
  // before the next sort.
  if (bytes_ > budget_) {
    const std::size_t target = budget_ / 4 * 3;
    std::vector<std::pair<uint64_t, uint64_t>> unused;  // last use, key
    for (const auto& [key, entry] : entries_) {
      if (entry.lastUsed < frame_) unused.emplace_back(entry.lastUsed, key);
    }
    std::sort(unused.begin(), unused.end());
    for (const auto& [lastUsed, key] : unused) {
      if (bytes_ <= target) break;
      drop(entries_.find(key));
    }
  }
  ++frame_;
}

void StampCache::clear() {
  while (!entries_.empty()) drop(entries_.begin());
}

void StampCache::drop(std::unordered_map<uint64_t, Entry>::iterator it) {
  pixman_image_unref(it->second.image);
  cairo_surface_destroy(it->second.surface);
  bytes_ -= it->second.bytes;
  entries_.erase(it);
}

}  // namespace zb

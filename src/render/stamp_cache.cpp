#include "render/stamp_cache.hpp"

#include <cairo.h>

#include <algorithm>
#include <utility>

namespace zb {

namespace {
constexpr std::size_t kFirstSlots = 1024;
}  // namespace

StampCache::StampCache(std::size_t budgetBytes) : slots_(kFirstSlots), budget_(budgetBytes) {}

StampCache::~StampCache() { clear(); }

std::size_t StampCache::home(uint64_t key) const {
  // Keys are hashes already; the multiply spreads their bits over the table's index.
  return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ULL) >> 32) & (slots_.size() - 1);
}

std::size_t StampCache::slotOf(uint64_t key) const {
  std::size_t at = home(key);
  while (slots_[at].entry != kEmpty && slots_[at].key != key) at = (at + 1) & (slots_.size() - 1);
  return at;
}

pixman_image_t* StampCache::find(uint64_t key) {
  const Slot& slot = slots_[slotOf(key)];
  if (slot.entry == kEmpty) {
    ++misses_;
    return nullptr;
  }
  ++hits_;
  Entry& entry = entries_[slot.entry];
  entry.lastUsed = frame_;
  return entry.image;
}

pixman_image_t* StampCache::keep(uint64_t key, cairo_surface_t* mask) {
  if (const Slot& old = slots_[slotOf(key)]; old.entry != kEmpty) drop(old.entry);
  const int height = cairo_image_surface_get_height(mask);
  const int stride = cairo_image_surface_get_stride(mask);
  pixman_image_t* image =
      pixman_image_create_bits(PIXMAN_a8, cairo_image_surface_get_width(mask), height,
                               reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(mask)), stride);
  if (image == nullptr) return nullptr;
  if (2 * (entries_.size() + 1) > slots_.size()) growSlots();
  const std::size_t bytes = static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
  slots_[slotOf(key)] = {key, static_cast<uint32_t>(entries_.size())};
  entries_.push_back({key, cairo_surface_reference(mask), image, bytes, frame_});
  bytes_ += bytes;
  return image;
}

void StampCache::endFrame() {
  // Going down to three quarters of the budget at once leaves room for many frames' new masks
  // before the next sort.
  if (bytes_ > budget_) {
    const std::size_t target = budget_ / 4 * 3;
    std::vector<std::pair<uint64_t, uint64_t>> unused;  // last use, key
    for (const Entry& entry : entries_) {
      if (entry.lastUsed < frame_) unused.emplace_back(entry.lastUsed, entry.key);
    }
    std::sort(unused.begin(), unused.end());
    for (const auto& [lastUsed, key] : unused) {
      if (bytes_ <= target) break;
      drop(slots_[slotOf(key)].entry);
    }
  }
  ++frame_;
}

void StampCache::clear() {
  while (!entries_.empty()) drop(entries_.size() - 1);
}

void StampCache::growSlots() {
  slots_.assign(slots_.size() * 2, Slot{});
  for (std::size_t i = 0; i < entries_.size(); ++i) slots_[slotOf(entries_[i].key)] = {entries_[i].key, static_cast<uint32_t>(i)};
}

void StampCache::drop(std::size_t index) {
  Entry& entry = entries_[index];
  pixman_image_unref(entry.image);
  cairo_surface_destroy(entry.surface);
  bytes_ -= entry.bytes;
  // Empty the entry's slot, moving back any later key of its probe run that may fill the hole.
  const std::size_t mask = slots_.size() - 1;
  std::size_t hole = slotOf(entry.key);
  for (std::size_t at = (hole + 1) & mask; slots_[at].entry != kEmpty; at = (at + 1) & mask) {
    const std::size_t distanceFromHome = (at - home(slots_[at].key)) & mask;
    if (distanceFromHome >= ((at - hole) & mask)) {
      slots_[hole] = slots_[at];
      hole = at;
    }
  }
  slots_[hole] = Slot{};
  // The last entry takes the dropped one's place in the list.
  if (index + 1 != entries_.size()) {
    entries_[index] = entries_.back();
    slots_[slotOf(entries_[index].key)].entry = static_cast<uint32_t>(index);
  }
  entries_.pop_back();
}

}  // namespace zb

#pragma once
// Coverage masks kept from frame to frame, by key. Most items of a frame look as they did a frame ago,
// or as they once did at the same place within a pixel, so most masks are found rather than drawn.
#include <pixman.h>

#include <cstddef>
#include <cstdint>
#include <vector>

typedef struct _cairo_surface cairo_surface_t;

namespace zb {

class StampCache {
 public:
  explicit StampCache(std::size_t budgetBytes);
  ~StampCache();
  StampCache(const StampCache&) = delete;
  StampCache& operator=(const StampCache&) = delete;

  // The mask named `key`, or nullptr when it is not kept.
  pixman_image_t* find(uint64_t key);
  // Keeps `mask`, an A8 image surface, under `key` and returns it as pixman sees it (nullptr when
  // that fails). The cache takes its own reference.
  pixman_image_t* keep(uint64_t key, cairo_surface_t* mask);
  // Ends a frame: once the masks take more than the budget, those unused longest go until they take
  // three quarters of it, but never one this frame used.
  void endFrame();
  void clear();
  // The budget from now on; a smaller one takes effect at the end of the frame.
  void setBudget(std::size_t bytes) { budget_ = bytes; }

  std::size_t bytes() const { return bytes_; }
  uint64_t hits() const { return hits_; }
  uint64_t misses() const { return misses_; }

 private:
  struct Entry {
    uint64_t key;
    cairo_surface_t* surface;
    pixman_image_t* image;
    std::size_t bytes;
    uint64_t lastUsed;
  };
  // The keys sit in a table of their own, open addressed and at most half full, so that a lookup
  // reads one or two neighbouring slots rather than chasing list nodes.
  struct Slot {
    uint64_t key = 0;
    uint32_t entry = kEmpty;  // index into entries_
  };
  static constexpr uint32_t kEmpty = UINT32_MAX;

  std::size_t home(uint64_t key) const;
  std::size_t slotOf(uint64_t key) const;  // the slot holding `key`, or the empty one where it would go
  void growSlots();
  void drop(std::size_t entry);

  std::vector<Entry> entries_;
  std::vector<Slot> slots_;
  std::size_t budget_;
  std::size_t bytes_ = 0;
  uint64_t frame_ = 1;
  uint64_t hits_ = 0;
  uint64_t misses_ = 0;
};

}  // namespace zb

#pragma once
// SDL loads video and sound drivers (GL, EGL, ALSA) at run time and unloads them at shutdown. What
// those drivers keep allocated for the life of the process can no longer be traced to a library once
// it is unloaded, so a leak checker would blame it on nobody. Calls into the drivers are wrapped in
// this guard: allocations made inside are left out of leak reports in sanitizer builds, and the
// guard does nothing in normal builds.
#if defined(__SANITIZE_ADDRESS__)
#define ZB_LEAK_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZB_LEAK_CHECKED 1
#endif
#endif

#if defined(ZB_LEAK_CHECKED)
#include <sanitizer/lsan_interface.h>
#endif

namespace zb {

class ForeignAllocations {
 public:
#if defined(ZB_LEAK_CHECKED)
  ForeignAllocations() { __lsan_disable(); }
  ~ForeignAllocations() { __lsan_enable(); }
#else
  // User-provided, so that a guard that does nothing still counts as used.
  ForeignAllocations() {}
  ~ForeignAllocations() {}
#endif
  ForeignAllocations(const ForeignAllocations&) = delete;
  ForeignAllocations& operator=(const ForeignAllocations&) = delete;
};

}  // namespace zb

#pragma once
// Named notifications from the window to whoever registered for them.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zb {

inline constexpr std::string_view kWindowDidEnterFullScreenNotification = "windowDidEnterFullScreen";
inline constexpr std::string_view kWindowDidExitFullScreenNotification = "windowDidExitFullScreen";

class NotificationCenter {
 public:
  using Handler = std::function<void()>;
  // `object` restricts the registration to notifications posted by that object; nullptr means any.
  void addObserver(const void* observer, std::string_view name, const void* object, Handler handler);
  void removeObserver(const void* observer);
  // Handlers run in registration order; a handler may add or remove observers.
  void post(std::string_view name, const void* object);
  std::size_t observerCount() const { return entries_.size(); }

 private:
  struct Entry {
    const void* observer;
    std::string name;
    const void* object;
    Handler handler;
    std::uint64_t id;
  };
  std::vector<Entry> entries_;
  std::uint64_t nextId_ = 0;
};

}  // namespace zb

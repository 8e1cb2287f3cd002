#include "engine/notification_center.hpp"

#include <algorithm>

namespace zb {

void NotificationCenter::addObserver(const void* observer, std::string_view name, const void* object,
                                     Handler handler) {
  entries_.push_back({observer, std::string(name), object, std::move(handler), nextId_++});
}

void NotificationCenter::removeObserver(const void* observer) {
  std::erase_if(entries_, [observer](const Entry& e) { return e.observer == observer; });
}

void NotificationCenter::post(std::string_view name, const void* object) {
  // Handlers may change the registrations: walk a list of ids and look each one up again.
  std::vector<std::uint64_t> due;
  for (const Entry& e : entries_) {
    if (e.name == name && (e.object == nullptr || e.object == object)) due.push_back(e.id);
  }
  for (std::uint64_t id : due) {
    auto it = std::find_if(entries_.begin(), entries_.end(), [id](const Entry& e) { return e.id == id; });
    if (it == entries_.end()) continue;
    Handler handler = it->handler;
    if (handler) handler();
  }
}

}  // namespace zb

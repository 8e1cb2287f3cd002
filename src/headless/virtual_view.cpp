#include "headless/virtual_view.hpp"

namespace zb {

void VirtualWindow::toggleNow() {
  fullScreen_ = !fullScreen_;
  const Window* self = this;
  notifications_.post(fullScreen_ ? kWindowDidEnterFullScreenNotification : kWindowDidExitFullScreenNotification,
                      self);
}

void VirtualWindow::finishPendingToggles() {
  // A handler may ask for another toggle; that one belongs to the following frame.
  int toggles = pendingToggles_;
  pendingToggles_ = 0;
  for (int i = 0; i < toggles; ++i) toggleNow();
}

}  // namespace zb

// The desktop's reduced-motion request, read from a stand-in portal on a private session bus, and what
// asking costs on a bus that never answers.
#include "platform/desktop_motion.hpp"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <string>

#include "support/silent_buses.hpp"
#include "support/tools.hpp"

namespace zb {
namespace {

struct Portal {
  bool animations = true;
  bool hasReadOne = true;  // portals before version 2 have only Read
  bool answers = true;     // false: it takes the call and never replies
  int calls = 0;           // for the animations setting
};

// Answers the game's calls on GDBus's own message thread, as a real portal answers from another
// process while the game waits on its own main context.
GDBusMessage* answer(GDBusConnection* bus, GDBusMessage* call, gboolean incoming, gpointer data) {
  Portal& portal = *static_cast<Portal*>(data);
  if (!incoming || g_dbus_message_get_message_type(call) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return call;
  const std::string method = g_dbus_message_get_member(call);
  GVariant* body = g_dbus_message_get_body(call);
  g_autofree gchar* arguments = body != nullptr ? g_variant_print(body, FALSE) : nullptr;
  const bool asksAnimations = g_strcmp0(g_dbus_message_get_path(call), "/org/freedesktop/portal/desktop") == 0 &&
                              g_strcmp0(g_dbus_message_get_interface(call), "org.freedesktop.portal.Settings") == 0 &&
                              g_strcmp0(arguments, "('org.gnome.desktop.interface', 'enable-animations')") == 0;
  portal.calls += asksAnimations;
  GDBusMessage* reply = nullptr;
  if (method == "ReadOne" && !portal.hasReadOne) {
    reply = g_dbus_message_new_method_error(call, "org.freedesktop.DBus.Error.UnknownMethod", "no ReadOne");
  } else if (!asksAnimations) {
    reply = g_dbus_message_new_method_error(call, "org.freedesktop.portal.Error.NotFound", "not here");
  } else if (portal.answers) {
    GVariant* value = g_variant_new_boolean(portal.animations);
    // Read wraps the value once more than ReadOne does.
    if (method == "Read") value = g_variant_new_variant(value);
    reply = g_dbus_message_new_method_reply(call);
    g_dbus_message_set_body(reply, g_variant_new("(v)", value));
  }
  if (reply != nullptr) g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
  g_clear_object(&reply);
  g_object_unref(call);
  return nullptr;
}

// Puts a stand-in portal on the private bus until the returned connection closes.
GDBusConnection* standInPortal(Portal& portal) {
  GDBusConnection* bus = g_dbus_connection_new_for_address_sync(
      g_getenv("DBUS_SESSION_BUS_ADDRESS"),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, nullptr);
  g_dbus_connection_add_filter(bus, answer, &portal, nullptr);
  GVariant* owned = g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "RequestName",
                                                g_variant_new("(su)", "org.freedesktop.portal.Desktop", 0u), nullptr,
                                                G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  if (owned != nullptr) g_variant_unref(owned);
  return bus;
}

TEST(DesktopMotion, TheDesktopAsksForLessMotionOnlyWhenItsPortalSaysAnimationsAreOff) {
  ZB_REQUIRE_PROGRAMS("dbus-daemon");
  g_autoptr(GTestDBus) bus = g_test_dbus_new(G_TEST_DBUS_NONE);
  g_test_dbus_up(bus);
  EXPECT_FALSE(desktopRequestsReducedMotion()) << "no portal on the bus";
  struct {
    Portal portal;
    bool requested;
  } cases[] = {
      {{.animations = false}, true},
      {{.animations = true}, false},
      {{.animations = false, .hasReadOne = false}, true},
      {{.animations = false, .answers = false}, false},
  };
  for (auto& c : cases) {
    GDBusConnection* portal = standInPortal(c.portal);
    EXPECT_EQ(desktopRequestsReducedMotion(), c.requested) << "case " << &c - cases;
    if (&c == cases) {  // a stored choice asks the portal nothing
      EXPECT_EQ(askDesktopBus(false).bus, DesktopBusAnswer::Bus::answered);
      EXPECT_EQ(c.portal.calls, 1);
    }
    g_dbus_connection_close_sync(portal, nullptr, nullptr);
    g_object_unref(portal);
  }
  g_test_dbus_down(bus);

  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/zindlebop-bus", 1);
  EXPECT_FALSE(desktopRequestsReducedMotion()) << "no bus";
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

// Whatever the bus does, asking costs about the budget (bounded generously here, so that a busy machine
// cannot fail it; GDBus alone would wait 25 s).
TEST(DesktopMotion, ASilentOrFrozenBusCostsOnlyTheBudget) {
  ZB_REQUIRE_PROGRAMS("dbus-daemon");
  const test::MuteBus mute;
  const test::FrozenBus frozen;
  for (const std::string& address : {mute.address(), frozen.address()}) {
    ASSERT_FALSE(address.empty());
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    const auto start = std::chrono::steady_clock::now();
    const DesktopBusAnswer answer = askDesktopBus(true);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(answer.bus, DesktopBusAnswer::Bus::silent) << address;
    EXPECT_LT(took.count(), 2000) << address;
    std::cout << "asking " << address << " took " << std::lround(took.count()) << " ms\n";
  }
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

}  // namespace
}  // namespace zb

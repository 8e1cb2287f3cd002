// The desktop's reduced-motion request, read from a stand-in portal on a private session bus. The
// stand-in runs on its own thread and main context, as a real portal is another process.
#include "platform/desktop_motion.hpp"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <string>
#include <thread>

namespace zb {
namespace {

constexpr const char* kSettingsXml = R"(<node><interface name="org.freedesktop.portal.Settings">
  <method name="ReadOne"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
  <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
</interface></node>)";
// A portal from before ReadOne existed.
constexpr const char* kOldSettingsXml = R"(<node><interface name="org.freedesktop.portal.Settings">
  <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
</interface></node>)";

struct PortalBehaviour {
  const char* xml = kSettingsXml;
  bool animations = true;
  bool answers = true;  // false: the portal takes the call and never replies
};

class StandInPortal {
 public:
  StandInPortal(const std::string& address, PortalBehaviour behaviour) : behaviour_(behaviour) {
    std::promise<void> ready;
    auto owned = ready.get_future();
    thread_ = std::thread([this, address, &ready] { serve(address, ready); });
    owned.wait();
  }
  ~StandInPortal() {
    g_main_context_invoke(context_, [](gpointer loop) { g_main_loop_quit(static_cast<GMainLoop*>(loop)); return G_SOURCE_REMOVE; }, loop_);
    thread_.join();
  }

 private:
  void serve(const std::string& address, std::promise<void>& ready) {
    g_main_context_push_thread_default(context_);
    GDBusConnection* bus = g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    GDBusNodeInfo* info = g_dbus_node_info_new_for_xml(behaviour_.xml, nullptr);
    static const GDBusInterfaceVTable vtable = {onCall, nullptr, nullptr, {}};
    g_dbus_connection_register_object(bus, "/org/freedesktop/portal/desktop", info->interfaces[0], &vtable, this,
                                      nullptr, nullptr);
    GVariant* owned = g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "RequestName",
                                                  g_variant_new("(su)", "org.freedesktop.portal.Desktop", 0u),
                                                  nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (owned != nullptr) g_variant_unref(owned);
    ready.set_value();
    g_main_loop_run(loop_);
    if (pending_ != nullptr) g_dbus_method_invocation_return_dbus_error(pending_, "org.example.Gone", "gone");
    g_dbus_connection_close_sync(bus, nullptr, nullptr);
    g_object_unref(bus);
    g_dbus_node_info_unref(info);
    g_main_context_pop_thread_default(context_);
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
  }

  static void onCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                     GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data) {
    auto& self = *static_cast<StandInPortal*>(data);
    const gchar* space = nullptr;
    const gchar* key = nullptr;
    g_variant_get(parameters, "(&s&s)", &space, &key);
    if (!self.behaviour_.answers) {
      self.pending_ = invocation;
      return;
    }
    if (std::string(space) != "org.gnome.desktop.interface" || std::string(key) != "enable-animations") {
      g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.portal.Error.NotFound", key);
      return;
    }
    GVariant* value = g_variant_new_boolean(self.behaviour_.animations ? TRUE : FALSE);
    // Read wraps the value once more than ReadOne does.
    if (std::string(method) == "Read") value = g_variant_new_variant(value);
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(v)", value));
  }

  PortalBehaviour behaviour_;
  GMainContext* context_ = g_main_context_new();
  GMainLoop* loop_ = g_main_loop_new(context_, FALSE);
  GDBusMethodInvocation* pending_ = nullptr;
  std::thread thread_;
};

class PrivateBus : public testing::Test {
 protected:
  void SetUp() override {
    FILE* daemon = popen("dbus-daemon --session --fork --print-address=1 --print-pid=1 2>/dev/null", "r");
    char line[512] = {};
    if (daemon == nullptr || fgets(line, sizeof line, daemon) == nullptr) {
      if (daemon != nullptr) pclose(daemon);
      GTEST_SKIP() << "dbus-daemon is not installed";
    }
    address_ = line;
    address_.erase(address_.find_last_not_of('\n') + 1);
    if (fgets(line, sizeof line, daemon) != nullptr) pid_ = std::atoi(line);
    pclose(daemon);
    setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1);
  }
  void TearDown() override {
    if (pid_ > 0) kill(pid_, SIGTERM);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
  }
  std::string address_;
  int pid_ = 0;
};

TEST_F(PrivateBus, TheDesktopAsksForLessMotionOnlyWhenItsPortalSaysAnimationsAreOff) {
  const struct {
    PortalBehaviour portal;
    bool requested;
  } cases[] = {
      {{kSettingsXml, false, true}, true},
      {{kSettingsXml, true, true}, false},
      {{kOldSettingsXml, false, true}, true},
      {{kSettingsXml, false, false}, false},  // no answer in time
  };
  for (const auto& c : cases) {
    StandInPortal portal(address_, c.portal);
    EXPECT_EQ(desktopRequestsReducedMotion(), c.requested)
        << (c.portal.xml == kOldSettingsXml ? "old portal, " : "") << "animations " << c.portal.animations;
  }
}

TEST_F(PrivateBus, NoPortalOrNoBusIsNoRequest) {
  EXPECT_FALSE(desktopRequestsReducedMotion());
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/zindlebop-bus", 1);
  EXPECT_FALSE(desktopRequestsReducedMotion());
}

}  // namespace
}  // namespace zb

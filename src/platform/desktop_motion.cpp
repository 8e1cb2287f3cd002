#include "platform/desktop_motion.hpp"

#include <gio/gio.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace zb {

namespace {

constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettingsInterface = "org.freedesktop.portal.Settings";
constexpr const char* kInterfaceNamespace = "org.gnome.desktop.interface";
constexpr const char* kAnimationsKey = "enable-animations";

// The session bus's address without GIO's fallback of launching a bus of its own, which could
// start a program or wait on the X server.
std::optional<std::string> sessionBusAddress() {
  if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr && *address != '\0') {
    return std::string(address);
  }
  if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime != nullptr && *runtime != '\0') {
    std::error_code error;
    const std::filesystem::path socket = std::filesystem::path(runtime) / "bus";
    if (std::filesystem::exists(socket, error)) return "unix:path=" + socket.string();
  }
  return std::nullopt;
}

// The asynchronous steps share this. The loop below runs them on a private main context until they
// finish or time runs out. A step still under way then (a bus that accepts but never answers can hold
// one for GDBus's 25 s) is left behind with the query: it never reports, as nothing runs that context
// any more, and its few bytes are not worth a wait.
struct Query {
  GCancellable* cancellable = g_cancellable_new();
  GDBusConnection* connection = nullptr;
  bool askMotion = true;
  bool connected = false;
  bool done = false;
  bool triedOldMethod = false;
  std::optional<bool> animationsEnabled;

  ~Query() {
    if (connection != nullptr) {
      g_dbus_connection_close(connection, nullptr, nullptr, nullptr);
      g_object_unref(connection);
    }
    g_object_unref(cancellable);
  }
};

void askPortal(Query& query, const char* method);

// Portals before version 2 only have Read, which wraps the value in one more variant.
std::optional<bool> animationsFrom(GVariant* reply) {
  GVariant* value = nullptr;
  g_variant_get(reply, "(v)", &value);
  while (value != nullptr && g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) {
    GVariant* inner = g_variant_get_variant(value);
    g_variant_unref(value);
    value = inner;
  }
  std::optional<bool> enabled;
  if (value != nullptr && g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) enabled = g_variant_get_boolean(value) != 0;
  if (value != nullptr) g_variant_unref(value);
  return enabled;
}

void onReply(GObject* source, GAsyncResult* result, gpointer data) {
  auto& query = *static_cast<Query*>(data);
  GError* error = nullptr;
  GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error);
  if (reply != nullptr) {
    query.animationsEnabled = animationsFrom(reply);
    g_variant_unref(reply);
    query.done = true;
    return;
  }
  const bool noSuchMethod = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD);
  g_error_free(error);
  if (noSuchMethod && !query.triedOldMethod) {
    query.triedOldMethod = true;
    askPortal(query, "Read");
    return;
  }
  query.done = true;
}

void askPortal(Query& query, const char* method) {
  g_dbus_connection_call(query.connection, kPortalName, kPortalPath, kSettingsInterface, method,
                         g_variant_new("(ss)", kInterfaceNamespace, kAnimationsKey), G_VARIANT_TYPE("(v)"),
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, query.cancellable, onReply, &query);
}

// The connection is made once the bus has answered the Hello every client starts with.
void onConnected(GObject* /*source*/, GAsyncResult* result, gpointer data) {
  auto& query = *static_cast<Query*>(data);
  query.connection = g_dbus_connection_new_for_address_finish(result, nullptr);
  query.connected = query.connection != nullptr;
  if (!query.connected || !query.askMotion) {
    query.done = true;
    return;
  }
  askPortal(query, "ReadOne");
}

}  // namespace

DesktopBusAnswer askDesktopBus(bool askMotion, int timeoutMs) {
  const std::optional<std::string> address = sessionBusAddress();
  if (!address) return {};

  GMainContext* context = g_main_context_new();
  g_main_context_push_thread_default(context);
  auto* query = new Query;
  query->askMotion = askMotion;
  g_dbus_connection_new_for_address(
      address->c_str(),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, query->cancellable, onConnected, query);

  bool outOfTime = false;
  GSource* timer = g_timeout_source_new(static_cast<guint>(std::max(timeoutMs, 0)));
  g_source_set_callback(
      timer, [](gpointer flag) { *static_cast<bool*>(flag) = true; return G_SOURCE_REMOVE; }, &outOfTime, nullptr);
  g_source_attach(timer, context);
  while (!query->done && !outOfTime) g_main_context_iteration(context, TRUE);
  g_source_destroy(timer);
  g_source_unref(timer);

  DesktopBusAnswer answer;
  answer.bus = query->connected ? DesktopBusAnswer::Bus::answered : DesktopBusAnswer::Bus::silent;
  answer.reducedMotion = query->animationsEnabled == false;
  g_main_context_pop_thread_default(context);
  if (query->done) {
    delete query;
  } else {
    g_cancellable_cancel(query->cancellable);  // left behind; see Query
  }
  g_main_context_unref(context);
  return answer;
}

void hideSilentDesktopBus() {
  // Under /dev/null no socket can ever be: connecting fails at once, and no library falls back to
  // looking for or launching another bus while this variable is set.
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null/no-session-bus", 1);
}

}  // namespace zb

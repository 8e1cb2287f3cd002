#pragma once
// Session buses that never answer, for tests of what waits on one: a socket that takes connections and
// stays silent, and a real bus daemon frozen with SIGSTOP. Each gives its address while it lives.
#include <gio/gio.h>
#include <signal.h>
#include <unistd.h>

#include <string>

namespace zb::test {

class MuteBus {
 public:
  MuteBus() : path_(std::string(g_get_tmp_dir()) + "/zb-mute-bus-" + std::to_string(::getpid())) {
    ::unlink(path_.c_str());
    g_autoptr(GSocketAddress) address = g_unix_socket_address_new(path_.c_str());
    socket_ = g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, nullptr);
    // The kernel completes connections up to the backlog without the listener ever accepting.
    if (socket_ != nullptr) g_socket_set_listen_backlog(socket_, 64);
    if (!socket_ || !g_socket_bind(socket_, address, TRUE, nullptr) || !g_socket_listen(socket_, nullptr)) path_.clear();
  }
  ~MuteBus() {
    g_clear_object(&socket_);
    if (!path_.empty()) ::unlink(path_.c_str());
  }
  // Empty when the socket could not be made.
  std::string address() const { return path_.empty() ? "" : "unix:path=" + path_; }

 private:
  std::string path_;
  GSocket* socket_ = nullptr;
};

class FrozenBus {
 public:
  FrozenBus() {
    const char* argv[] = {"dbus-daemon", "--session", "--nofork", "--print-address=1", nullptr};
    daemon_ = g_subprocess_newv(argv, static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE |
                                                                      G_SUBPROCESS_FLAGS_STDERR_SILENCE), nullptr);
    if (daemon_ == nullptr) return;
    g_autoptr(GDataInputStream) lines = g_data_input_stream_new(g_subprocess_get_stdout_pipe(daemon_));
    g_autofree char* line = g_data_input_stream_read_line(lines, nullptr, nullptr, nullptr);
    if (line != nullptr) address_ = line;
    g_subprocess_send_signal(daemon_, SIGSTOP);
  }
  ~FrozenBus() {
    if (daemon_ == nullptr) return;
    g_subprocess_send_signal(daemon_, SIGCONT);
    g_subprocess_force_exit(daemon_);
    g_subprocess_wait(daemon_, nullptr, nullptr);
    g_object_unref(daemon_);
  }
  // Empty when dbus-daemon did not start.
  const std::string& address() const { return address_; }

 private:
  GSubprocess* daemon_ = nullptr;
  std::string address_;
};

}  // namespace zb::test

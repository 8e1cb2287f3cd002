#pragma once
// Runs the built game (or a tool) as a child process with pipes on all three standard streams, for
// end-to-end tests. The child runs under `timeout`, so a game that hangs is killed and fails the test
// instead of stalling it.
#include <gio/gio.h>
#include <signal.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/tools.hpp"

namespace zb::test {

class ChildProcess {
 public:
  explicit ChildProcess(std::vector<std::string> arguments, int limitSeconds = 120) {
    signal(SIGPIPE, SIG_IGN);  // a child that exits early must not take the test with it
    arguments.insert(arguments.begin(), {"timeout", "-s", "KILL", std::to_string(limitSeconds)});
    std::vector<const char*> argv(arguments.size() + 1, nullptr);
    std::transform(arguments.begin(), arguments.end(), argv.begin(), [](auto& a) { return a.c_str(); });
    process_ = g_subprocess_newv(argv.data(),
                                 static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE |
                                                               G_SUBPROCESS_FLAGS_STDOUT_PIPE |
                                                               G_SUBPROCESS_FLAGS_STDERR_PIPE),
                                 nullptr);
    if (process_ != nullptr) lines_ = g_data_input_stream_new(g_subprocess_get_stdout_pipe(process_));
  }
  // Closing standard input ends the headless game; the time limit ends anything else.
  ~ChildProcess() {
    g_clear_object(&lines_);
    g_clear_object(&process_);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void send(std::string_view text) {
    GOutputStream* in = process_ != nullptr ? g_subprocess_get_stdin_pipe(process_) : nullptr;
    if (in != nullptr) g_output_stream_write_all(in, text.data(), text.size(), nullptr, nullptr, nullptr);
  }

  // The next line of standard output, without its newline; nothing at its end.
  std::optional<std::string> readLine() {
    if (lines_ == nullptr) return std::nullopt;
    gsize length = 0;
    g_autofree char* line = g_data_input_stream_read_line(lines_, &length, nullptr, nullptr);
    if (line == nullptr) return std::nullopt;
    return std::string(line, length);
  }

  // Sends `input`, closes standard input and reads both streams to their end. The exit status, or -1
  // after a signal, the time limit's too.
  int finish(std::string_view input = {}) {
    if (process_ == nullptr) return -1;
    gsize buffered = 0;  // what readLine has already taken from the pipe
    const void* unread = g_buffered_input_stream_peek_buffer(G_BUFFERED_INPUT_STREAM(lines_), &buffered);
    output_.assign(static_cast<const char*>(unread), buffered);
    g_autoptr(GBytes) bytes = g_bytes_new(input.data(), input.size());
    g_autoptr(GBytes) out = nullptr;
    g_autoptr(GBytes) err = nullptr;
    g_subprocess_communicate(process_, bytes, nullptr, &out, &err, nullptr);
    for (const auto& [from, into] : {std::pair{out, &output_}, {err, &error_}}) {
      if (from == nullptr) continue;
      into->append(static_cast<const char*>(g_bytes_get_data(from, nullptr)), g_bytes_get_size(from));
    }
    g_subprocess_wait(process_, nullptr, nullptr);
    return g_subprocess_get_if_exited(process_) ? g_subprocess_get_exit_status(process_) : -1;
  }

  const std::string& output() const { return output_; }
  const std::string& error() const { return error_; }

 private:
  GSubprocess* process_ = nullptr;
  GDataInputStream* lines_ = nullptr;
  std::string output_;
  std::string error_;
};

struct BinaryRun {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs the program with the arguments and `input` on standard input, to the end.
inline BinaryRun runBinary(const std::vector<std::string>& arguments, std::string_view input = {}) {
  ChildProcess child(arguments);
  const int status = child.finish(input);
  return {status, child.output(), child.error()};
}

// A `sh -c` script that runs its arguments and then says their exit status on standard error, for a
// game run under xvfb-run, whose own status can be that of its clean-up.
inline constexpr const char* kGameStatusShown = "\"$0\" \"$@\"; echo \"game status: $?\" >&2";

}  // namespace zb::test

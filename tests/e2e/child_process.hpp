#pragma once
// Runs the built game as a child process with pipes on all three standard streams, for end-to-end
// tests. Every read has a deadline, so a game that hangs fails the test instead of stalling it.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

extern char** environ;

namespace zb::test {

class ChildProcess {
 public:
  explicit ChildProcess(std::vector<std::string> arguments) {
    int in[2], out[2], err[2];
    if (pipe(in) != 0 || pipe(out) != 0 || pipe(err) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    for (int fd : {in[0], in[1], out[0], out[1], err[0], err[1]}) posix_spawn_file_actions_addclose(&actions, fd);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    if (posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    close(err[1]);
    input_ = in[1];
    output_ = out[0];
    error_ = err[0];
    signal(SIGPIPE, SIG_IGN);  // a child that exits early must not take the test with it
  }

  ~ChildProcess() {
    closeInput();
    if (pid_ > 0 && !exited_) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    for (int fd : {output_, error_}) {
      if (fd >= 0) close(fd);
    }
  }

  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  bool started() const { return pid_ > 0; }

  void send(std::string_view text) {
    while (input_ >= 0 && !text.empty()) {
      ssize_t written = write(input_, text.data(), text.size());
      if (written <= 0) return;
      text.remove_prefix(static_cast<size_t>(written));
    }
  }

  void closeInput() {
    if (input_ >= 0) close(input_);
    input_ = -1;
  }

  // The next line of standard output, without its newline; nothing at the end or on timeout.
  std::optional<std::string> readLine(std::chrono::milliseconds timeout) {
    auto deadline = std::chrono::steady_clock::now() + timeout;
    while (true) {
      size_t newline = out_.find('\n');
      if (newline != std::string::npos) {
        std::string line = out_.substr(0, newline);
        out_.erase(0, newline + 1);
        return line;
      }
      if (!pump(deadline)) return std::nullopt;
    }
  }

  // Reads both streams to their end, then returns the exit status (-1 on a timeout or a signal).
  int finish(std::chrono::milliseconds timeout) {
    closeInput();
    auto deadline = std::chrono::steady_clock::now() + timeout;
    while (pump(deadline)) {
    }
    if (output_ >= 0 || error_ >= 0) return -1;
    int status = 0;
    waitpid(pid_, &status, 0);
    exited_ = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  const std::string& output() const { return out_; }
  const std::string& error() const { return err_; }

 private:
  // Moves whatever is available into the buffers; false once both streams ended or time ran out.
  bool pump(std::chrono::steady_clock::time_point deadline) {
    if (output_ < 0 && error_ < 0) return false;
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    pollfd fds[2] = {{output_, POLLIN, 0}, {error_, POLLIN, 0}};
    if (poll(fds, 2, static_cast<int>(left.count())) <= 0) return false;
    drain(fds[0], output_, out_);
    drain(fds[1], error_, err_);
    return true;
  }

  static void drain(const pollfd& polled, int& fd, std::string& buffer) {
    if (fd < 0 || polled.revents == 0) return;
    char chunk[4096];
    ssize_t count = read(fd, chunk, sizeof chunk);
    if (count > 0) {
      buffer.append(chunk, static_cast<size_t>(count));
    } else {
      close(fd);
      fd = -1;
    }
  }

  pid_t pid_ = -1;
  bool exited_ = false;
  int input_ = -1;
  int output_ = -1;
  int error_ = -1;
  std::string out_;
  std::string err_;
};

struct BinaryRun {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs the game with the arguments and `input` on standard input, to the end.
inline BinaryRun runBinary(const std::vector<std::string>& arguments, std::string_view input = {}) {
  ChildProcess child(arguments);
  child.send(input);
  BinaryRun run;
  run.status = child.finish(std::chrono::seconds(120));
  run.out = child.output();
  run.err = child.error();
  return run;
}

}  // namespace zb::test

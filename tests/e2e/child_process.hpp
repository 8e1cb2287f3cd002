#pragma once
// Runs the built game as a child process with pipes on all three standard streams, for end-to-end
// tests. Every read has a deadline, so a game that hangs fails the test instead of stalling it.
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

extern char** environ;

namespace zb::test {

// Whether a program is on the PATH, for tests that need a tool the machine may lack.
inline bool hasProgram(const std::string& name) {
  return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

class ChildProcess {
 public:
  explicit ChildProcess(std::vector<std::string> arguments) {
    int pipes[3][2];  // standard input, output and error
    if (pipe(pipes[0]) != 0 || pipe(pipes[1]) != 0 || pipe(pipes[2]) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int stream = 0; stream < 3; ++stream) {
      posix_spawn_file_actions_adddup2(&actions, pipes[stream][stream == 0 ? 0 : 1], stream);
    }
    for (auto& ends : pipes) {
      for (int fd : ends) posix_spawn_file_actions_addclose(&actions, fd);
    }
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    if (posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    for (int fd : {pipes[0][0], pipes[1][1], pipes[2][1]}) close(fd);
    input_ = pipes[0][1];
    fds_[0] = pipes[1][0];
    fds_[1] = pipes[2][0];
    signal(SIGPIPE, SIG_IGN);  // a child that exits early must not take the test with it
  }
  ~ChildProcess() {
    closeInput();
    if (pid_ > 0 && !exited_) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    for (int fd : fds_) {
      if (fd >= 0) close(fd);
    }
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  bool started() const { return pid_ > 0; }

  void send(std::string_view text) {
    for (ssize_t written = 0; input_ >= 0 && !text.empty(); text.remove_prefix(static_cast<size_t>(written))) {
      if ((written = write(input_, text.data(), text.size())) <= 0) return;
    }
  }

  void closeInput() {
    if (input_ >= 0) close(input_);
    input_ = -1;
  }

  // The next line of standard output, without its newline; nothing at the end or on timeout.
  std::optional<std::string> readLine(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (texts_[0].find('\n') == std::string::npos) {
      if (!pump(deadline)) return std::nullopt;
    }
    std::string line = texts_[0].substr(0, texts_[0].find('\n'));
    texts_[0].erase(0, line.size() + 1);
    return line;
  }

  // Reads both streams to their end, then returns the exit status (-1 on a timeout or a signal).
  int finish(std::chrono::milliseconds timeout) {
    closeInput();
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (pump(deadline)) {
    }
    if (fds_[0] >= 0 || fds_[1] >= 0) return -1;
    int status = 0;
    waitpid(pid_, &status, 0);
    exited_ = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  const std::string& output() const { return texts_[0]; }
  const std::string& error() const { return texts_[1]; }

 private:
  // Moves whatever is available into the buffers; false once both streams ended or time ran out.
  bool pump(std::chrono::steady_clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if ((fds_[0] < 0 && fds_[1] < 0) || left.count() <= 0) return false;
    pollfd polled[2] = {{fds_[0], POLLIN, 0}, {fds_[1], POLLIN, 0}};
    if (poll(polled, 2, static_cast<int>(left.count())) <= 0) return false;
    for (int i = 0; i < 2; ++i) {
      if (fds_[i] < 0 || polled[i].revents == 0) continue;
      char chunk[4096];
      const ssize_t count = read(fds_[i], chunk, sizeof chunk);
      if (count > 0) {
        texts_[i].append(chunk, static_cast<size_t>(count));
      } else {
        close(fds_[i]);
        fds_[i] = -1;
      }
    }
    return true;
  }

  pid_t pid_ = -1;
  bool exited_ = false;
  int input_ = -1;
  int fds_[2] = {-1, -1};  // standard output and error
  std::string texts_[2];
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
  const int status = child.finish(std::chrono::seconds(120));
  return {status, child.output(), child.error()};
}

}  // namespace zb::test

#include "tests/support/terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <utility>

Terminal::Terminal(std::vector<std::string> command) {
  command[0] = BINARY_DIR "/" + command[0];
  std::vector<char*> arguments;
  for (std::string& word : command) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  process_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
  if (process_ != 0) return;
  // What a terminal starts ignores no signal, even where the tests do.
  for (const int each : {SIGINT, SIGTERM, SIGHUP}) signal(each, SIG_DFL);
  setenv("TERM", "xterm", 1);
  execv(arguments[0], arguments.data());
  _exit(127);
}

Terminal::~Terminal() {
  if (process_ > 0) kill(process_, SIGKILL);
  if (process_ > 0) waitpid(process_, nullptr, 0);
  Close();
}

void Terminal::Type(const std::string& keys) const {
  if (write(terminal_, keys.data(), keys.size()) < 0) std::abort();
}

bool Terminal::Read() {
  constexpr int kMostMilliseconds = 20'000;
  pollfd readable{terminal_, POLLIN, 0};
  std::array<char, 4096> block{};
  if (poll(&readable, 1, kMostMilliseconds) <= 0) return false;
  const ssize_t count = read(terminal_, block.data(), block.size());
  if (count > 0) shown_.append(block.data(), static_cast<std::size_t>(count));
  has_ended_ = count <= 0;
  return !has_ended_;
}

bool Terminal::Shows(const std::string& text) {
  std::size_t found = 0;
  while ((found = shown_.find(text)) == std::string::npos) {
    if (!Read()) return false;
  }
  shown_.erase(0, found + text.size());
  return true;
}

void Terminal::Signal(int signal) const {
  kill(process_, signal);
}

void Terminal::Close() {
  if (terminal_ >= 0) close(std::exchange(terminal_, -1));
}

int Terminal::Wait() {
  while (terminal_ >= 0 && Read()) {
  }
  if (terminal_ >= 0 && !has_ended_) Signal(SIGKILL);
  int status = 0;
  if (waitpid(std::exchange(process_, -1), &status, 0) < 0 || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

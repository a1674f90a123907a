#include "tools/palsim/interrupts.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace palsim {
namespace {

sigset_t HeldSignals() {
  sigset_t held;
  sigemptyset(&held);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction now {};
    const bool is_ignored = sigaction(signal, nullptr, &now) == 0 && now.sa_handler == SIG_IGN;
    if (!is_ignored) sigaddset(&held, signal);  // 'nohup' ignores one
  }
  return held;
}

}  // namespace

Interrupts::Interrupts() : is_terminal_(isatty(STDIN_FILENO) != 0) {
  const sigset_t held = HeldSignals();
  pthread_sigmask(SIG_BLOCK, &held, nullptr);
  signals_ = signalfd(-1, &held, SFD_CLOEXEC);
  if (signals_ < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
}

Interrupts::~Interrupts() {
  close(signals_);
}

int Interrupts::Poll(int longest_ms) const {
  std::array<pollfd, 2> polled{{{STDIN_FILENO, POLLIN, 0}, {signals_, POLLIN, 0}}};
  while (poll(polled.data(), polled.size(), longest_ms) < 0) {
    if (errno != EINTR) return 0;
  }
  signalfd_siginfo came{};
  if (polled[1].revents != 0 && read(signals_, &came, sizeof came) == sizeof came) {
    return static_cast<int>(came.ssi_signo);
  }
  // A terminal that is closed says so here first, and by the signal a moment later.
  const bool is_closed = (static_cast<unsigned>(polled[0].revents) & POLLHUP) != 0;
  return is_terminal_ && is_closed ? SIGHUP : 0;
}

}  // namespace palsim

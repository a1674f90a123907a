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
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&held, signal);
  return held;
}

}  // namespace

Interrupts::Interrupts() {
  const sigset_t held = HeldSignals();
  pthread_sigmask(SIG_BLOCK, &held, nullptr);
  signals_ = signalfd(-1, &held, SFD_CLOEXEC);
  if (signals_ < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
}

Interrupts::~Interrupts() {
  close(signals_);
}

int Interrupts::WaitForInput() const {
  std::array<pollfd, 2> polled{{{STDIN_FILENO, POLLIN, 0}, {signals_, POLLIN, 0}}};
  while (poll(polled.data(), polled.size(), -1) < 0) {
    if (errno != EINTR) return 0;
  }
  signalfd_siginfo came{};
  if (polled[1].revents == 0 || read(signals_, &came, sizeof came) != sizeof came) return 0;
  return static_cast<int>(came.ssi_signo);
}

}  // namespace palsim

#include "platform/device/loader/kernel_page.h"

#include <signal.h>
#include <ucontext.h>

#include <cstdint>

#include "platform/sim/kernel/process_state.h"

namespace sim {
namespace {

constexpr std::uint32_t kCurrentProcess = 0xFFFFC80C;

// A load of a word from a register's address, with an offset of 12 bits: what the compiler makes of
// a read from an address that it knows.
struct Load {
  explicit Load(std::uint32_t instruction) : instruction_(instruction) {}
  [[nodiscard]] bool IsOne() const { return (instruction_ & 0x0F700000) == 0x05100000; }
  [[nodiscard]] std::uint32_t base() const { return instruction_ >> 16 & 15; }
  [[nodiscard]] std::uint32_t target() const { return instruction_ >> 12 & 15; }
  [[nodiscard]] std::uint32_t offset() const {
    const std::uint32_t distance = instruction_ & 0xFFF;
    const bool is_added = (instruction_ & 0x00800000) != 0;
    return is_added ? distance : 0 - distance;
  }

 private:
  std::uint32_t instruction_;
};

// Any other fault ends the program as it would without this.
void OnFault(int /*signal*/, siginfo_t* /*info*/, void* context) {
  mcontext_t& machine = static_cast<ucontext_t*>(context)->uc_mcontext;
  auto* const registers = &machine.arm_r0;
  const Load load(*reinterpret_cast<const std::uint32_t*>(machine.arm_pc));
  const ThreadState* const thread = CurrentThread();
  if (!load.IsOne() || registers[load.base()] + load.offset() != kCurrentProcess ||
      thread == nullptr) {
    signal(SIGSEGV, SIG_DFL);
    return;
  }
  registers[load.target()] = thread->process.id;
  machine.arm_pc += sizeof(std::uint32_t);
}

}  // namespace

void AnswerForKernelPage() {
  static const bool is_set = [] {
    struct sigaction action {};
    action.sa_sigaction = &OnFault;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    return sigaction(SIGSEGV, &action, nullptr) == 0;
  }();
  static_cast<void>(is_set);
}

}  // namespace sim

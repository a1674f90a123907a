#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

// What these open or close, the process holds on purpose. A keep-awake thread has handles of its
// own.
constexpr std::array<std::string_view, 9> kHolders{
    "PALBEEPInit", "PALBEEPTerm",   "PALLEDInit",     "PALLEDTerm",       "PALPWRInit",
    "PALPWRTerm",  "PALSysio_Open", "PALSysio_Close", "PALPWRSuspendCtrl"};

class LeavesNothing : public Property {
  struct Held {
    unsigned handles = 0;
    unsigned heap_blocks = 0;
  };

  void CallBegins(Scene& /*scene*/, const WatchedCall& call) override {
    if (call.name == "PALPWRSuspendCtrl") keep_awake_.insert(call.process->id());
    if (!call.alone_in_process || Holds(call)) return;
    before_ = {call.process->open_handles(), call.process->heap_blocks()};
    watched_ = &call;
  }

  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    if (!call.returned() || !call.alone_in_process) return;
    Met();
    if (call.process->held_mutexes() != 0) Violated(fmt::format("{} holds a mutex", call.name));
    const bool has_other_threads = keep_awake_.contains(call.process->id());
    if (watched_ != &call || Holds(call) || has_other_threads) return;
    const unsigned handles = call.process->open_handles();
    if (handles > before_.handles) {
      Violated(fmt::format("{} leaves {} handles", call.name, handles - before_.handles));
    }
    const unsigned heap_blocks = call.process->heap_blocks();
    if (heap_blocks > before_.heap_blocks) {
      Violated(
          fmt::format("{} leaves {} heap blocks", call.name, heap_blocks - before_.heap_blocks));
    }
  }

  static bool Holds(const WatchedCall& call) {
    return std::ranges::count(kHolders, call.name) != 0;
  }

  const WatchedCall* watched_ = nullptr;
  Held before_;
  std::set<std::uint32_t> keep_awake_;  // the processes
};

}  // namespace

std::unique_ptr<Property> CallsLeaveNothing() {
  return std::make_unique<LeavesNothing>();
}

}  // namespace palsim

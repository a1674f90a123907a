#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

// What these open or close, the process holds on purpose. A keep-awake thread has handles of its
// own.
constexpr std::array<std::string_view, 9> kHolders{
    "PALBEEPInit", "PALBEEPTerm", "PALLEDInit",        "PALLEDTerm",     "PALPWRInit",
    "PALPWRTerm",  "PALSysio_Open", "PALSysio_Close", "PALPWRSuspendCtrl"};

class LeavesNothing : public Property {
  struct Held {
    unsigned handles = 0;
    unsigned heap_blocks = 0;
  };

  void CallBegins(Scene& /*scene*/, const WatchedCall& call) override {
    if (!call.alone_in_process || Holds(call)) return;
    before_ = {call.process->open_handles(), call.process->heap_blocks()};
    watched_ = &call;
  }

  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    if (!call.returned() || !call.alone_in_process) return;
    Met();
    if (call.process->held_mutexes() != 0) Violated(fmt::format("{} holds a mutex", call.name));
    if (watched_ != &call || Holds(call) || keeps_awake_) return;
    const unsigned handles = call.process->open_handles();
    if (handles > before_.handles) {
      Violated(fmt::format("{} leaves {} handles", call.name, handles - before_.handles));
    }
    const unsigned heap_blocks = call.process->heap_blocks();
    if (heap_blocks > before_.heap_blocks) {
      Violated(fmt::format("{} leaves {} heap blocks", call.name,
                           heap_blocks - before_.heap_blocks));
    }
  }

  bool Holds(const WatchedCall& call) {
    if (call.name == "PALPWRSuspendCtrl") keeps_awake_ = true;
    return std::ranges::count(kHolders, call.name) != 0;
  }

  const WatchedCall* watched_ = nullptr;
  Held before_;
  bool keeps_awake_ = false;
};

}  // namespace

std::unique_ptr<Property> CallsLeaveNothing() {
  return std::make_unique<LeavesNothing>();
}

}  // namespace palsim

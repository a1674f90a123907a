#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "platform/sim/kernel/kernel.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/names.h"

namespace palsim {
namespace {

// Another living process may hold what these need: the scan driver, an event that is set, or the
// level of a sound.
constexpr std::array<std::string_view, 4> kShareWithOthers{
    "PALSysio_", "PALLEDGrLedToggle", "PALBEEPStopTagSearch", "PALBOOT_BootTerminal"};

class NextWorks : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (!call.returned() && call.process != nullptr && !call.process->alive()) {
      next_id_ = scene.device().kernel().next_process_id;
      due_ = scene.faults_due();
      scene.untouched().set_wants_every_call(true);
      return;
    }
    if (next_id_ == 0 || call.process->id() < next_id_) return;
    // The first call of the next process, where nothing has failed since.
    next_id_ = 0;
    scene.untouched().set_wants_every_call(false);
    const auto begins = [&](std::string_view name) { return call.name.starts_with(name); };
    const bool is_compared = call.undisturbed() && call.returned() && scene.faults_due() == due_ &&
                             scene.untouched().Has(call) &&
                             std::ranges::none_of(kShareWithOthers, begins);
    if (!is_compared) return;
    Met();
    const UntouchedOutcome& untouched = scene.untouched().outcome();
    if (untouched.code != call.outcome->code) {
      Violated(fmt::format("{} answers {}, and {} where none was killed", call.name,
                           ResultText(static_cast<HRESULT>(call.outcome->code)),
                           ResultText(static_cast<HRESULT>(untouched.code.value_or(0)))));
    }
    const std::uint64_t took_ms = call.end_ms - call.begin_ms;
    if (took_ms > untouched.took_ms) {
      Violated(fmt::format("{} takes {} ms, and {} ms where none was killed", call.name, took_ms,
                           untouched.took_ms));
    }
  }

  std::uint32_t next_id_ = 0;  // the first one that a later process can have; 0: none was killed
  unsigned due_ = 0;           // the faults until then
};

}  // namespace

std::unique_ptr<Property> NextProcessWorks() {
  return std::make_unique<NextWorks>();
}

}  // namespace palsim

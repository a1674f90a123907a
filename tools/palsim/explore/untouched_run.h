// Repeats a call without faults, on a copy of the device and in a new process, for comparison. The
// copy is made when a call begins that may fail, or at every call where that was asked for.
#ifndef TOOLS_PALSIM_EXPLORE_UNTOUCHED_RUN_H_
#define TOOLS_PALSIM_EXPLORE_UNTOUCHED_RUN_H_

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/device.h"
#include "tools/palsim/export_call.h"

namespace palsim {

struct WatchedCall;

// Everything that a device stores: registry values by path and name, files by path.
using Stored = std::map<std::string, std::string>;
[[nodiscard]] Stored StoredOn(sim::Device& device);

struct UntouchedOutcome {
  std::optional<std::uint32_t> code;  // nothing: its process ended in it
  decltype(CallOutcome::numbers) numbers{};
  std::uint64_t took_ms = 0;
  Stored stored;                    // then
  std::vector<std::string> writes;  // the journal's lines about registry and files
};

class UntouchedRun {
 public:
  explicit UntouchedRun(sim::Device& device) : device_(device) {}

  // Copies the device if the call runs alone, in no thread of its own, and may fail (or every call
  // is wanted).
  void CallBegins(const WatchedCall& call, bool may_fail);
  void CallEnds(const WatchedCall& call);

  // The device is copied at every call from now on, or only where calls may fail.
  void set_wants_every_call(bool wants) { wants_every_call_ = wants; }

  // Whether the device was copied for this call.
  [[nodiscard]] bool Has(const WatchedCall& call) const { return call_ == &call; }
  // What the device stored before the call.
  [[nodiscard]] const Stored& before() const { return before_; }
  // Runs the call at the first question.
  [[nodiscard]] const UntouchedOutcome& outcome();

 private:
  sim::Device& device_;
  std::unique_ptr<sim::Device> copy_;
  const WatchedCall* call_ = nullptr;
  bool wants_every_call_ = false;
  Stored before_;
  std::optional<UntouchedOutcome> outcome_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_UNTOUCHED_RUN_H_

// The device as the properties see it.
#ifndef TOOLS_PALSIM_EXPLORE_SCENE_H_
#define TOOLS_PALSIM_EXPLORE_SCENE_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "platform/sim/device.h"
#include "platform/sim/kernel/kernel.h"
#include "tools/palsim/explore/untouched_run.h"

namespace palsim {

struct Scene {
  explicit Scene(sim::Device& on) : device(on), untouched(on) {}

  sim::Device& device;
  UntouchedRun untouched;  // what the call that is looked at does on a device where nothing fails
  unsigned running = 0;    // the calls under way
  unsigned programs = 0;   // the programs of one's own that run

  [[nodiscard]] sim::Registry& registry() const { return device.registry(); }
  [[nodiscard]] const sim::Faults& faults() const { return device.kernel().faults; }
  // Counts the platform calls that write to the registry.
  [[nodiscard]] std::uint64_t Writes() const;
  // The platform calls that failed by a plan in a call that has ended. The one in which its process
  // was killed is none of them.
  [[nodiscard]] std::span<const sim::CallId> FailedIn(const WatchedCall& call) const;
  // As the library reads a number: of any type, with the bytes that are missing as 0.
  [[nodiscard]] std::optional<std::uint32_t> Dword(std::string_view key,
                                                   std::string_view name) const;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_SCENE_H_

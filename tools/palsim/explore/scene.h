// The device as the properties see it.
#ifndef TOOLS_PALSIM_EXPLORE_SCENE_H_
#define TOOLS_PALSIM_EXPLORE_SCENE_H_

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/sim/device.h"
#include "tools/palsim/explore/untouched_run.h"

namespace palsim {

class Scene {
 public:
  explicit Scene(sim::Device& device) : device_(device), untouched_(device) {}

  [[nodiscard]] sim::Device& device() { return device_; }
  [[nodiscard]] sim::Registry& registry() { return device_.registry(); }
  // Counts the calls that write the registry: where it stands still, so does the registry.
  [[nodiscard]] std::uint64_t writes() const;
  [[nodiscard]] unsigned faults_due() const;
  [[nodiscard]] bool faults_are_planned() const;
  // The calls under way.
  [[nodiscard]] unsigned running() const { return running_; }
  // The programs of one's own that run.
  [[nodiscard]] unsigned programs() const { return programs_; }
  // As the library reads a number: of any type, with the bytes that are missing as 0.
  [[nodiscard]] std::optional<std::uint32_t> Dword(std::string_view key, std::string_view name);
  // What the call that is looked at does on a device where nothing fails.
  [[nodiscard]] UntouchedRun& untouched() { return untouched_; }

 private:
  friend class Watch;
  sim::Device& device_;
  UntouchedRun untouched_;
  unsigned running_ = 0;
  unsigned programs_ = 0;
  std::uint64_t changes_from_outside_ = 0;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_SCENE_H_

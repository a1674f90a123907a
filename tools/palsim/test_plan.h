// Which scenarios `palsim test` plays on which devices, in what order of turns.
#ifndef TOOLS_PALSIM_TEST_PLAN_H_
#define TOOLS_PALSIM_TEST_PLAN_H_

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/palsim/commands.h"
#include "tools/palsim/scenario/scenario.h"

namespace palsim {

struct TestCase {
  std::string file;  // as it was given, or as it was found in a folder
  std::shared_ptr<const Scenario> scenario;
  std::string device;                 // as it was given: a sample's name, or a folder
  std::optional<std::uint32_t> seed;  // none: threads change turns only where they wait
  bool skipped = false;               // the scenario is for another device
};

// The cases of this machine's shard. Throws UsageError where a path, a scenario or a device cannot
// be used, and where nothing is to be played.
[[nodiscard]] std::vector<TestCase> PlanTest(const TestOptions& options);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TEST_PLAN_H_

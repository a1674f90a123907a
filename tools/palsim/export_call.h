// Calls an export by its name, with arguments as they are typed.
#ifndef TOOLS_PALSIM_EXPORT_CALL_H_
#define TOOLS_PALSIM_EXPORT_CALL_H_

#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/device.h"
#include "tools/palsim/usage_error.h"

namespace palsim {

[[nodiscard]] std::vector<std::string_view> ExportNames();

struct CallOutcome {
  bool failed = false;
  std::string result;                // number and name, or that the device restarted under the call
  std::vector<std::string> answers;  // what the out-parameters hold: "argument 2: 5 (0x5)"
};

// Throws UsageError for a name that is no export and for arguments that do not fit its declaration.
CallOutcome CallExport(sim::Process& process, std::string_view name,
                       const std::vector<std::string>& arguments);

void PrintOutcome(std::string_view name, const CallOutcome& outcome);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPORT_CALL_H_

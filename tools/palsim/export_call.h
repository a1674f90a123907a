// Calls an export by its name, with arguments as they are typed.
#ifndef TOOLS_PALSIM_EXPORT_CALL_H_
#define TOOLS_PALSIM_EXPORT_CALL_H_

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/device.h"

namespace palsim {

// What the person typed cannot be done: exit status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

[[nodiscard]] std::vector<std::string_view> ExportNames();

struct CallOutcome {
  bool failed = false;
  std::string result;  // number and name
};

// Throws UsageError for a name that is no export and for arguments that do not fit its declaration.
CallOutcome CallExport(sim::Process& process, std::string_view name,
                       const std::vector<std::string>& arguments);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPORT_CALL_H_

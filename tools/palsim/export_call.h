// Calls an export by its name, with arguments as they are typed.
#ifndef TOOLS_PALSIM_EXPORT_CALL_H_
#define TOOLS_PALSIM_EXPORT_CALL_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/device.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/declarations.h"
#include "tools/palsim/usage_error.h"

namespace palsim {

[[nodiscard]] std::vector<std::string_view> ExportNames();
// The place of a name among them. Throws UsageError for a name that is no export.
[[nodiscard]] std::size_t ExportIndex(std::string_view name);

struct Answer {
  std::size_t argument = 0;  // which out-parameter, from 1
  std::string text;          // what it holds: 5 (0x5)
  std::string_view meaning;  // its name where that is an enumeration's
  std::string_view name;     // the parameter's
  Content content;           // what it holds, for a program
};

struct CallOutcome {
  bool failed = false;
  std::uint32_t code = 0;
  std::string result;                       // the code and its name, or that the device restarted
  std::string name;                         // the code's alone; may be empty
  std::optional<sim::RestartKind> restart;  // under the call, which has no code then
  std::vector<Answer> answers;
  // What each out-number holds, in the place of its argument.
  std::array<std::uint32_t, Declaration::kMostParameters> numbers{};
  bool within_room = true;  // nothing was written behind an out-buffer
};

// How an export is called: "PALKEYGetType TYPE" and a line for each of its arguments. Throws
// UsageError for a name that is no export.
[[nodiscard]] std::string UsageText(std::string_view name);

// The arguments as the journal shows them: a password is replaced.
[[nodiscard]] std::vector<std::string> ShownArguments(std::string_view name,
                                                      std::vector<std::string> arguments);
// Throws UsageError for a name that is no export, and for arguments that do not fit its
// declaration.
void CheckCall(std::string_view name, const std::vector<std::string>& arguments);

// Calls an export without lines in the journal and without texts in the outcome, for callers that
// read numbers only. Throws ProcessKilled where the process ends in the call.
CallOutcome CallPlainly(sim::Process& process, std::size_t export_index,
                        const std::vector<std::string>& arguments);

// Throws as CheckCall does. The call and its answer stand in the journal.
CallOutcome CallExport(sim::Process& process, std::string_view name,
                       const std::vector<std::string>& arguments);

void PrintOutcome(std::string_view name, const CallOutcome& outcome);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPORT_CALL_H_

// The parameters of a request, and what is told of a call, as JSON.
#ifndef TOOLS_PALSIM_SERVE_PARAMETERS_H_
#define TOOLS_PALSIM_SERVE_PARAMETERS_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/kernel/registry.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/scenario/pattern.h"
#include "tools/palsim/serve/json_rpc.h"

namespace palsim {

// All of these throw RpcError where a parameter is not as it has to be.

// Parameters by their names. `names` has them in their order; those that end in '?' may be missing.
[[nodiscard]] Json ByName(const Json& parameters, std::span<const std::string_view> names);

[[nodiscard]] std::string TextOf(const Json& given, const char* name);
[[nodiscard]] std::string TextOf(const Json& given, const char* name, const std::string& otherwise);
[[nodiscard]] std::uint32_t NumberOf(const Json& given, const char* name, std::uint32_t most);
// The lines of a text, or of an array of texts.
[[nodiscard]] std::string LinesOf(const Json& given, const char* name);
// Data of a registry value, as a statement has it: a number, a text, or an array of bytes.
[[nodiscard]] Words DataOf(const Json& given, const char* name);

// The arguments of a call, as CallExport takes them, checked against its declaration. Where only
// those are given that the call reads, the others are "out".
[[nodiscard]] std::vector<std::string> ArgumentsOf(const Json& given, const std::string& name);

[[nodiscard]] Json ToJson(const std::optional<CallOutcome>& outcome);
// null where there is no value.
[[nodiscard]] Json ToJson(const sim::RegistryValue* value);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SERVE_PARAMETERS_H_

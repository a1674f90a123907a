// The platform's registry-import text: what the device's importer reads and registry.reg holds.
//
//   REGEDIT4
//   [HKEY_LOCAL_MACHINE\Software\Dravonel]
//   "Name"="text"   "Count"=dword:0000001e   "Bytes"=hex:0a,01   "Raw"=hex(1):...   @="unnamed"
//   "Gone"=-        [-HKEY_LOCAL_MACHINE\Software\Old]           ; a comment
//
// The simulator has an extension for names that a line cannot hold as they are. In quotes, "\x000A"
// is a UTF-16 unit. The path of a key may stand in quotes, with doubled backslashes:
//
//   ["HKEY_LOCAL_MACHINE\\Odd\x000Akey"]
#ifndef PLATFORM_SIM_KERNEL_REGISTRY_TEXT_H_
#define PLATFORM_SIM_KERNEL_REGISTRY_TEXT_H_

#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/kernel/registry.h"

namespace sim {

// Imports a text (UTF-8, or UTF-16 with a byte-order mark) line by line. A line with a mistake
// changes nothing and is returned as "12: what is wrong with it".
std::vector<std::string> ImportRegistryText(Registry& registry, std::string_view text);

// The whole registry. Importing the text into an empty registry gives an equal one, in equal order.
[[nodiscard]] std::string ExportRegistryText(const Registry& registry);
// One key with all below it.
[[nodiscard]] std::string ExportRegistryText(const RegistryKey& key);
// One value as it stands in such a text, without its name: dword:00000005, "text", hex:0a,01.
[[nodiscard]] std::string ValueText(const RegistryValue& value);

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_REGISTRY_TEXT_H_

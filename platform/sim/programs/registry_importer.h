// The device's importer of registry files.
#ifndef PLATFORM_SIM_PROGRAMS_REGISTRY_IMPORTER_H_
#define PLATFORM_SIM_PROGRAMS_REGISTRY_IMPORTER_H_

#include <cstdint>

#include "platform/sim/device.h"

namespace sim {

inline constexpr const char* kRegistryImporterPath = "\\Windows\\orqautoreg.exe";

// Imports the registry file that its command line names, after `takes_ms` of the device's time.
// Lines that it does not understand go to the journal. Exit code: 0, or 1 where the file cannot be
// read.
[[nodiscard]] Program RegistryImporter(std::uint32_t takes_ms = 0);

}  // namespace sim

#endif  // PLATFORM_SIM_PROGRAMS_REGISTRY_IMPORTER_H_

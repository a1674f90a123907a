// device.toml: what its author says about the device, and below a marker what the simulator keeps.
#ifndef PLATFORM_SIM_DEVICE_DESCRIPTION_H_
#define PLATFORM_SIM_DEVICE_DESCRIPTION_H_

#include <filesystem>
#include <string>

#include "platform/sim/device_folder.h"

namespace sim {

// Fills a new device with what the file says. Throws DeviceFolderError; the device is then of no
// use.
DeviceIdentity LoadDescription(Device& device, const std::filesystem::path& file);

// The text of such a file with the state that a device has now; its author's part stays as it is,
// and so does a text that has no state where there is none to keep.
[[nodiscard]] std::string WithState(const std::string& text, Device& device);

}  // namespace sim

#endif  // PLATFORM_SIM_DEVICE_DESCRIPTION_H_

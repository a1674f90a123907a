// device.toml: the author's description of the device and, below a marker, what the simulator
// keeps.
#ifndef PLATFORM_SIM_DEVICE_DESCRIPTION_H_
#define PLATFORM_SIM_DEVICE_DESCRIPTION_H_

#include <filesystem>
#include <string>

#include "platform/sim/device_folder.h"

namespace sim {

// Fills a new device as the file says. Throws DeviceFolderError; the device cannot be used then.
DeviceIdentity LoadDescription(Device& device, const std::filesystem::path& file);

// The author's part of such a text, without the blank lines at its end.
[[nodiscard]] std::string AuthorsPart(const std::string& text);

// The text of such a file with the present state of a device. The author's part stays as it is. A
// text without state stays as it is where there is nothing to keep.
[[nodiscard]] std::string WithState(const std::string& text, Device& device);

}  // namespace sim

#endif  // PLATFORM_SIM_DEVICE_DESCRIPTION_H_

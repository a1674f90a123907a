// A device in a folder: device.toml, registry.reg and files/ hold its whole state.
#ifndef PLATFORM_SIM_DEVICE_FOLDER_H_
#define PLATFORM_SIM_DEVICE_FOLDER_H_

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/sim/device.h"
#include "platform/sim/folder_change.h"

namespace sim {

// Its text is for the user: the file, the line if there is one, and what is wrong.
class DeviceFolderError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct DeviceIdentity {
  std::string name;             // "rm21"
  std::string description;      // a sentence
  std::size_t runs_kept = 100;  // in its journal
};

// Fills a new device from a folder. Throws DeviceFolderError.
DeviceIdentity LoadDevice(Device& device, const std::filesystem::path& folder);

// Makes a folder hold the device's state: the registry, the files, and in device.toml what the
// simulator keeps there (below the line "# Kept by the simulator"). The rest of device.toml, and
// the comments of a registry that has not changed, are those of the origin: the folder itself, or
// the sample of which a new device is made. Throws DeviceFolderError.
void PutDevice(Device& device, const std::filesystem::path& origin, FolderChange& change);
// Writes the device's state back, as a whole or not at all. Throws DeviceFolderError.
void SaveDevice(Device& device, const std::filesystem::path& folder);

// Whether the author's part of device.toml is another than the device was made with. A device that
// an older version made has no ".sample" and counts as edited, and so does one without device.toml.
[[nodiscard]] bool IsDescriptionEdited(const std::filesystem::path& folder);

}  // namespace sim

#endif  // PLATFORM_SIM_DEVICE_FOLDER_H_

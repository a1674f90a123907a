// A device in a folder: device.toml, registry.reg and files/ hold its whole state.
#ifndef PLATFORM_SIM_DEVICE_FOLDER_H_
#define PLATFORM_SIM_DEVICE_FOLDER_H_

#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/sim/device.h"

namespace sim {

// Its text is for the user: the file, the line if there is one, and what is wrong.
class DeviceFolderError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct DeviceIdentity {
  std::string name;         // "rm21"
  std::string description;  // a sentence
};

// Fills a new device from a folder. Throws DeviceFolderError.
DeviceIdentity LoadDevice(Device& device, const std::filesystem::path& folder);

// Writes the device's state back: the registry, the files, and in device.toml what the simulator
// keeps there (below the line "# Kept by the simulator"); the rest of device.toml stays as its
// author wrote it. Files are written anew and renamed into place. Throws DeviceFolderError.
void SaveDevice(Device& device, const std::filesystem::path& folder);

}  // namespace sim

#endif  // PLATFORM_SIM_DEVICE_FOLDER_H_

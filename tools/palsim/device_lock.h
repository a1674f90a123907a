// One writer: what a command waits for before it reads or changes a device's folder.
#ifndef TOOLS_PALSIM_DEVICE_LOCK_H_
#define TOOLS_PALSIM_DEVICE_LOCK_H_

#include <filesystem>

#include "platform/sim/device_folder.h"
#include "platform/sim/host_disk.h"

namespace palsim {

using Use = sim::FolderLock::Use;

constexpr double kDefaultWait = 10;  // seconds

// How long the next locks are waited for; 0 does not wait.
void SetLockWait(double seconds);

// Locks a folder, and finishes a change of it that was interrupted. While another process is in the
// way it waits, after a line on stderr that says for whom. Throws sim::DeviceFolderError.
[[nodiscard]] sim::FolderLock LockFolder(const std::filesystem::path& folder, Use use);
// The same, of a folder that is a device. Throws sim::DeviceFolderError, with the command that
// helps.
[[nodiscard]] sim::FolderLock LockDevice(const std::filesystem::path& folder, Use use);

// Fills a new device from a folder, and has the folder locked meanwhile. Throws
// sim::DeviceFolderError.
sim::DeviceIdentity LoadLocked(sim::Device& device, const std::filesystem::path& folder);

// Whether the folder has a file that only a device has. An older version could be interrupted so
// that it had no device.toml.
[[nodiscard]] bool WasDevice(const std::filesystem::path& folder);

}  // namespace palsim

#endif  // TOOLS_PALSIM_DEVICE_LOCK_H_

// What a folder on the host's disk needs beyond the standard library: a lock, and writing through.
#ifndef PLATFORM_SIM_HOST_DISK_H_
#define PLATFORM_SIM_HOST_DISK_H_

#include <cstdint>
#include <filesystem>
#include <string>

namespace sim {

// Returns when a file's bytes, or a folder's list of names, would be there after a power failure.
// Throws std::filesystem::filesystem_error.
void SyncToDisk(const std::filesystem::path& entry);

// An advisory lock on a folder: of any number of processes that read it, or of one that changes it.
// It needs no file in the folder, so that a folder that cannot be written can be locked too, and it
// ends with the process.
class FolderLock {
 public:
  enum class Use : std::uint8_t { kRead, kChange };

  // Opens the folder and does not lock it yet. Throws DeviceFolderError.
  explicit FolderLock(std::filesystem::path folder);
  FolderLock(FolderLock&& other) noexcept;
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  // Takes the lock in place of the one that it has, if any. False where another process is in the
  // way; throws DeviceFolderError where the host has no such locks for the folder.
  [[nodiscard]] bool Try(Use use);
  // Another process that has the lock: "palsim (process 17)", or what can be told.
  [[nodiscard]] std::string Holder() const;

 private:
  std::filesystem::path folder_;
  int descriptor_ = -1;
};

}  // namespace sim

#endif  // PLATFORM_SIM_HOST_DISK_H_

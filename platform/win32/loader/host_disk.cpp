// There are no tools for Windows that could share a device's folder: nothing is locked there.
#include "platform/sim/host_disk.h"

#include <utility>

namespace sim {

void SyncToDisk(const std::filesystem::path& /*entry*/) {}

FolderLock::FolderLock(std::filesystem::path folder) : folder_(std::move(folder)) {}
FolderLock::FolderLock(FolderLock&& other) noexcept
    : folder_(std::move(other.folder_)), descriptor_(other.descriptor_) {}
FolderLock::~FolderLock() = default;

bool FolderLock::Try(Use /*use*/) {
  return true;
}

std::string FolderLock::Holder() const {
  return "another program";
}

}  // namespace sim

#include "platform/sim/host_disk.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

#include "platform/sim/device_folder.h"
#include "platform/sim/journal.h"

namespace sim {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& entry, int error) {
  throw DeviceFolderError(entry.string() + ": " + std::generic_category().message(error));
}

// Without its arguments, among which a password can be.
std::string ProgramOf(const std::string& process) {
  std::ifstream file("/proc/" + process + "/comm");
  std::string name;
  return std::getline(file, name) ? Escape(name) : "another program";
}

}  // namespace

void SyncToDisk(const std::filesystem::path& entry) {
  const int descriptor = open(entry.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
  const int error = descriptor >= 0 && fsync(descriptor) == 0 ? 0 : errno;
  if (descriptor >= 0) close(descriptor);
  // Some file systems cannot write a folder through on demand.
  if (error == 0 || error == EINVAL) return;
  throw std::filesystem::filesystem_error("sync", entry, {error, std::generic_category()});
}

FolderLock::FolderLock(std::filesystem::path folder)
    : folder_(std::move(folder)),
      descriptor_(open(folder_.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY)) {
  if (descriptor_ < 0) Fail(folder_, errno);
}

FolderLock::FolderLock(FolderLock&& other) noexcept
    : folder_(std::move(other.folder_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

FolderLock::~FolderLock() {
  if (descriptor_ >= 0) close(descriptor_);
}

bool FolderLock::Try(Use use) {
  if (flock(descriptor_, (use == Use::kChange ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0) return true;
  if (errno != EWOULDBLOCK) Fail(folder_, errno);
  return false;
}

// The kernel lists locks as "1: FLOCK  ADVISORY  WRITE 17 fe:00:1234 0 EOF".
std::string FolderLock::Holder() const {
  struct stat own {};
  if (fstat(descriptor_, &own) != 0) return "another program";
  const std::string wanted =
      fmt::format("{:02x}:{:02x}:{}", major(own.st_dev), minor(own.st_dev), own.st_ino);
  const std::string self = std::to_string(getpid());
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream words(line);
    std::string number, kind, advisory, mode, process, file;
    words >> number >> kind >> advisory >> mode >> process >> file;
    if (kind == "FLOCK" && file == wanted && process != self) {
      return fmt::format("{} (process {})", ProgramOf(process), process);
    }
  }
  return "another program";
}

}  // namespace sim

#include "tools/palsim/device_lock.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "platform/sim/folder_change.h"
#include "platform/sim/host_file.h"
#include "platform/sim/journal.h"
#include "tools/streams.h"

namespace palsim {
namespace {

namespace fs = std::filesystem;
using Seconds = std::chrono::duration<double>;

Seconds longest_wait{kDefaultWait};

void TakeLock(sim::FolderLock& lock, Use use) {
  constexpr Seconds kUnsaid{0.5};
  constexpr Seconds kPause{0.005};
  const auto begin = std::chrono::steady_clock::now();
  for (bool said = false; !lock.Try(use);) {
    const Seconds waited = std::chrono::steady_clock::now() - begin;
    const auto in_use = [&](const char* end) {
      return fmt::format("{} is in use by {}; {} {:g} s", lock.folder().string(), lock.Holder(),
                         end, longest_wait.count());
    };
    if (!(waited < longest_wait)) {  // also where it is no number
      throw sim::DeviceFolderError(in_use("gave up after") + " (--wait SECONDS)");
    }
    if (!said && waited >= kUnsaid) {
      tools::PrintError("palsim: {}\n", in_use("waiting up to"));
      said = true;
    }
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace

void SetLockWait(double seconds) {
  longest_wait = Seconds(seconds);
}

sim::FolderLock LockFolder(const fs::path& folder, Use use) {
  sim::FolderLock lock(folder);
  TakeLock(lock, use);
  if (!sim::HasUnfinishedChange(folder)) return lock;
  if (use == Use::kRead) TakeLock(lock, Use::kChange);
  sim::FinishChange(folder);
  return lock;
}

bool WasDevice(const fs::path& folder) {
  constexpr std::array kFiles{"device.toml", "registry.reg", "journal.log"};
  return std::ranges::any_of(kFiles, [&](const char* file) { return sim::IsThere(folder / file); });
}

sim::FolderLock LockDevice(const fs::path& folder, Use use) {
  const auto require = [&](const fs::path& path) {
    if (sim::IsThere(path)) return;
    throw sim::DeviceFolderError(
        fmt::format("{0} is no device: it has no device.toml; 'palsim {0} new{1}' makes one",
                    folder.string(), WasDevice(folder) ? " --force" : ""));
  };
  require(folder);
  sim::FolderLock lock = LockFolder(folder, use);
  require(folder / "device.toml");
  return lock;
}

sim::DeviceIdentity LoadLocked(sim::Device& device, const fs::path& folder) {
  const sim::FolderLock lock = LockDevice(folder, Use::kRead);
  return sim::LoadDevice(device, folder);
}

}  // namespace palsim

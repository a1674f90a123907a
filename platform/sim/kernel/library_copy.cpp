#include "platform/sim/kernel/library_copy.h"

#include <map>
#include <mutex>
#include <vector>

#include "platform/sim/kernel/kernel.h"
#include "platform/sim/kernel/simulator_folder.h"

namespace sim {

// Copies that no process uses now, by the library's path.
class IdleCopies {
 public:
  std::unique_ptr<LoadedLibrary> TakeOrLoad(const std::filesystem::path& library) {
    {
      const std::lock_guard lock(mutex_);
      auto& idle = by_library_[library];
      if (!idle.empty()) {
        std::unique_ptr<LoadedLibrary> taken = std::move(idle.back());
        idle.pop_back();
        taken->Reset();
        return taken;
      }
    }
    return LoadLibraryFile(library);
  }

  void Keep(const std::filesystem::path& library, std::unique_ptr<LoadedLibrary> loaded) {
    const std::lock_guard lock(mutex_);
    by_library_[library].push_back(std::move(loaded));
  }

 private:
  std::mutex mutex_;
  std::map<std::filesystem::path, std::vector<std::unique_ptr<LoadedLibrary>>> by_library_;
};

namespace {

std::shared_ptr<IdleCopies> Idle() {
  static const auto idle = std::make_shared<IdleCopies>();
  return idle;
}

}  // namespace

LibraryCopy::LibraryCopy(const std::filesystem::path& library)
    : library_(library), idle_(Idle()), loaded_(idle_->TakeOrLoad(library)) {}

LibraryCopy::~LibraryCopy() {
  idle_->Keep(library_, std::move(loaded_));
}

std::filesystem::path DefaultLibrary() {
  static const std::filesystem::path library =
      SimulatorFolder() / (std::string("DVLORQPAL") + kLibraryExtension);
  return library;
}

}  // namespace sim

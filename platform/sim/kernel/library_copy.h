// The copy of the library that one process has loaded.
#ifndef PLATFORM_SIM_KERNEL_LIBRARY_COPY_H_
#define PLATFORM_SIM_KERNEL_LIBRARY_COPY_H_

#include <filesystem>
#include <memory>

#include "platform/sim/kernel/loaded_library.h"

namespace sim {

class IdleCopies;

// Every process has its own statics of the library. Loading takes long, so a process that ends
// leaves its copy to a later one, which resets it.
class LibraryCopy {
 public:
  explicit LibraryCopy(const std::filesystem::path& library);
  ~LibraryCopy();
  LibraryCopy(const LibraryCopy&) = delete;
  LibraryCopy& operator=(const LibraryCopy&) = delete;

  [[nodiscard]] void* Symbol(const char* name) const { return loaded_->Symbol(name); }
  [[nodiscard]] bool Contains(const void* address) const { return loaded_->Contains(address); }

 private:
  std::filesystem::path library_;
  std::shared_ptr<IdleCopies> idle_;  // the last process keeps it alive, also at the host's exit
  std::unique_ptr<LoadedLibrary> loaded_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_LIBRARY_COPY_H_

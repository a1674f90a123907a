// The copy of the library that one process has loaded.
#ifndef PLATFORM_SIM_KERNEL_LIBRARY_COPY_H_
#define PLATFORM_SIM_KERNEL_LIBRARY_COPY_H_

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace sim {

// A copy of the library's file, loaded on its own, and the first content of its writable data.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const std::filesystem::path& library);
  ~LoadedLibrary();
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  [[nodiscard]] void* Symbol(const char* name) const;
  [[nodiscard]] bool Contains(const void* address) const;
  // Gives the writable data its first content again.
  void Reset();

 private:
  void KeepWritableData();

  std::filesystem::path path_;
  void* module_;
  std::uint64_t* writable_ = nullptr;
  std::vector<std::uint64_t> at_first_;
  // The counters of a build for coverage, which a reset leaves as they are.
  std::uint64_t* counters_ = nullptr;
  std::vector<std::uint64_t> counted_;
};

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

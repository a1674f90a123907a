// The library as one process has it loaded.
#ifndef PLATFORM_SIM_KERNEL_LIBRARY_COPY_H_
#define PLATFORM_SIM_KERNEL_LIBRARY_COPY_H_

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace sim {

// A file of its own, loaded on its own, with what the library's writable data held at first.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const std::filesystem::path& library);
  ~LoadedLibrary();
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  [[nodiscard]] void* Symbol(const char* name) const;
  [[nodiscard]] bool Contains(const void* address) const;
  // Makes it as if it had been loaded just now.
  void Reset();

 private:
  void KeepWritableData();

  std::filesystem::path path_;
  void* module_;
  std::uint64_t* writable_ = nullptr;
  std::vector<std::uint64_t> at_first_;
  // What a build for coverage counts goes on from process to process.
  std::uint64_t* counters_ = nullptr;
  std::vector<std::uint64_t> counted_;
};

class IdleCopies;

// Every process has its own statics of the library. Loading takes long, so that processes after one
// another use the same copy, reset when the next one takes it.
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
  std::shared_ptr<IdleCopies> idle_;  // lasts as long as the last process, whatever ends first
  std::unique_ptr<LoadedLibrary> loaded_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_LIBRARY_COPY_H_

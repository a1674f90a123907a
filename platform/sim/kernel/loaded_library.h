// A library's file as one process has it in memory. Every kind of file has its own loader.
#ifndef PLATFORM_SIM_KERNEL_LOADED_LIBRARY_H_
#define PLATFORM_SIM_KERNEL_LOADED_LIBRARY_H_

#include <filesystem>
#include <memory>

namespace sim {

// How the names of such files end.
extern const char* const kLibraryExtension;

// A copy of the library's file, loaded on its own, and the first content of its writable data.
class LoadedLibrary {
 public:
  LoadedLibrary() = default;
  virtual ~LoadedLibrary() = default;
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  [[nodiscard]] virtual void* Symbol(const char* name) const = 0;
  [[nodiscard]] virtual bool Contains(const void* address) const = 0;
  // Gives the writable data its first content again.
  virtual void Reset() = 0;
};

// Throws std::runtime_error, with the cause, where the file cannot be loaded.
[[nodiscard]] std::unique_ptr<LoadedLibrary> LoadLibraryFile(const std::filesystem::path& library);

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_LOADED_LIBRARY_H_

// Owners of handles: registry keys, files, events, mutexes, processes, threads and modules.
#ifndef FRAME_UNIQUE_HANDLE_H_
#define FRAME_UNIQUE_HANDLE_H_

#include <utility>

#include "frame/result.h"
#include "platform/wince.h"

namespace pal {

// Move-only. Closes on every path and leaves the last error as it was, so that a caller can read
// the error of a failed call after its handles are closed.
//
// Traits name the `Value`, a pointer or a number, and give `IsValid(Value)` and `Close(Value)`. An
// empty owner holds null or 0.
template <typename Traits>
class UniqueHandle {
 public:
  using Value = typename Traits::Value;

  constexpr UniqueHandle() = default;
  explicit UniqueHandle(Value value) : value_(value) {}
  ~UniqueHandle() { Reset(); }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;
  UniqueHandle(UniqueHandle&& other) noexcept : value_(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }

  [[nodiscard]] Value get() const { return value_; }
  explicit operator bool() const { return Traits::IsValid(value_); }

  // Gives the handle away without closing it.
  [[nodiscard]] Value Release() { return std::exchange(value_, Value{}); }

  // Closes what is held and takes `value` in its place.
  void Reset(Value value = Value{}) {
    const Value closing = std::exchange(value_, value);
    if (!Traits::IsValid(closing)) return;
    const PreservedLastError preserved;
    Traits::Close(closing);
  }

 private:
  Value value_{};
};

struct RegistryKeyTraits {
  using Value = HKEY;
  static bool IsValid(Value key) { return key != nullptr; }
  static void Close(Value key) { RegCloseKey(key); }
};

// Files and drivers: a failed open gives all ones and not null.
struct FileTraits {
  using Value = HANDLE;
  static bool IsValid(Value file) { return file != nullptr && file != INVALID_HANDLE_VALUE; }
  static void Close(Value file) { CloseHandle(file); }
};

struct KernelObjectTraits {
  using Value = HANDLE;
  static bool IsValid(Value object) { return object != nullptr; }
  static void Close(Value object) { CloseHandle(object); }
};

struct ModuleTraits {
  using Value = HMODULE;
  static bool IsValid(Value module) { return module != nullptr; }
  static void Close(Value module) { FreeLibrary(module); }
};

using UniqueRegistryKey = UniqueHandle<RegistryKeyTraits>;
using UniqueFile = UniqueHandle<FileTraits>;
using UniqueEvent = UniqueHandle<KernelObjectTraits>;
using UniqueMutex = UniqueHandle<KernelObjectTraits>;
using UniqueProcess = UniqueHandle<KernelObjectTraits>;
using UniqueThread = UniqueHandle<KernelObjectTraits>;
using UniqueModule = UniqueHandle<ModuleTraits>;

}  // namespace pal

#endif  // FRAME_UNIQUE_HANDLE_H_

// An identity text that a process keeps from the first time it is read.
#ifndef SYSINFO_IDENTITY_IDENTITY_CACHE_H_
#define SYSINFO_IDENTITY_IDENTITY_CACHE_H_

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <span>
#include <string_view>

#include "platform/wince.h"

namespace pal {

// Filled once, and then never changed. The device has one processor: threads see stores in the
// order of the program, and the fences make the compiler keep that order. Two threads that fill it
// at once have read the same text from the device. `kSize` counts the terminator.
template <size_t kSize>
class IdentityCache {
 public:
  // Copies the text out. Empty until it is filled.
  [[nodiscard]] std::string_view Read(std::span<char, kSize> copy) const {
    const DWORD length = length_.load(std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_acquire);
    for (size_t at = 0; at < length; at += sizeof(DWORD)) {
      const DWORD part = words_[at / sizeof(DWORD)].load(std::memory_order_relaxed);
      std::memcpy(copy.data() + at, &part, sizeof(part));
    }
    return {copy.data(), length};
  }

  // A longer text is cut; an empty one does not fill.
  void Fill(std::string_view text) {
    if (length_.load(std::memory_order_relaxed) != 0) return;
    text = text.substr(0, kSize - 1);
    for (size_t at = 0; at < text.size(); at += sizeof(DWORD)) {
      DWORD part = 0;
      std::memcpy(&part, text.data() + at, std::min(sizeof(part), text.size() - at));
      words_[at / sizeof(DWORD)].store(part, std::memory_order_relaxed);
    }
    std::atomic_signal_fence(std::memory_order_release);
    length_.store(static_cast<DWORD>(text.size()), std::memory_order_relaxed);
  }

 private:
  static_assert(kSize % sizeof(DWORD) == 0);

  std::array<std::atomic<DWORD>, kSize / sizeof(DWORD)> words_{};
  std::atomic<DWORD> length_{0};
};

}  // namespace pal

#endif  // SYSINFO_IDENTITY_IDENTITY_CACHE_H_

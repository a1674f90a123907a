// An identity text that a process keeps once it has found it.
#ifndef SYSINFO_IDENTITY_CACHE_H_
#define SYSINFO_IDENTITY_CACHE_H_

#include <algorithm>
#include <array>
#include <atomic>
#include <span>
#include <string_view>

#include "platform/wince.h"

namespace pal {

// Never cleared and never changed. The device has one processor, so that what one thread stores
// another sees in the same order; the fences keep the compiler to it, and cost nothing. Two threads
// that fill it at once have read the same text from the device. `kSize` counts the text's end.
template <size_t kSize>
class IdentityCache {
 public:
  // Copies the text out. Empty until it is filled.
  [[nodiscard]] std::string_view Read(std::span<char, kSize> copy) const {
    if (filled_.load(std::memory_order_relaxed) == FALSE) return {};
    std::atomic_signal_fence(std::memory_order_acquire);
    size_t length = 0;
    for (; length < kSize - 1; ++length) {
      copy[length] = text_[length].load(std::memory_order_relaxed);
      if (copy[length] == '\0') break;
    }
    return {copy.data(), length};
  }

  // A longer text is cut; an empty one does not fill.
  void Fill(std::string_view text) {
    if (text.empty() || filled_.load(std::memory_order_relaxed) != FALSE) return;
    text = text.substr(0, kSize - 1);
    for (size_t at = 0; at < text.size(); ++at) {
      text_[at].store(text[at], std::memory_order_relaxed);
    }
    text_[text.size()].store('\0', std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_release);
    filled_.store(TRUE, std::memory_order_relaxed);
  }

 private:
  std::array<std::atomic<char>, kSize> text_{};
  std::atomic<BOOL> filled_{FALSE};
};

}  // namespace pal

#endif  // SYSINFO_IDENTITY_CACHE_H_

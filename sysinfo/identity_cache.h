// An identity text that a process keeps once it has found it.
#ifndef SYSINFO_IDENTITY_CACHE_H_
#define SYSINFO_IDENTITY_CACHE_H_

#include <algorithm>
#include <atomic>
#include <span>
#include <string_view>

#include "frame/text.h"
#include "platform/wince.h"

namespace pal {

// Never cleared and never changed. Of threads that fill it at once the first one does; the others'
// texts are not kept. `kSize` counts the text's end.
template <size_t kSize>
class IdentityCache {
 public:
  // Empty until it is filled.
  [[nodiscard]] std::string_view text() const {
    // Pairs with the release in Fill: who sees the flag sees the text.
    if (filled_.load(std::memory_order_acquire) == FALSE) return {};
    return {text_, Length<char>(text_)};
  }

  // A longer text is cut; an empty one does not fill.
  void Fill(std::string_view text) {
    if (text.empty() || claimed_.exchange(TRUE, std::memory_order_relaxed) != FALSE) return;
    text = text.substr(0, kSize - 1);
    std::copy(text.begin(), text.end(), text_);
    filled_.store(TRUE, std::memory_order_release);
  }

 private:
  char text_[kSize] = {};
  std::atomic<BOOL> claimed_{FALSE};
  std::atomic<BOOL> filled_{FALSE};
};

}  // namespace pal

#endif  // SYSINFO_IDENTITY_CACHE_H_

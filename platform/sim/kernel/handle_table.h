// Handles: numbers that are never given twice, so that a stale one is always noticed.
#ifndef PLATFORM_SIM_KERNEL_HANDLE_TABLE_H_
#define PLATFORM_SIM_KERNEL_HANDLE_TABLE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/sim/kernel/objects.h"

namespace sim {

class HandleTable {
 public:
  std::uintptr_t Add(std::shared_ptr<Object> object, std::uint32_t process_id,
                     std::uint32_t thread_id);

  // The object behind a handle of this process; where there is none, nullptr and what is wrong.
  struct Found {
    std::shared_ptr<Object> object;
    std::string fault;
  };
  [[nodiscard]] Found Find(std::uintptr_t handle, std::uint32_t process_id) const;
  void Close(std::uintptr_t handle) { entries_.erase(handle); }

  [[nodiscard]] unsigned Count(std::uint32_t process_id) const;
  // Closes what a process still holds and says what it was, but for what these threads opened.
  std::vector<std::string> CloseAll(std::uint32_t process_id,
                                    const std::vector<std::uint32_t>& silent_threads);

 private:
  struct Entry {
    std::shared_ptr<Object> object;
    std::uint32_t process_id;
    std::uint32_t thread_id;  // that opened it
  };
  static constexpr std::uintptr_t kFirst = 0x00010000;
  static constexpr std::uintptr_t kStep = 4;

  std::uintptr_t next_ = kFirst;
  std::unordered_map<std::uintptr_t, Entry> entries_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_HANDLE_TABLE_H_

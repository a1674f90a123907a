// Handles. A number is never given twice, so that the use of a closed handle is always noticed.
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

  // The object behind a handle of this process. Where there is none: nullptr, and the reason.
  struct Found {
    std::shared_ptr<Object> object;
    std::string fault;
  };
  [[nodiscard]] Found Find(std::uintptr_t handle, std::uint32_t process_id) const;
  void Close(std::uintptr_t handle) { entries_.erase(handle); }

  [[nodiscard]] unsigned Count(std::uint32_t process_id) const;
  // Closes all handles of a process and lists them. Handles that `silent_threads` opened are closed
  // but not listed.
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

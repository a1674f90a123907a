#include "platform/sim/kernel/handle_table.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/sim/text.h"

namespace sim {

std::uintptr_t HandleTable::Add(std::shared_ptr<Object> object, std::uint32_t process_id,
                                std::uint32_t thread_id) {
  const std::uintptr_t handle = next_;
  next_ += kStep;
  entries_.emplace(handle, Entry{std::move(object), process_id, thread_id});
  return handle;
}

HandleTable::Found HandleTable::Find(std::uintptr_t handle, std::uint32_t process_id) const {
  const auto entry = entries_.find(handle);
  if (entry == entries_.end()) {
    const bool was_given = handle >= kFirst && handle < next_ && handle % kStep == 0;
    return {nullptr,
            fmt::format("handle {:#x} {}", handle, was_given ? "is closed" : "was never given")};
  }
  if (entry->second.process_id != process_id) {
    return {nullptr,
            fmt::format("handle {:#x} belongs to process {}", handle, entry->second.process_id)};
  }
  return {entry->second.object, {}};
}

unsigned HandleTable::Count(std::uint32_t process_id) const {
  return static_cast<unsigned>(std::ranges::count_if(
      entries_, [&](const auto& entry) { return entry.second.process_id == process_id; }));
}

std::vector<std::string> HandleTable::CloseAll(std::uint32_t process_id,
                                               const std::vector<std::uint32_t>& silent_threads) {
  std::vector<std::string> closed;
  std::erase_if(entries_, [&](const auto& entry) {
    if (entry.second.process_id != process_id) return false;
    if (std::ranges::find(silent_threads, entry.second.thread_id) != silent_threads.end()) {
      return true;
    }
    const Object& object = *entry.second.object;
    closed.push_back(fmt::format("{} {:#x}", ObjectKindName(object.kind()), entry.first));
    if (!object.name().empty()) closed.back() += " " + ToUtf8(object.name());
    return true;
  });
  std::ranges::sort(closed);
  return closed;
}

}  // namespace sim

#include <atomic>
#include <cstdarg>

#include "frame/event_log.h"
#include "frame/last_error.h"
#include "frame/trace.h"

namespace pal {
namespace {

// A pair of its own beside PALTrace's.
constinit std::atomic<HMODULE> event_log_module{nullptr};
constinit std::atomic<EventLogEntry> event_log_entry{nullptr};

// Once a module is held there is no second look for its entry, not even for one that was missing.
// The entry is stored before the module, so that another thread rarely finds a module without its
// entry.
EventLogEntry LoadEventLogOnce() {
  if (event_log_module.load(std::memory_order_relaxed) != nullptr) return nullptr;
  const PreservedLastError preserved;
  const HMODULE event_log = LoadLibraryW(TEXT("DVLEventLog.dll"));
  if (event_log == nullptr) return nullptr;
  const EventLogEntry entry = FindEventLogEntry(event_log);
  event_log_entry.store(entry, std::memory_order_relaxed);
  event_log_module.store(event_log, std::memory_order_relaxed);
  return entry;
}

}  // namespace
}  // namespace pal

DWORD PALSysioTrace(DWORD /*ignored*/, DWORD category, const char* format, ...) {
  pal::TraceLine line;
  va_list arguments;
  va_start(arguments, format);
  pal::FormatTraceLine(line, format, arguments);
  va_end(arguments);

  pal::EventLogEntry entry = pal::event_log_entry.load(std::memory_order_relaxed);
  if (entry == nullptr) entry = pal::LoadEventLogOnce();
  if (entry != nullptr) entry(category, line);
  return 0;
}

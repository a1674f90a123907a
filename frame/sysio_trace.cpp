#include <atomic>
#include <cstdarg>

#include "frame/event_log.h"
#include "frame/last_error.h"
#include "frame/trace.h"

namespace pal {
namespace {

DWORD WINAPI DiscardLine(DWORD /*category*/, const char* /*line*/) {
  return 0;
}

// Apart from PALTrace's. Null until the library is loaded and set for good then: there is no second
// look for its entry, so that a library without one stands here as a function that discards its
// lines.
constinit std::atomic<EventLogEntry> event_log_entry{nullptr};

EventLogEntry LoadEventLogOnce() {
  const PreservedLastError preserved;
  const HMODULE event_log = LoadLibraryW(TEXT("DVLEventLog.dll"));
  if (event_log == nullptr) return nullptr;
  EventLogEntry entry = FindEventLogEntry(event_log);
  if (entry == nullptr) entry = &DiscardLine;
  event_log_entry.store(entry, std::memory_order_relaxed);
  return entry;
}

}  // namespace
DWORD PALSysioTrace(DWORD /*ignored*/, DWORD category, const char* format, ...) {
  TraceLine line;
  va_list arguments;
  va_start(arguments, format);
  FormatTraceLine(line, format, arguments);
  va_end(arguments);

  EventLogEntry entry = event_log_entry.load(std::memory_order_relaxed);
  if (entry == nullptr) entry = LoadEventLogOnce();
  if (entry != nullptr) entry(category, line);
  return 0;
}

}  // namespace pal

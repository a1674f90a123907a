#include "frame/trace.h"

#include <atomic>
#include <cstdarg>
#include <iterator>
#include <span>
#include <string_view>

#include "frame/event_log.h"
#include "frame/last_error.h"
#include "frame/text.h"

namespace pal {
namespace {

// Two threads may load the library at the same time, each for itself: loading is counted, and the
// last entry is kept. A module with the entry is never freed, so no thread can call into one that
// another let go. Only a module without the entry is held, for the next line to free; where two
// lines free it at once, the second is refused by the platform.
constinit std::atomic<EventLogEntry> event_log_entry{nullptr};
constinit std::atomic<HMODULE> module_without_entry{nullptr};

EventLogEntry LoadEventLog() {
  const PreservedLastError preserved;
  if (const HMODULE held = module_without_entry.load(std::memory_order_relaxed)) {
    module_without_entry.store(nullptr, std::memory_order_relaxed);
    FreeLibrary(held);
  }
  const HMODULE event_log = LoadLibraryW(TEXT("DVLEventlog.dll"));
  if (event_log == nullptr) return nullptr;
  const EventLogEntry entry = FindEventLogEntry(event_log);
  if (entry == nullptr) {
    module_without_entry.store(event_log, std::memory_order_relaxed);
  } else {
    event_log_entry.store(entry, std::memory_order_relaxed);
  }
  return entry;
}

// Apart from PALTrace, so that a line without echo does not pay for the wide buffer's stack.
[[gnu::noinline]] void Echo(std::string_view line) {
  constexpr std::string_view kLineEnd = "\r\n";
  WCHAR wide[2048];
  static_assert(std::size(wide) > sizeof(TraceLine) + kLineEnd.size());
  const std::span<WCHAR> buffer(wide);
  if (!Widen(buffer, line) || !Widen(buffer.subspan(line.size()), kLineEnd)) return;
  NKDbgPrintfW(wide);  // the line is the format: a '%' in it is interpreted again
}

}  // namespace
DWORD PALTrace(DWORD debug_echo, DWORD category, const char* format, ...) {
  TraceLine line;
  va_list arguments;
  va_start(arguments, format);
  FormatTraceLine(line, format, arguments);
  va_end(arguments);

  EventLogEntry entry = event_log_entry.load(std::memory_order_relaxed);
  if (entry == nullptr) entry = LoadEventLog();
  if (entry != nullptr) entry(category, line);
  if (debug_echo != 0) Echo(line);
  return 0;
}

}  // namespace pal

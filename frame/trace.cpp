#include "frame/trace.h"

#include <atomic>
#include <cstdarg>
#include <iterator>
#include <span>
#include <string_view>

#include "frame/result.h"
#include "frame/text.h"

namespace pal {
namespace {

// "DVLLogString" of the event-log library. Its result is ignored.
using EventLogEntry = DWORD(WINAPI*)(DWORD category, const char* line);

// Null where the library has no such entry.
EventLogEntry FindEntry(HMODULE event_log) {
  using AnyFunction = void (*)();  // the one that compilers let a function pointer pass through
  const FARPROC entry = GetProcAddressW(event_log, TEXT("DVLLogString"));
  return reinterpret_cast<EventLogEntry>(reinterpret_cast<AnyFunction>(entry));
}

// Each trace function has an entry of its own, which is null until it is found. Two threads may
// load the library at the same time: loads are counted, and both find the same entry.
//
// PALTrace looks for its entry on every line until it has found it. A module without the entry is
// held until the next line frees it; where two lines free it at once, the platform refuses the
// second. A module with the entry is never freed, so no thread calls into a module that is gone.
constinit std::atomic<EventLogEntry> trace_entry{nullptr};
constinit std::atomic<HMODULE> module_without_entry{nullptr};

EventLogEntry LoadForTrace() {
  if (const HMODULE held = module_without_entry.load(std::memory_order_relaxed)) {
    module_without_entry.store(nullptr, std::memory_order_relaxed);
    FreeLibrary(held);
  }
  const HMODULE event_log = LoadLibraryW(TEXT("DVLEventlog.dll"));
  if (event_log == nullptr) return nullptr;
  const EventLogEntry entry = FindEntry(event_log);
  if (entry == nullptr) {
    module_without_entry.store(event_log, std::memory_order_relaxed);
  } else {
    trace_entry.store(entry, std::memory_order_relaxed);
  }
  return entry;
}

// PALSysioTrace loads the library once, looks for the entry once and frees nothing. DiscardLine
// stands for an entry that a loaded library does not have.
constinit std::atomic<EventLogEntry> sysio_trace_entry{nullptr};

DWORD WINAPI DiscardLine(DWORD /*category*/, const char* /*line*/) {
  return 0;
}

EventLogEntry LoadForSysioTrace() {
  const HMODULE event_log = LoadLibraryW(TEXT("DVLEventLog.dll"));
  if (event_log == nullptr) return nullptr;
  EventLogEntry entry = FindEntry(event_log);
  if (entry == nullptr) entry = &DiscardLine;
  sysio_trace_entry.store(entry, std::memory_order_relaxed);
  return entry;
}

void Log(EventLogEntry entry, EventLogEntry (*load)(), DWORD category, const char* line) {
  if (entry == nullptr) entry = load();
  if (entry != nullptr) entry(category, line);
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
  const PreservedLastError preserved;
  TraceLine line;
  va_list arguments;
  va_start(arguments, format);
  FormatTraceLine(line, format, arguments);
  va_end(arguments);
  Log(trace_entry.load(std::memory_order_relaxed), &LoadForTrace, category, line);
  if (debug_echo != 0) Echo(line);
  return 0;
}

DWORD PALSysioTrace(DWORD /*ignored*/, DWORD category, const char* format, ...) {
  const PreservedLastError preserved;
  TraceLine line;
  va_list arguments;
  va_start(arguments, format);
  FormatTraceLine(line, format, arguments);
  va_end(arguments);
  Log(sysio_trace_entry.load(std::memory_order_relaxed), &LoadForSysioTrace, category, line);
  return 0;
}

}  // namespace pal

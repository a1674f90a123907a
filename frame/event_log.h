// What the two trace functions share: the bounded line and the event-log library's entry.
#ifndef FRAME_EVENT_LOG_H_
#define FRAME_EVENT_LOG_H_

#include "platform/wince.h"

namespace pal {

// "DVLLogString" of the event-log library. Its result is ignored.
using EventLogEntry = DWORD(WINAPI*)(DWORD category, const char* line);

using TraceLine = char[1024];

// The platform's formatting writes no terminator to a line that it cuts or that just fits.
inline void FormatTraceLine(TraceLine& line, const char* format, va_list arguments) {
  line[0] = '\0';
  _vsnprintf(line, sizeof(line) - 1, format, arguments);
  line[sizeof(line) - 1] = '\0';
}

// Null where the library has no such entry.
inline EventLogEntry FindEventLogEntry(HMODULE event_log) {
  using AnyFunction = void (*)();  // the one that compilers let a function pointer pass through
  const FARPROC entry = GetProcAddressW(event_log, TEXT("DVLLogString"));
  return reinterpret_cast<EventLogEntry>(reinterpret_cast<AnyFunction>(entry));
}

}  // namespace pal

#endif  // FRAME_EVENT_LOG_H_

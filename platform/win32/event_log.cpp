// DVLEventLog.dll: the event log, a text file.
#include <windows.h>

#include <cstdio>
#include <string>

#include "platform/win32/host_folder.h"

// The log keeps every line, whatever its category: the process, the category, the text.
extern "C" __declspec(dllexport) DWORD DVLLogString(DWORD category, const char* text) {
  char head[32];
  std::snprintf(head, sizeof(head), "[%lu] %08lx ", GetCurrentProcessId(), category);
  win32::AppendLine(L"eventlog.txt", std::string(head) + text);
  return 0;
}

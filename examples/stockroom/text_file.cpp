#include "text_file.h"

#include <cstdarg>
#include <cstdio>

namespace stockroom {

HANDLE OpenTextFile(const WCHAR* name, DWORD access, DWORD disposition) {
  WCHAR path[MAX_PATH];
  DWORD units = GetModuleFileNameW(nullptr, path, MAX_PATH);
  while (units > 0 && path[units - 1] != TEXT('\\')) --units;
  do {
    if (units == MAX_PATH) return INVALID_HANDLE_VALUE;
    path[units++] = *name;
  } while (*name++ != 0);
  return CreateFileW(path, access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

bool AppendLine(const WCHAR* name, const char* format, ...) {
  char line[200 + 2];
  va_list arguments;
  va_start(arguments, format);
  const int length = _vsnprintf(line, 200, format, arguments);
  va_end(arguments);
  if (length < 0 || length > 200) return false;
  line[length] = '\r';
  line[length + 1] = '\n';
  const DWORD bytes = static_cast<DWORD>(length) + 2;

  HANDLE file = OpenTextFile(name, GENERIC_WRITE, OPEN_ALWAYS);
  if (file == INVALID_HANDLE_VALUE) return false;
  DWORD written = 0;
  SetFilePointer(file, 0, nullptr, FILE_END);
  const bool is_written = WriteFile(file, line, bytes, &written, nullptr) != 0 && written == bytes;
  CloseHandle(file);
  return is_written;
}

}  // namespace stockroom

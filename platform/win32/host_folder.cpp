#include "platform/win32/host_folder.h"

#include <windows.h>

#include <algorithm>

namespace win32 {
namespace {

std::wstring Folder() {
  HMODULE own = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&Folder), &own);
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(own, path.data(), static_cast<DWORD>(path.size())));
  return path.substr(0, path.rfind(L'\\') + 1);
}

}  // namespace

std::wstring BesideLibrary(std::wstring_view path) {
  return Folder().append(path);
}

std::wstring HostPath(std::wstring_view path) {
  if (path.size() > 1 && path[1] == L':') return std::wstring(path);
  return BesideLibrary(L"device\\files").append(path.starts_with(L'\\') ? L"" : L"\\").append(path);
}

void AppendLine(std::wstring_view file, std::string_view line) {
  const DWORD last_error = GetLastError();
  std::string text(line);
  std::ranges::replace_if(
      text, [](char unit) { return static_cast<unsigned char>(unit) < 32; }, ' ');
  text.erase(text.find_last_not_of(' ') + 1);
  text += "\r\n";
  const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"DVLORQPAL_LOG_FILE");
  WaitForSingleObject(mutex, 1000);  // not for ever: its owner may stand in a debugger
  const HANDLE log =
      CreateFileW(BesideLibrary(file).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  nullptr, OPEN_ALWAYS, 0, nullptr);
  if (log != INVALID_HANDLE_VALUE) {
    DWORD written = 0;
    WriteFile(log, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(log);
  }
  ReleaseMutex(mutex);
  CloseHandle(mutex);
  SetLastError(last_error);
}

}  // namespace win32

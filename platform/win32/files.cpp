// Files, which stand in a folder of the PC, and the names of drivers, which the description has.
#include <windows.h>

#include <string_view>

#include "platform/win32/hardware.h"
#include "platform/win32/host_folder.h"

extern "C" {

HANDLE Win32CreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                        DWORD disposition, DWORD flags, HANDLE unused) {
  if (name == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  const std::wstring_view path(name);
  if (path.starts_with(L'$') || path.ends_with(L':')) {
    return win32::OpenDriver(name, access, share, disposition);
  }
  return CreateFileW(win32::HostPath(path).c_str(), access, share, security, disposition, flags,
                     unused);
}

DWORD Win32GetFileAttributesW(LPCWSTR name) {
  if (name == nullptr) return GetFileAttributesW(nullptr);
  return GetFileAttributesW(win32::HostPath(name).c_str());
}

BOOL Win32CloseHandle(HANDLE object) {
  return win32::IsDriver(object) ? win32::CloseDriver(object) : CloseHandle(object);
}

}  // extern "C"

// The hardware that a PC does not have, as the description in device\device.toml has it.
#ifndef PLATFORM_WIN32_HARDWARE_H_
#define PLATFORM_WIN32_HARDWARE_H_

namespace win32 {

// As CreateFileW and CloseHandle do it.
[[nodiscard]] void* OpenDriver(const wchar_t* name, unsigned long access, unsigned long share,
                               unsigned long disposition);
[[nodiscard]] bool IsDriver(const void* handle);
int CloseDriver(void* handle);

}  // namespace win32

#endif  // PLATFORM_WIN32_HARDWARE_H_

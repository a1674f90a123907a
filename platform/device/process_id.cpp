// The number of the process that runs. No library exports it: the kernel keeps it in its user data
// page, which every process can read.
#include "platform/wince.h"

DWORD GetCurrentProcessId() {
  constexpr uintptr_t kUserDataPage = 0xFFFFC800;
  constexpr uintptr_t kCurrentProcess = kUserDataPage + 4 + 4 * 2;
  return *reinterpret_cast<const volatile DWORD*>(kCurrentProcess);
}

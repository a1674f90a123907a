// Loads and frees the library a thousand times in one process.
#include <windows.h>

#include <cstdio>

namespace {

DWORD OpenHandles() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

bool LoadAndFree() {
  const HMODULE library = LoadLibraryW(L"DVLORQPAL.dll");
  if (library == nullptr) return false;
  FreeLibrary(library);
  return GetModuleHandleW(L"DVLORQPAL.dll") == nullptr;
}

}  // namespace

int main() {
  constexpr int kTimes = 1000;
  int well = 0;
  LoadAndFree();  // what Windows opens for a process once is open then
  const DWORD before = OpenHandles();
  for (int time = 0; time < kTimes; ++time) well += LoadAndFree() ? 1 : 0;
  const DWORD after = OpenHandles();
  std::printf("loaded and freed %d times; open handles before and after: %lu, %lu\n", well, before,
              after);
  return well == kTimes && before != 0 && after <= before ? 0 : 1;
}

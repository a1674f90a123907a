// Loads and frees the library a thousand times in one process.
#include <windows.h>

#include <cstdint>
#include <cstdio>

namespace {

// A new handle takes the first place that is free.
std::uintptr_t FirstFreeHandle() {
  const HANDLE probe = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(probe);
  return reinterpret_cast<std::uintptr_t>(probe);
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
  const std::uintptr_t before = FirstFreeHandle();
  for (int time = 0; time < kTimes; ++time) well += LoadAndFree() ? 1 : 0;
  const std::uintptr_t after = FirstFreeHandle();
  std::printf("loaded and freed %d times; the first free handle before and after: %#llx, %#llx\n",
              well, static_cast<unsigned long long>(before),
              static_cast<unsigned long long>(after));
  return well == kTimes && before != 0 && after <= before ? 0 : 1;
}

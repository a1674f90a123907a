// The library's start and end in a process against the platform calls that its families make there:
// what they create and close, and the two settings that they read.
#include <benchmark/benchmark.h>

#include "bench/bare_trace.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/wince.h"

namespace {

constexpr const char* kKeypadPath = "HKLM\\Software\\Dravonel\\PAL";
constexpr const WCHAR* kKeypad = TEXT("Software\\Dravonel\\PAL");

template <class Body>
void Measure(benchmark::State& state, const Body& body) {
  sim::Device device;
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  device.registry().SetDword(kKeypadPath, "FixActive", 1);
  device.hardware().parameters = {{0x00D5, sim::TextAnswer("RM21")}};
  sim::Process process(device);
  process.Run([&] { body(state, process); });
}

void LibraryStartAndEnd(benchmark::State& state) {
  Measure(state, [](benchmark::State& iterations, const sim::Process& process) {
    using EntryPoint = BOOL (*)(HANDLE module, DWORD reason, void* reserved);
    const auto entry = reinterpret_cast<EntryPoint>(process.Symbol("DllMain"));
    const HMODULE module = LoadLibraryW(TEXT(R"(\Program Files\Dravonel\DVLORQPAL.dll)"));
    for ([[maybe_unused]] auto iteration : iterations) {
      entry(module, DLL_PROCESS_DETACH, nullptr);
      entry(module, DLL_PROCESS_ATTACH, nullptr);
    }
    FreeLibrary(module);
  });
}
BENCHMARK(LibraryStartAndEnd)->Name("start and end in a process/library");

void ReadModel() {
  DWORD parameter = 0x00D5;
  BYTE model[256];
  DWORD bytes = 0;
  KernelIoControl(0x010122C4, &parameter, sizeof(parameter), model, sizeof(model), &bytes);
  benchmark::DoNotOptimize(model);
}

void ReadRepairFlag() {
  HKEY key = nullptr;
  DWORD done = 0;
  DWORD bytes = sizeof(done);
  bench::BareTrace("PALKEYInit - Entry");
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKeypad, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return;
  RegQueryValueExW(key, TEXT("FixActive"), nullptr, nullptr, reinterpret_cast<BYTE*>(&done),
                   &bytes);
  RegCloseKey(key);
  benchmark::DoNotOptimize(done);
}

void CloseMutex(HANDLE mutex) {
  WaitForSingleObject(mutex, 2000);
  ReleaseMutex(mutex);
  CloseHandle(mutex);
}

void BareStartAndEnd(benchmark::State& state) {
  Measure(state, [](benchmark::State& iterations, const sim::Process&) {
    for ([[maybe_unused]] auto iteration : iterations) {
      const HANDLE beep = CreateMutexW(nullptr, FALSE, TEXT("BENCH_BEEP_MUTEX"));
      ReadModel();
      const HANDLE led = CreateMutexW(nullptr, FALSE, TEXT("BENCH_LED_MUTEX"));
      const HANDLE led_timeout = CreateEventW(nullptr, FALSE, FALSE, TEXT("BENCH_LED_TIMEOUT"));
      ReadRepairFlag();
      const HANDLE timeouts = CreateEventW(nullptr, FALSE, FALSE, TEXT("BENCH_TIMEOUTS"));
      const HANDLE backlight = CreateEventW(nullptr, FALSE, FALSE, TEXT("BENCH_BACKLIGHT"));
      CloseHandle(timeouts);
      CloseHandle(backlight);
      CloseMutex(led);
      CloseHandle(led_timeout);
      CloseMutex(beep);
    }
  });
}
BENCHMARK(BareStartAndEnd)->Name("start and end in a process/bare");

}  // namespace

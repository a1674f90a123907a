// An LED switch and a capability query against the platform calls that they cannot do without.
#include <benchmark/benchmark.h>

#include "bench/bare_trace.h"
#include "platform/sim/exports.h"
#include "platform/wince.h"

namespace {

constexpr const char* kPlugins = "HKLM\\Software\\Dravonel\\PAL\\DeviceCapabilities";

void Prepare(sim::Device& device) {
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  device.files().Write("\\Windows\\ril.dll", "");
  device.registry().SetDword(kPlugins, "Compass", 1);
}

void SetLed(UINT number, INT command) {
  NLED_SETTINGS_INFO settings{};
  settings.LedNum = number;
  settings.OffOnBlink = command;
  NLedSetDevice(NLED_SETTINGS_INFO_ID, &settings);
}

// On and off, so that the driver never refuses.
void LibrarySwitch(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  const auto on = process.exports().PALLEDGrLedOn.address();
  const auto off = process.exports().PALLEDGrLedOff.address();
  process.exports().PALLEDInit();
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) {
      on();
      off();
    }
  });
  process.exports().PALLEDTerm();
}
BENCHMARK(LibrarySwitch)->Name("LED on and off/library");

void BareSwitch(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  process.Run([&] {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_LED_MUTEX"));
    for ([[maybe_unused]] auto iteration : state) {
      for (const INT command : {1, 0}) {
        WaitForSingleObject(mutex, 2000);
        SetLed(3, command);
        ReleaseMutex(mutex);
      }
    }
    CloseHandle(mutex);
  });
}
BENCHMARK(BareSwitch)->Name("LED on and off/bare");

void LibraryCapability(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  const auto get = process.exports().PALDevCap_GetDevCapsA.address();
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) benchmark::DoNotOptimize(get("WWAN"));
  });
}
BENCHMARK(LibraryCapability)->Name("capability, no plug-in/library");

void BareCapability(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) {
      HKEY key = nullptr;
      DWORD value = 0;
      DWORD bytes = sizeof(value);
      RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\PAL\\DeviceCapabilities"), 0,
                    KEY_QUERY_VALUE, &key);
      RegQueryValueExW(key, TEXT("WWAN"), nullptr, nullptr, reinterpret_cast<BYTE*>(&value),
                       &bytes);
      RegCloseKey(key);
      bench::BareTrace("PalSysinfo_IsWwanInstalled() - Entry");
      benchmark::DoNotOptimize(GetFileAttributesW(TEXT("\\Windows\\ril.dll")));
      bench::BareTrace("0x%x=PalSysinfo_IsWwanInstalled() - Exit", 1);
    }
  });
}
BENCHMARK(BareCapability)->Name("capability, no plug-in/bare");

}  // namespace

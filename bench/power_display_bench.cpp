// A power timeout and a display setting against the bare platform calls behind them, with the trace
// lines on both sides.
#include <benchmark/benchmark.h>

#include "bench/bare_trace.h"
#include "platform/sim/exports.h"
#include "platform/wince.h"

namespace {

constexpr const WCHAR* kTimeouts = TEXT("System\\CurrentControlSet\\Control\\Power\\Timeouts");
constexpr const WCHAR* kBacklight = TEXT("ControlPanel\\Backlight");

template <class Body>
void Measure(benchmark::State& state, const Body& body) {
  sim::Device device;
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  device.registry().SetDword("HKLM\\System\\CurrentControlSet\\Control\\Power\\Timeouts",
                             "BattSuspendTimeout", 300);
  device.registry().SetDword("HKCU\\ControlPanel\\Backlight", "AmbientDeltaIndex", 3);
  sim::Process process(device);
  process.Run([&] { body(process.exports(), state); });
}

void BareWrite(HKEY root, const WCHAR* path, const WCHAR* name, DWORD value) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, path, 0, KEY_SET_VALUE, &key) != ERROR_SUCCESS) return;
  RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
  RegCloseKey(key);
}

DWORD BareRead(HKEY root, const WCHAR* path, const WCHAR* name) {
  HKEY key = nullptr;
  DWORD value = 0;
  DWORD bytes = sizeof(value);
  if (RegOpenKeyExW(root, path, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return value;
  RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &bytes);
  RegCloseKey(key);
  return value;
}

template <auto kSet, DWORD kValue>
void LibrarySet(benchmark::State& state) {
  Measure(state, [](const sim::Exports& pal, benchmark::State& runs) {
    const auto set = (pal.*kSet).address();
    for ([[maybe_unused]] auto run : runs) benchmark::DoNotOptimize(set(kValue));
  });
}

template <auto kGet>
void LibraryGet(benchmark::State& state) {
  Measure(state, [](const sim::Exports& pal, benchmark::State& runs) {
    const auto get = (pal.*kGet).address();
    DWORD value = 0;
    for ([[maybe_unused]] auto run : runs) benchmark::DoNotOptimize(get(&value));
    benchmark::DoNotOptimize(value);
  });
}

BENCHMARK(LibrarySet<&sim::Exports::PALPWRSetDeviceOff_Batt, 5>)
    ->Name("set a suspend timeout/library");
BENCHMARK(LibraryGet<&sim::Exports::PALPWRGetDeviceOff_Batt>)
    ->Name("get a suspend timeout/library");
BENCHMARK(LibrarySet<&sim::Exports::PALDISPSetDisplayBrightnessAmbient, 3>)
    ->Name("set the brightness/library");
BENCHMARK(LibraryGet<&sim::Exports::PALDISPGetDisplayBrightnessAmbient>)
    ->Name("get the brightness/library");

void BareSetTimeout(benchmark::State& state) {
  Measure(state, [](const sim::Exports& /*pal*/, benchmark::State& runs) {
    HANDLE event = CreateEventW(nullptr, FALSE, FALSE, TEXT("PowerManager/ReloadActivityTimeouts"));
    for ([[maybe_unused]] auto run : runs) {
      bench::BareTrace("SetDeviceOff_Batt - user_val: %d, adjusted_val: %d\r\n", 5, 300);
      BareWrite(HKEY_LOCAL_MACHINE, kTimeouts, TEXT("BattSuspendTimeout"), 300);
      benchmark::DoNotOptimize(SetEvent(event));
    }
    CloseHandle(event);
  });
}
BENCHMARK(BareSetTimeout)->Name("set a suspend timeout/bare");

void BareGetTimeout(benchmark::State& state) {
  Measure(state, [](const sim::Exports& /*pal*/, benchmark::State& runs) {
    for ([[maybe_unused]] auto run : runs) {
      const DWORD seconds = BareRead(HKEY_LOCAL_MACHINE, kTimeouts, TEXT("BattSuspendTimeout"));
      bench::BareTrace("GetDeviceOff_Batt - sys_val: %dsec, user_val: %dmin\r\n", seconds,
                       seconds / 60);
      benchmark::DoNotOptimize(seconds);
    }
  });
}
BENCHMARK(BareGetTimeout)->Name("get a suspend timeout/bare");

void BareSetBrightness(benchmark::State& state) {
  Measure(state, [](const sim::Exports& /*pal*/, benchmark::State& runs) {
    for ([[maybe_unused]] auto run : runs) {
      bench::BareTrace("SetDisplayBrightnessAmbient - cur_level: %d\r\n", 3);
      BareWrite(HKEY_CURRENT_USER, kBacklight, TEXT("AmbientDeltaIndex"), 3);
    }
  });
}
BENCHMARK(BareSetBrightness)->Name("set the brightness/bare");

void BareGetBrightness(benchmark::State& state) {
  Measure(state, [](const sim::Exports& /*pal*/, benchmark::State& runs) {
    for ([[maybe_unused]] auto run : runs) {
      const DWORD level = BareRead(HKEY_CURRENT_USER, kBacklight, TEXT("AmbientDeltaIndex"));
      bench::BareTrace("GetDisplayBrightnessAmbient - cur_level: %d\r\n", level);
      benchmark::DoNotOptimize(level);
    }
  });
}
BENCHMARK(BareGetBrightness)->Name("get the brightness/bare");

}  // namespace

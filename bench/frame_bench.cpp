// The frame's helpers against the platform calls that they stand for.
#include <benchmark/benchmark.h>

#include "bench/bare_trace.h"
#include "tests/support/internals_process.h"

namespace {

constexpr DWORD kCategory = 0x43F00000;
constexpr const char* kFormat = "0x%x=PALBEEPGoodReadEx(in_scan_type:%d) - Exit";

template <class Body>
void Measure(benchmark::State& state, bool with_event_log, const Body& body) {
  sim::Device device;
  device.InstallModule(bench::QuietEventLog());
  if (!with_event_log) device.RemoveModule("DVLEventLog.dll");
  device.journal().set_keeps_entries(false);
  device.registry().SetDword("HKLM\\Software\\Dravonel\\Decodes", "ThreadPriority", 251);
  InternalsProcess process(device);
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) body(process);
  });
}

void LibraryTrace(benchmark::State& state) {
  Measure(state, true,
          [](const InternalsProcess& process) { process->trace(0, kCategory, kFormat, 0, 1); });
}
BENCHMARK(LibraryTrace)->Name("PALTrace with the event log/library");

void BareTraceAndLog(benchmark::State& state) {
  Measure(state, true, [](const InternalsProcess&) { bench::BareTrace(kFormat, 0, 1); });
}
BENCHMARK(BareTraceAndLog)->Name("PALTrace with the event log/bare");

void LibraryTraceWithoutLog(benchmark::State& state) {
  Measure(state, false,
          [](const InternalsProcess& process) { process->trace(0, kCategory, kFormat, 0, 1); });
}
BENCHMARK(LibraryTraceWithoutLog)->Name("PALTrace without the event log/library");

void BareTraceWithoutLog(benchmark::State& state) {
  Measure(state, false, [](const InternalsProcess&) {
    bench::BareTrace(kFormat, 0, 1);
    benchmark::DoNotOptimize(LoadLibraryW(TEXT("DVLEventlog.dll")));
  });
}
BENCHMARK(BareTraceWithoutLog)->Name("PALTrace without the event log/bare");

constexpr const WCHAR* kKey = TEXT("Software\\Dravonel\\Decodes");
constexpr const WCHAR* kValue = TEXT("ThreadPriority");

void LibraryGetDword(benchmark::State& state) {
  Measure(state, true, [](const InternalsProcess& process) {
    DWORD value = 0;
    benchmark::DoNotOptimize(process->get_dword(HKEY_LOCAL_MACHINE, kKey, kValue, &value));
    benchmark::DoNotOptimize(value);
  });
}
BENCHMARK(LibraryGetDword)->Name("PALRegGetDword/library");

void BareGetDword(benchmark::State& state) {
  Measure(state, true, [](const InternalsProcess&) {
    HKEY key = nullptr;
    DWORD value = 0;
    DWORD bytes = sizeof(value);
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, KEY_QUERY_VALUE, &key) == ERROR_SUCCESS) {
      RegQueryValueExW(key, kValue, nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &bytes);
      RegCloseKey(key);
    }
    benchmark::DoNotOptimize(value);
  });
}
BENCHMARK(BareGetDword)->Name("PALRegGetDword/bare");

}  // namespace

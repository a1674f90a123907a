// Opening and triggering the scan engine against the bare calls with the same trace lines.
#include <benchmark/benchmark.h>

#include "bench/bare_trace.h"
#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/scan_engine.h"
#include "platform/wince.h"

namespace {

template <class Body>
void Measure(benchmark::State& state, const Body& body) {
  sim::Device device;
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  device.hardware().parameters[0x001A].bytes = {0x0C, 0, 0, 0};
  device.hardware().drivers = {std::make_shared<sim::ScanDriver>()};
  sim::Process process(device);
  process.Run([&] { body(state, process.exports()); });
}

void LibraryOpen(benchmark::State& state) {
  Measure(state, [](benchmark::State& running, const sim::Exports& exports) {
    const auto open = exports.PALSysio_Open.address();
    const auto close = exports.PALSysio_Close.address();
    for ([[maybe_unused]] auto iteration : running) {
      benchmark::DoNotOptimize(open());
      benchmark::DoNotOptimize(close());
    }
  });
}
BENCHMARK(LibraryOpen)->Name("scan engine, open and close/library");

HANDLE OpenDriver() {
  return CreateFileW(TEXT("SCD1:"), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                     nullptr);
}

DWORD ReadDeviceCode() {
  BYTE id[] = {0x1A, 0, 0, 0};
  DWORD code = 0;
  DWORD bytes = 0;
  bench::BareTrace("Entry PALMFGOpt_InternalDeviceType");
  KernelIoControl(0x010122C4, id, sizeof(id), &code, sizeof(code), &bytes);
  bench::BareTrace("EEP DeviceType: 0x%x", code);
  bench::BareTrace("Internal Device type: 0x%x", 34);
  bench::BareTrace("%s device type 0x%x", "Found", code);
  bench::BareTrace("Exit PALMFGOpt_InternalDeviceType hr: 0x%x, DeviceType: %d, S6 Installed: %d",
                   0, 34, 0);
  return code;
}

void BareOpen(benchmark::State& state) {
  Measure(state, [](benchmark::State& running, const sim::Exports& /*exports*/) {
    for ([[maybe_unused]] auto iteration : running) {
      bench::BareTrace("Entry PALSysio_Open\r\n");
      const HANDLE driver = OpenDriver();
      benchmark::DoNotOptimize(ReadDeviceCode());
      bench::BareTrace("Exit PALSysio_Open g_hOEMScanDLL: 0x%x, hr: 0x%x\r\n", 0x10000, 0);
      bench::BareTrace("PALSysio_Close\r\n");
      CloseHandle(driver);
    }
  });
}
BENCHMARK(BareOpen)->Name("scan engine, open and close/bare");

void LibraryTrigger(benchmark::State& state) {
  Measure(state, [](benchmark::State& running, const sim::Exports& exports) {
    exports.PALSysio_Open.address()();
    const auto set_trigger = exports.PALSysio_SetScanTrigger.address();
    BOOL on = FALSE;
    for ([[maybe_unused]] auto iteration : running) {
      on = on == FALSE ? TRUE : FALSE;
      benchmark::DoNotOptimize(set_trigger(on));
    }
    exports.PALSysio_Close.address()();
  });
}
BENCHMARK(LibraryTrigger)->Name("scan engine, trigger/library");

void BareTrigger(benchmark::State& state) {
  Measure(state, [](benchmark::State& running, const sim::Exports& /*exports*/) {
    const HANDLE driver = OpenDriver();
    DWORD on = 0;
    for ([[maybe_unused]] auto iteration : running) {
      on = 1 - on;
      DWORD returned = 0;
      DeviceIoControl(driver, 0x22006C, &on, sizeof(on), nullptr, 0, &returned, nullptr);
      bench::BareTrace("PALSysio_SetScanTrigger( fTriggerOn:%d ) success\r\n", on);
    }
    CloseHandle(driver);
  });
}
BENCHMARK(BareTrigger)->Name("scan engine, trigger/bare");

}  // namespace

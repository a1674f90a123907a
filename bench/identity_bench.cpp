// Identity queries against the platform calls that they cannot do without. A cached answer still
// asks for the OEM information.
#include <benchmark/benchmark.h>

#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/internals_process.h"

namespace {

DWORD DiscardLine(DWORD /*category*/, const char* text) {
  benchmark::DoNotOptimize(text);
  return 0;
}

void Prepare(sim::Device& device) {
  device.InstallModule(
      {"DVLEventLog.dll",
       {{"DVLLogString", reinterpret_cast<int (*)()>(reinterpret_cast<void*>(&DiscardLine))}}});
  device.journal().set_keeps_entries(false);
  device.hardware().system.oem_information = sim::WideTextAnswer(u"Dravonel RM");
  device.hardware().parameters = {{0x0048, sim::TextAnswer("21190700042")},
                                  {0x00D5, sim::TextAnswer("RM21")}};
}

// The four lines of a query that succeeds.
void TraceLines(const InternalsProcess& process, const char* text) {
  constexpr DWORD kCategory = 0x440F0000;
  process->trace(0, kCategory, "PalProcessResultExA(fcn,0x%x,0x%x). procid:0x%x", 1, 2, 3);
  process->trace(0, kCategory, "PalSysIoRequestExA - 0x%x=pfnSYS_CALL(out:%s,out:%d)", 0, text, 5);
  process->trace(0, kCategory, "PalProcessResultExA - %s,len:%d, procid:0x%x", text, 5, 3);
  process->trace(0, kCategory, "PalProcessResultExA - Exit. procid:0x%x", 3);
}

template <class Body>
void Measure(benchmark::State& state, const Body& body) {
  sim::Device device;
  Prepare(device);
  InternalsProcess process(device);
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) body(process);
  });
}

template <auto kMember>
void LibraryQuery(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  const auto get = (process.exports().*kMember).address();
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) {
      char text[64];
      benchmark::DoNotOptimize(get(text));
      benchmark::DoNotOptimize(text);
    }
  });
}

BENCHMARK(LibraryQuery<&sim::Exports::PALSysinfo_GetSerialNumberA>)
    ->Name("serial number, cached/library");
BENCHMARK(LibraryQuery<&sim::Exports::PALSysinfo_GetModelA>)->Name("model, not cached/library");

void BareCachedSerial(benchmark::State& state) {
  Measure(state, [](const InternalsProcess& process) {
    WCHAR oem[256] = {};
    SystemParametersInfoW(SPI_GETOEMINFO, sizeof(oem), oem, 0);
    benchmark::DoNotOptimize(oem);
    TraceLines(process, "21190700042");
  });
}
BENCHMARK(BareCachedSerial)->Name("serial number, cached/bare");

void BareModel(benchmark::State& state) {
  Measure(state, [](const InternalsProcess& process) {
    BYTE id[] = {0xD5, 0x00};
    BYTE model[128];
    DWORD bytes = 0;
    KernelIoControl(0x010122C4, id, sizeof(id), model, sizeof(model), &bytes);
    benchmark::DoNotOptimize(model);
    TraceLines(process, "RM21");
  });
}
BENCHMARK(BareModel)->Name("model, not cached/bare");

}  // namespace

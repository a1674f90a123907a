// The USB switches against the platform calls that they cannot do without.
#include <benchmark/benchmark.h>

#include <array>
#include <string>

#include "bench/bare_trace.h"
#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/usb_function_bus.h"
#include "platform/wince.h"

namespace {

constexpr const WCHAR* kDrivers = TEXT("\\Drivers\\USB\\ClientDrivers\\Mass_Storage_Class");

void Prepare(sim::Device& device) {
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  device.hardware().drivers = {std::make_shared<sim::UsbFunctionBus>(
      std::vector<sim::UsbFunctionClient>{{"Serial_Class"}, {"RNDIS"}}, "RNDIS")};
  for (const char* driver : {"2", "5", "6"}) {
    device.registry().SetString(
        std::string(R"(HKLM\Drivers\USB\ClientDrivers\Mass_Storage_Class\)") + driver, "Dll",
        "usbmsc.dll");
  }
}

template <class Body>
void Measure(benchmark::State& state, const Body& body) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  const sim::Exports& exports = process.exports();
  process.Run([&] {
    bool turn = false;
    for ([[maybe_unused]] auto iteration : state) {
      turn = !turn;
      body(exports, turn);
    }
  });
}

void LibrarySwitch(benchmark::State& state) {
  Measure(state, [](const sim::Exports& exports, bool turn) {
    benchmark::DoNotOptimize(exports.PALStore_SetUsbFuncDriver.address()(turn ? 0 : 1));
  });
}
BENCHMARK(LibrarySwitch)->Name("USB client switch/library");

void BareSwitch(benchmark::State& state) {
  Measure(state, [](const sim::Exports& /*exports*/, bool turn) {
    const std::u16string_view client = turn ? u"Serial_Class" : u"RNDIS";
    std::array<WCHAR, 128> name{};
    client.copy(name.data(), name.size());
    for (const DWORD code : {0x00220018U, 0x00220010U}) {
      const HANDLE bus = CreateFileW(TEXT("$bus\\OTG_0_2_0"), GENERIC_READ, FILE_SHARE_READ,
                                     nullptr, OPEN_EXISTING, 0, nullptr);
      bench::BareTrace("SetClientOption - In client name: %ls, ioctl:0x%x\r\n", name.data(), code);
      DWORD returned = 0;
      benchmark::DoNotOptimize(
          DeviceIoControl(bus, code, name.data(), sizeof(name), nullptr, 0, &returned, nullptr));
      CloseHandle(bus);
    }
  });
}
BENCHMARK(BareSwitch)->Name("USB client switch/bare");

void LibraryWalk(benchmark::State& state) {
  Measure(state, [](const sim::Exports& exports, bool turn) {
    benchmark::DoNotOptimize(exports.PALStore_SetUsbHostMassStorageEnable.address()(turn ? 0 : 1));
  });
}
BENCHMARK(LibraryWalk)->Name("USB disks, walk over 3 drivers/library");

void MoveBare(HKEY driver, const WCHAR* from, const WCHAR* to) {
  BYTE text[520];
  DWORD bytes = sizeof(text);
  DWORD type = 0;
  RegQueryValueExW(driver, from, nullptr, &type, text, &bytes);
  RegSetValueExW(driver, to, 0, type, text, bytes);
  RegDeleteValueW(driver, from);
}

void BareWalk(benchmark::State& state) {
  Measure(state, [](const sim::Exports& /*exports*/, bool turn) {
    HKEY drivers = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, kDrivers, 0, KEY_ALL_ACCESS, &drivers);
    WCHAR name[MAX_PATH];
    DWORD units = MAX_PATH;
    for (DWORD index = 0; RegEnumKeyExW(drivers, index, name, &units, nullptr, nullptr, nullptr,
                                        nullptr) == ERROR_SUCCESS;
         ++index) {
      HKEY driver = nullptr;
      RegOpenKeyExW(drivers, name, 0, KEY_ALL_ACCESS, &driver);
      if (turn) {
        MoveBare(driver, TEXT("Dll"), TEXT("Dll__"));
      } else {
        MoveBare(driver, TEXT("Dll__"), TEXT("Dll"));
      }
      RegCloseKey(driver);
      units = MAX_PATH;
    }
    RegCloseKey(drivers);
    bench::BareTrace("Successfully disabled all USB Mass Storage client drivers");
  });
}
BENCHMARK(BareWalk)->Name("USB disks, walk over 3 drivers/bare");

}  // namespace

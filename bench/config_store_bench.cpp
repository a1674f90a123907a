// The update from the largest configuration store that the device takes, against the file, registry
// and event-log calls that such an update cannot do without.
#include <benchmark/benchmark.h>

#include <array>
#include <vector>

#include "bench/bare_trace.h"
#include "platform/sim/exports.h"
#include "platform/wince.h"

namespace {

constexpr std::size_t kLargestFile = 1023;
constexpr DWORD kMostRecords = 256;
constexpr const WCHAR* kDecodes = TEXT("Software\\Dravonel\\Decodes");
constexpr const char* kDecodesPath = "HKEY_LOCAL_MACHINE\\Software\\Dravonel\\Decodes";
constexpr const WCHAR* kPriority = TEXT("ThreadPriority");

// 256 indexed entries of three bytes each, and bytes that are skipped.
std::vector<std::uint8_t> LargestFile() {
  std::vector<std::uint8_t> bytes{0xBB};
  for (DWORD record = 0; record < kMostRecords; ++record) {
    bytes.insert(bytes.end(), {0, static_cast<std::uint8_t>(record), 0});
  }
  bytes.push_back(0xFF);
  bytes.resize(kLargestFile, 0x20);
  return bytes;
}

void Prepare(sim::Device& device) {
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  device.files().Write("\\ConfigStore\\dcecfg", LargestFile());
}

void LibraryUpdate(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  const auto update = process.exports().PALMFGOpt_ConfigStoreRegUpdate.address();
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) update();
  });
}
BENCHMARK(LibraryUpdate)->Name("update from 256 entries/library");

void BareUpdate(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) {
      std::array<BYTE, 1024> buffer{};
      DWORD bytes = 0;
      const HANDLE file = CreateFileW(TEXT("\\ConfigStore\\dcecfg"), GENERIC_READ, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
      ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &bytes, nullptr);
      CloseHandle(file);
      for (DWORD record = 0; record < kMostRecords; ++record) {
        HKEY key = nullptr;
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, kDecodes, 0, nullptr, 0, 0, nullptr, &key, nullptr);
        RegSetValueExW(key, kPriority, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&record),
                       sizeof(record));
        RegCloseKey(key);
        RegCloseKey(HKEY_LOCAL_MACHINE);
        bench::BareTrace("Indexed Key %s : %s type %d found", kDecodesPath, "ThreadPriority", 2);
        bench::BareTrace("Value = %d", record);
        bench::BareTrace("%s:%s=%s", kDecodesPath, "ThreadPriority", "1");
      }
    }
  });
}
BENCHMARK(BareUpdate)->Name("update from 256 entries/bare");

}  // namespace

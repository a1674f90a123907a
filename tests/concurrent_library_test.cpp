// The library with threads that really run at once, for the race detector.
#include <string>
#include <vector>

#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/programs/registry_importer.h"
#include "tests/support/device_test.h"

namespace {

constexpr DWORD kCategory = 0x43F00000;

class Concurrent : public DeviceTest {
 protected:
  Concurrent() : DeviceTest(sim::Concurrency::kParallel) {}
};

// Every thread's first line loads the event log, all at once; many fresh processes give many
// chances.
TEST_F(Concurrent, TwoThreadsLoseNoTraceLine) {
  constexpr int kRounds = 20;
  constexpr DWORD kLines = 50;
  for (int round = 0; round < kRounds; ++round) {
    InternalsProcess process(device);
    const auto trace = [&] {
      for (DWORD line = 0; line < kLines; ++line) {
        process->trace(line % 2, kCategory, "new %d", line);
        process->sysio_trace(0, kCategory, "old %d", line);
      }
    };
    sim::Thread first = process.Start(trace);
    sim::Thread second = process.Start(trace);
    EXPECT_TRUE(first.Join());
    EXPECT_TRUE(second.Join());
  }
  EXPECT_EQ(TraceLines("new").size(), std::size_t{kRounds} * kLines * 2);
  EXPECT_GE(TraceLines("old").size(), std::size_t{kRounds} * (kLines * 2 - 1))
      << "a line that finds the library of the other thread before its entry is lost";
}

// What fails to load is tried again by every line of every thread.
TEST_F(Concurrent, TwoThreadsFreeAnEventLogWithoutItsEntryOnce) {
  device.InstallModule({"DVLEventLog.dll", {}});
  InternalsProcess process(device);
  const auto trace = [&] {
    for (int line = 0; line < 200; ++line) process->trace(0, kCategory, "lost");
  };
  sim::Thread first = process.Start(trace);
  sim::Thread second = process.Start(trace);
  EXPECT_TRUE(first.Join());
  EXPECT_TRUE(second.Join());
}

TEST_F(Concurrent, TwoProcessesUpdateTheRegistryAtOnce) {
  std::string file = "\xBB";
  for (int entry = 0; entry < 250; ++entry) file.append("\x01\x05\x00", 3);
  device.files().Write("\\ConfigStore\\dcecfg", file + '\xFF');
  sim::Process first(device, "first.exe");
  sim::Process second(device, "second.exe");
  const auto update = [](sim::Process& process) {
    return process.Start([&process] {
      for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(process.exports().PALMFGOpt_ConfigStoreRegUpdate(), S_OK);
      }
    });
  };
  sim::Thread first_thread = update(first);
  sim::Thread second_thread = update(second);
  EXPECT_TRUE(first_thread.Join());
  EXPECT_TRUE(second_thread.Join());
  EXPECT_EQ(
      device.registry().GetDword("HKLM\\Software\\Dravonel\\DCEDriver", "AsyncReadThreadPriority"),
      5u);
}

// Importers of their own, which end while others start.
TEST_F(Concurrent, TwoProcessesImportRegistryFilesAtOnce) {
  device.hardware().parameters[0x00D5].bytes = {'R', 'M'};
  device.files().Write(sim::kRegistryImporterPath, "");
  sim::Process first(device, "first.exe");
  sim::Process second(device, "second.exe");
  for (const std::string key : {"first", "second"}) {
    device.files().Write("\\" + key, "[HKLM\\" + key + "]\n");
  }
  const auto load = [](sim::Process& process, const WCHAR* file) {
    return process.Start([&process, file] {
      for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(process.exports().PALREG_LoadRegistry(TEXT(""), file, 1), S_OK);
        HKEY store = nullptr;
        EXPECT_EQ(
            RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\REGCHKSUMS"), 0, 0, &store),
            ERROR_SUCCESS);
        EXPECT_EQ(RegDeleteValueW(store, file), ERROR_SUCCESS);
        RegCloseKey(store);
      }
    });
  };
  sim::Thread first_thread = load(first, TEXT("first"));
  sim::Thread second_thread = load(second, TEXT("second"));
  EXPECT_TRUE(first_thread.Join());
  EXPECT_TRUE(second_thread.Join());
  EXPECT_NE(device.registry().Find("HKLM\\first"), nullptr);
  EXPECT_NE(device.registry().Find("HKLM\\second"), nullptr);
}

}  // namespace

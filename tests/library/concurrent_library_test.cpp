// The library with threads that really run at once, for the race detector.
#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/scan_engine.h"
#include "platform/sim/programs/registry_importer.h"
#include "tests/support/device_test.h"

namespace {

constexpr DWORD kCategory = 0x43F00000;

class Concurrent : public DeviceTest {
 protected:
  Concurrent() : DeviceTest(sim::Concurrency::kParallel) {}
};

// Runs a body on two threads of a process that begin as nearly at once as can be. The counter is
// relaxed on purpose: it must not order what the threads do for the race detector.
void RunTwice(sim::Process& process, const std::function<void()>& body) {
  std::atomic<int> missing = 2;
  const auto start_together = [&] {
    missing.fetch_sub(1, std::memory_order_relaxed);
    while (missing.load(std::memory_order_relaxed) > 0) {
    }
    body();
  };
  sim::Thread first = process.Start(start_together);
  sim::Thread second = process.Start(start_together);
  EXPECT_TRUE(first.Join());
  EXPECT_TRUE(second.Join());
}

// Every thread's first line loads the event log, both at once; many fresh processes give many
// chances.
TEST_F(Concurrent, TwoThreadsLoseNoTraceLine) {
  constexpr std::size_t kStarts = 100;
  constexpr DWORD kLines = 3;
  for (std::size_t round = 0; round < kStarts; ++round) {
    InternalsProcess process(device);
    RunTwice(process, [&] {
      for (DWORD line = 0; line < kLines; ++line) {
        process->trace(line % 2, kCategory, "new %d", line);
        process->sysio_trace(0, kCategory, "old %d", line);
      }
    });
  }
  EXPECT_EQ(TraceLines("new").size(), kStarts * kLines * 2);
  EXPECT_EQ(TraceLines("old").size(), kStarts * kLines * 2);
}

// Both find the caches empty, and none of them gives out a text that is half written.
TEST_F(Concurrent, TwoThreadsAskFirstForTheIdentity) {
  device.hardware().system.oem_information = sim::WideTextAnswer(u"Greywing");
  device.hardware().adapters = {{"ISA1", {0, 0x0A, 0x1B, 0x2C, 0x3D, 0x4E}}};
  for (int round = 0; round < 30; ++round) {
    sim::Process process(device);
    RunTwice(process, [&process] {
      for (int query = 0; query < 3; ++query) {
        char buffer[64] = {};
        EXPECT_EQ(process.exports().PALSysinfo_GetSerialNumberA(buffer), S_OK);
        EXPECT_STREQ(buffer, "000a1b2c3d4e");
        EXPECT_EQ(process.exports().PALSysinfo_GetHardwareConfigurationA(buffer), S_OK);
        EXPECT_STREQ(buffer, "CG0");
      }
    });
  }
}

// Callers of the scan engine ought to take turns; those that do not must still find whole values.
TEST_F(Concurrent, TwoThreadsDriveOneScanEngine) {
  device.hardware().parameters[0x001A].bytes = {0x10, 0, 0, 0};
  device.hardware().drivers = {std::make_shared<sim::ScanDriver>()};
  sim::Process process(device);
  const sim::Exports& exports = process.exports();
  EXPECT_EQ(exports.PALSysio_Open(), S_OK);
  RunTwice(process, [&exports] {
    for (int round = 0; round < 20; ++round) {
      EXPECT_EQ(exports.PALSysio_InternalScannerInterfaceInit(), S_OK);
      EXPECT_EQ(exports.PALSysio_SetScanTrigger(round % 2), S_OK);
      EXPECT_EQ(exports.PALSysio_ControlScanPower(PAL_SCANNER_POWER_DOWN), S_OK);
    }
  });
  EXPECT_EQ(exports.PALSysio_Close(), S_OK);
  EXPECT_EQ(process.new_handles(), 0U);
}

TEST_F(Concurrent, AProcessIsKilledAmongItsThreads) {
  device.files().Write("\\ConfigStore\\dcecfg", std::string("\xBB\x01\x05\x00\xFF", 5));
  for (int round = 0; round < 20; ++round) {
    sim::Process process(device);
    for (int thread = 0; thread < 3; ++thread) {
      process.Start([&process] {
        for (;;) process.exports().PALMFGOpt_ConfigStoreRegUpdate();
      });
    }
    process.Kill();
    EXPECT_FALSE(process.alive());
    EXPECT_EQ(process.open_handles(), 0u);
  }
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
        EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\REGCHKSUMS"), 0,
                                KEY_SET_VALUE, &store),
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

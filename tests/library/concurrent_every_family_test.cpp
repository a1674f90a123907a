// Threads of several processes that call exports of every family at once, for the race detector.
#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/sim/exports.h"
#include "tests/support/device_test.h"
#include "tests/support/documented_results.h"
#include "tests/support/export_rows.h"

namespace {

constexpr unsigned kProcesses = 3;
constexpr unsigned kThreads = 3;   // of each process
constexpr unsigned kCalls = 2000;  // of each thread

class ConcurrentEveryFamily : public DeviceTest {
 protected:
  ConcurrentEveryFamily() : DeviceTest(sim::Concurrency::kParallel) {
    ArrangeFor(ExportRow{}, device);
    for (const ExportRow& row : ExportRows()) {
      if (row.arrange) row.arrange(device);
    }
    for (unsigned process = 0; process < kProcesses; ++process) {
      processes.push_back(std::make_unique<sim::Process>(device, std::to_string(process) + ".exe"));
    }
  }

  std::vector<std::unique_ptr<sim::Process>> processes;
};

// No other call of the process may overlap these.
constexpr std::array kAlone{"PALBEEPInit", "PALBEEPTerm", "PALLEDInit",
                            "PALLEDTerm",  "PALPWRInit",  "PALPWRTerm"};
// A process makes these one after another.
constexpr std::array kInTurn{
    "PALSysio_Open",
    "PALSysio_Close",
    "PALSysio_SetScanTrigger",
    "PALSysio_SetScanEnable",
    "PALSysio_SetScanFlashEnable",
    "PALSysio_ControlScanPower",
    "PALSysio_DVLSetScanPower",
    "PALSysio_InternalScannerInterfaceInit",
};

// The rows that any thread of a process may run, or the one that runs those in turn too.
std::vector<const ExportRow*> RowsFor(bool runs_those_in_turn) {
  const auto has = [](const auto& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  std::vector<const ExportRow*> rows;
  for (const ExportRow& row : ExportRows()) {
    if (has(kAlone, row.name) || (has(kInTurn, row.name) && !runs_those_in_turn)) continue;
    rows.push_back(&row);
  }
  return rows;
}

// Whatever the others do meanwhile, an export gives a result that the headers tell of and writes
// into its caller's memory only. The terminal's restart, which would end all, is not among the
// rows.
void CallAtRandom(const sim::Exports& exports, const std::vector<const ExportRow*>& rows,
                  unsigned seed) {
  std::minstd_rand random(seed);
  for (unsigned call = 0; call < kCalls; ++call) {
    const ExportRow& row = *rows.at(random() % rows.size());
    Room room;
    const DWORD result = row.run(exports, room);
    EXPECT_TRUE(ResultsByExport().at(row.name).Has(result))
        << row.title() << " answered " << std::hex << result;
    EXPECT_TRUE(room.GuardsHold()) << row.title();
  }
}

using Settings = std::array<DWORD, 5>;
constexpr Settings kSettings{3, 15, 2, PAL_SHIFT_BEHAVIOR_2, 5};

// The results are those of the calls, in their order.
std::vector<HRESULT> Set(const sim::Exports& pal, const Settings& settings) {
  return {pal.PALBEEPSetVolume(settings[0]),
          pal.PALPWRSetDeviceOff_Batt(settings[1]),
          pal.PALDISPSetSIPDock(settings[2]),
          pal.PALKEYSetShiftBehavior(settings[3]),
          pal.PALVIBSetVibratePreset(settings[4]),
          pal.PALLEDGrLedOn(),
          pal.PALSysio_Open(),
          pal.PALSysio_Close()};
}

std::vector<HRESULT> Get(const sim::Exports& pal, Settings& settings) {
  auto& [volume, minutes, dock, shift, vibration] = settings;
  return {pal.PALBEEPGetVolume(&volume), pal.PALPWRGetDeviceOff_Batt(&minutes),
          pal.PALDISPGetSIPDock(&dock), pal.PALKEYGetShiftBehavior(&shift),
          pal.PALVIBGetVibratePreset(&vibration)};
}

TEST_F(ConcurrentEveryFamily, ManyThreadsCallAnything) {
  std::vector<sim::Thread> threads;
  for (unsigned thread = 0; thread < kProcesses * kThreads; ++thread) {
    sim::Process& process = *processes.at(thread % kProcesses);
    const bool is_first = thread < kProcesses;
    threads.push_back(process.Start([&process, thread, rows = RowsFor(is_first)] {
      CallAtRandom(process.exports(), rows, thread + 1);
    }));
  }
  for (sim::Thread& thread : threads) EXPECT_TRUE(thread.Join());

  for (const auto& process : processes) {
    EXPECT_EQ(process->held_mutexes(), 0u);
    (void)process->exports().PALSysio_Close();
  }
  // What one process sets now is what all of them read.
  EXPECT_EQ(Set(processes.front()->exports(), kSettings), std::vector<HRESULT>(8, S_OK));
  for (const auto& process : processes) {
    Settings settings{};
    EXPECT_EQ(Get(process->exports(), settings), std::vector<HRESULT>(5, S_OK));
    EXPECT_EQ(settings, kSettings);
  }
  for (const auto& process : processes) process->End();
  EXPECT_EQ(device.misuse(), std::vector<std::string>());
}

}  // namespace

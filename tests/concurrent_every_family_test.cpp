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

// A setting of one process is what all of them read.
void ExpectAgreement(const sim::Exports& writer, const std::vector<const sim::Exports*>& readers) {
  EXPECT_EQ(writer.PALBEEPSetVolume(3), S_OK);
  EXPECT_EQ(writer.PALPWRSetDeviceOff_Batt(15), S_OK);
  EXPECT_EQ(writer.PALDISPSetSIPDock(2), S_OK);
  EXPECT_EQ(writer.PALKEYSetShiftBehavior(PAL_SHIFT_BEHAVIOR_2), S_OK);
  EXPECT_EQ(writer.PALLEDGrLedOn(), S_OK);
  EXPECT_EQ(writer.PALVIBSetVibratePreset(5), S_OK);
  EXPECT_EQ(writer.PALSysio_Open(), S_OK);
  EXPECT_EQ(writer.PALSysio_Close(), S_OK);
  for (const sim::Exports* reader : readers) {
    std::array<DWORD, 5> settings{};
    EXPECT_EQ(reader->PALBEEPGetVolume(&settings[0]), S_OK);
    EXPECT_EQ(reader->PALPWRGetDeviceOff_Batt(&settings[1]), S_OK);
    EXPECT_EQ(reader->PALDISPGetSIPDock(&settings[2]), S_OK);
    EXPECT_EQ(reader->PALKEYGetShiftBehavior(&settings[3]), S_OK);
    EXPECT_EQ(reader->PALVIBGetVibratePreset(&settings[4]), S_OK);
    EXPECT_EQ(settings, (std::array<DWORD, 5>{3, 15, 2, PAL_SHIFT_BEHAVIOR_2, 5}));
  }
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

  std::vector<const sim::Exports*> readers;
  for (const auto& process : processes) {
    EXPECT_EQ(process->held_mutexes(), 0u);
    (void)process->exports().PALSysio_Close();
    readers.push_back(&process->exports());
  }
  ExpectAgreement(*readers.front(), readers);
  for (const auto& process : processes) process->End();
  EXPECT_EQ(device.misuse(), std::vector<std::string>());
}

}  // namespace

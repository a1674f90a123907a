// Keep-awake threads: their period, their end, and that none runs on in an unloaded library.
#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kSuspendTimeouts =
    "HKLM\\System\\CurrentControlSet\\Control\\Power\\Timeouts";
constexpr const WCHAR* kLibrary = TEXT("\\Program Files\\Dravonel\\DVLORQPAL.dll");
constexpr const char* kFreed = "\\Program Files\\Dravonel\\DVLORQPAL.dll freed";
constexpr DWORD kStart = 0;
constexpr DWORD kStop = 1;
constexpr DWORD kMissing = 0xFFFFFFFF;

class SuspendControl : public DeviceTest {
 protected:
  HRESULT Control(DWORD command) { return process.exports().PALPWRSuspendCtrl(command); }
  std::vector<std::uint64_t> ResetTimes() {
    std::vector<std::uint64_t> times;
    for (const sim::JournalEntry& entry : device.journal().entries()) {
      if (entry.effect != sim::Effect::kPower) continue;
      EXPECT_EQ(entry.text, "idle timers reset");
      times.push_back(entry.time_ms);
    }
    return times;
  }
  std::size_t Ended() { return TraceLines("Resume power off").size(); }
  bool IsFreed() {
    const Lines modules = device.journal().Texts(sim::Effect::kModule);
    return std::ranges::find(modules, kFreed) != modules.end();
  }
  // Gives the program's own load of the library back, as a program does that needs it no more.
  void FreeByProgram() {
    process.Run([] {
      const HMODULE library = LoadLibraryW(kLibrary);
      EXPECT_NE(FreeLibrary(library), FALSE);
      EXPECT_NE(FreeLibrary(library), FALSE);
    });
  }

  sim::Process process{device};
};

TEST_F(SuspendControl, ResetsTheIdleTimersWellInsideBothTimeouts) {
  struct Case {
    DWORD battery_seconds;
    DWORD external_seconds;
    std::uint64_t period;
  };
  for (const Case& test :
       {Case{300, 1800, 5}, Case{1800, 300, 5}, Case{0, 0, 20}, Case{0, 300, 20}, Case{300, 0, 20},
        Case{kMissing, 300, 20}, Case{300, kMissing, 20}, Case{3600, 3600, 45},
        Case{2760, 2640, 44}, Case{0xFFFFFFFE, 0xFFFFFFFE, 45}, Case{150, 600, 2},
        Case{59, 600, 20}}) {
    device.registry().RemoveTree(kSuspendTimeouts);
    if (test.battery_seconds != kMissing) {
      device.registry().SetDword(kSuspendTimeouts, "BattSuspendTimeout", test.battery_seconds);
    }
    if (test.external_seconds != kMissing) {
      device.registry().SetDword(kSuspendTimeouts, "ACSuspendTimeout", test.external_seconds);
    }
    device.journal().Clear();
    const std::uint64_t begin = device.now_ms();
    const std::uint64_t period_ms = test.period * 1000;
    EXPECT_EQ(Control(kStart), S_OK);
    device.Advance(static_cast<std::uint32_t>(2 * period_ms + 1));
    EXPECT_EQ(Control(kStop), S_OK);
    EXPECT_EQ(Ended(), 0u);
    device.Advance(static_cast<std::uint32_t>(period_ms));
    EXPECT_EQ(Ended(), 1u);
    EXPECT_EQ(TraceLines().front(), "Temporarily suspend power off\\r\\n");
    EXPECT_EQ(TraceLines().back(), "Resume power off\\r\\n");
    EXPECT_EQ(ResetTimes(), (std::vector{begin, begin + period_ms, begin + 2 * period_ms}))
        << test.battery_seconds << ' ' << test.external_seconds;
  }
  EXPECT_EQ(process.new_handles(), 0u);
}

TEST_F(SuspendControl, OneStopEndsEveryThreadOfItsProcessAlone) {
  sim::Process other(device, "other.exe");
  EXPECT_EQ(other.exports().PALPWRSuspendCtrl(kStart), S_OK);
  for (int count = 0; count < 3; ++count) EXPECT_EQ(Control(kStart), S_OK);
  EXPECT_EQ(Control(2), S_OK);
  device.Advance(20001);
  EXPECT_EQ(ResetTimes().size(), 8u);
  EXPECT_EQ(Control(kStop), S_OK);
  device.Advance(60000);
  EXPECT_EQ(Ended(), 3u);
  EXPECT_EQ(ResetTimes().size(), 11u);
  other.End();
}

TEST_F(SuspendControl, AStopBeforeTheFirstTurnIsNotLost) {
  EXPECT_EQ(Control(kStart), S_OK);
  EXPECT_EQ(Control(kStop), S_OK);
  device.Advance(20001);
  EXPECT_EQ(ResetTimes().size(), 1u);
  EXPECT_EQ(Ended(), 1u);
}

TEST_F(SuspendControl, AStartTakesBackAStopThatNoThreadHasSeen) {
  EXPECT_EQ(Control(kStart), S_OK);
  device.Advance(10000);
  EXPECT_EQ(Control(kStop), S_OK);
  EXPECT_EQ(Control(kStart), S_OK);
  device.Advance(30001);
  EXPECT_EQ(ResetTimes(), (std::vector<std::uint64_t>{0, 10000, 20000, 30000, 40000}));
  EXPECT_EQ(Control(kStop), S_OK);
  device.Advance(20000);
  EXPECT_EQ(Ended(), 2u);
  EXPECT_EQ(ResetTimes().size(), 5u);
}

TEST_F(SuspendControl, AStartThatFailsLeavesNothingBehind) {
  for (const char* call : {"GetModuleFileNameW", "LoadLibraryW", "CreateThread"}) {
    EXPECT_EQ(Control(kStart), S_OK);
    device.Advance(1);
    EXPECT_EQ(Control(kStop), S_OK);
    // The trace loads the event log before: only the library's own load shall fail.
    device.PlanFault({.call = call, .from_then_on = true, .error = 8});
    EXPECT_EQ(Control(kStart), 20) << call;
    device.ClearFaults();
    device.journal().Clear();
    device.Advance(20000);
    EXPECT_EQ(Ended(), 1u) << call << ": the stop before it stands";
    EXPECT_EQ(ResetTimes().size(), 0u);
  }
  EXPECT_EQ(process.new_handles(), 0u);
  FreeByProgram();
  EXPECT_TRUE(IsFreed());
}

TEST_F(SuspendControl, AThreadKeepsTheLibraryLoadedUntilItEnds) {
  EXPECT_EQ(Control(kStart), S_OK);
  EXPECT_EQ(Control(kStart), S_OK);
  FreeByProgram();
  device.Advance(45000);
  EXPECT_EQ(ResetTimes().size(), 6u);
  EXPECT_FALSE(IsFreed());
  EXPECT_EQ(Control(kStop), S_OK);
  device.Advance(20000);
  EXPECT_TRUE(IsFreed());
  EXPECT_EQ(device.journal().entries().back().text, kFreed);
  EXPECT_THROW(Control(kStart), std::logic_error);
  process.End();
}

TEST_F(SuspendControl, NoThreadOutlivesItsProcess) {
  for (const bool kill : {false, true}) {
    sim::Process ending(device, "ending.exe");
    EXPECT_EQ(ending.exports().PALPWRSuspendCtrl(kStart), S_OK);
    EXPECT_EQ(ending.exports().PALPWRSuspendCtrl(kStart), S_OK);
    device.Advance(kill ? 1 : 0);
    kill ? ending.Kill() : ending.End();
    const std::size_t resets = ResetTimes().size();
    device.Advance(100000);
    EXPECT_EQ(ResetTimes().size(), resets);
  }
}

// What the simulator would say of a library whose threads do not hold it.
TEST_F(SuspendControl, AThreadInAnUnloadedLibraryIsMisuse) {
  EXPECT_EQ(Control(kStart), S_OK);
  device.Advance(1);
  process.Run([] {
    const HMODULE library = LoadLibraryW(kLibrary);
    for (int loads = 0; loads < 3; ++loads) EXPECT_NE(FreeLibrary(library), FALSE);
  });
  EXPECT_TRUE(IsFreed());
  EXPECT_EQ(device.TakeMisuse(),
            Lines{"caller.exe: the library is unloaded while thread 2 runs in it"});
}

}  // namespace

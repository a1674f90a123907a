// Keep-awake threads and timeouts with threads that really run at once, for the race detector.
#include <string>
#include <vector>

#include "platform/sim/exports.h"
#include "tests/support/device_test.h"

namespace {

constexpr DWORD kStart = 0;
constexpr DWORD kStop = 1;
constexpr DWORD kLongestPeriodMs = 45000;

class ConcurrentPower : public DeviceTest {
 protected:
  ConcurrentPower() : DeviceTest(sim::Concurrency::kParallel) {
    device.registry().Create("HKLM\\System\\CurrentControlSet\\Control\\Power\\Timeouts");
  }
  std::size_t Begun() { return TraceLines("Temporarily suspend power off").size(); }
  std::size_t Ended() { return TraceLines("Resume power off").size(); }
};

// Starts and stops from two threads while keep-awake threads read the timeouts that both change.
void ControlFromTwoThreads(sim::Process& process) {
  const auto control = [&process] {
    const sim::Exports& pal = process.exports();
    for (const DWORD minutes : {5U, 30U, 0U}) {
      EXPECT_EQ(pal.PALPWRSuspendCtrl(kStart), S_OK);
      EXPECT_EQ(pal.PALPWRSetDeviceOff_Batt(minutes), S_OK);
      EXPECT_EQ(pal.PALPWRSetDeviceOff_ExtPwr(minutes), S_OK);
      EXPECT_EQ(pal.PALPWRSuspendCtrl(kStop), S_OK);
    }
    EXPECT_EQ(pal.PALPWRSuspendCtrl(kStart), S_OK);
  };
  sim::Thread first = process.Start(control);
  sim::Thread second = process.Start(control);
  EXPECT_TRUE(first.Join());
  EXPECT_TRUE(second.Join());
}

TEST_F(ConcurrentPower, OneStopEndsWhatTwoThreadsStarted) {
  for (int round = 0; round < 20; ++round) {
    device.journal().Clear();
    sim::Process process(device);
    ControlFromTwoThreads(process);
    device.Advance(1);
    EXPECT_EQ(process.exports().PALPWRSuspendCtrl(kStop), S_OK);
    device.Advance(kLongestPeriodMs);
    EXPECT_EQ(Begun(), 8u);
    EXPECT_EQ(Ended(), 8u);
  }
}

TEST_F(ConcurrentPower, AProcessEndsUnderItsThreads) {
  for (int round = 0; round < 30; ++round) {
    sim::Process process(device);
    ControlFromTwoThreads(process);
    if (round % 3 == 1) device.Advance(static_cast<std::uint32_t>(round) * 1000);
    if (round % 3 == 2) {
      process.Kill();
    } else {
      process.End();
    }
    const std::size_t resets = device.journal().Texts(sim::Effect::kPower).size();
    device.Advance(kLongestPeriodMs);
    EXPECT_EQ(device.journal().Texts(sim::Effect::kPower).size(), resets);
  }
}

// The program has let go of the library: the last of its threads unloads it.
TEST_F(ConcurrentPower, TheLastThreadUnloadsTheLibrary) {
  for (int round = 0; round < 20; ++round) {
    device.journal().Clear();
    sim::Process process(device);
    ControlFromTwoThreads(process);
    EXPECT_EQ(process.exports().PALPWRSuspendCtrl(kStop), S_OK);
    process.Run([] {
      const HMODULE library = LoadLibraryW(TEXT("\\Program Files\\Dravonel\\DVLORQPAL.dll"));
      FreeLibrary(library);
      FreeLibrary(library);
    });
    device.Advance(kLongestPeriodMs);
    EXPECT_EQ(Ended(), 8u);
    EXPECT_EQ(device.journal().entries().back().text,
              "\\Program Files\\Dravonel\\DVLORQPAL.dll freed");
  }
}

}  // namespace

// LEDs, vibrator and capabilities with threads that really run at once in several processes, for
// the race detector.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"

namespace {

constexpr const char* kLedSettings = "HKLM\\SOFTWARE\\Dravonel\\PAL";
constexpr int kRounds = 30;

class ConcurrentLeds : public DeviceTest {
 protected:
  ConcurrentLeds() : DeviceTest(sim::Concurrency::kParallel) {}
};

void SwitchAndAsk(const sim::Exports& exports) {
  for (int round = 0; round < kRounds; ++round) {
    EXPECT_EQ(exports.PALLEDGrLedToggle(0), S_OK);
    EXPECT_EQ(exports.PALLEDSysLightBlinkStart(), S_OK);
    EXPECT_EQ(exports.PALLEDSysLightBlinkStop(), S_OK);
    DWORD state = 0;
    EXPECT_EQ(exports.PALLEDGrLedGetState(0, &state), S_OK);
    EXPECT_EQ(state, 1u);
    static_cast<void>(exports.PALLEDIsGrLedOn());  // on or off, as the others flash
  }
}

void VibrateAndProbe(const sim::Exports& exports) {
  for (int round = 0; round < kRounds; ++round) {
    EXPECT_EQ(exports.PALVIBSetVibratePreset(1 + static_cast<DWORD>(round) % 9), S_OK);
    EXPECT_EQ(exports.PALVIBVibrate(0), S_OK);
    EXPECT_EQ(exports.PALDevCap_GetDevCapsA("Vibrate"), 1u);
    EXPECT_EQ(exports.PALDevCap_EnabledW(TEXT("WWAN")), 4u);
  }
}

TEST_F(ConcurrentLeds, FlashesOfAllProcessesNeverOverlap) {
  device.registry().SetDword(kLedSettings, "IntGrLedOnDur", 1);
  device.registry().SetDword(kLedSettings, "IntGrLed", 1);
  device.hardware().leds.vibrator = sim::Vibrator{};
  std::array<std::unique_ptr<sim::Process>, 3> processes;
  std::vector<sim::Thread> threads;
  for (auto& process : processes) {
    process = std::make_unique<sim::Process>(device);
    const sim::Exports& exports = process->exports();
    threads.push_back(process->Start([&exports] { SwitchAndAsk(exports); }));
    threads.push_back(process->Start([&exports] { SwitchAndAsk(exports); }));
    threads.push_back(process->Start([&exports] { VibrateAndProbe(exports); }));
  }
  for (sim::Thread& thread : threads) EXPECT_TRUE(thread.Join());
  // Each flash finds the LED off and leaves it so, and none waits for 2000 ms.
  EXPECT_EQ(TraceLines("NLedCtrl(id:3"), std::vector<std::string>{});
  EXPECT_EQ(TraceLines("PALWaitForMutex"), std::vector<std::string>{});
  EXPECT_EQ(device.journal().Texts(sim::Effect::kVibration).size(), 3u * kRounds);
}

}  // namespace

// The beeper with threads that really run at once in several processes, for the race detector.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "tests/support/beeper_device.h"
#include "tests/support/device_test.h"

namespace {

class ConcurrentFeedback : public DeviceTest {
 protected:
  ConcurrentFeedback() : DeviceTest(sim::Concurrency::kParallel) { FurnishBeeper(device); }

  void RunInTwoProcesses(const std::vector<std::function<void(const sim::Exports&)>>& bodies) {
    sim::Process first(device, "first.exe");
    sim::Process second(device, "second.exe");
    std::vector<sim::Thread> threads;
    for (sim::Process* process :
         {static_cast<sim::Process*>(&first), static_cast<sim::Process*>(&second)}) {
      for (const auto& body : bodies) {
        threads.push_back(process->Start([process, body] {
          for (int round = 0; round < 5; ++round) body(process->exports());
        }));
      }
    }
    for (sim::Thread& thread : threads) EXPECT_TRUE(thread.Join());
  }
};

// Nobody waits for two seconds here: all beeps together take less.
TEST_F(ConcurrentFeedback, BeepsNeverOverlap) {
  device.registry().SetDword(kIndicatorKey, "IntGRI", 4);
  RunInTwoProcesses({
      [](const sim::Exports& exports) { EXPECT_EQ(exports.PALBEEPKeyClick(), S_OK); },
      [](const sim::Exports& exports) { EXPECT_EQ(exports.PALBEEPGoodReadEx(0), S_OK); },
  });
  bool sounds = false;
  unsigned heard = 0;
  for (const std::string& text : device.journal().Texts(sim::Effect::kAudio)) {
    const bool begins = text.starts_with("sound begins");
    if (!begins && !text.starts_with("sound ends")) continue;
    EXPECT_NE(sounds, begins) << text;
    sounds = begins;
    heard += begins ? 1 : 0;
  }
  EXPECT_EQ(heard, 20u);
  EXPECT_EQ(device.hardware().audio.levels, (sim::AudioLevels{0x77777777, 5}));
}

TEST_F(ConcurrentFeedback, LevelsChangeWhileOthersBeepAndSearch) {
  RunInTwoProcesses({
      [](const sim::Exports& exports) { EXPECT_EQ(exports.PALBEEPKeyClick(), S_OK); },
      [](const sim::Exports& exports) {
        EXPECT_EQ(exports.PALBEEPStartTagSearch(), S_OK);
        EXPECT_EQ(exports.PALBEEPStopTagSearch(), S_OK);
      },
      [](const sim::Exports& exports) {
        DWORD level = 99;
        EXPECT_EQ(exports.PALBEEPSetVolume(4), S_OK);
        EXPECT_EQ(exports.PALBEEPGetVolume(&level), S_OK);
        EXPECT_EQ(exports.PALBEEPSetVolume(9), S_OK);
        EXPECT_LE(level, 5u);
        EXPECT_EQ(exports.PALBEEPSetGRI(1, 2), S_OK);
        EXPECT_EQ(exports.PALBEEPSetSpeakerGain(4, 70), S_OK);
      },
  });
  EXPECT_TRUE(device.hardware().audio.sounds.empty());
}

}  // namespace

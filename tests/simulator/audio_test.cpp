// The simulated audio driver: levels, sounds with their length, and what cuts them short.
#include <fmt/format.h>

#include <string>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wave_file.h"

namespace {

constexpr DWORD kLoop = SND_FILENAME | SND_ASYNC | SND_LOOP;

class SimAudio : public DeviceTest {
 protected:
  SimAudio() {
    device.files().Write("\\long.wav", SilentWaveFile(300));
    device.files().Write("\\short.wav", SilentWaveFile(120));
  }
  // The lines of the audio driver, with time and process.
  std::vector<std::string> Heard() {
    std::vector<std::string> lines;
    for (const sim::JournalEntry& entry : device.journal().entries()) {
      if (entry.effect == sim::Effect::kAudio) {
        lines.push_back(fmt::format("{} p{} {}", entry.time_ms, entry.process_id, entry.text));
      }
    }
    return lines;
  }
};

TEST_F(SimAudio, PlaysThroughInTheTimeOfTheFile) {
  sim::Process process(device);
  process.Run([] {
    EXPECT_NE(PlaySoundW(TEXT("\\SHORT.wav"), nullptr, SND_FILENAME), FALSE);
    EXPECT_NE(PlaySoundW(TEXT("\\long.wav"), nullptr, SND_FILENAME), FALSE);
    EXPECT_NE(PlaySoundW(nullptr, nullptr, 0), FALSE) << "nothing to stop is no failure";
  });
  EXPECT_EQ(Heard(), (std::vector<std::string>{
                         "0 p1 sound begins \\SHORT.wav 120 ms", "120 p1 sound ends \\SHORT.wav",
                         "120 p1 sound begins \\long.wav 300 ms", "420 p1 sound ends \\long.wav"}));
}

TEST_F(SimAudio, LoopsUntilStopReplacementEndOrKill) {
  sim::Process first(device, "first.exe");
  sim::Process second(device, "second.exe");
  const auto loop = [] { EXPECT_NE(PlaySoundW(TEXT("\\long.wav"), nullptr, kLoop), FALSE); };
  first.Run([&] {
    loop();
    Sleep(1000);
    EXPECT_NE(PlaySoundW(nullptr, nullptr, 0), FALSE);
    loop();
    EXPECT_NE(PlaySoundW(TEXT("\\short.wav"), nullptr, SND_FILENAME), FALSE);
    loop();
  });
  second.Run([&] {
    EXPECT_NE(PlaySoundW(nullptr, nullptr, 0), FALSE) << "stops its own process's sound only";
    loop();
  });
  second.Kill();
  first.End();
  EXPECT_EQ(Heard(), (std::vector<std::string>{
                         "0 p1 sound begins \\long.wav 300 ms, looping",
                         "1000 p1 sound stops \\long.wav",
                         "1000 p1 sound begins \\long.wav 300 ms, looping",
                         "1000 p1 sound stops \\long.wav",
                         "1000 p1 sound begins \\short.wav 120 ms",
                         "1120 p1 sound ends \\short.wav",
                         "1120 p1 sound begins \\long.wav 300 ms, looping",
                         "1120 p2 sound begins \\long.wav 300 ms, looping",
                         "1120 p2 sound stops \\long.wav",
                         "1120 p1 sound stops \\long.wav",
                     }));
}

TEST_F(SimAudio, ASoundIsCutShortUnderItsCaller) {
  sim::Process stopped(device, "stopped.exe");
  sim::Thread player = stopped.Start([] {
    EXPECT_NE(PlaySoundW(TEXT("\\long.wav"), nullptr, SND_FILENAME), FALSE);
    EXPECT_EQ(GetTickCount(), 100u);
  });
  stopped.Run([] {
    Sleep(100);
    EXPECT_NE(PlaySoundW(nullptr, nullptr, 0), FALSE);
  });
  EXPECT_TRUE(player.Join());

  sim::Process killed(device, "killed.exe");
  sim::Thread dying = killed.Start([] { PlaySoundW(TEXT("\\long.wav"), nullptr, SND_FILENAME); });
  device.Advance(100);
  killed.Kill();
  EXPECT_FALSE(dying.Join());
  EXPECT_EQ(Heard(), (std::vector<std::string>{
                         "0 p1 sound begins \\long.wav 300 ms",
                         "100 p1 sound stops \\long.wav",
                         "100 p2 sound begins \\long.wav 300 ms",
                         "200 p2 sound stops \\long.wav",
                     }));
}

TEST_F(SimAudio, RefusesWhatIsNoWholeWaveFile) {
  const std::string good = SilentWaveFile(10);
  const auto with = [&](std::size_t at, std::uint32_t number, int bytes) {
    std::string text = good;
    return text.replace(at, static_cast<std::size_t>(bytes), LittleEndian(number, bytes));
  };
  const std::vector<std::string> broken = {
      "",
      "RIFF",
      good.substr(0, 36),               // ends before the data
      good.substr(0, good.size() - 1),  // ends within it
      with(0, 0x58464952, 4),           // RIFX
      with(8, 0, 4),                    // not of the form WAVE
      with(16, 14, 4),                  // a short format
      with(16, 0xFFFFFFFF, 4),          // a chunk behind the end
      with(20, 2, 2),                   // compressed
      with(22, 0, 2),                   // no channel
      with(24, 0, 4),                   // no samples a second
      with(28, 1, 4),                   // not their number of bytes
      with(34, 24, 2),                  // samples of three bytes
  };
  sim::Process process(device);
  for (const std::string& file : broken) {
    SCOPED_TRACE(&file - broken.data());
    device.files().Write("\\broken.wav", file);
    process.Run([] {
      EXPECT_EQ(PlaySoundW(TEXT("\\broken.wav"), nullptr, SND_FILENAME), FALSE);
      EXPECT_EQ(GetLastError(), 13u);
      EXPECT_EQ(PlaySoundW(TEXT("\\missing.wav"), nullptr, SND_FILENAME), FALSE);
      EXPECT_EQ(GetLastError(), 2u);
    });
  }
  EXPECT_TRUE(Heard().empty());
}

TEST_F(SimAudio, RecordsMisuse) {
  sim::Process process(device);
  process.Run([] {
    DWORD number = 0;
    EXPECT_EQ(PlaySoundW(TEXT("\\short.wav"), nullptr, SND_FILENAME | SND_ASYNC), FALSE);
    EXPECT_EQ(PlaySoundW(nullptr, nullptr, SND_FILENAME), FALSE);
    EXPECT_NE(waveOutSetVolume(reinterpret_cast<HWAVEOUT>(&number), 0), 0u);
    EXPECT_NE(waveOutGetVolume(nullptr, nullptr), 0u);
    EXPECT_NE(waveInMessage(nullptr, 0x112, 2, 0), 0u);
    EXPECT_NE(waveInMessage(nullptr, 0x113, 1, 0), 0u);
    EXPECT_NE(waveInMessage(nullptr, 0x114, 2, 0), 0u);
  });
  EXPECT_EQ(device.TakeMisuse(),
            (std::vector<std::string>{
                "caller.exe: PlaySoundW was given the flags 0x20001",
                "caller.exe: PlaySoundW was given the flags 0x20000 without a sound",
                "caller.exe: waveOutSetVolume was given a handle",
                "caller.exe: waveOutGetVolume was given no address",
                "caller.exe: waveInMessage was given the message 0x112 for 2",
                "caller.exe: waveInMessage was given the message 0x113 for 1",
                "caller.exe: waveInMessage was given no address",
            }));
  EXPECT_TRUE(Heard().empty());
}

TEST(SimAudioFolder, KeepsTheLevels) {
  const TemporaryFolder folder;
  const std::string author = "name = \"x\"\n[audio]\nvolume = 0x66666666\ngain = 40\n";
  folder.Write("device.toml", author);
  const auto run = [&](DWORD volume_before, DWORD volume, DWORD gain) {
    sim::Device device;
    sim::LoadDevice(device, folder.path());
    sim::Process process(device);
    process.Run([&] {
      DWORD found = 0;
      EXPECT_EQ(waveOutGetVolume(nullptr, &found), 0u);
      EXPECT_EQ(found, volume_before);
      EXPECT_EQ(waveOutSetVolume(nullptr, volume), 0u);
      EXPECT_EQ(waveInMessage(nullptr, 0x113, 2, gain), 0u);
      EXPECT_EQ(waveInMessage(nullptr, 0x114, 2, reinterpret_cast<uintptr_t>(&found)), 0u);
      EXPECT_EQ(found, gain);
    });
    process.End();
    EXPECT_EQ(device.journal().Texts(sim::Effect::kAudio),
              (std::vector<std::string>{fmt::format("volume 0x{:08X}", volume),
                                        fmt::format("gain {}", gain)}));
    sim::SaveDevice(device, folder.path());
  };
  run(0x66666666, 0x66666666, 40);
  run(0x66666666, 0x0000ABCD, 100);
  run(0x0000ABCD, 0x00000000, 100);
  run(0x00000000, 0x66666666, 40);
}

}  // namespace

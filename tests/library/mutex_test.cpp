// Waiting for and releasing the mutexes that keep processes apart, and telling the audio driver.
#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

constexpr pal::Facility kLed = pal::Facility::kLed;
constexpr DWORD kTimeout = 2000;

class MutexHelpers : public DeviceTest {
 protected:
  // A thread of another process that holds the mutex for a while.
  sim::Thread Hold(DWORD ms) {
    sim::Thread holder = other.Start([ms] {
      const HANDLE held = CreateMutexW(nullptr, TRUE, TEXT("M"));
      Sleep(ms);
      ReleaseMutex(held);
      CloseHandle(held);
    });
    device.Advance(0);
    return holder;
  }
  void OpenMutex() {
    process.Run([&] { mutex = CreateMutexW(nullptr, FALSE, TEXT("M")); });
  }
  void TearDown() override {
    process.Run([&] {
      if (mutex != nullptr) CloseHandle(mutex);
    });
  }

  InternalsProcess process{device};
  sim::Process other{device, "other.exe"};
  HANDLE mutex = nullptr;
};

TEST_F(MutexHelpers, GoOnWithoutTheMutexAfterTheTimeout) {
  sim::Thread holder = Hold(60000);
  OpenMutex();
  process.Run([&] {
    EXPECT_EQ(process->wait_for_mutex(kLed, mutex, kTimeout), S_OK);
    EXPECT_EQ(GetTickCount(), kTimeout);
    EXPECT_EQ(process->release_mutex(kLed, mutex), PAL_E_WIN32(0x120));
  });
  const std::vector<std::string> lines = CategorisedLines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].starts_with("0xC3EC0000 PALWaitForMutex - ERROR timeout. hMutex: 0x"));
  EXPECT_TRUE(lines[0].ends_with(", ret: 0x102, dur: 2000\\r\\n")) << lines[0];
  EXPECT_TRUE(lines[1].starts_with(
      "0xC3EC0000 PALReleaseMutexIfValid - ERROR. Cannot release mutex. hMutex: 0x"));
  EXPECT_TRUE(lines[1].ends_with(" win32err: 0x120\\r\\n")) << lines[1];
  EXPECT_TRUE(holder.Join()) << "the holder keeps and releases its mutex";
}

TEST_F(MutexHelpers, OwnAnAbandonedMutex) {
  Hold(60000);
  OpenMutex();
  other.Kill();
  process.Run([&] {
    EXPECT_EQ(process->wait_for_mutex(kLed, mutex, kTimeout), S_OK);
    EXPECT_EQ(process->release_mutex(kLed, mutex), S_OK);
  });
  ASSERT_EQ(TraceLines().size(), 1u);
  EXPECT_TRUE(TraceLines()[0].ends_with(", ret: 0x80, dur: 0\\r\\n")) << TraceLines()[0];
}

TEST_F(MutexHelpers, RefuseHandlesThatAreNone) {
  process.Run([&] {
    EXPECT_EQ(process->wait_for_mutex(kLed, nullptr, kTimeout), E_INVALIDARG);
    EXPECT_EQ(process->wait_for_mutex(kLed, INVALID_HANDLE_VALUE, kTimeout), E_INVALIDARG);
    EXPECT_EQ(process->release_mutex(kLed, nullptr), S_FALSE);
    EXPECT_EQ(process->hold_mutex(kLed, nullptr, kTimeout, 0), E_INVALIDARG);
  });
  EXPECT_EQ(TraceLines(), (std::vector<std::string>{
                              "PALWaitForMutex - ERROR invalid mutex. hMutex: 0x0\\r\\n",
                              "PALWaitForMutex - ERROR invalid mutex. hMutex: 0xffffffff\\r\\n",
                              "PALReleaseMutexIfValid - ERROR. Mutex not valid. hMutex: 0x0\\r\\n",
                              "PALWaitForMutex - ERROR invalid mutex. hMutex: 0x0\\r\\n",
                          }));
  EXPECT_EQ(device.calls("WaitForSingleObject"), 0u);
}

TEST_F(MutexHelpers, ApplyAudioSettingSaysWhatIsMissing) {
  process.Run([&] { EXPECT_EQ(process->apply_audio_setting(), S_OK); });
  EXPECT_EQ(device.journal().Texts(sim::Effect::kAudio),
            std::vector<std::string>{"settings read from the registry"});
  device.InstallModule({"coredll.dll", {}});
  process.Run([&] { EXPECT_EQ(process->apply_audio_setting(), E_FAIL); });
  device.RemoveModule("coredll.dll");
  InternalsProcess newcomer(device);  // `process` has it loaded
  newcomer.Run([&] { EXPECT_EQ(newcomer->apply_audio_setting(), E_FAIL); });
  EXPECT_EQ(
      CategorisedLines(),
      (std::vector<std::string>{
          "0xC3EE0000 ApplyAudioSetting -  AudioUpdateFromRegistry failed.  win32err: 0x7f\\r\\n",
          "0xC3EE0000 ApplyAudioSetting -  Failed to load coredll.dll.  win32err: 0x7e\\r\\n",
      }));
}

}  // namespace

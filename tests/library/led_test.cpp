// The LEDs: switching, flashing, asking, and what stands in the way.
#include <fmt/format.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"

namespace {

using sim::Effect;
using sim::LedState;
using Lines = std::vector<std::string>;

constexpr const char* kSettings = "HKLM\\SOFTWARE\\Dravonel\\PAL";
constexpr const char* kNoMutex = "PALWaitForMutex - ERROR invalid mutex. hMutex: 0x0\\r\\n";
constexpr const char* kNoRelease =
    "PALReleaseMutexIfValid - ERROR. Mutex not valid. hMutex: 0x0\\r\\n";

class LedTest : public DeviceTest {
 protected:
  // What the LEDs did: "100: LED 3 on".
  Lines Timeline() {
    Lines lines;
    for (const sim::JournalEntry& entry : device.journal().entries()) {
      if (entry.effect == Effect::kLed) {
        lines.push_back(fmt::format("{}: {}", entry.time_ms, entry.text));
      }
    }
    return lines;
  }
  // Begins a flash of the good-read LED in the other process.
  sim::Thread BeginFlash(DWORD duration_ms) {
    device.registry().SetDword(kSettings, "IntGrLedOnDur", duration_ms);
    sim::Thread flash =
        other.Start([this] { EXPECT_EQ(other.exports().PALLEDGrLedToggle(0), S_OK); });
    device.Advance(0);
    return flash;
  }
  void SetOnTimeout() {
    sim::Process outsider(device, "outsider.exe");
    outsider.Run([] {
      const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, TEXT("LED_ON_TIMEOUT"));
      EXPECT_NE(SetEvent(event), FALSE);
      CloseHandle(event);
    });
  }

  sim::Process process{device};
  sim::Process other{device, "other.exe"};
  const sim::Exports& exports = process.exports();
};

using Request = sim::Export<HRESULT()> sim::Exports::*;

TEST_F(LedTest, SwitchesDoWhatTheyAreNamed) {
  struct Case {
    Request request;
    std::uint32_t led;
    LedState before;
    std::string done;
    int command;
  };
  for (const Case& test : std::vector<Case>{
           {&sim::Exports::PALLEDNotificationOn, 0, LedState::kOff, "LED 0 on", 1},
           {&sim::Exports::PALLEDNotificationOff, 0, LedState::kOn, "LED 0 off", 0},
           {&sim::Exports::PALLEDGrLedOn, 3, LedState::kBlink, "LED 3 on", 1},
           {&sim::Exports::PALLEDGrLedOff, 3, LedState::kBlink, "LED 3 off", 0},
           {&sim::Exports::PALLEDSysLightOn, 6, LedState::kOff, "LED 6 on", 1},
           {&sim::Exports::PALLEDSysLightOff, 6, LedState::kOn, "LED 6 off", 0},
           {&sim::Exports::PALLEDSysLightBlinkStart, 6, LedState::kOn, "LED 6 blinks", 2},
           {&sim::Exports::PALLEDSysLightBlinkStop, 6, LedState::kBlink, "LED 6 off", 0},
       }) {
    device.hardware().leds.Set(test.led, test.before);
    device.journal().Clear();
    EXPECT_EQ((exports.*test.request)(), S_OK);
    EXPECT_EQ(device.journal().Texts(Effect::kLed), Lines{test.done});
    EXPECT_EQ(TraceLines(), Lines{});
    // The driver refuses a second one.
    EXPECT_EQ((exports.*test.request)(), S_OK);
    EXPECT_EQ(device.journal().Texts(Effect::kLed), Lines{test.done});
    EXPECT_EQ(CategorisedLines(),
              Lines{fmt::format("0x43EC0000 NLedCtrl(id:{},cmd:{}) procid: 0x{:x} - LED already in "
                                "requested state\\r\\n",
                                test.led, test.command, process.id())});
  }
}

TEST_F(LedTest, WithoutTheMutexNothingIsDone) {
  EXPECT_EQ(exports.PALLEDTerm(), S_OK);
  device.journal().Clear();
  const auto expect_refusal = [&](HRESULT result, const std::string& name) {
    const bool is_notification = name.starts_with("PALLEDNotification");
    EXPECT_EQ(result, E_INVALIDARG) << name;
    Lines expected{kNoMutex, name + " - Mutex wait failed.  Aborting" +
                                 (is_notification ? ". hr:" : " request. hr: ") +
                                 "0x80070057\\r\\n"};
    if (!is_notification) expected.emplace_back(kNoRelease);
    EXPECT_EQ(TraceLines(), expected);
    device.journal().Clear();
  };
  DWORD state = 7;
  const std::pair<Request, const char*> requests[] = {
      {&sim::Exports::PALLEDNotificationOn, "PALLEDNotificationOn"},
      {&sim::Exports::PALLEDNotificationOff, "PALLEDNotificationOff"},
      {&sim::Exports::PALLEDGrLedOn, "PALLEDGrLedOn"},
      {&sim::Exports::PALLEDGrLedOff, "PALLEDGrLedOff"},
      {&sim::Exports::PALLEDSysLightOn, "PALLEDSysLightOn"},
      {&sim::Exports::PALLEDSysLightOff, "PALLEDSysLightOff"},
      {&sim::Exports::PALLEDSysLightBlinkStart, "PALLEDSysLightBlinkStart"},
      {&sim::Exports::PALLEDSysLightBlinkStop, "PALLEDSysLightBlinkStop"},
      {&sim::Exports::PALLEDTerm, "PALLEDTerm"},
  };
  for (const auto& [request, name] : requests) expect_refusal((exports.*request)(), name);
  expect_refusal(exports.PALLEDGrLedToggle(0), "PALLEDGrLedToggle");
  expect_refusal(exports.PALLEDGrLedGetState(0, &state), "PALLEDGrLedGetState");
  EXPECT_EQ(device.calls("NLedSetDevice"), 0u);
  EXPECT_EQ(state, 7u);
}

TEST_F(LedTest, FlashLastsAsLongAsItsScanTypeSays) {
  constexpr const char* kDefaultLine =
      "0xC3EC0000 PALLEDGrLedToggle - ERROR reading dur key. Use default of 250msec: "
      "SOFTWARE\\Dravonel\\PAL\\{}\\r\\n";
  device.registry().SetDword(kSettings, "IntGrLedOnDur", 1);
  device.registry().SetDword(kSettings, "TethGrLedOnDur", 5000);
  device.registry().SetDword(kSettings, "RFIDGrLedOnDur", 0xFFFFFFFF);
  struct Case {
    DWORD scan_type;
    DWORD duration_ms;
    Lines lines;
  };
  for (const Case& test : {
           Case{0, 1, {}},
           Case{1, 5000, {}},
           Case{2, 250, {fmt::format(kDefaultLine, "BTGrLedOnDur")}},
           Case{3, 250, {fmt::format(kDefaultLine, "RFIDGrLedOnDur")}},
       }) {
    device.journal().Clear();
    const auto begin = device.now_ms();
    EXPECT_EQ(exports.PALLEDGrLedToggle(test.scan_type), S_OK);
    EXPECT_EQ(Timeline(), (Lines{fmt::format("{}: LED 3 on", begin),
                                 fmt::format("{}: LED 3 off", begin + test.duration_ms)}));
    EXPECT_EQ(CategorisedLines(), test.lines);
  }
}

TEST_F(LedTest, FlashIsEndedFromAnotherProcess) {
  sim::Thread flash = BeginFlash(5000);
  device.Advance(300);
  SetOnTimeout();
  EXPECT_TRUE(flash.Join());
  EXPECT_EQ(Timeline(), (Lines{"0: LED 3 on", "300: LED 3 off"}));
  // Set while nothing flashes, it ends the next flash at once, and only that one.
  SetOnTimeout();
  device.journal().Clear();
  EXPECT_EQ(exports.PALLEDGrLedToggle(0), S_OK);
  EXPECT_EQ(exports.PALLEDGrLedToggle(0), S_OK);
  EXPECT_EQ(Timeline(),
            (Lines{"300: LED 3 on", "300: LED 3 off", "300: LED 3 on", "5300: LED 3 off"}));
}

TEST_F(LedTest, FlashSleepsWithoutTheEvent) {
  device.registry().SetDword(kSettings, "IntGrLedOnDur", 100);
  exports.PALLEDTerm();
  device.journal().Clear();
  device.PlanFault({.call = "CreateEventW", .error = 8});
  EXPECT_EQ(exports.PALLEDInit(), S_OK);
  EXPECT_EQ(exports.PALLEDGrLedToggle(0), S_OK);
  EXPECT_EQ(Timeline(), (Lines{"0: LED 3 on", "100: LED 3 off"}));
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0xC3EC0000 PALLEDInit - LED on timeout event creation failed. Will use sleep. "
                   "win32err: 0x8",
                   "0x83EC0000 GrLedToggle - No wait event created.  Sleeping for 100msec\\r\\n"}));
}

TEST_F(LedTest, RequestWaitsBehindAFlash) {
  sim::Thread flash = BeginFlash(1500);
  EXPECT_EQ(exports.PALLEDNotificationOn(), S_OK);
  EXPECT_EQ(Timeline(), (Lines{"0: LED 3 on", "1500: LED 3 off", "1500: LED 0 on"}));
  EXPECT_TRUE(flash.Join());
  EXPECT_EQ(TraceLines(), Lines{});
}

TEST_F(LedTest, RequestGoesOnBehindALongFlash) {
  sim::Thread flash = BeginFlash(5000);
  EXPECT_EQ(exports.PALLEDSysLightOn(), S_OK);
  EXPECT_TRUE(flash.Join());
  EXPECT_EQ(Timeline(), (Lines{"0: LED 3 on", "2000: LED 6 on", "5000: LED 3 off"}));
  const Lines lines = TraceLines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].starts_with("PALWaitForMutex - ERROR timeout. ")) << lines[0];
  EXPECT_TRUE(lines[1].starts_with("PALReleaseMutexIfValid - ERROR. Cannot release mutex. "))
      << lines[1];
}

TEST_F(LedTest, StateIsToldAsItIsStored) {
  device.registry().SetDword(kSettings, "IntGrLed", 0xFFFFFFFE);
  device.registry().SetDword(kSettings, "TethGrLed", 1);
  device.registry().SetDword(kSettings, "BTGrLed", 0);
  struct Case {
    DWORD scan_type;
    HRESULT result;
    DWORD state;
    std::string line;  // with the process's id in place of {}
  };
  constexpr DWORD kUntouched = 77;
  for (const Case& test : {
           Case{0, S_OK, 0xFFFFFFFE, "procid: 0x{:x}, type: IntGrLed, led_state: -2\\r\\n"},
           Case{1, S_OK, 1, "procid: 0x{:x}, type: TethGrLed, led_state: 1\\r\\n"},
           Case{2, S_OK, 0, "procid: 0x{:x}, type: BTGrLed, led_state: 0\\r\\n"},
           Case{3, PAL_E_FILE_NOT_FOUND, kUntouched,
                "ERROR reading RFIDGrLed from reg. procid: 0x{:x}, hr: 0x80070002\\r\\n"},
       }) {
    device.journal().Clear();
    DWORD state = kUntouched;
    EXPECT_EQ(exports.PALLEDGrLedGetState(test.scan_type, &state), test.result);
    EXPECT_EQ(state, test.state);
    EXPECT_EQ(TraceLines(),
              Lines{"PALLEDGrLedGetState - " + fmt::format(fmt::runtime(test.line), process.id())});
  }
}

TEST_F(LedTest, WhatIsNoScanTypeOrNoAddressIsRefused) {
  DWORD state = 77;
  for (const DWORD scan_type : {4u, 100u, 0xFFFFFFFFu}) {
    EXPECT_EQ(exports.PALLEDGrLedToggle(scan_type), E_FAIL);
    EXPECT_EQ(exports.PALLEDGrLedGetState(scan_type, &state), E_FAIL);
  }
  EXPECT_EQ(exports.PALLEDGrLedGetState(0, nullptr), E_FAIL);
  EXPECT_EQ(state, 77u);
  EXPECT_EQ(device.calls("WaitForSingleObject") + device.calls("NLedSetDevice"), 0u);
  EXPECT_EQ(TraceLines(), Lines{});
}

TEST_F(LedTest, IsOnOnlyWhileItShinesSteadily) {
  sim::Leds& leds = device.hardware().leds;
  EXPECT_EQ(exports.PALLEDIsGrLedOn(), E_FAIL);
  leds.Set(3, LedState::kBlink);
  EXPECT_EQ(exports.PALLEDIsGrLedOn(), E_FAIL);
  EXPECT_EQ(TraceLines(), Lines{});
  // Also in a flash, whose end it does not wait for.
  leds.Set(3, LedState::kOff);
  sim::Thread flash = BeginFlash(1000);
  EXPECT_EQ(exports.PALLEDIsGrLedOn(), S_OK);
  EXPECT_EQ(device.now_ms(), 0u);
  EXPECT_TRUE(flash.Join());
  EXPECT_EQ(CategorisedLines(),
            Lines{"0x43EC0000 IsGrLedOn - Good Read Led state. state: 0x1\\r\\n"});
  leds.Clear();
  EXPECT_EQ(exports.PALLEDIsGrLedOn(), E_FAIL);
}

TEST_F(LedTest, InitKeepsWhatThereIs) {
  const unsigned handles = process.open_handles();
  EXPECT_EQ(exports.PALLEDInit(), S_OK);
  EXPECT_EQ(process.open_handles(), handles);
  device.PlanFault({.call = "CreateMutexW", .error = 8});
  EXPECT_EQ(exports.PALLEDInit(), PAL_E_WIN32(0x8));
  EXPECT_EQ(CategorisedLines(),
            Lines{fmt::format("0xC3EC0000 PALLEDInit - ERROR Creating mutex. procid: 0x{:x}, name: "
                              "DVLORQPALMutex, win32err: 0x8, hr: 0x80070008\\r\\n",
                              process.id())});
  EXPECT_EQ(exports.PALLEDGrLedOn(), S_OK) << "with the handles of the first call";
  EXPECT_EQ(exports.PALLEDInit(), S_OK);
  EXPECT_EQ(process.open_handles(), handles);
  EXPECT_EQ(exports.PALLEDTerm(), S_OK);
  EXPECT_EQ(process.open_handles(), handles - 2);
  EXPECT_EQ(exports.PALLEDInit(), S_OK);
  EXPECT_EQ(exports.PALLEDGrLedOff(), S_OK);
}

// The simulated driver, where no export reaches it.
TEST_F(LedTest, DriverIsStrict) {
  process.Run([] {
    NLED_SETTINGS_INFO settings{};
    settings.LedNum = 3;
    settings.OffOnBlink = 3;
    EXPECT_EQ(NLedSetDevice(NLED_SETTINGS_INFO_ID, &settings), FALSE);
    settings.OffOnBlink = 1;
    settings.OnTime = 1;
    EXPECT_NE(NLedSetDevice(NLED_SETTINGS_INFO_ID, &settings), FALSE);
    EXPECT_EQ(NLedSetDevice(7, &settings), FALSE);
    EXPECT_EQ(NLedSetDevice(NLED_SETTINGS_INFO_ID, nullptr), FALSE);
  });
  const Lines misuse = device.TakeMisuse();
  ASSERT_EQ(misuse.size(), 2u);
  EXPECT_NE(misuse[0].find("was given times for LED 3"), std::string::npos) << misuse[0];
  EXPECT_NE(misuse[1].find("was given the unknown id 7"), std::string::npos) << misuse[1];
  EXPECT_EQ(device.journal().Texts(Effect::kLed), Lines{"LED 3 on"});
}

TEST(LedDescription, KeepsWhatHasChanged) {
  const TemporaryFolder folder;
  folder.Write("device.toml", "name = \"x\"\n[leds]\n2 = \"on\"\n3 = \"off\"\n6 = \"blink\"\n");
  const auto visit = [&](const std::function<void(sim::Leds&)>& change) {
    sim::Device device;
    sim::LoadDevice(device, folder.path());
    change(device.hardware().leds);
    sim::SaveDevice(device, folder.path());
  };
  visit([](sim::Leds& leds) {
    leds.Set(3, LedState::kOn);
    leds.Set(6, LedState::kOff);
  });
  visit([](sim::Leds& leds) {
    EXPECT_EQ(leds.State(0), std::nullopt);
    EXPECT_EQ(leds.State(2), LedState::kOn);
    EXPECT_EQ(leds.State(3), LedState::kOn);
    EXPECT_EQ(leds.State(6), LedState::kOff);
    leds.Set(6, LedState::kBlink);
  });
  // An LED that is taken out is forgotten.
  const std::string kept = "\n# Kept by the simulator: do not edit below.\n[state]\nclock_ms = 0\n";
  folder.Write("device.toml", "name = \"x\"\n[leds]\n3 = \"off\"\n" + kept +
                                  "leds = { 3 = \"on\", 6 = \"off\" }\n");
  visit([](sim::Leds& leds) {
    EXPECT_EQ(leds.all().size(), 1u);
    EXPECT_EQ(leds.State(3), LedState::kOn);
  });
}

}  // namespace

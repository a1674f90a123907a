// The vibrator: whether there is one, its preset, and a vibration.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kSettings = "HKLM\\SOFTWARE\\Dravonel\\PAL";

class VibratorTest : public DeviceTest {
 protected:
  void SetUp() override { device.hardware().leds.vibrator = {.number = 2, .length_ms = 200}; }
  Lines Vibrations() { return device.journal().Texts(sim::Effect::kVibration); }

  sim::Process process{device};
  const sim::Exports& exports = process.exports();
};

TEST_F(VibratorTest, VibratesWithThePresetOfTheWholeDevice) {
  device.registry().Create(kSettings);
  sim::Process other(device, "other.exe");
  EXPECT_EQ(other.exports().PALVIBSetVibratePreset(1), S_OK);
  EXPECT_EQ(exports.PALVIBVibrate(0), S_OK);
  EXPECT_EQ(exports.PALVIBVibrateEx(100), S_OK);
  EXPECT_EQ(other.exports().PALVIBSetVibratePreset(9), S_OK);
  EXPECT_EQ(exports.PALVIBVibrate(100), S_OK);
  EXPECT_EQ(Vibrations(),
            (Lines{"preset 1 for 200 ms", "preset 1 for 200 ms", "preset 9 for 200 ms"}));
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0x43F70000 SetVibratePreset - Vibrate preset index: 1\\r\\n",
                   "0x43F70000 SetVibrateWithPreset - System vibrate preset: -899\\r\\n",
                   "0x43F70000 SetVibrateWithPreset - System vibrate preset: -899\\r\\n",
                   "0x43F70000 SetVibratePreset - Vibrate preset index: 9\\r\\n",
                   "0x43F70000 SetVibrateWithPreset - System vibrate preset: -891\\r\\n"}));
  EXPECT_EQ(exports.PALVIBVibrate.address(), exports.PALVIBVibrateEx.address());
}

TEST_F(VibratorTest, DoesNotVibrateWithoutAPresetThatIsOne) {
  EXPECT_EQ(exports.PALVIBVibrate(0), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0xC3F70000 SetVibrateWithPreset - Unable to read preset index. hr: "
                   "0x80070002\\r\\n",
                   "0xC3F70000 Vibrate - Vibrate failed. hr: 0x80070002\\r\\n"}));
  device.registry().Create(kSettings);
  for (const DWORD preset : {0u, 10u, 900u, 0x80000001u, 0xFFFFFFFFu}) {
    device.journal().Clear();
    EXPECT_EQ(exports.PALVIBSetVibratePreset(preset), S_OK) << "it stores any number";
    EXPECT_EQ(exports.PALVIBVibrate(0), E_FAIL);
    EXPECT_EQ(TraceLines().back(), "Vibrate - Vibrate failed. hr: 0x80004005\\r\\n");
  }
  EXPECT_EQ(device.calls("NLedSetDevice"), 0u);
}

TEST_F(VibratorTest, TellsThatTheDriverRefuses) {
  device.registry().SetDword(kSettings, "VibratePresetIndex", 5);
  device.hardware().leds.vibrator.reset();
  EXPECT_EQ(exports.PALVIBVibrate(0), E_FAIL);
  EXPECT_EQ(TraceLines(), (Lines{"SetVibrateWithPreset - System vibrate preset: -895\\r\\n",
                                 "SetVibrateWithPreset: NLedSetDevice error. fStat: 0\\r\\n",
                                 "Vibrate - Vibrate failed. hr: 0x80004005\\r\\n"}));
}

TEST_F(VibratorTest, PresetIsKeptInTheRegistry) {
  DWORD preset = 77;
  device.registry().RemoveTree(kSettings);
  EXPECT_EQ(exports.PALVIBSetVibratePreset(4), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(exports.PALVIBGetVibratePreset(&preset), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(exports.PALVIBGetVibratePreset(nullptr), E_FAIL);
  EXPECT_EQ(preset, 77u);
  EXPECT_EQ(device.registry().Find(kSettings), nullptr) << "the key is not created";
  EXPECT_EQ(
      CategorisedLines(),
      (Lines{"0x43F70000 SetVibratePreset - Vibrate preset index: 4\\r\\n",
             "0xC3F70000 SetVibratePreset - ERROR cannot write preset: 4, to reg. hr: "
             "0x80070002\\r\\n",
             "0xC3F70000 GetVibratePreset - ERROR reading preset index. hr: 0x80070002\\r\\n"}));
  device.registry().Create(kSettings);
  EXPECT_EQ(exports.PALVIBSetVibratePreset(4), S_OK);
  EXPECT_EQ(device.registry().GetDword(kSettings, "VibratePresetIndex"), 4u);
  EXPECT_EQ(exports.PALVIBGetVibratePreset(&preset), S_OK);
  EXPECT_EQ(preset, 4u);
}

// LEDs 0 to 9 but for one number; the vibrator is there or not.
TEST_F(VibratorTest, IsLookedForAmongTheFirstTenNumbers) {
  struct Case {
    std::optional<std::uint32_t> vibrator;
    std::vector<std::uint32_t> unknown;
    HRESULT result;
    unsigned queries;
    Lines lines;
  };
  const auto failed = [](int number) {
    return "IsVibrateInstalled - ERROR NLedGetDeviceInfo. LEDIndex:" + std::to_string(number) +
           "\\r\\n";
  };
  const auto found = [](int number) {
    return "IsVibrateInstalled - Vibrate was found. LEDIndex:" + std::to_string(number) + "\\r\\n";
  };
  for (const Case& test : std::vector<Case>{
           {2, {}, S_OK, 3, {found(2)}},
           {9, {}, S_OK, 10, {found(9)}},
           {2, {0, 1}, S_OK, 3, {failed(0), failed(1), found(2)}},
           {10, {4}, E_FAIL, 10, {failed(4)}},
           {{}, {9}, E_FAIL, 10, {failed(9)}},
           {{}, {}, S_OK, 10, {}},  // kept so: nothing failed
       }) {
    sim::Leds& leds = device.hardware().leds;
    leds = {};
    leds.Clear();
    for (std::uint32_t number = 0; number < 10; ++number) {
      const bool is_known = std::ranges::find(test.unknown, number) == test.unknown.end();
      if (is_known && test.vibrator != number) leds.Add(number, sim::LedState::kOff);
    }
    if (test.vibrator) leds.vibrator = {.number = *test.vibrator};
    device.journal().Clear();
    const unsigned before = device.calls("NLedGetDeviceInfo");
    EXPECT_EQ(exports.PALVIBIsInstalled(), test.result);
    EXPECT_EQ(device.calls("NLedGetDeviceInfo") - before, test.queries);
    EXPECT_EQ(TraceLines(), test.lines);
  }
}

}  // namespace

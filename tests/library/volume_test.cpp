// Levels, steps and gains of the beeper, and how they are kept.
#include <string>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "tests/support/beeper_device.h"
#include "tests/support/device_test.h"

namespace {

constexpr DWORD kUntouched = 0xABCD;

class Volume : public DeviceTest {
 protected:
  Volume() { FurnishBeeper(device); }
  std::uint32_t Value(const char* name) {
    return device.registry().GetDword(kBeeperKey, name).value_or(kUntouched);
  }
  void Set(const char* name, DWORD number) { device.registry().SetDword(kBeeperKey, name, number); }
  void Delete(const char16_t* name) {
    EXPECT_TRUE(device.registry().Find(kBeeperKey)->DeleteValue(name));
  }
  std::vector<std::string> RegistryWrites() { return Texts(sim::Effect::kRegistry); }

  sim::Process process{device};
};

TEST_F(Volume, IsSetInOneStepOrByOne) {
  struct Case {
    DWORD before, setting, after;
  };
  for (const Case& test :
       {Case{3, 0, 0}, Case{3, 1, 1}, Case{0, 5, 5}, Case{2, 2, 2},
        // softer, with its floor
        Case{5, 8, 4}, Case{4, 8, 3}, Case{3, 8, 2}, Case{2, 8, 2}, Case{1, 8, 0}, Case{0, 8, 0},
        // louder
        Case{0, 9, 1}, Case{1, 9, 2}, Case{4, 9, 5}, Case{5, 9, 5}}) {
    SCOPED_TRACE(testing::Message() << test.before << " by " << test.setting);
    Set("CurrentVol", kLevelWords[test.before]);
    device.registry().SetDword(kControlPanelKey, "Volume", 0x1234);
    device.hardware().audio.levels.volume = 0x1234;
    EXPECT_EQ(process.exports().PALBEEPSetVolume(test.setting), S_OK);
    EXPECT_EQ(Value("CurrentVol"), kLevelWords[test.after]);
    const std::uint32_t shown = test.setting <= 5 ? kLevelWords[test.after] : 0x1234;
    EXPECT_EQ(device.registry().GetDword(kControlPanelKey, "Volume"), shown);
    EXPECT_EQ(device.hardware().audio.levels.volume, shown);
    DWORD level = kUntouched;
    EXPECT_EQ(process.exports().PALBEEPGetVolume(&level), S_OK);
    EXPECT_EQ(level, test.after);
  }
}

TEST_F(Volume, LevelsWithoutValuesHaveWordsOfTheirOwn) {
  device.registry().RemoveTree(kBeeperKey);
  const sim::Process fresh(device, "fresh.exe");
  for (DWORD level = 0; level < std::size(kLevelWords); ++level) {
    EXPECT_EQ(fresh.exports().PALBEEPSetVolume(level), S_OK);
    EXPECT_EQ(device.hardware().audio.levels.volume, kLevelWords[level]);
  }
}

TEST_F(Volume, RefusesUndefinedNumbersAndNullAndChangesNothing) {
  const auto& exports = process.exports();
  for (const DWORD setting : {6u, 7u, 10u, 0xFFFFFFFFu}) {
    EXPECT_EQ(exports.PALBEEPSetVolume(setting), E_FAIL) << setting;
  }
  DWORD gain = kUntouched;
  for (const DWORD index : {10u, 0xFFFFFFFFu}) {
    EXPECT_EQ(exports.PALBEEPSetHeadsetBeeperVolume(index), E_FAIL);
    EXPECT_EQ(exports.PALBEEPGetSpeakerGain(index, &gain), E_FAIL);
    EXPECT_EQ(exports.PALBEEPSetSpeakerGain(index, 50), E_FAIL);
  }
  EXPECT_EQ(exports.PALBEEPSetSpeakerGain(3, 101), E_FAIL);
  EXPECT_EQ(exports.PALBEEPSetHeadsetGain(0xFFFFFFFF), E_FAIL);
  EXPECT_EQ(exports.PALBEEPGetVolume(nullptr), E_FAIL);
  EXPECT_EQ(exports.PALBEEPGetHeadsetBeeperVolume(nullptr), E_FAIL);
  EXPECT_EQ(exports.PALBEEPGetHeadsetGain(nullptr), E_FAIL);
  EXPECT_EQ(exports.PALBEEPGetGRI(0, nullptr), E_FAIL);
  EXPECT_EQ(gain, kUntouched);
  EXPECT_TRUE(RegistryWrites().empty());
  EXPECT_TRUE(device.journal().Texts(sim::Effect::kAudio).empty());
  EXPECT_EQ(TraceLines("SetGain("), (std::vector<std::string>{
                                        "SetGain(10(0-9),50(0-100)) - Invalid input",
                                        "SetGain(-1(0-9),50(0-100)) - Invalid input",
                                        "SetGain(3(0-9),101(0-100)) - Invalid input",
                                        "SetGain(8(0-9),-1(0-100)) - Invalid input",
                                    }));
  EXPECT_EQ(TraceLines("PALBEEPSetVolume").front(),
            "PALBEEPSetVolume - ERROR Invalid input setting: 0x6");
  device.journal().Clear();
  EXPECT_EQ(exports.PALBEEPGetSpeakerGain(3, nullptr), E_FAIL);
  EXPECT_EQ(CategorisedLines(), BeeperLog({"PALBEEPGetSpeakerGain(in:3,*) - Entry",
                                           "!GetSpecificVolGain() - Input invalid",
                                           "0x80004005=PALBEEPGetSpeakerGain(in:3,*) - Exit"}));
}

TEST_F(Volume, LogOfASettingAndOfSteps) {
  struct Case {
    DWORD setting;
    std::vector<std::string> log;
  };
  const std::string to_medium = "SetVolume - Applying sys vol:0x99999999 to CurrentVol";
  const std::string to_high = "SetVolume - Applying sys vol:0xcccccccc to CurrentVol";
  for (const Case& test :
       {Case{4,
             {to_high, "*", "0x0=waveOutSetVolume(0x4->0xcccccccc) winerr:0x2",
              " Checking current CPL Volume  ", "SetCPLVol - Checking current CPL Volume ",
              "SetCPLVol - Current CPL Vol is updated from Dravonel Settings Volume"}},
        Case{8,
             {"*", to_high, "*", "DecrementBeepVolume - cur_vol: 0x4",
              "DecrementBeepVolume - new_vol: 0x3", to_medium, "*"}},
        Case{9,
             {"*", to_medium, "*", "IncrementBeepVolume - cur_vol: 0x3",
              "IncrementBeepVolume - new_vol: 0x4", to_high, "*"}}}) {
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALBEEPSetVolume(test.setting), S_OK);
    EXPECT_EQ(CategorisedLines(), BeeperLog(test.log)) << test.setting;
  }
}

TEST_F(Volume, IsNotShownAgainWhereItIsShownAlready) {
  device.registry().SetDword(kControlPanelKey, "Volume", kLevelWords[4]);
  EXPECT_EQ(process.exports().PALBEEPSetVolume(4), S_OK);
  EXPECT_EQ(RegistryWrites().size(), 1u) << "CurrentVol alone";
}

TEST_F(Volume, IsTheLowestLevelOfItsWord) {
  Set("Med", 0x5555);
  Set("High", 0x5555);
  Set("CurrentVol", 0x5555);
  DWORD level = kUntouched;
  EXPECT_EQ(process.exports().PALBEEPGetVolume(&level), S_OK);
  EXPECT_EQ(level, 3u);
  Set("CurrentVol", 0x5554);
  level = kUntouched;
  EXPECT_EQ(process.exports().PALBEEPGetVolume(&level), E_FAIL);
  EXPECT_EQ(process.exports().PALBEEPSetVolume(9), E_FAIL);
  EXPECT_EQ(level, kUntouched);
  EXPECT_EQ(Value("CurrentVol"), 0x5554u);
}

// A level without a value keeps the word that it had; the speaker's setting is then as it is.
TEST_F(Volume, KeepsTheWordsThatItCannotRead) {
  Delete(u"Med");
  Delete(u"VeryLow");
  DWORD level = kUntouched;
  EXPECT_EQ(process.exports().PALBEEPGetVolume(&level), S_OK);
  EXPECT_EQ(level, 3u);
  EXPECT_EQ(TraceLines("PALBEEPUpdateVolGainMap - Failed"),
            (std::vector<std::string>{"PALBEEPUpdateVolGainMap - Failed to update Off ",
                                      "PALBEEPUpdateVolGainMap - Failed to update Med ",
                                      "PALBEEPUpdateVolGainMap - Failed to update Off ",
                                      "PALBEEPUpdateVolGainMap - Failed to update Med "}));
  EXPECT_EQ(process.exports().PALBEEPSetVolume(3), S_OK);
  EXPECT_EQ(device.hardware().audio.levels.volume, kLevelWords[3]);
  Set("CurrentVol", kLevelWords[4]);
  EXPECT_EQ(process.exports().PALBEEPSetVolume(8), E_FAIL) << "medium has no word to be set";
  EXPECT_EQ(Value("CurrentVol"), kLevelWords[4]);
}

// Reading writes the speaker's setting, never the headset's.
TEST_F(Volume, OfTheHeadsetIsNeverRewritten) {
  DWORD level = kUntouched;
  EXPECT_EQ(process.exports().PALBEEPGetHeadsetBeeperVolume(&level), S_OK);
  EXPECT_EQ(level, 1u);
  EXPECT_TRUE(RegistryWrites().empty());
  EXPECT_EQ(process.exports().PALBEEPGetVolume(&level), S_OK);
  ASSERT_EQ(RegistryWrites().size(), 1u);
  EXPECT_NE(RegistryWrites()[0].find("CurrentVol"), std::string::npos);
  EXPECT_EQ(process.exports().PALBEEPSetHeadsetBeeperVolume(5), S_OK);
  EXPECT_EQ(Value("CurrentHeadset"), kLevelWords[5]);
  EXPECT_EQ(process.exports().PALBEEPSetHeadsetBeeperVolume(6), S_OK);
  EXPECT_EQ(Value("CurrentHeadset"), kLevelWords[3]) << "index 6 is the speaker's setting";
  EXPECT_EQ(process.exports().PALBEEPSetHeadsetBeeperVolume(9), E_FAIL) << "no such value";
  Set("CurrentHeadset", 1);
  EXPECT_EQ(process.exports().PALBEEPGetHeadsetBeeperVolume(&level), E_FAIL);
}

TEST_F(Volume, GainsAreKeptByIndex) {
  const auto& exports = process.exports();
  EXPECT_EQ(exports.PALBEEPSetSpeakerGain(9, 100), S_OK);
  EXPECT_EQ(Value("DefaultHeadsetGain"), 100u);
  EXPECT_EQ(CategorisedLines(), BeeperLog({
                                    "PALBEEPSetSpeakerGain(in:9,in:100) - Entry",
                                    "SetGain(DefaultHeadsetGain,100) - Entry",
                                    "0x0=SetGain(9,100) - Exit",
                                    "0x0=PALBEEPSetSpeakerGain(in:9,in:100) - Exit",
                                }));
  DWORD gain = kUntouched;
  EXPECT_EQ(exports.PALBEEPGetSpeakerGain(9, &gain), S_OK);
  EXPECT_EQ(gain, 100u);
  gain = kUntouched;
  EXPECT_EQ(exports.PALBEEPGetHeadsetGain(&gain), E_FAIL) << "never set";
  EXPECT_EQ(gain, kUntouched);
  device.journal().Clear();
  EXPECT_EQ(exports.PALBEEPSetHeadsetGain(33), S_OK);
  EXPECT_EQ(Value("CurHeadsetGain"), 33u);
  EXPECT_EQ(TraceLines(), (std::vector<std::string>{
                              "PALBEEPSetHeadsetGain(in:33) - Entry",
                              "SetGain(CurHeadsetGain,33) - Entry",
                              "0x0=SetGain(8,33) - Exit",
                              "0x0=PALBEEPSetSpeakerGain(in:33) - Exit",
                          }));
  EXPECT_EQ(exports.PALBEEPGetHeadsetGain(&gain), S_OK);
  EXPECT_EQ(gain, 33u);
  device.registry().RemoveTree(kBeeperKey);
  EXPECT_EQ(exports.PALBEEPSetSpeakerGain(0, 0), E_FAIL);
  EXPECT_EQ(exports.PALBEEPSetHeadsetGain(0), E_FAIL);
}

TEST_F(Volume, TellsWhichPartOfASettingFailed) {
  struct Case {
    sim::Fault fault;
    HRESULT result;
    std::string line;
  };
  for (const Case& test : {Case{{.call = "RegSetValueExW", .on = "CurrentVol"}, S_OK, ""},
                           Case{{.call = "RegSetValueExW", .on = "Volume\\Volume", .error = 5},
                                PAL_E_ACCESS_DENIED,
                                "SetCPLVol - ERROR writing to CPL  Vol registry:(0x80070005)"},
                           Case{{.call = "RegQueryValueExW", .on = "Volume\\Volume", .error = 2},
                                E_FAIL,
                                "SetCPLVOl - Error reading from registry:(0x80070002)"},
                           Case{{.call = "waveOutSetVolume", .error = 4},
                                E_FAIL,
                                "0x4=waveOutSetVolume(0x4->0xcccccccc) winerr:0x4"}}) {
    device.registry().SetDword(kControlPanelKey, "Volume", 0x1234);
    device.journal().Clear();
    device.PlanFault(test.fault);
    EXPECT_EQ(process.exports().PALBEEPSetVolume(4), test.result) << test.line;
    device.ClearFaults();
    if (!test.line.empty()) {
      EXPECT_EQ(CategorisedLines().back(), "0xC3EB0000 " + test.line);
    }
  }
}

TEST_F(Volume, IndicatorsAreKeptByScanType) {
  const auto& exports = process.exports();
  constexpr const char* kNames[] = {"IntGRI", "TethGRI", "BTGRI", "RFIDGRI"};
  DWORD value = kUntouched;
  for (DWORD scan_type = 0; scan_type < 4; ++scan_type) {
    EXPECT_EQ(exports.PALBEEPGetGRI(scan_type, &value), PAL_E_FILE_NOT_FOUND);
    EXPECT_EQ(value, kUntouched);
    EXPECT_EQ(exports.PALBEEPSetGRI(scan_type, scan_type + 2), S_OK);
    EXPECT_EQ(exports.PALBEEPSetGRI(scan_type, 6), E_FAIL);
    EXPECT_EQ(device.registry().GetDword(kIndicatorKey, kNames[scan_type]), scan_type + 2);
  }
  device.registry().SetDword(kIndicatorKey, "IntGRI", 99);
  EXPECT_EQ(exports.PALBEEPGetGRI(0, &value), S_OK);
  EXPECT_EQ(value, 99u) << "as it is stored";
  EXPECT_EQ(exports.PALBEEPSetGRI(4, 1), E_FAIL);
  EXPECT_EQ(exports.PALBEEPGetGRI(4, &value), E_FAIL);
  device.registry().RemoveTree(kIndicatorKey);
  device.journal().Clear();
  EXPECT_EQ(exports.PALBEEPSetGRI(1, 1), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(exports.PALBEEPGetGRI(3, &value), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(exports.PALBEEPSetGRI(0, 6), E_FAIL);
  EXPECT_EQ(CategorisedLines(),
            BeeperLog({
                "!SetGRI - ERROR writing TethGRI. scantype: 1, procid: 0x1, hr: 0x80070002\\r\\n",
                "!GetGRI - ERROR reading numbeeps from reg. scantype: RFIDGRI, procid: 0x1, hr: "
                "0x80070002\\r\\n",
                "!PALBEEPSetGRI - Invalid input: 6\\r\\n",
            }));
}

}  // namespace

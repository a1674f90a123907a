// Beeps: what is heard and felt of each event, and that volume and gain are as before.
#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "tests/support/beeper_device.h"
#include "tests/support/device_test.h"
#include "tests/support/wave_file.h"

namespace {

constexpr sim::AudioLevels kBefore{0x77777777, 5};

class Beep : public DeviceTest {
 protected:
  Beep() { FurnishBeeper(device); }
  ~Beep() override { EXPECT_EQ(device.hardware().audio.levels, levels_after); }

  void SetIndicator(const char* name, DWORD value) {
    device.registry().SetDword(kIndicatorKey, name, value);
  }
  void SetState(const char* name, DWORD value) {
    device.registry().SetDword(kHardwareStateKey, name, value);
  }
  void Delete(const char* key, const char16_t* name) {
    EXPECT_TRUE(device.registry().Find(key)->DeleteValue(name));
  }
  // "120 sound ends \x.wav" for sounds and vibrations, without volumes and gains.
  std::vector<std::string> Sensed() {
    std::vector<std::string> lines;
    for (const sim::JournalEntry& entry : device.journal().entries()) {
      const bool is_level = entry.text.starts_with("volume") || entry.text.starts_with("gain");
      if (entry.effect == sim::Effect::kVibration) {
        lines.push_back(fmt::format("{} vibration", entry.time_ms));
      } else if (entry.effect == sim::Effect::kAudio && !is_level) {
        lines.push_back(fmt::format("{} {}", entry.time_ms, entry.text));
      }
    }
    return lines;
  }
  std::vector<std::string> Heard() { return device.journal().Texts(sim::Effect::kAudio); }

  sim::AudioLevels levels_after = kBefore;
  sim::Process process{device};
};

std::string Begins(unsigned time, const std::string& event) {
  return fmt::format("{} sound begins \\{}.wav 100 ms", time, event);
}
std::string Ends(unsigned time, const std::string& event) {
  return fmt::format("{} sound ends \\{}.wav", time, event);
}

TEST_F(Beep, GoodReadIsFeltAndHeardAsItsScannerSays) {
  struct Case {
    DWORD value;
    bool vibrates;
    int tones;
  };
  constexpr const char* kNames[] = {"IntGRI", "TethGRI", "BTGRI", "RFIDGRI"};
  unsigned now = 0;
  for (const Case& test :
       {Case{0, false, 0}, Case{1, false, 1}, Case{2, false, 2}, Case{3, true, 0}, Case{4, true, 1},
        Case{5, true, 2}, Case{6, false, 0}, Case{0xFFFFFFFF, false, 0}}) {
    for (DWORD scan_type = 0; scan_type < 4; ++scan_type) {
      for (const char* name : kNames) SetIndicator(name, test.value == 0 ? 5 : 0);
      SetIndicator(kNames[scan_type], test.value);
      device.journal().Clear();
      EXPECT_EQ(process.exports().PALBEEPGoodReadEx(scan_type), S_OK);
      std::vector<std::string> expected;
      if (test.vibrates) expected.push_back(fmt::format("{} vibration", now));
      for (int tone = 0; tone < test.tones; ++tone) {
        expected.push_back(Begins(now, "GoodRead"));
        expected.push_back(Ends(now += 100, "GoodRead"));
        if (test.tones > 1) now += 50;
      }
      EXPECT_EQ(Sensed(), expected) << test.value;
      EXPECT_EQ(device.now_ms(), now);
    }
  }
  device.journal().Clear();
  EXPECT_EQ(process.exports().PALBEEPGoodReadEx(4), E_INVALIDARG);
  EXPECT_TRUE(device.journal().entries().empty());
  SetIndicator("TethGRI", 6);
  EXPECT_EQ(process.exports().PALBEEPGoodReadEx(1), S_OK);
  EXPECT_EQ(CategorisedLines(), BeeperLog({"PALBEEPGoodReadEx(in_scan_type:1) - Entry",
                                           "0x0=PALBEEPGoodReadEx(in_scan_type:1) - Exit"}));
}

TEST_F(Beep, WithoutAnIndicatorNothingIsSensedAndTheReadsResultTold) {
  EXPECT_EQ(process.exports().PALBEEPGoodReadEx(0), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(process.exports().PALBEEPBadRead(), PAL_E_FILE_NOT_FOUND);
  EXPECT_TRUE(Sensed().empty());
}

TEST_F(Beep, BadReadPulsesFiveTimesAndSoundsOnce) {
  struct Case {
    DWORD value;
    bool vibrates, sounds;
  };
  for (const Case& test :
       {Case{0, false, false}, Case{1, false, true}, Case{2, false, true}, Case{3, true, false},
        Case{4, true, true}, Case{5, true, true}, Case{6, false, false}}) {
    SetIndicator("IntGRI", test.value);
    device.journal().Clear();
    const auto start = static_cast<unsigned>(device.now_ms());
    EXPECT_EQ(process.exports().PALBEEPBadRead(), S_OK);
    std::vector<std::string> expected;
    unsigned now = start;
    if (test.vibrates) {
      expected.push_back(fmt::format("{} vibration", now));
      for (int pulse = 0; pulse < 4; ++pulse, now += 100) {
        expected.push_back(fmt::format("{} vibration", now));
      }
    }
    if (test.sounds) {
      expected.push_back(Begins(now, "BadRead"));
      expected.push_back(Ends(now + 100, "BadRead"));
    }
    EXPECT_EQ(Sensed(), expected) << test.value;
  }
}

TEST_F(Beep, VibrationThatFailsIsTracedAndStopsNoTone) {
  Delete(kIndicatorKey, u"VibratePresetIndex");
  SetIndicator("IntGRI", 3);
  EXPECT_EQ(process.exports().PALBEEPGoodReadEx(0), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(process.exports().PALBEEPBadRead(), PAL_E_FILE_NOT_FOUND);
  SetIndicator("IntGRI", 4);
  EXPECT_EQ(process.exports().PALBEEPGoodReadEx(0), S_OK);
  EXPECT_EQ(process.exports().PALBEEPBadRead(), S_OK);
  EXPECT_EQ(Sensed(), (std::vector<std::string>{Begins(0, "GoodRead"), Ends(100, "GoodRead"),
                                                Begins(100, "BadRead"), Ends(200, "BadRead")}));
  EXPECT_EQ(TraceLines("GoodReadEx").at(1), "GoodReadEx - ERROR. Vibrate hr: 0x80070002");
  EXPECT_EQ(TraceLines("PALBEEPBadRead - ").size(), 2u) << "no second pulse is tried";
}

TEST_F(Beep, EveryEventHasItsSoundAndItsLines) {
  const auto& exports = process.exports();
  struct Case {
    HRESULT result;
    std::string event;
    std::string last_line;
  };
  unsigned now = 0;
  for (const Case& test :
       {Case{exports.PALBEEPChangeConfig(), "ConfigChange", "0x0=PALBEEPChangeConfig() - Exit"},
        Case{exports.PALBEEPChangeConfigError(), "ConfigChangeError",
             "0x0=PALBEEPChangeConfigError() - Exit"},
        Case{exports.PALBEEPKeyClick(), "KeyClick", "0x0=PALBEEPKeyClick() - Entry"}}) {
    EXPECT_EQ(test.result, S_OK);
    const std::vector<std::string> sensed = Sensed();
    EXPECT_EQ(sensed.at(now / 50), Begins(now, test.event));
    now += 100;
    EXPECT_EQ(TraceLines(test.last_line).size(), 1u);
  }
}

// With the slips that readers of the log know: the gain's read shows the message that sets it, its
// restore begins under another name, the key click ends as it begins. The error of a call that
// worked is what the process's start left.
TEST_F(Beep, LogOfAKeyClickWithAHeadset) {
  SetState("Bluetooth", 0x10);
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(CategorisedLines(),
            BeeperLog({
                "PALBEEPKeyClick() - Entry",
                "PlayDvlSynchronousBeep(1,KeyClick,0x20000) - Entry",
                "PALBEEPGetCurGain - 0x0=waveInMessage(NULL,0x113,0x2,out:5). winerr:0x2",
                "IsBTHeadsetConnected - 0x10 = dwState:0x10 & dwBT_HANDSFREE:0x10",
                "IsBTHeadsetConnected - 0x0 = dwState:0x10 & dwBT_HANDSFREE_AUDIO:0x20",
                "IsBTHeadsetConnected - 0x0 = dwState:0x10 & dwBT_HANDSFREE_AUDIO:0x4",
                "IsBTHeadsetConnected - Headset active",
                "PlayDvlSynchronousBeep - HeadsetActive",
                "*",
                "SetVolume - Applying sys vol:0x99999999 to CurrentVol",
                "*",
                "PALBEEPGetSpeakerGain(in:3,*) - Entry",
                "0x0=PALBEEPGetSpeakerGain(in:3,*) - Exit",
                "PALBEEPRestoreWaveVol(in:5) - Entry",
                "0x0=PALBEEPRestoreGain(in:5) - Exit",
                "0x0=PlayDvlSynchronousBeep(1,KeyClick,0x20000) - Exit",
                "0x0=PALBEEPKeyClick() - Entry",
            }));
}

TEST_F(Beep, LogOfATagSearch) {
  SetState("Headset", 2);
  EXPECT_EQ(process.exports().PALBEEPStartTagSearch(), S_OK);
  EXPECT_EQ(process.exports().PALBEEPStopTagSearch(), S_OK);
  EXPECT_EQ(TraceLines("IsUSBHeadsetConnected"),
            std::vector<std::string>{"IsUSBHeadsetConnected - USB Headset active. reg_key:2"});
  std::vector<std::string> lines = CategorisedLines();
  lines.erase(lines.begin() + 2, lines.end() - 7);  // as of a key click
  EXPECT_EQ(lines, BeeperLog({
                       "PALBEEPStartTagSearch() - Entry",
                       "PlayDvlSynchronousBeep(1,TagSearch,0x20009) - Entry",
                       "0x0=PlayDvlSynchronousBeep(1,TagSearch,0x20009) - Exit",
                       "0x0=PALBEEPStartTagSearch() - Exit",
                       "PALBEEPStopTagSearch() - Entry",
                       "PALBEEPStopTagSearch - Restore cur wave vol and gain",
                       "PALBEEPRestoreWaveVol(in:5) - Entry",
                       "0x0=PALBEEPRestoreGain(in:5) - Exit",
                       "0x0=PALBEEPStopTagSearch() - Exit",
                   }));
}

// In the order in which they happen: gain, volume, sound, and both back.
TEST_F(Beep, SpeakerSoundsAtTheSystemsVolumeAndTheLevelsGain) {
  struct Case {
    std::uint32_t current;
    std::string gain;
  };
  for (const Case& test : {Case{kLevelWords[4], "gain 40"}, Case{kLevelWords[0], "gain 0"},
                           Case{0x1234, ""}}) {  // no level: the gain stays
    device.registry().SetDword(kBeeperKey, "CurrentVol", test.current);
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
    std::vector<std::string> expected = {test.gain,
                                         "volume 0x77777777",
                                         "sound begins \\KeyClick.wav 100 ms",
                                         "sound ends \\KeyClick.wav",
                                         "gain 5",
                                         "volume 0x77777777"};
    if (test.gain.empty()) expected.erase(expected.begin());
    EXPECT_EQ(Heard(), expected);
  }
  Delete(kBeeperKey, u"MedGain");
  device.registry().SetDword(kBeeperKey, "CurrentVol", kLevelWords[3]);
  device.journal().Clear();
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(Heard().front(), "gain 66");
  EXPECT_EQ(TraceLines("PALBEEPSetCurVolsGain").front(),
            "PALBEEPSetCurVolsGain - PALBEEPGetSpeakerGain failed. Using current:66");
}

TEST_F(Beep, HeadsetIsHeardAtItsOwnVolume) {
  struct Case {
    DWORD bluetooth, headset;
    bool active;
  };
  for (const Case& test :
       {Case{0x10, 0, true}, Case{0x20, 0, true}, Case{0x04, 0, true}, Case{0xFFFFFFCB, 0, false},
        Case{0, 1, true}, Case{0, 0x80000000, true}, Case{0, 0, false}}) {
    SetState("Bluetooth", test.bluetooth);
    SetState("Headset", test.headset);
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
    EXPECT_EQ(Heard().at(0), "gain 30") << "the speaker's, also with a headset";
    EXPECT_EQ(Heard().at(1), test.active ? "volume 0x33333333" : "volume 0x77777777");
  }
  Delete(kHardwareStateKey, u"Headset");
  device.journal().Clear();
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(Heard().at(1), "volume 0x77777777") << "one that cannot be read is none";
}

TEST_F(Beep, BluetoothThatCannotBeReadTakesTheQuieterVolume) {
  Delete(kHardwareStateKey, u"Bluetooth");
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(Heard().at(1), "volume 0x33333333");
  EXPECT_EQ(TraceLines("IsBTHeadsetConnected"),
            std::vector<std::string>{"IsBTHeadsetConnected - Reg read issue. Lower vol"});
}

TEST_F(Beep, VolumeOfTheHeadsetIsReadTwiceAndThenVeryLow) {
  SetState("Headset", 1);
  // Below the built-in word of VeryLow, so that the fallback shows.
  device.registry().SetDword(kBeeperKey, "CurrentHeadset", 0x11111111);
  for (const auto& [attempts, volume] :
       {std::pair{1U, "volume 0x11111111"}, std::pair{2U, "volume 0x33333333"}}) {
    device.journal().Clear();
    for (unsigned nth = 1; nth <= attempts; ++nth) {
      device.PlanFault({.call = "RegQueryValueExW", .on = "CurrentHeadset", .nth = nth});
    }
    static_cast<void>(process.exports().PALBEEPKeyClick());
    device.ClearFaults();
    const std::vector<std::string> heard = Heard();
    EXPECT_NE(std::find(heard.begin(), heard.end(), volume), heard.end()) << volume;
  }
}

TEST_F(Beep, MutedBeeperIsSilent) {
  device.hardware().audio.levels.volume = 0;
  levels_after = {0, 5};
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(Heard(), (std::vector<std::string>{"gain 30", "volume 0x00000000", "gain 5",
                                               "volume 0x00000000"}));
  EXPECT_EQ(TraceLines("PlayDvlSynchronousBeep - "),
            std::vector<std::string>{"PlayDvlSynchronousBeep - Vol:0x0, Wavefile ignored"});
  device.PlanFault({.call = "waveOutSetVolume"});
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), E_FAIL) << "the setter's result";
}

TEST_F(Beep, MutedHeadsetIsSilent) {
  SetState("Headset", 1);
  device.registry().SetDword(kBeeperKey, "CurrentHeadset", 0);
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(device.hardware().audio.levels, kBefore);
  EXPECT_EQ(process.exports().PALBEEPStartTagSearch(), S_OK);
  EXPECT_TRUE(Sensed().empty());
  EXPECT_EQ(process.exports().PALBEEPStopTagSearch(), S_OK);
}

TEST_F(Beep, PathsThatLeadNowhereAreSilent) {
  struct Case {
    std::vector<std::uint8_t> path;
    HRESULT result;
    unsigned played;
  };
  const std::vector<std::uint8_t> unterminated(520, 'x');
  std::vector<std::uint8_t> longest = unterminated;
  longest[518] = longest[519] = 0;
  std::vector<std::uint8_t> too_long = unterminated;
  too_long.insert(too_long.end(), 2, 0);
  unsigned played = 0;
  for (const Case& test :
       {Case{{0, 0}, S_OK, 0}, Case{{}, S_OK, 0}, Case{unterminated, PAL_E_MORE_DATA, 0},
        Case{too_long, PAL_E_MORE_DATA, 0}, Case{longest, S_OK, 1}}) {
    device.registry().SetRaw(kBeeperKey, "KeyClick", REG_SZ, test.path);
    EXPECT_EQ(process.exports().PALBEEPKeyClick(), test.result) << test.path.size();
    EXPECT_EQ(device.hardware().audio.levels, kBefore);
    EXPECT_EQ(device.calls("PlaySoundW"), played += test.played);
  }
  Delete(kBeeperKey, u"KeyClick");
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), PAL_E_FILE_NOT_FOUND);
  device.files().Remove("\\ConfigChange.wav");
  EXPECT_EQ(process.exports().PALBEEPChangeConfig(), S_OK) << "a sound that fails is traced only";
  EXPECT_EQ(TraceLines("PlayAudioFile").back(),
            "PlayAudioFile - 0x0=PlaySound(\\ConfigChange.wav,0,0x20000), winerr:0x2");
  EXPECT_TRUE(Sensed().empty());
}

// What cannot be read is not changed, and what was changed is put back.
TEST_F(Beep, DriverFailuresLeaveNothingElseChanged) {
  SetState("Headset", 1);
  struct Case {
    sim::Fault fault;
    HRESULT result;
    std::vector<std::string> heard;
    sim::AudioLevels levels = kBefore;
  };
  const std::string sound_begins = "sound begins \\KeyClick.wav 100 ms";
  const std::string sound_ends = "sound ends \\KeyClick.wav";
  for (const Case& test :
       {Case{{.call = "waveOutGetVolume"}, S_OK, {"gain 30", sound_begins, sound_ends, "gain 5"}},
        Case{{.call = "waveInMessage", .on = "gain asked"},
             S_OK,
             {"volume 0x33333333", sound_begins, sound_ends, "volume 0x77777777"}},
        Case{{.call = "waveInMessage", .on = "gain 30"},
             S_OK,
             {"volume 0x33333333", sound_begins, sound_ends, "gain 5", "volume 0x77777777"}},
        Case{{.call = "waveOutSetVolume", .on = "0x33333333"},
             S_OK,
             {"gain 30", sound_begins, sound_ends, "gain 5", "volume 0x77777777"}},
        // Then what the driver does not take back. Of a gain this is not told.
        Case{{.call = "waveInMessage", .on = "gain 5"},
             S_OK,
             {"gain 30", "volume 0x33333333", sound_begins, sound_ends, "volume 0x77777777"},
             {0x77777777, 30}},
        Case{{.call = "waveOutSetVolume", .on = "0x77777777"},
             E_FAIL,
             {"gain 30", "volume 0x33333333", sound_begins, sound_ends, "gain 5"},
             {0x33333333, 5}}}) {
    device.hardware().audio.levels = kBefore;
    device.journal().Clear();
    device.PlanFault(test.fault);
    EXPECT_EQ(process.exports().PALBEEPKeyClick(), test.result);
    device.ClearFaults();
    EXPECT_EQ(Heard(), test.heard);
    EXPECT_EQ(device.hardware().audio.levels, levels_after = test.levels);
    EXPECT_EQ(TraceLines("PlayDvlSynchronousBeep - Failed"),
              test.result == S_OK
                  ? std::vector<std::string>{}
                  : std::vector<std::string>{"PlayDvlSynchronousBeep - Failed to restore volume"});
  }
}

TEST_F(Beep, TagSearchKeepsItsLevelsUntilItIsStopped) {
  const auto& exports = process.exports();
  SetState("Headset", 1);
  EXPECT_EQ(exports.PALBEEPStartTagSearch(), S_OK);
  EXPECT_EQ(Sensed().back(), "0 sound begins \\TagSearch.wav 100 ms, looping");
  constexpr sim::AudioLevels kSearching{0x33333333, 30};
  EXPECT_EQ(device.hardware().audio.levels, kSearching);
  device.Advance(1000);
  EXPECT_EQ(device.hardware().audio.levels, kSearching);
  EXPECT_EQ(exports.PALBEEPStopTagSearch(), S_OK);
  EXPECT_EQ(Sensed().back(), "1000 sound stops \\TagSearch.wav");
  EXPECT_EQ(device.hardware().audio.levels, kBefore);

  // A beep of another process puts back the tag search's levels and disturbs it no more.
  EXPECT_EQ(exports.PALBEEPStartTagSearch(), S_OK);
  {
    sim::Process other(device, "other.exe");
    EXPECT_EQ(other.exports().PALBEEPKeyClick(), S_OK);
    EXPECT_EQ(other.exports().PALBEEPStopTagSearch(), S_OK) << "not its own";
  }
  EXPECT_EQ(device.hardware().audio.levels, kSearching);
  EXPECT_EQ(exports.PALBEEPStopTagSearch(), S_OK);
  EXPECT_EQ(device.hardware().audio.levels, kBefore);

  // After one of the same process, the values of the tag search are those saved last.
  EXPECT_EQ(exports.PALBEEPStartTagSearch(), S_OK);
  EXPECT_EQ(exports.PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(device.hardware().audio.levels, kSearching);
  EXPECT_EQ(exports.PALBEEPStopTagSearch(), S_OK);
  levels_after = kSearching;
}

TEST_F(Beep, TagSearchWithoutAFileKeepsItsLevelsToo) {
  SetState("Headset", 1);
  Delete(kBeeperKey, u"TagSearch");
  EXPECT_EQ(process.exports().PALBEEPStartTagSearch(), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(device.hardware().audio.levels, (sim::AudioLevels{0x33333333, 30}));
  EXPECT_EQ(process.exports().PALBEEPStopTagSearch(), S_OK);
  EXPECT_TRUE(Sensed().empty());
}

TEST_F(Beep, TagSearchIsPutBackByTheNextStopWhereTheFirstCannot) {
  const auto& exports = process.exports();
  SetState("Headset", 1);
  EXPECT_EQ(exports.PALBEEPStartTagSearch(), S_OK);
  device.PlanFault({.call = "waveOutSetVolume"});
  EXPECT_EQ(exports.PALBEEPStopTagSearch(), E_FAIL);
  device.ClearFaults();
  EXPECT_EQ(TraceLines("PALBEEPStopTagSearch - ").back(),
            "PALBEEPStopTagSearch - Failed to restore volume");
  EXPECT_EQ(device.hardware().audio.levels, (sim::AudioLevels{0x33333333, 5}));
  device.hardware().audio.levels.gain = 9;  // is put back already
  for (const std::uint32_t volume : {kBefore.volume, 0x22222222u}) {
    EXPECT_EQ(exports.PALBEEPStopTagSearch(), S_OK);
    EXPECT_EQ(device.hardware().audio.levels, (sim::AudioLevels{volume, 9}));
    device.hardware().audio.levels.volume = 0x22222222;  // no further stop changes it
  }
  levels_after = {0x22222222, 9};
}

TEST_F(Beep, TagSearchThatWasNotStartedOrSavedIsNotPutBack) {
  const auto& exports = process.exports();
  EXPECT_EQ(exports.PALBEEPKeyClick(), S_OK);
  device.hardware().audio.levels = {0x12345678, 9};
  EXPECT_EQ(exports.PALBEEPStopTagSearch(), S_OK);
  EXPECT_EQ(device.hardware().audio.levels, (sim::AudioLevels{0x12345678, 9}));

  device.PlanFault({.call = "waveOutGetVolume"});
  SetState("Headset", 1);
  device.files().Remove("\\TagSearch.wav");
  EXPECT_EQ(exports.PALBEEPStartTagSearch(), S_OK);
  device.ClearFaults();
  EXPECT_EQ(device.hardware().audio.levels, (sim::AudioLevels{0x12345678, 30}));
  device.hardware().audio.levels.volume = 0x22222222;
  device.PlanFault({.call = "PlaySoundW", .error = 5});
  EXPECT_EQ(exports.PALBEEPStopTagSearch(), PAL_E_ACCESS_DENIED);
  EXPECT_EQ(TraceLines("StopAudioFile"),
            std::vector<std::string>{"StopAudioFile - 0x0=PlaySound(NULL,0,0), winerr:0x5"});
  levels_after = {0x22222222, 9};
}

TEST_F(Beep, WithoutItsMutexNothingIsHeardOrFelt) {
  SetIndicator("IntGRI", 5);
  device.PlanFault({.call = "CreateMutexW", .error = 8});
  sim::Process other(device, "other.exe");
  device.ClearFaults();
  const auto& exports = other.exports();
  for (const HRESULT result :
       {exports.PALBEEPGoodReadEx(0), exports.PALBEEPBadRead(), exports.PALBEEPChangeConfig(),
        exports.PALBEEPChangeConfigError(), exports.PALBEEPKeyClick(),
        exports.PALBEEPStartTagSearch(), exports.PALBEEPStopTagSearch()}) {
    EXPECT_EQ(result, E_INVALIDARG);
  }
  EXPECT_TRUE(Heard().empty());
  device.journal().Clear();
  device.PlanFault({.call = "CreateMutexW", .error = 8});
  EXPECT_EQ(exports.PALBEEPInit(), S_OK);
  device.ClearFaults();
  EXPECT_EQ(exports.PALBEEPTerm(), S_OK);
  EXPECT_EQ(CategorisedLines().front(),
            "0xC3EB0000 PALBEEPInit - Error creating mutex. winerr:0x8");
  EXPECT_EQ(CategorisedLines().back(), "0xC3EB0000 PALBEEPTerm - Mutex wait failed. winerr:0x57");
  EXPECT_EQ(exports.PALBEEPInit(), S_OK);
  EXPECT_EQ(exports.PALBEEPInit(), S_OK);
  EXPECT_EQ(other.new_handles(), 1u);
  EXPECT_EQ(exports.PALBEEPKeyClick(), S_OK);
}

TEST_F(Beep, ProcessesTakeTurns) {
  sim::Process second(device, "second.exe");
  for (const std::uint32_t seed : {1u, 2u, 3u}) {
    device.journal().Clear();
    device.ShuffleTurns(seed);
    std::vector<sim::Thread> threads;
    for (sim::Process* each :
         {static_cast<sim::Process*>(&process), static_cast<sim::Process*>(&second)}) {
      for (int thread = 0; thread < 2; ++thread) {
        threads.push_back(
            each->Start([each] { EXPECT_EQ(each->exports().PALBEEPKeyClick(), S_OK); }));
      }
    }
    for (sim::Thread& thread : threads) EXPECT_TRUE(thread.Join());
    const std::vector<std::string> sensed = Sensed();
    ASSERT_EQ(sensed.size(), 8u);
    for (std::size_t at = 0; at < sensed.size(); ++at) {
      EXPECT_NE(sensed[at].find(at % 2 == 0 ? "begins" : "ends"), std::string::npos) << sensed[at];
    }
    EXPECT_EQ(device.hardware().audio.levels, kBefore);
  }
}

TEST_F(Beep, ProcessThatDiesWhileBeepingDelaysNoOneForLong) {
  sim::Process dying(device, "dying.exe");
  sim::Thread thread = dying.Start([&] { dying.exports().PALBEEPKeyClick(); });
  device.Advance(40);
  dying.Kill();
  EXPECT_FALSE(thread.Join());
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(Sensed(),
            (std::vector<std::string>{Begins(0, "KeyClick"), "40 sound stops \\KeyClick.wav",
                                      Begins(40, "KeyClick"), Ends(140, "KeyClick")}));
  EXPECT_EQ(TraceLines("PALWaitForMutex - ERROR abandoned").size(), 1u);
  levels_after = {0x77777777, 30};  // the dead one's gain was never put back
}

TEST_F(Beep, WaiterGoesOnAfterTwoSeconds) {
  device.files().Write("\\ConfigChange.wav", SilentWaveFile(5000));
  sim::Process second(device, "second.exe");
  sim::Thread thread =
      second.Start([&] { EXPECT_EQ(second.exports().PALBEEPChangeConfig(), S_OK); });
  device.Advance(100);
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(device.now_ms(), 2200u);
  EXPECT_TRUE(thread.Join());
  EXPECT_EQ(TraceLines("PALWaitForMutex - ERROR timeout").size(), 1u);
  EXPECT_EQ(TraceLines("PALReleaseMutexIfValid - ERROR. Cannot release mutex").size(), 1u);
}

TEST_F(Beep, TakesOverTheLevelAlsoWhereTheGainCannotBeRead) {
  device.registry().SetDword(kBeeperKey, "High", 0x99999999);  // as medium, which is tried first
  device.PlanFault({.call = "waveInMessage"});
  EXPECT_EQ(process.exports().PALBEEPKeyClick(), S_OK);
  EXPECT_EQ(TraceLines("SetVolume - Applying sys vol:0x99999999 to CurrentVol").size(), 1u);
  EXPECT_EQ(TraceLines("PALBEEPGetSpeakerGain(in:3,*) - Entry").size(), 1u);
  EXPECT_EQ(Texts(sim::Effect::kRegistry).size(), 1u);
  EXPECT_EQ(Heard().front(), "volume 0x77777777") << "the codec is left alone";
}

}  // namespace

// Brightness and keypad backlight, input panel, clicks of the screen: what is kept and what is not.
#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;
using sim::Exports;

constexpr const char* kBacklight = "HKCU\\ControlPanel\\Backlight";
constexpr const char* kKeyboard = "HKCU\\ControlPanel\\Backlight\\Keyboard";
constexpr const char* kPanel = "HKCU\\ControlPanel\\SIP";
constexpr const char* kVolume = "HKCU\\ControlPanel\\Volume";
constexpr DWORD kUntouched = 0xABCD;
constexpr const char* kInfo = "0x43EE0000 ";
constexpr const char* kError = "0xC3EE0000 ";

class DisplaySettings : public DeviceTest {
 protected:
  DisplaySettings() {
    for (const char* key : {kKeyboard, kVolume}) device.registry().Create(key);
    device.journal().Clear();
  }
  Lines Written() { return device.journal().Texts(sim::Effect::kRegistry); }

  sim::Process process{device};
  const Exports& pal = process.exports();
};

struct Level {
  const char* key;
  const char* value;
  HRESULT (*set)(const Exports& pal, DWORD level);
  HRESULT (*get)(const Exports& pal, DWORD* level);
  std::vector<DWORD> allowed;
  const char* severity;  // of what fails
  std::string setter;    // as the lines name it
  std::string getter;
  std::string named;  // the value in the line of a failed write
};

const std::vector<Level>& Levels() {
  static const std::vector<Level> levels = {
      {kBacklight,
       "AmbientDeltaIndex",
       [](const Exports& pal, DWORD level) {
         return pal.PALDISPSetDisplayBrightnessAmbient(level);
       },
       [](const Exports& pal, DWORD* level) {
         return pal.PALDISPGetDisplayBrightnessAmbient(level);
       },
       {1, 2, 3, 4, 5},
       kInfo,
       "SetDisplayBrightnessAmbient",
       "GetDisplayBrightnessAmbient",
       "AmbientDeltaIndex"},
      {kBacklight,
       "AmbientDeltaIndexLow",
       [](const Exports& pal, DWORD level) {
         return pal.PALDISPSetLowLightDisplayBrightnessDelta(level);
       },
       [](const Exports& pal, DWORD* level) {
         return pal.PALDISPGetLowLightDisplayBrightnessDelta(level);
       },
       {1, 2, 3, 4, 5},
       kInfo,
       "PALDISPSetLowLightDisplayBrightnessDelta",
       "PALDISPGetLowLightDisplayBrightnessDelta",
       "AmbientDeltaIndexLow"},
      {kBacklight,
       "AmbientDeltaIndexHigh",
       [](const Exports& pal, DWORD level) {
         return pal.PALDISPSetBrightLightDisplayBrightnessDelta(level);
       },
       [](const Exports& pal, DWORD* level) {
         return pal.PALDISPGetBrightLightDisplayBrightnessDelta(level);
       },
       {1, 2, 3, 4, 5},
       kInfo,
       "PALDISPSetBrightLightDisplayBrightnessDelta",
       "PALDISPGetBrightLightDisplayBrightnessDelta",
       "AmbientDeltaIndexHigh"},
      {kKeyboard,
       "Mode",
       [](const Exports& pal, DWORD level) { return pal.PALDISPSetKeypadBacklightMode(level); },
       [](const Exports& pal, DWORD* level) { return pal.PALDISPGetKeypadBacklightMode(level); },
       {0, 2, 4},
       kError,
       "SetKeypadBacklightMode",
       "GetKeypadBacklightMode",
       "AmbientDeltaIndex"},
      {kKeyboard,
       "AmbientThreshold",
       [](const Exports& pal, DWORD level) { return pal.PALDISPSetKeypadBacklightAmbient(level); },
       [](const Exports& pal, DWORD* level) { return pal.PALDISPGetKeypadBacklightAmbient(level); },
       {0, 1},
       kError,
       "SetKeypadBacklightAmbient",
       "GetKeypadBacklightAmbient",
       "AmbientDeltaIndex"},
  };
  return levels;
}

TEST_F(DisplaySettings, LevelsAreThoseThatTheDriversKnow) {
  for (const Level& level : Levels()) {
    std::vector<DWORD> taken;
    for (const DWORD value : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 0x80000001U, 0xFFFFFFFFU}) {
      device.registry().SetDword(level.key, level.value, kUntouched);
      const HRESULT result = level.set(pal, value);
      DWORD stored = 0;
      EXPECT_EQ(level.get(pal, &stored), S_OK);
      EXPECT_EQ(device.registry().GetDword(level.key, level.value), stored);
      EXPECT_EQ(result, stored == kUntouched ? E_FAIL : S_OK) << level.value << ' ' << value;
      if (stored != kUntouched) taken.push_back(stored);
    }
    EXPECT_EQ(taken, level.allowed) << level.value;
  }
}

TEST_F(DisplaySettings, LevelsAnswerAndTraceTheirFailures) {
  for (const Level& level : Levels()) {
    SCOPED_TRACE(level.value);
    device.registry().SetDword(level.key, level.value, 9);
    device.journal().Clear();
    DWORD read = kUntouched;
    EXPECT_EQ(level.get(pal, &read), S_OK);
    EXPECT_EQ(read, 9u);
    EXPECT_EQ(level.set(pal, 7), E_FAIL);
    device.PlanFault({.call = "RegSetValueExW", .error = 5});
    EXPECT_EQ(level.set(pal, level.allowed.front()), PAL_DISP_E_WRITE_FAILED);
    device.ClearFaults();
    EXPECT_EQ(Written(), Lines());

    device.registry().RemoveTree("HKCU\\ControlPanel\\Backlight");
    EXPECT_EQ(level.get(pal, &read), PAL_E_FILE_NOT_FOUND);
    EXPECT_EQ(level.set(pal, level.allowed.back()), PAL_DISP_E_WRITE_FAILED);
    EXPECT_EQ(level.get(pal, nullptr), E_FAIL);
    EXPECT_EQ(read, 9u);
    device.registry().Create(kKeyboard);

    const std::string write_failed = level.severity + level.setter + " - ERROR setting reg key " +
                                     level.named + ". hr: 0x83ee0008\\r\\n";
    const std::string set = kInfo + level.setter + " - cur_level: ";
    EXPECT_EQ(CategorisedLines(),
              (Lines{kInfo + level.getter + " - cur_level: 9\\r\\n",
                     level.severity + level.setter + " - ERROR level invalid user_level: 0x7\\r\\n",
                     set + std::to_string(level.allowed.front()) + "\\r\\n", write_failed,
                     level.severity + level.getter + " - ERROR reading level. hr: 0x80070002\\r\\n",
                     set + std::to_string(level.allowed.back()) + "\\r\\n", write_failed}));
  }
}

TEST_F(DisplaySettings, TheInputPanelsKeyIsCreatedWithTheFirstStyle) {
  DWORD style = kUntouched;
  EXPECT_EQ(pal.PALDISPGetSIPDock(&style), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(style, 0u);
  for (const DWORD wanted : {0U, 26U, 0xFFFFFFFFU}) {
    EXPECT_EQ(pal.PALDISPSetSIPDock(wanted), S_OK);
    EXPECT_EQ(device.registry().GetDword(kPanel, "DragStyle"), wanted);
    EXPECT_EQ(pal.PALDISPGetSIPDock(&style), S_OK);
    EXPECT_EQ(style, wanted);
  }
  for (const char* call : {"RegCreateKeyExW", "RegSetValueExW"}) {
    device.PlanFault({.call = call, .error = 5});
    EXPECT_EQ(pal.PALDISPSetSIPDock(1), PAL_E_ACCESS_DENIED) << call;
    device.ClearFaults();
  }
  EXPECT_EQ(device.registry().GetDword(kPanel, "DragStyle"), 0xFFFFFFFF);
  EXPECT_EQ(pal.PALDISPGetSIPDock(nullptr), E_FAIL);
  const std::string read = std::string(kInfo) + "PALDISPGetSIPDock(): read value=";
  const std::string set = std::string(kInfo) + "PALDISPSetSIPDock(): set value=";
  const std::string failed =
      std::string(kError) + "PALDISPSetSIPDock() failed to SET, last err.=5\\r\\n";
  EXPECT_EQ(CategorisedLines(), (Lines{read + "0\\r\\n", set + "0\\r\\n", read + "0\\r\\n",
                                       set + "1a\\r\\n", read + "1a\\r\\n", set + "ffffffff\\r\\n",
                                       read + "ffffffff\\r\\n", failed, failed}));
}

TEST_F(DisplaySettings, TheScreensClickHasThreeLevels) {
  struct Case {
    DWORD level;
    DWORD stored;
  };
  for (const Case& test : {Case{0, 0}, Case{1, 1}, Case{2, 0x10002}}) {
    DWORD read = kUntouched;
    EXPECT_EQ(pal.PALDISPSetScreenTapVol(test.level), S_OK);
    EXPECT_EQ(device.registry().GetDword(kVolume, "Screen"), test.stored);
    EXPECT_EQ(pal.PALDISPGetScreenTapVol(&read), S_OK);
    EXPECT_EQ(read, test.level);
  }
  EXPECT_EQ(device.journal().Texts(sim::Effect::kAudio),
            Lines(3, "settings read from the registry"));
  for (const Case& test : {Case{0, 0x10000}, Case{0x10001, 0x10001}, Case{77, 77}}) {
    device.registry().SetDword(kVolume, "Screen", test.stored);
    DWORD read = kUntouched;
    EXPECT_EQ(pal.PALDISPGetScreenTapVol(&read), S_OK);
    EXPECT_EQ(read, test.level);
  }
  EXPECT_EQ(TraceLines(), Lines());
}

TEST_F(DisplaySettings, TheScreensClickFails) {
  device.registry().SetDword(kVolume, "Screen", 1);
  DWORD read = kUntouched;
  for (const DWORD wrong : {3U, 0x10002U, 0xFFFFFFFFU}) {
    EXPECT_EQ(pal.PALDISPSetScreenTapVol(wrong), E_FAIL);
  }
  EXPECT_EQ(pal.PALDISPGetScreenTapVol(nullptr), E_FAIL);
  EXPECT_EQ(device.registry().GetDword(kVolume, "Screen"), 1u);
  device.registry().RemoveTree(kVolume);
  EXPECT_EQ(pal.PALDISPSetScreenTapVol(1), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(pal.PALDISPGetScreenTapVol(&read), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(device.journal().Texts(sim::Effect::kAudio), Lines());
  device.registry().Create(kVolume);
  device.RemoveModule("coredll.dll");
  EXPECT_EQ(pal.PALDISPSetScreenTapVol(2), E_FAIL);
  EXPECT_EQ(device.registry().GetDword(kVolume, "Screen"), 0x10002u);
  EXPECT_EQ(read, kUntouched);
  const std::string name = std::string(kError) + "PALDISPSetScreenTapVol - ";
  Lines lines = CategorisedLines();
  lines.pop_back();  // that of the missing library
  EXPECT_EQ(lines, (Lines{name + "Input invalid.  input:3\\r\\n",
                          name + "Input invalid.  input:65538\\r\\n",
                          name + "Input invalid.  input:-1\\r\\n",
                          name + "Could not set reg key: ControlPanel\\Volume\\Screen\\r\\n",
                          name + "Could not read reg key: ControlPanel\\Volume\\Screen\\r\\n"}));
}

}  // namespace

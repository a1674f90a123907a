// Brightness and keypad backlight, input panel, clicks of screen and keys: what is kept and what is
// not.
#include <fmt/format.h>

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
  sim::Export<HRESULT(DWORD)> Exports::*set;
  sim::Export<HRESULT(DWORD*)> Exports::*get;
  std::vector<DWORD> allowed;
  const char* severity;  // of what fails
  std::string name;      // "*" for Set and Get, as the lines name it
};
const std::vector<Level> kLevels = {
    {kBacklight,
     "AmbientDeltaIndex",
     &Exports::PALDISPSetDisplayBrightnessAmbient,
     &Exports::PALDISPGetDisplayBrightnessAmbient,
     {1, 2, 3, 4, 5},
     kInfo,
     "*DisplayBrightnessAmbient"},
    {kBacklight,
     "AmbientDeltaIndexLow",
     &Exports::PALDISPSetLowLightDisplayBrightnessDelta,
     &Exports::PALDISPGetLowLightDisplayBrightnessDelta,
     {1, 2, 3, 4, 5},
     kInfo,
     "PALDISP*LowLightDisplayBrightnessDelta"},
    {kBacklight,
     "AmbientDeltaIndexHigh",
     &Exports::PALDISPSetBrightLightDisplayBrightnessDelta,
     &Exports::PALDISPGetBrightLightDisplayBrightnessDelta,
     {1, 2, 3, 4, 5},
     kInfo,
     "PALDISP*BrightLightDisplayBrightnessDelta"},
    {kKeyboard,
     "Mode",
     &Exports::PALDISPSetKeypadBacklightMode,
     &Exports::PALDISPGetKeypadBacklightMode,
     {0, 2, 4},
     kError,
     "*KeypadBacklightMode"},
    {kKeyboard,
     "AmbientThreshold",
     &Exports::PALDISPSetKeypadBacklightAmbient,
     &Exports::PALDISPGetKeypadBacklightAmbient,
     {0, 1},
     kError,
     "*KeypadBacklightAmbient"},
};

std::string Named(std::string name, const char* verb) {
  return name.replace(name.find('*'), 1, verb);
}

TEST_F(DisplaySettings, LevelsAreThoseThatTheDriversKnow) {
  for (const Level& level : kLevels) {
    std::vector<DWORD> taken;
    for (const DWORD value : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 0x80000001U, 0xFFFFFFFFU}) {
      device.registry().SetDword(level.key, level.value, kUntouched);
      const HRESULT result = (pal.*level.set)(value);
      DWORD stored = 0;
      EXPECT_EQ((pal.*level.get)(&stored), S_OK);
      EXPECT_EQ(device.registry().GetDword(level.key, level.value), stored);
      EXPECT_EQ(result, stored == kUntouched ? E_FAIL : S_OK) << level.value << ' ' << value;
      if (stored != kUntouched) taken.push_back(stored);
    }
    EXPECT_EQ(taken, level.allowed) << level.value;
  }
}

TEST_F(DisplaySettings, LevelsAnswerAndTraceTheirFailures) {
  for (const Level& level : kLevels) {
    SCOPED_TRACE(level.value);
    device.registry().SetDword(level.key, level.value, 9);
    device.journal().Clear();
    DWORD read = kUntouched;
    EXPECT_EQ((pal.*level.get)(&read), S_OK);
    EXPECT_EQ(read, 9u);
    EXPECT_EQ((pal.*level.set)(7), E_FAIL);
    device.PlanFault({.call = "RegSetValueExW", .error = 5});
    EXPECT_EQ((pal.*level.set)(level.allowed.front()), PAL_DISP_E_WRITE_FAILED);
    device.ClearFaults();
    EXPECT_EQ(Written(), Lines());

    device.registry().RemoveTree("HKCU\\ControlPanel\\Backlight");
    EXPECT_EQ((pal.*level.get)(&read), PAL_E_FILE_NOT_FOUND);
    EXPECT_EQ((pal.*level.set)(level.allowed.back()), PAL_DISP_E_WRITE_FAILED);
    EXPECT_EQ((pal.*level.get)(nullptr), E_FAIL);
    EXPECT_EQ(read, 9u);
    device.registry().Create(kKeyboard);

    // The keypad's lines name a value of the display's.
    const std::string value =
        level.key == kKeyboard ? std::string("AmbientDeltaIndex") : level.value;
    const std::string setter = Named(level.name, "Set");
    const std::string getter = Named(level.name, "Get");
    const std::string write_failed = fmt::format(
        "{}{} - ERROR setting reg key {}. hr: 0x83ee0008\\r\\n", level.severity, setter, value);
    const std::string set = kInfo + setter + " - cur_level: ";
    EXPECT_EQ(CategorisedLines(),
              (Lines{kInfo + getter + " - cur_level: 9\\r\\n",
                     level.severity + setter + " - ERROR level invalid user_level: 0x7\\r\\n",
                     set + std::to_string(level.allowed.front()) + "\\r\\n", write_failed,
                     level.severity + getter + " - ERROR reading level. hr: 0x80070002\\r\\n",
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

// Both trace as the display family does; the category of the keys' is the keypad's.
struct Click {
  std::string name;
  sim::Export<HRESULT(DWORD)> Exports::*set;
  sim::Export<HRESULT(DWORD*)> Exports::*get;
  std::string category;
};
const std::vector<Click> kClicks = {
    {"Screen", &Exports::PALDISPSetScreenTapVol, &Exports::PALDISPGetScreenTapVol, kError},
    {"Key", &Exports::PALKEYSetKeyTapVol, &Exports::PALKEYGetKeyTapVol, "0xC3ED0000 "},
};

TEST_F(DisplaySettings, AClickHasThreeLevels) {
  struct Case {
    DWORD level;
    DWORD stored;
  };
  for (const Click& click : kClicks) {
    device.journal().Clear();
    DWORD read = kUntouched;
    for (const Case& test : {Case{2, 0x10002}, Case{0, 0}, Case{1, 1}}) {
      EXPECT_EQ((pal.*click.set)(test.level), S_OK);
      EXPECT_EQ(device.registry().GetDword(kVolume, click.name), test.stored);
      EXPECT_EQ((pal.*click.get)(&read), S_OK);
      EXPECT_EQ(read, test.level);
    }
    EXPECT_EQ(device.journal().Texts(sim::Effect::kAudio),
              Lines(3, "settings read from the registry"));
    for (const Case& test : {Case{0, 0x10000}, Case{0x10001, 0x10001}, Case{77, 77}}) {
      device.registry().SetDword(kVolume, click.name, test.stored);
      EXPECT_EQ((pal.*click.get)(&read), S_OK);
      EXPECT_EQ(read, test.level);
    }
    EXPECT_EQ(TraceLines(), Lines());
  }
}

TEST_F(DisplaySettings, AClickFails) {
  for (const Click& click : kClicks) {
    device.journal().Clear();
    device.registry().SetDword(kVolume, click.name, 1);
    DWORD read = kUntouched;
    for (const DWORD wrong : {3U, 0x10002U, 0xFFFFFFFFU}) {
      EXPECT_EQ((pal.*click.set)(wrong), E_FAIL);
    }
    EXPECT_EQ((pal.*click.get)(nullptr), E_FAIL);
    EXPECT_EQ(device.registry().GetDword(kVolume, click.name), 1u);
    device.registry().RemoveTree(kVolume);
    EXPECT_EQ((pal.*click.set)(1), PAL_E_FILE_NOT_FOUND);
    EXPECT_EQ((pal.*click.get)(&read), PAL_E_FILE_NOT_FOUND);
    EXPECT_EQ(read, kUntouched);
    EXPECT_EQ(device.journal().Texts(sim::Effect::kAudio), Lines());
    const std::string does = fmt::format("{}PALDISPSet{}TapVol - ", click.category, click.name);
    const std::string key = fmt::format(" reg key: ControlPanel\\Volume\\{}\\r\\n", click.name);
    EXPECT_EQ(
        CategorisedLines(),
        (Lines{does + "Input invalid.  input:3\\r\\n", does + "Input invalid.  input:65538\\r\\n",
               does + "Input invalid.  input:-1\\r\\n", fmt::format("{}Could not set{}", does, key),
               fmt::format("{}Could not read{}", does, key)}));
    device.registry().Create(kVolume);
  }
  device.RemoveModule("coredll.dll");
  for (const Click& click : kClicks) {
    EXPECT_EQ((pal.*click.set)(2), E_FAIL);
    EXPECT_EQ(device.registry().GetDword(kVolume, click.name), 0x10002u) << "written before";
  }
}

}  // namespace

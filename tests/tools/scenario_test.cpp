// Scenarios: what their text may say, what happens when they are played, and that an expectation
// can fail.
#include "tools/palsim/scenario/scenario.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/sim/device_folder.h"
#include "tests/support/device_test.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/scenario/stage.h"
#include "tools/palsim/session.h"

namespace {

using palsim::ParseScenario;
using palsim::UsageError;

std::string ParseFailure(const std::string& text) {
  try {
    static_cast<void>(ParseScenario("s", text));
  } catch (const UsageError& error) {
    return error.what();
  }
  return "understood";
}

TEST(ScenarioText, SaysWhatIsNotUnderstood) {
  struct Case {
    std::string line, message;
  };
  for (const Case& test : {
           Case{"dance", "s:1: 'dance' is no statement; 'palsim --statements' lists them"},
           Case{"scanner call PALLEDInit", "s:1: 'scanner call PALLEDInit' is no statement"},
           Case{"wait 5 minutes",
                "s:1: '5 minutes' is no time of 49 days at most (use 120 ms or 2 s)"},
           Case{"wait -5 ms", "s:1: '-5 ms' is no time"},
           Case{"wait 90000000 s", "s:1: '90000000 s' is no time"},
           Case{"wait until light on", "s:1: 'light' is no effect in the journal"},
           Case{"scanner calls PALLEDGrLedToggl 1",
                "s:1: there is no export PALLEDGrLedToggl; did you mean PALLEDGrLedToggle?"},
           Case{"scanner calls PALLEDGrLedToggle", "s:1: PALLEDGrLedToggle takes 1 argument(s)"},
           Case{"scanner begins PALLEDGrLedToggle x as flash", "s:1: 'x' is no 32-bit number"},
           Case{"set TethGRI = 5", "s:1: 'TethGRI' is no registry value"},
           Case{"set HKLM\\A\\B = 5 6", "s:1: data is a number"},
           Case{"set HKLM\\A\\B = hex 0A 100", "s:1: '100' is no byte"},
           Case{"set HKLM\\A\\B = \"open", "s:1: a text has no closing quote"},
           Case{"fail call 0 of Sleep", "s:1: a count is a number from 1 up"},
           Case{"fail every call of Sleeep", "s:1: Sleeep is no platform call"},
           Case{"write Windows/x = text", "s:1: 'Windows/x' is no path of the device"},
           Case{"expect scanner returned S_FINE", "s:1: 'S_FINE' is no result"},
           Case{"expect led 3 is lit", "s:1: lit is not off, on or blink"},
           Case{"expect engine mood is on", "s:1: mood is not the engine's power"},
           Case{"expect engine power is pulled", "s:1: power is never pulled, but off or on"},
           Case{"expect restart hot", "s:1: a restart is warm or cold"},
           Case{"restart hot", "s:1: a restart is warm or cold"},
           Case{"dock is gone", "s:1: a dock is attached or taken"},
           Case{"parameter 0x10000 = 1", "s:1: a parameter has a number from 0 to 0xFFFF"},
           Case{"check property levels-come-bac",
                "s:1: there is no property 'levels-come-bac'; did you mean levels-come-back?"},
           Case{"expect no lamp *", "s:1: 'lamp' is no effect in the journal"},
           Case{"\n# a comment\nscanner starts # and why\n  dance  # not this",
                "s:4: 'dance' is no"},
           Case{"dance\njump", "\ns:2: 'jump' is no statement"},
       }) {
    EXPECT_NE(ParseFailure(test.line).find(test.message), std::string::npos)
        << test.line << ": " << ParseFailure(test.line);
  }
}

class ScenarioStage : public ::testing::Test {
 protected:
  void SetUp() override { sim::LoadDevice(device, PROJECT_DIR "/devices/rm21"); }

  // Plays a text; what did not hold, or what could not be played, is in `said`.
  void Play(const std::string& text) {
    palsim::Stage stage(device, [this](const std::string& message) { said.push_back(message); });
    try {
      stage.Play(ParseScenario("s", text));
    } catch (const UsageError& error) {
      said.emplace_back(error.what());
    }
    expectations = stage.expectations();
  }

  sim::Device device;
  std::vector<std::string> said;
  std::size_t expectations = 0;
};

constexpr const char* kFlash =
    "set HKLM\\SOFTWARE\\Dravonel\\PAL\\BTGrLedOnDur = 300\n"
    "scanner starts\n"
    "scanner begins PALLEDGrLedToggle 2 as flash\n"
    "wait for flash\n";

TEST_F(ScenarioStage, ExpectationsHoldOrSayWhatThereWas) {
  struct Case {
    std::string line, said;  // nothing said: it holds
  };
  for (const Case& test : {
           Case{"expect flash returned S_OK", ""},
           Case{"expect flash returned E_FAIL",
                "s:5: expected flash to return E_FAIL; there was 0x00000000 S_OK"},
           Case{"expect flash was killed",
                "s:5: expected flash to be killed; there was 0x00000000 S_OK"},
           Case{"expect value HKLM\\SOFTWARE\\Dravonel\\PAL\\BTGrLedOnDur = 300", ""},
           Case{"expect value HKLM\\SOFTWARE\\Dravonel\\PAL\\BTGrLedOnDur = \"300\"",
                "s:5: expected HKLM\\SOFTWARE\\Dravonel\\PAL\\BTGrLedOnDur to be \"300\"; there "
                "was dword:0000012c"},
           Case{"expect value HKLM\\None\\Such = 1",
                "s:5: expected HKLM\\None\\Such to be dword:00000001; there was no such value"},
           Case{"expect no value HKLM\\None\\Such", ""},
           Case{"expect no value HKLM\\SOFTWARE\\Dravonel\\PAL\\BTGrLedOnDur",
                "s:5: expected no HKLM\\SOFTWARE\\Dravonel\\PAL\\BTGrLedOnDur; there was "
                "dword:0000012c"},
           Case{"expect led LED 3 on at 0 ms\nexpect led LED 3 off after 300 ms", ""},
           Case{"expect led LED 3 on by scanner at 0 ms", ""},
           Case{"expect led LED 3 off at 301 ms",
                "s:5: expected led 'LED 3 off' at 301 ms; there was it at 300 ms"},
           Case{"expect led LED 3 on\nexpect led LED 3 off after 299 ms",
                "s:6: expected led 'LED 3 off' at 299 ms; there was it at 300 ms"},
           Case{"expect led LED 3 off\nexpect led LED 3 on",
                "s:6: expected led 'LED 3 on'; there was no led line"},
           Case{"expect led LED 6 on",
                "s:5: expected led 'LED 6 on'; there was this alone:\n         0 ms p2 LED 3 on\n"
                "       300 ms p2 LED 3 off"},
           Case{"expect 2 times led LED 3 *", ""},
           Case{"expect 1 times led LED 3 *",
                "s:5: expected 1 times led 'LED 3 *'; there was 2 times"},
           Case{"expect no led LED 6 *", ""},
           Case{"from here\nexpect no led *", ""},
           Case{"from here\nfrom the start\nexpect led LED 3 on", ""},
           Case{"expect no led *3 on",
                "s:5: expected no led '*3 on'; there was this alone:\n         0 ms p2 LED 3 on\n"
                "       300 ms p2 LED 3 off"},
           Case{"expect volume 0x12345678",
                "s:5: expected the volume to be 0x12345678; there was 0xCCCCCCCC"},
           Case{"expect led 3 is off\nexpect engine power is off\nexpect rotation 0\n"
                "expect boot option 0\nexpect usb client RNDIS\nexpect default usb client RNDIS\n"
                "expect button 2 signals DeltaLeftScan, StateLeftScan\n"
                "expect button 5 signals nothing\nexpect button 1 signals nothing\n"
                "expect no restart",
                ""},
           Case{"expect led 3 is on", "s:5: expected LED 3 to be on; there was off"},
           Case{"expect engine trigger is pulled",
                "s:5: expected the engine's trigger to be pulled; there was released"},
           Case{"expect rotation 90", "s:5: expected the rotation to be 90; there was 0"},
           Case{"expect boot option 1", "s:5: expected the boot option to be 1; there was 0"},
           Case{"expect usb client none",
                "s:5: expected the USB client to be none; there was RNDIS"},
           Case{"expect default usb client Serial_Class",
                "s:5: expected the default USB client to be Serial_Class; there was RNDIS"},
           Case{"expect button 5 signals DeltaLeftScan, StateLeftScan",
                "s:5: expected what button 5 signals to be DeltaLeftScan, StateLeftScan; there was "
                "nothing"},
           Case{"expect restart warm",
                "s:5: expected a restart, warm; there was no further restart"},
           Case{"expect gain 1", "s:5: expected the gain to be 1; there was 85"},
       }) {
    sim::Device fresh;
    sim::LoadDevice(fresh, PROJECT_DIR "/devices/rm21");
    std::string found;
    palsim::Stage stage(fresh, [&](const std::string& message) { found = message; });
    stage.Play(ParseScenario("s", kFlash + test.line));
    EXPECT_EQ(found, test.said) << test.line;
    EXPECT_EQ(stage.failures(), test.said.empty() ? 0u : 1u) << test.line;
  }
}

TEST_F(ScenarioStage, TheJournalHasWhatHeldAndWhatFailed) {
  Play(
      "set volume = 7\nwait 20 ms\nexpect audio volume * at 0 ms\nexpect audio sound *\n"
      "expect 1 times audio *\nexpect volume 7\n");
  EXPECT_EQ(
      device.journal().Texts(sim::Effect::kExpect),
      (std::vector<std::string>{"s:3 held, seen at 0 ms: expected audio 'volume *' at 0 ms",
                                "s:4 failed: expected audio 'sound *'; there was no audio line",
                                "s:5 held: expected 1 times audio '*'",
                                "s:6 held: expected the volume to be 0x00000007"}));
  EXPECT_NE(ParseFailure("expect 1 times expect *").find("nothing is expected"), std::string::npos);
}

TEST_F(ScenarioStage, StatementsThatCannotBePlayedSayWhere) {
  struct Case {
    std::string text, said;
  };
  for (const Case& test : {
           Case{"scanner calls PALLEDInit", "s:1: no process scanner runs now"},
           Case{"scanner starts\nscanner starts", "s:2: scanner has started already"},
           Case{"scanner starts\nscanner is killed\nscanner ends", "s:3: no process scanner runs"},
           Case{"wait for scanner", "s:1: no call scanner was begun"},
           Case{"scanner starts\nexpect scanner returned S_OK", "s:2: scanner has made no call"},
           Case{"scanner starts\nscanner begins PALLEDGrLedToggle 0\n"
                "expect scanner returned S_OK",
                "s:3: scanner still runs; 'wait for scanner' before"},
           Case{"signal NO_SUCH_EVENT", "s:1: no process has an event NO_SUCH_EVENT now"},
           Case{"press button 5", "s:1: the keypad signals no event for button 5"},
           Case{"press button 2",
                "s:1: no process has an event DeltaLeftScan or StateLeftScan now"},
           Case{"delete HKLM\\None\\Such", "s:1: the registry has no HKLM\\None\\Such"},
           Case{"expect led 9 is on", "s:1: the device has no LED 9"},
           Case{"remove \\None", "s:1: the device has no \\None"},
       }) {
    said.clear();
    Play(test.text);
    ASSERT_EQ(said.size(), 1u) << test.text;
    EXPECT_TRUE(said[0].starts_with(test.said)) << said[0];
  }
}

TEST_F(ScenarioStage, AButtonSignalsWhenItIsPressedAndReleased) {
  sim::Process listener(device, "listener.exe");
  const auto run = [&](const std::function<void()>& body) { listener.Run(body); };
  HANDLE changed = nullptr;
  HANDLE held = nullptr;
  run([&] {
    changed = CreateEventW(nullptr, FALSE, FALSE, TEXT("DeltaLeftScan"));
    held = CreateEventW(nullptr, TRUE, FALSE, TEXT("StateLeftScan"));
  });
  struct Case {
    std::string text;
    DWORD changed, held;
  };
  for (const Case& test : {Case{"wait 1 s", WAIT_TIMEOUT, WAIT_TIMEOUT},
                           Case{"press button 2", WAIT_OBJECT_0, WAIT_OBJECT_0},
                           Case{"wait 1 s", WAIT_TIMEOUT, WAIT_OBJECT_0},
                           Case{"release button 2", WAIT_OBJECT_0, WAIT_TIMEOUT}}) {
    Play(test.text);
    run([&] {
      EXPECT_EQ(WaitForSingleObject(changed, 0), test.changed) << test.text;
      EXPECT_EQ(WaitForSingleObject(held, 0), test.held) << test.text;
    });
  }
  run([&] { EXPECT_TRUE(CloseHandle(changed) && CloseHandle(held)); });
  EXPECT_EQ(said, std::vector<std::string>{});
}

TEST_F(ScenarioStage, OutParametersAreCompared) {
  Play(
      "set HKLM\\SOFTWARE\\Dravonel\\PAL\\IntGrLed = 7\n"
      "scanner starts\nscanner calls PALLEDGrLedGetState 0 out\n"
      "expect scanner argument 2 = 7\nexpect scanner argument 2 = 8\n"
      "expect scanner argument 1 = 0\n");
  EXPECT_EQ(said, (std::vector<std::string>{
                      "s:5: expected argument 2 of scanner to be 8 (0x8); there was 7 (0x7)",
                      "s:6: expected argument 1 of scanner to be 0 (0x0); there was no "
                      "out-parameter in this place"}));
}

TEST_F(ScenarioStage, AProcessIsKilledInACallWhenItTakesAMutex) {
  Play(
      "scanner starts\nsettings starts\nsettings calls PALLEDInit\n"
      "scanner begins PALLEDGrLedToggle 0\n"
      "wait until scanner takes DVLORQPAL_LED_MUTEX\n"
      "settings begins PALLEDSysLightOn\n"
      "wait 20 ms\n"
      "scanner is killed\nwait for scanner\nwait for settings\n"
      "expect scanner was killed\nexpect settings returned S_OK\n"
      "expect mutex DVLORQPAL_LED_MUTEX abandoned by scanner at 20 ms\n"
      "expect mutex DVLORQPAL_LED_MUTEX taken by settings after 0 ms\n"
      "expect no led LED 3 off\nsettings calls PALLEDTerm\n");
  EXPECT_EQ(said, std::vector<std::string>{});
  EXPECT_EQ(expectations, 5u);
}

TEST_F(ScenarioStage, ARestartEndsEveryProcessAndTheNextGoOn) {
  Play(
      "scanner starts\nsettings starts\nscanner begins PALLEDGrLedToggle 2 as flash\n"
      "settings calls PALBOOT_BootTerminal PAL_BOOT_COLD\n"
      "expect settings returned S_OK\nexpect settings was killed\nexpect flash was killed\n"
      "expect no restart\nexpect restart warm\nexpect restart cold\n"
      "settings starts\nsettings calls PALBOOT_BootTerminal PAL_BOOT_WARM\nexpect restart warm\n"
      "scanner starts\nscanner calls PALLEDInit\nexpect scanner returned S_OK\n");
  EXPECT_EQ(said, (std::vector<std::string>{
                      "s:5: expected settings to return S_OK; there was no answer: restart, cold",
                      "s:8: expected no further restart; there was restart, cold",
                      "s:9: expected a restart, warm; there was restart, cold",
                      "s:10: expected a restart, cold; there was no further restart"}));
}

TEST_F(ScenarioStage, TheDeviceChangesAndItsPropertiesHold) {
  Play(R"(
      check properties
      turns change by 5
      scanner starts
      dock is taken
      scanner calls PALOneWire_IsVehicleDockAttached
      expect scanner returned 0
      dock is attached
      scanner calls PALOneWire_IsVehicleDockAttached
      expect scanner returned 1
      parameter 0x0035 = 7
      scanner calls PALKEYGetType out
      expect scanner argument 1 = 7
      no parameter 0x0035
      scanner calls PALKEYGetType out
      expect scanner argument 1 = 0
      call 1 of ReadFile moves 2 bytes
      scanner calls PALMFGOpt_InternalDevice2Type out
      expect scanner argument 1 = 255
      no driver CFG1:
      scanner calls PALPWRGetBootOption out
      expect scanner returned PAL_E_DEV_NOT_EXIST
      kill at call 3 of any
      scanner calls PALMFGOpt_PersistRegistry
      expect scanner was killed
      restart warm
      expect restart warm
      scanner starts)");
  EXPECT_EQ(said, std::vector<std::string>());
}

TEST_F(ScenarioStage, PlatformCallsFailAsPlanned) {
  Play(
      "scanner starts\nfail call 2 of RegQueryValueExW with error 5\n"
      "scanner calls PALLEDGrLedGetState 0 out\nexpect scanner returned S_OK\n"
      "scanner calls PALLEDGrLedGetState 0 out\nexpect scanner returned PAL_E_ACCESS_DENIED\n"
      "no more faults\n"
      "fail every call of RegQueryValueExW\n"
      "scanner calls PALLEDGrLedGetState 0 out\nexpect scanner returned PAL_E_WIN32(31)\n"
      "no more faults\nkill at call 1 of NLedSetDevice\n"
      "scanner calls PALLEDGrLedOn\nexpect scanner was killed\n");
  EXPECT_EQ(said, std::vector<std::string>{});
}

TEST_F(ScenarioStage, WaitingForALineEndsAtSomeTime) {
  Play("scanner starts\nwait until led LED 3 on\n");
  EXPECT_EQ(said, std::vector<std::string>{
                      "s:2: expected to see led 'LED 3 on'; there was none within 60 s"});
}

TEST_F(ScenarioStage, WhatComesFromOutsideStandsInTheJournal) {
  Play(
      "write \\Windows\\note.txt = \"two  blanks\"\nset HKLM\\System\\New\\Value = \"text\"\n"
      "delete HKLM\\System\\New\\Value\nremove \\Windows\\note.txt\n");
  EXPECT_EQ(said, std::vector<std::string>{});
  EXPECT_EQ(device.journal().Texts(),
            (std::vector<std::string>{"dvlkbd.exe started", "\\Windows\\note.txt written: 11 bytes",
                                      "HKEY_LOCAL_MACHINE\\System\\New \"Value\"=\"text\"",
                                      "HKEY_LOCAL_MACHINE\\System\\New \"Value\" deleted",
                                      "\\Windows\\note.txt removed"}));
}

std::vector<std::string> ScenarioFiles() {
  std::vector<std::string> files;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(PROJECT_DIR "/scenarios")) {
    if (entry.is_regular_file()) files.push_back(entry.path().string());
  }
  std::ranges::sort(files);
  return files;
}

class ScenarioFile : public ::testing::TestWithParam<std::string> {};

TEST_P(ScenarioFile, IsAsExpected) {
  const palsim::Scenario scenario = palsim::ReadScenario(GetParam());
  // The device stays there, so that two builds can be compared.
  const auto folder = std::filesystem::path(BINARY_DIR).parent_path() / "played" /
                      std::filesystem::path(GetParam()).stem();
  std::filesystem::create_directories(folder.parent_path());
  const std::filesystem::path sample = palsim::SampleFolder(scenario.device);
  palsim::Session session(palsim::LockForNewDevice(folder, sample, palsim::Replace::kAny), sample);
  {
    palsim::Stage stage(session.device(),
                        [](const std::string& message) { ADD_FAILURE() << message; });
    stage.Play(scenario);
    EXPECT_GT(stage.expectations(), 0u);
  }
  session.Save();
}

INSTANTIATE_TEST_SUITE_P(Shipped, ScenarioFile, ::testing::ValuesIn(ScenarioFiles()),
                         [](const ::testing::TestParamInfo<std::string>& file) {
                           std::string name = std::filesystem::path(file.param).stem().string();
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

}  // namespace

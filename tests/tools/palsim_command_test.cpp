// palsim as a person runs it: commands one after another on one device folder.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "platform/sim/journal.h"
#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"
#include "tools/palsim/names.h"
#include "tools/palsim/usage_error.h"

namespace {

class Palsim : public ::testing::Test {
 protected:
  // The exit status; what was printed is in `output`.
  int Run(const std::string& arguments, const std::string& input = {}) {
    const CommandResult result =
        RunTool("palsim " + unit.string() + " " + arguments, folder.Write("input", input));
    output = result.output;
    return result.status;
  }

  [[nodiscard]] bool Printed(const std::string& text) const {
    return output.find(text) != std::string::npos;
  }

  TemporaryFolder folder;
  std::filesystem::path unit = folder.path() / "unit";
  std::string output;
};

TEST_F(Palsim, KeepsADeviceFromCommandToCommand) {
  ASSERT_EQ(Run("new"), 0) << output;
  EXPECT_EQ(Run("registry 'HKLM\\Software\\Dravonel\\ADCPorts\\1'"), 1)
      << "nothing provisioned yet";
  ASSERT_EQ(Run("call PALMFGOpt_ConfigStoreRegUpdate"), 0);
  EXPECT_EQ(output, "PALMFGOpt_ConfigStoreRegUpdate = 0x00000000 S_OK\n");
  EXPECT_EQ(Run("registry 'HKLM\\Software\\Dravonel\\ADCPorts\\1'"), 0);
  EXPECT_TRUE(Printed("\"OneByteAfterFidFmt\"=hex:41,01")) << output;
  EXPECT_EQ(Run("journal --effect process"), 0);
  EXPECT_EQ(output,
            "     0.000 p1 t1 process dvlkbd.exe started\n"
            "     0.000 p2 t1 process palsim.exe started\n"
            "     0.000 p2 t1 process palsim.exe attached\n"
            "     0.000 p2 t1 process palsim.exe detaches\n"
            "     0.000 p2 t1 process palsim.exe ended\n");
  EXPECT_EQ(Run("trace --last 1"), 0);
  EXPECT_TRUE(Printed("info configuration")) << output;
}

TEST_F(Palsim, ReadsArgumentsAndShowsAnswersByTheirTypes) {
  struct Case {
    std::string call, output;
  };
  ASSERT_EQ(Run("new"), 0);
  for (const Case& test : {
           Case{"PALKEYGetButtonName 3 out null", "= 0x80004005 E_FAIL\n  argument 2: \"\"\n"},
           Case{"PALKEYGetButtonName 3 18 out",
                "= 0x00000000 S_OK\n  argument 2: \"Middle\"\n  argument 3: 6 (0x6)\n"},
           Case{"PALKEYGetButtonName 3 4 out",
                "= 0x00000000 S_OK\n  argument 2: \"Middle\" written past the room given\n"
                "  argument 3: 6 (0x6)\n"},
           Case{"PALKEYGetButtonName 1 out out",
                "= 0x83ED0007 PAL_KEY_E_NOT_SUPPORTED\n  argument 2: \"\"\n"
                "  argument 3: 0 (0x0)\n"},
           Case{"PALSysinfo_GetModelExW 64 64",
                "= 0x00000000 S_OK\n  argument 1: \"RM21\"\n  argument 2: 10 (0xA)\n"},
           Case{"PALStore_SetUsbFuncDriver PAL_USB_MASS_STORAGE_1", "= 0x00000000 S_OK\n"},
           Case{"PALStore_GetUsbFuncDriver out",
                "= 0x00000000 S_OK\n  argument 1: 2 (0x2) PAL_USB_MASS_STORAGE_1\n"},
           Case{"PALStore_SetUsbHostMassStorageEnable FALSE", "= 0x00000000 S_OK\n"},
           Case{"PALStore_GetUsbHostMassStorageEnable 7",
                "= 0x00000000 S_OK\n  argument 1: 0 (0x0)\n"},
           Case{"PALDISPGetOrientation out", "= 0x00000000 S_OK\n  argument 1: 0 (0x0)\n"},
           Case{"PALDISPSetOrientation 45", "= 0x83EE0001 PAL_DISP_E_NO_SUCH_ORIENTATION\n"},
           Case{"PALOneWire_IsVehicleDockAttached", "= 1 PAL_VEHICLE_DOCK_ATTACHED\n"},
           Case{"PALCOMxPwr_GetPower COM1: 1:2", "= 0x00000000 S_OK\n  argument 2: 0:2\n"},
       }) {
    Run("call " + test.call);
    EXPECT_EQ(output, test.call.substr(0, test.call.find(' ')) + " " + test.output);
  }
}

// Of every export, whatever types its parameters have: with null or 0 for each it comes back, and
// the device goes on.
TEST_F(Palsim, CallsEveryExport) {
  ASSERT_EQ(Run("new"), 0);
  std::ifstream definition(PROJECT_DIR "/exports.def");
  std::string commands;
  std::size_t exports = 0;
  std::string line;
  while (std::getline(definition, line)) {
    if (!line.starts_with(' ')) continue;
    std::istringstream words(line);
    std::string name;
    words >> name;
    ++exports;
    const CommandResult usage = RunTool("palsim --usage " + name);
    ASSERT_EQ(usage.status, 0) << usage.output;
    ASSERT_TRUE(usage.output.starts_with(name)) << usage.output;
    commands += "call " + name;
    std::istringstream lines(usage.output);
    std::getline(lines, line);
    while (std::getline(lines, line) && !line.starts_with("  = ")) {
      commands += line.find("null") != std::string::npos ? " null" : " 0";
    }
    commands += "\n";
  }
  EXPECT_EQ(exports, 186u);
  EXPECT_EQ(Run("shell", commands), 0);
  std::size_t answers = 0;
  std::istringstream lines(output);
  while (std::getline(lines, line)) {
    if (line.starts_with("PAL") || line.starts_with("Pal") || line.starts_with("Dll")) ++answers;
  }
  EXPECT_EQ(answers, exports) << output;
}

TEST(PalsimNames, NamesResultsAndReadsTheNamesBack) {
  struct Case {
    std::uint32_t code;
    std::string text;
  };
  for (const Case& test :
       {Case{static_cast<std::uint32_t>(E_FAIL), "E_FAIL"},
        Case{0x80070002, "PAL_E_FILE_NOT_FOUND"}, Case{0x8007001F, "PAL_E_WIN32(31)"},
        Case{0x83EF0008, "PAL_PWR_E_EVENT(8)"}, Case{0x83EF000D, "PAL_PWR_E_NO_EVENT"},
        Case{0x83ED0009, "-2081619959"}, Case{19, "PAL_PWR_DRIVER_REFUSED"}}) {
    EXPECT_EQ(palsim::ResultText(static_cast<HRESULT>(test.code)),
              fmt::format("0x{:08X} {}", test.code, test.text));
    EXPECT_EQ(palsim::ParseResult(test.text), test.code) << test.text;
  }
  for (const char* text :
       {"PAL_E_WIN32(", "PAL_E_WIN32()", "PAL_E_WIN(2)", "E_FAIL(2)", "e_fail", ""}) {
    EXPECT_THROW(static_cast<void>(palsim::ParseResult(text)), palsim::UsageError) << text;
  }
}

// `script` gives the shell a terminal.
TEST_F(Palsim, CompletesAndRemembersLinesAtATerminal) {
  if (std::system("script --quiet --command true /dev/null </dev/null >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "`script` is missing, or gets no pseudo-terminal here";
  }
  ASSERT_EQ(Run("new"), 0);
  const auto type = [this](const std::string& keys) {
    const std::string input = folder.Write("keys", keys);
    const std::string command = "timeout 60 script --quiet --command '" BINARY_DIR "/palsim " +
                                unit.string() + " shell' /dev/null <" + input + " >/dev/null";
    return std::system(command.c_str());
  };
  EXPECT_EQ(type("cal\tPALKEYGetNumB\tout\nregistry HKL\tHard\t\n"
                 "call PALStore_SetUsbFuncDriver PAL_USB_RN\t\ncall PALLEDGrLedOn\nquit\n"),
            0);
  EXPECT_EQ(type("\x1b[A\x1b[A\x1b[A\ncall PALLEDGrLedOff\n quit\n"),
            0);  // two lines before the last
  Run("journal --effect call");
  EXPECT_TRUE(Printed("PALKEYGetNumButtons(out) = 0x00000000 S_OK")) << output;
  const std::string set = "PALStore_SetUsbFuncDriver(PAL_USB_RNDIS) = 0x00000000 S_OK";
  EXPECT_TRUE(Printed(set)) << output;
  EXPECT_NE(output.find(set), output.rfind(set)) << "once more from the history";
}

TEST_F(Palsim, PlansFaults) {
  ASSERT_EQ(Run("new"), 0);
  EXPECT_EQ(Run("call PALMFGOpt_ConfigStoreRegUpdate --only registry --fail RegCreateKeyExW:1:5"),
            0);
  EXPECT_FALSE(Printed("Decodes")) << output;
  EXPECT_TRUE(Printed("AsyncReadThreadPriority")) << output;
}

TEST_F(Palsim, TakesManyCallsInOneShell) {
  ASSERT_EQ(Run("new"), 0);
  EXPECT_EQ(Run("shell",
                "call PALMFGOpt_ConfigStoreRegUpdate\nadvance 1500\njournal on\n"
                "call PALMFGOpt_ConfigStoreRegUpdate\nquit\n"),
            0);
  EXPECT_TRUE(Printed("     1.500 p2 t1 trace 0x43F00000 Entry PALMFGOpt_ConfigStoreRegUpdate"));
  EXPECT_EQ(Run("journal --effect module"), 0);
  EXPECT_EQ(output, "     0.000 p2 t1 module DVLEventLog.dll loaded\n") << "one process, one load";
  EXPECT_EQ(Run("shell", "call Nothing\n"), 2);
}

TEST_F(Palsim, GoesOnBehindARestart) {
  ASSERT_EQ(Run("new"), 0);
  ASSERT_EQ(Run("call PALStore_SetUsbFuncDriver 2"), 0) << output;
  ASSERT_EQ(Run("call PALStore_GetUsbFuncDriver out"), 0) << output;
  EXPECT_TRUE(Printed("argument 1: 2 (0x2)")) << output;
  EXPECT_EQ(Run("call PALBOOT_BootTerminal 49"), 0);
  EXPECT_EQ(output, "PALBOOT_BootTerminal = no answer: restart, cold\n");
  EXPECT_EQ(Run("journal --effect power"), 0);
  EXPECT_EQ(output, "     0.000 p2 t1 power restart, cold\n");
  EXPECT_EQ(
      Run("shell", "call PALBOOT_BootTerminal 48\ncall PALStore_GetUsbFuncDriver out\nquit\n"), 0);
  EXPECT_TRUE(Printed("PALBOOT_BootTerminal = no answer: restart, warm\n")) << output;
  EXPECT_TRUE(Printed("argument 1: 2 (0x2)")) << output;
  EXPECT_FALSE(Printed("misuse")) << output;
}

TEST_F(Palsim, KeepsLevelsAndLedsFromCommandToCommand) {
  ASSERT_EQ(Run("new"), 0) << output;
  EXPECT_EQ(Run("call PALLEDIsGrLedOn"), 1);
  EXPECT_EQ(Run("call PALLEDGrLedOn"), 0) << output;
  EXPECT_EQ(Run("call PALLEDIsGrLedOn"), 0);
  EXPECT_EQ(output, "PALLEDIsGrLedOn = 0x00000000 S_OK\n");
  const auto levels = [this] {
    std::ifstream file(unit / "device.toml");
    std::string line;
    while (std::getline(file, line) && line.find("{ volume") == std::string::npos) {
    }
    return line;
  };
  EXPECT_EQ(levels(), "");
  std::ofstream(unit / "registry.reg", std::ios::app)
      << "\n[HKEY_LOCAL_MACHINE\\System\\State\\Hardware]\n\"Headset\"=dword:00000001\n";
  EXPECT_EQ(Run("call PALBEEPSetSpeakerGain 4 70"), 0) << output;
  EXPECT_EQ(Run("call PALBEEPStartTagSearch"), 0) << output;
  EXPECT_EQ(levels(), "audio = { volume = 0x66666666, gain = 70 }");
  EXPECT_EQ(Run("call PALBEEPStopTagSearch"), 0) << output;
  EXPECT_EQ(levels(), "audio = { volume = 0x66666666, gain = 70 }") << "another process's";
}

TEST_F(Palsim, ShowsWhichDeviceItIs) {
  ASSERT_EQ(Run("new --sample greywing"), 0);
  EXPECT_EQ(Run("info"), 0);
  EXPECT_EQ(output,
            "Model                     0x80004005 E_FAIL\n"
            "Display model             0x80004005 E_FAIL\n"
            "Firmware                  0x80004005 E_FAIL\n"
            "Serial number             GW7-0004711-EU\n"
            "Ethernet address          (empty)\n"
            "Operating system          WINCE\n"
            "Operating system version  5.2.1235\n"
            "Hardware configuration    GX1-EXT\n"
            "Factory date 1            (empty)\n"
            "Factory date 2            (empty)\n"
            "Qualified serial number   GX1-\n"
            "The maker's own           yes\n");
  struct Case {
    std::string sample, line;
  };
  for (const Case& test : {Case{"rm21", "Model                     RM21\n"},
                           Case{"rm23", "Serial number             00504030201\n"},
                           Case{"rx", "Qualified serial number   CR7RX00123456\n"}}) {
    ASSERT_EQ(Run("new --force --sample " + test.sample), 0) << output;
    EXPECT_EQ(Run("info"), 0);
    EXPECT_TRUE(Printed(test.line)) << output;
    EXPECT_FALSE(Printed("misuse")) << output;
  }
}

TEST_F(Palsim, ShowsTheScanEngineAsTheLastCallLeftIt) {
  ASSERT_EQ(Run("new"), 0);
  EXPECT_EQ(Run("shell",
                "call PALSysio_Open\ncall PALSysio_ControlScanPower 1\n"
                "call PALSysio_SetScanTrigger 1\ncall PALSysio_Close\nquit\n"),
            0);
  EXPECT_FALSE(Printed("misuse")) << output;
  EXPECT_EQ(Run("scan"), 0);
  EXPECT_EQ(output,
            "Engine     ENG17 (internal device type 34)\n"
            "Power      on\n"
            "Scanning   enabled\n"
            "Operation  normal\n"
            "Trigger    pulled\n");
  ASSERT_EQ(Run("new --force --sample rx"), 0);
  EXPECT_EQ(Run("scan"), 1);
  EXPECT_TRUE(Printed("the device has no scan engine")) << output;
}

TEST_F(Palsim, ChecksThePasswordOfTheSampleDevice) {
  ASSERT_EQ(Run("new"), 0);
  // The first finds no key set.
  for (const char* answer :
       {"1 PAL_PASSWORD_WRONG", "0 PAL_PASSWORD_RIGHT", "0 PAL_PASSWORD_RIGHT"}) {
    EXPECT_EQ(Run("call PALSecurity_CheckPx Installer rugged21"), 0);
    EXPECT_EQ(output, std::string("PALSecurity_CheckPx = ") + answer + "\n");
  }
}

TEST_F(Palsim, PlaysAScenarioAndShowsItsTimeline) {
  const std::string good = folder.Write("good.scenario",
                                        "title A light\ndevice rm21\nscanner starts\n"
                                        "scanner calls PALLEDGrLedOn\n"
                                        "expect led LED 3 on\n");
  EXPECT_EQ(Run("run " + good), 1) << "no device yet";
  EXPECT_EQ(Run("run " + good + " --new"), 0) << output;
  EXPECT_EQ(output, "good.scenario: 1 expectations hold\n");
  const std::string page = (folder.path() / "page.html").string();
  const std::string sound = (folder.path() / "sound.wav").string();
  EXPECT_EQ(Run("timeline --html " + page + " --wav " + sound), 0);
  EXPECT_EQ(output, "");
  EXPECT_GT(std::filesystem::file_size(page), 1000u);
  EXPECT_EQ(std::filesystem::file_size(sound), 44u) << "a run without length";
  EXPECT_EQ(Run("timeline"), 0);
  EXPECT_TRUE(output.starts_with("A light\n")) << output;
  EXPECT_TRUE(Printed("PALLEDGrLedOn() returns 0x00000000 S_OK")) << output;
}

TEST_F(Palsim, DrawsThePictureOfTheReadme) {
  const std::string project = PROJECT_DIR;
  EXPECT_EQ(Run("run " + project + "/scenarios/good-read.scenario --new --svg -"), 0);
  std::ifstream file(project + "/docs/good-read.svg");
  const std::string picture(std::istreambuf_iterator<char>(file), {});
  EXPECT_TRUE(Printed(picture) && !picture.empty())
      << "palsim /tmp/unit run scenarios/good-read.scenario --new --svg docs/good-read.svg";
}

TEST_F(Palsim, SaysWhatIsWrongWithAScenarioAndPlaysNothing) {
  ASSERT_EQ(Run("new"), 0);
  const std::string bad = folder.Write("bad.scenario", "expect led LED 3 on\n");
  EXPECT_EQ(Run("run " + bad), 1);
  EXPECT_EQ(output,
            "bad.scenario:1: expected led 'LED 3 on'; there was no led line\n"
            "bad.scenario: 1 of 1 expectations do not hold\n");
  const std::string before = RunTool("palsim " + unit.string() + " journal").output;
  const std::string wrong = folder.Write("wrong.scenario", "scanner starts\nscanner dances\n");
  EXPECT_EQ(Run("run " + wrong), 2);
  EXPECT_TRUE(Printed("palsim: wrong.scenario:2: ")) << output;
  EXPECT_EQ(Run("run " + folder.Write("rx.scenario", "device rx\n")), 2);
  EXPECT_TRUE(Printed("rx.scenario is for the device rx, and this is rm21")) << output;
  EXPECT_EQ(Run("run none.scenario"), 2);
  EXPECT_TRUE(Printed("none.scenario: No such file or directory")) << output;
  EXPECT_EQ(Run("journal"), 0);
  EXPECT_EQ(output, before) << "nothing was played";
}

TEST_F(Palsim, ListsSamplesAndEffectsAndSuggestsWhatWasMeant) {
  const std::string samples = RunTool("palsim samples").output;
  EXPECT_NE(samples.find("rm23     The smaller sister of the rm21"), std::string::npos) << samples;
  const std::string effects = RunTool("palsim --effects").output;
  for (unsigned effect = 0; effect <= static_cast<unsigned>(sim::Effect::kDebug); ++effect) {
    const std::string_view name = sim::EffectName(static_cast<sim::Effect>(effect));
    EXPECT_NE(effects.find(fmt::format("  {:<10} ", name)), std::string::npos) << name;
  }
  ASSERT_EQ(Run("new"), 0);
  struct Case {
    std::string scenario, message;
  };
  for (const Case& test : {
           Case{"scanner start\n", "did you mean:\n    PROCESS starts\n"},
           Case{"expect nobody returned S_OK\n", ":1: no process nobody has started\n"},
           Case{"fail call 3 of Sleep\n", ": not reached: Sleep:3, of 0 calls\n"},
           Case{"fail call 3 of Sleep\nno more faults\n", ":2: not reached: Sleep:3, of 0 calls\n"},
       }) {
    Run("run -", test.scenario);
    EXPECT_TRUE(Printed(test.message)) << output;
  }
  Run("call PALBEEPKeyClick --fail RegSetValueExW:900");
  EXPECT_TRUE(Printed("palsim: not reached: RegSetValueExW:900, of ")) << output;
  Run("shell", "hlep\n");
  EXPECT_TRUE(Printed("there is no command 'hlep'; did you mean help?")) << output;
}

TEST_F(Palsim, PrintsAndKeepsNoPasswordNoForgedLineAndNoControlCharacter) {
  ASSERT_EQ(Run("new"), 0);
  Run("call PALSecurity_CheckPx member geheim");
  EXPECT_TRUE(Printed("PALSecurity_CheckPx = ")) << output;
  Run("run -", "rig starts\nrig calls PALSecurity_CheckPx member geheim\n");
  EXPECT_EQ(Run("call PALBEEPKeyClick --process 'a\n     0.000 p9 t9 led x.exe'"), 2);
  EXPECT_TRUE(Printed("is no name of a process")) << output;
  Run("run - --timeline", "title \x1B[31m\nset HKLM\\A\\\x1B[31mB = 5\n");
  EXPECT_TRUE(Printed("\\x1B[31m\n") && !Printed("\x1B")) << output;
  Run("run -", "\x1B[31m\n");
  EXPECT_FALSE(Printed("\x1B")) << output;
  std::ofstream(unit / "journal.log", std::ios::app) << "     0.000 p1 t1 led \x1B[31m\n";
  Run("journal");
  EXPECT_TRUE(Printed("PALSecurity_CheckPx(member, ***) = ")) << output;
  EXPECT_FALSE(Printed("\x1B") || Printed("geheim") || Printed(" p9 ")) << output;
  Run("timeline --html -");
  EXPECT_FALSE(Printed("\x1B") || Printed("geheim"));
}

TEST_F(Palsim, TellsWrongUseFromAnUnusableDevice) {
  struct Case {
    std::string arguments;
    int status;
    std::string message;
  };
  ASSERT_EQ(Run("new"), 0);
  for (const Case& test : {
           Case{"new", 2, "is a device already; --force makes it anew"},
           Case{"new --force --sample none", 2, "there is no sample device 'none'"},
           Case{"call ConfigStore", 2, "did you mean PALMFGOpt_ConfigStoreRegUpdate?"},
           Case{"call PALBEEPGoodRed 1", 2, "did you mean PALBEEPGoodReadEx?"},
           Case{"cal PALBEEPKeyClick", 2, "did you mean call?"},
           Case{"journal --effect mutx", 2, "did you mean mutex?"},
           Case{"call PALMFGOpt_ConfigStoreRegUpdate 1", 2, "takes 0 argument(s), 1 given"},
           Case{"call PALMFGOpt_ConfigStoreRegUpdate --fail Reg:1", 2, "Reg is no platform call"},
           Case{"journal --effect none", 2, "there is no effect 'none'"},
           Case{"", 2, "A subcommand is required"},
           Case{"call PALCOMxPwr_SetPower COM1: 1", 2, "'1' is no port's power"},
           Case{"dance", 2, ""},
           Case{"--help", 0, "Examples:"},
       }) {
    EXPECT_EQ(Run(test.arguments), test.status) << test.arguments;
    EXPECT_TRUE(Printed(test.message)) << output;
  }
  std::ofstream(unit / "device.toml") << "name = 5\n";
  EXPECT_EQ(Run("call PALMFGOpt_ConfigStoreRegUpdate"), 1);
  EXPECT_TRUE(Printed("device.toml:1: ")) << output;
  std::filesystem::remove_all(unit);
  EXPECT_EQ(Run("journal"), 1);
  EXPECT_TRUE(Printed("is no device")) << output;
}

}  // namespace

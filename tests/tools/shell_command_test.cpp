// palsim's shell: what can be typed, and that nothing which ends it loses what was done.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/terminal.h"

namespace {

class Shell : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RunTool("palsim " + unit + " new").status, 0); }

  int Run(const std::string& lines) {
    const CommandResult result = RunTool("palsim " + unit + " shell", folder.Write("input", lines));
    output = result.output;
    return result.status;
  }
  [[nodiscard]] bool Printed(const std::string& text) const {
    return output.find(text) != std::string::npos;
  }
  // That the device in the folder has seen the call, and has its LED on.
  [[nodiscard]] bool IsSaved() const {
    return RunTool("palsim " + unit + " journal --effect call").output.find("PALLEDGrLedOn() = ") !=
               std::string::npos &&
           RunTool("palsim " + unit + " call PALLEDIsGrLedOn").status == 0;
  }
  // The exit status of a script for the host's shell, in which $palsim runs the tool on the device.
  [[nodiscard]] int Script(const std::string& text) const {
    const std::string file =
        folder.Write("script", "cd " + folder.path().string() + "\npalsim='" BINARY_DIR "/palsim " +
                                   unit + "'\n" + text);
    return WEXITSTATUS(std::system(("bash " + file).c_str()));
  }

  TemporaryFolder folder;
  std::string unit = (folder.path() / "unit").string();
  std::string output;
};

TEST_F(Shell, PrintsResultsAloneUnlessTheJournalIsOn) {
  EXPECT_EQ(Run("call PALLEDGrLedOn\njournal on\ncall PALLEDGrLedOff\njournal off\n"
                "call PALLEDIsGrLedOn\nexit\ncall PALNothing\n"),
            0);
  EXPECT_TRUE(
      output.starts_with("PALLEDGrLedOn = 0x00000000 S_OK\n"
                         "       0.000 p2 t1 call PALLEDGrLedOff()\n"))
      << output;
  EXPECT_TRUE(
      output.ends_with("\nPALLEDGrLedOff = 0x00000000 S_OK\n"
                       "PALLEDIsGrLedOn = 0x80004005 E_FAIL\n"))
      << output;
}

TEST_F(Shell, TakesTheCommandsOfADevice) {
  const std::string scenario = folder.Write("a light.scenario", "expect led 3 is off\n");
  struct Case {
    std::string line, printed;
    int status = 0;
  };
  for (const Case& test : {
           Case{"info", "Model                     RM21\n"},
           Case{"keys", "\n  5  Left Side Top      6 Windows default"},
           Case{"scan", "Power      off\n"},
           Case{"registry \"HKLM\\Software\\Dravonel\\PAL\"", "\"IntGRI\"=dword:00000001\n"},
           Case{"call PALLEDIsGrLedOn\njournal --effect call --last 1",
                "call PALLEDIsGrLedOn() = 0x80004005 E_FAIL\n"},
           Case{"call PALKEYGetNumButtons out\ntrace --last 9", " info "},
           Case{"run \"" + scenario + "\"", "1 expectations hold\n"},
           Case{"advance 1500\ntimeline", "dvlkbd.exe     started"},
           Case{"call PALBEEPKeyClick --fail Sleep:900", "not reached: Sleep:900"},
           Case{"help call", "--fail TEXT"},
           Case{"help", "  timeline   Show "},
           Case{"usage PALKEYGetType", "PALKEYGetType TYPE\n"},
           Case{"call", "EXPORT is required; 'help call' tells more", 2},
           Case{"call PALKEYGetType call", "'call' is no 32-bit number", 2},
           Case{"call PALBEEPKeyClick --fail Nothing", "Nothing is no platform call", 2},
           Case{"journal --effect mutx", "did you mean mutex?", 2},
           Case{"run none.scenario", "none.scenario: No such file or directory", 2},
           Case{"timeline --html /nowhere/page", "/nowhere/page", 2},
           Case{"run /dev/null", "/dev/null is no file", 2},
           Case{"help none", "there is no command 'none'", 2},
           Case{"advance soon", "MS = soon", 2},
       }) {
    EXPECT_EQ(Run(test.line + "\n"), test.status) << test.line;
    EXPECT_TRUE(Printed(test.printed)) << test.line << '\n' << output;
  }
}

TEST_F(Shell, ClearsALineAtControlCAndEndsAtTheNext) {
  Terminal terminal({"palsim", unit, "shell"});
  ASSERT_TRUE(terminal.Shows("palsim> "));
  terminal.Type("call PALLEDGrLedO\t\t");
  ASSERT_TRUE(terminal.Shows("PALLEDGrLedOff")) << "the editor has the line";
  terminal.Type("\x03");
  ASSERT_TRUE(terminal.Shows("palsim> "));
  terminal.Type("call PALLEDGrLedOn\n");
  EXPECT_TRUE(terminal.Shows("PALLEDGrLedOn = 0x00000000 S_OK"));
  ASSERT_TRUE(terminal.Shows("palsim> "));
  terminal.Type("\x03");
  EXPECT_TRUE(terminal.Shows("palsim> ")) << "a new line begins";
  terminal.Type("\x03");
  EXPECT_EQ(terminal.Wait(), 0);
  EXPECT_TRUE(IsSaved());
}

TEST_F(Shell, CompletesOptionsAndFiles) {
  folder.Write("light.scenario", "expect led 3 is off\n");
  Terminal terminal({"palsim", unit, "shell"});
  ASSERT_TRUE(terminal.Shows("palsim> "));
  terminal.Type("ru\t " + (folder.path() / "lig").string() + "\t \n");
  EXPECT_TRUE(terminal.Shows("1 expectations hold"));
  terminal.Type("jour\t --ef\t proc\t --la\t 1\n");
  EXPECT_TRUE(terminal.Shows("process dvlkbd.exe started"));
  terminal.Type("hel\t adv\t\n");
  EXPECT_TRUE(terminal.Shows("Milliseconds"));
  terminal.Type("exi\t\n");
  EXPECT_EQ(terminal.Wait(), 0);
}

TEST_F(Shell, RemembersNoPasswordAndWritesThroughNoLink) {
  const std::string target = folder.Write("target", "mine");
  std::filesystem::create_symlink(target, unit + "/shell_history");
  Terminal terminal({"palsim", unit, "shell"});
  ASSERT_TRUE(terminal.Shows("palsim> "));
  terminal.Type("call --fail Sleep PALSecurity_CheckPx m s3cret\n");
  ASSERT_TRUE(terminal.Shows("palsim> "));
  terminal.Type("call PALLEDGrLedOn\n");
  ASSERT_TRUE(terminal.Shows("palsim> "));
  terminal.Type("exit\n");
  EXPECT_EQ(terminal.Wait(), 0);
  const auto read = [](const std::string& file) {
    std::ifstream stream(file);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  };
  EXPECT_EQ(read(target), "mine");
  const std::string history = read(unit + "/shell_history");
  EXPECT_NE(history.find("PALLEDGrLedOn"), std::string::npos) << history;
  EXPECT_EQ(history.find("s3cret"), std::string::npos) << history;
}

TEST_F(Shell, SavesAtASignalAndWhenItsTerminalIsClosed) {
  for (const int signal : {SIGTERM, SIGHUP, 0}) {
    ASSERT_EQ(RunTool("palsim " + unit + " new --force").status, 0);
    Terminal terminal({"palsim", unit, "shell"});
    terminal.Type("call PALLEDGrLedOn\n");
    ASSERT_TRUE(terminal.Shows("S_OK"));
    ASSERT_TRUE(terminal.Shows("palsim> "));
    if (signal != 0) terminal.Signal(signal);
    if (signal == 0) terminal.Close();
    EXPECT_EQ(terminal.Wait(), 128 + (signal != 0 ? signal : SIGHUP));
    EXPECT_TRUE(IsSaved()) << signal;
  }
}

// Each answer comes when its line is there; a script that waits for it can go on.
TEST_F(Shell, SavesAtASignalAlsoBehindAPipe) {
  EXPECT_EQ(Script("mkfifo in out\n$palsim shell <in >out &\nexec 3>in 4<out\n"
                   "echo call PALLEDGrLedOn >&3\nread -r -u 4 answer\nkill -TERM $!\nwait $!\n"),
            128 + SIGTERM);
  EXPECT_TRUE(IsSaved());
}

TEST_F(Shell, SavesWhereNothingCanBePrinted) {
  const std::string lines = "echo call PALLEDGrLedOn; for i in {1..100}; do echo exports; done";
  for (const char* sink : {">/dev/full", "| head -c 1 >/dev/null"}) {
    ASSERT_EQ(RunTool("palsim " + unit + " new --force").status, 0);
    const std::string script = fmt::format(
        "set -o pipefail\n({}) 2>/dev/null | $palsim shell 2>/dev/null {}", lines, sink);
    EXPECT_NE(Script(script), 0);
    EXPECT_TRUE(IsSaved()) << sink;
  }
}

}  // namespace

// palsim facts as a person runs it, on what a simulated device answered and on changed copies of
// it.
#include <gtest/gtest.h>

#include "platform/conformance/report.h"
#include "platform/sim/device_folder.h"
#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"

namespace {

std::string AnswersOfRm21() {
  sim::Device device;
  sim::LoadDevice(device, PROJECT_DIR "/devices/rm21");
  sim::Process process(device, "palcheck.exe");
  process.Run([] { EXPECT_TRUE(conformance::WriteReport()); });
  const auto* const bytes = device.files().Read("\\palcheck.txt");
  return bytes == nullptr ? "" : std::string(bytes->begin(), bytes->end());
}

std::string Replaced(std::string text, const std::string& old_text, const std::string& new_text) {
  const std::size_t at = text.find(old_text);
  EXPECT_NE(at, std::string::npos) << old_text;
  return at == std::string::npos ? text : text.replace(at, old_text.size(), new_text);
}

TEST(PalsimFacts, ShowsWhatAHandheldAnswersOtherwise) {
  struct Case {
    std::string file, options;
    int status;
    std::string output;  // a part of it
  };
  const std::string same = AnswersOfRm21();
  const std::string flush = "registry: flush = 0\r\n";
  const TemporaryFolder folder;
  for (const Case& test : {
           Case{same, "", 0, " 0 otherwise, 0 not in the file, 0 unknown\nExports"},
           Case{same, "--device " PROJECT_DIR "/devices/rx", 0, " 0 otherwise, 0 not in the file"},
           Case{same, "--device rm23 --library", 0, "PALSysinfo_GetModel\n  handheld          0x0"},
           Case{Replaced(same, "0 zebra 0 ant 259", "0 ant\x1B 0 zebra 259"), "", 1,
                "registry: order of keys [chosen]\n  handheld          0 ant\\x1B 0 zebra 259\n"
                "  simulated device  0 zebra 0 ant 259\nFacts of the platform"},
           Case{Replaced(same, flush, "new: one = 5 [chosen]\n"), "", 1,
                "not in the file: registry: flush\nunknown to this version: new: one = 5\n"
                "Facts of the platform"},
           Case{Replaced(same, flush, flush + "PALNew = 0x0\n"), "", 0,
                "0 not in the file, 1 unknown\n"},
           Case{same.substr(0, same.find(flush) + 18), "", 1,
                "The file is cut, palcheck.exe did not end. Its last question: registry: flush\n"},
           Case{same.substr(0, 20), "", 1, " did not end. Its last question: none\n"},
           Case{"", "", 2, " is not from palcheck.exe"},
           Case{std::string("MZ\0\x03", 4), "", 2, " is not from palcheck.exe"},
           Case{Replaced(same, "registry", "no\x01thing\nr"), "", 2,
                ":2 is no answer: no\\x01thing"},
           Case{same + same, "", 2, " stands behind the end of the report"},
           Case{same + std::string(2'000'000, 'a'), "", 2, " is larger than any report"},
           Case{same, "--device none", 2, "there is no sample device 'none'"},
       }) {
    const std::string file = folder.Write("input", test.file);
    for (const std::string& from : {file, std::string("-")}) {
      const CommandResult result = RunTool("palsim facts " + from + " " + test.options, file);
      EXPECT_EQ(result.status, test.status) << test.output;
      EXPECT_NE(result.output.find(test.output), std::string::npos) << result.output;
    }
  }
}

TEST(PalsimFacts, TakesAFileAndNoDevice) {
  const TemporaryFolder folder;
  const std::string unit = folder.path().string();
  struct Case {
    std::string arguments, message;
  };
  for (const auto& [arguments, message] : {
           Case{"facts", "FILE is required"},
           Case{"facts " + unit, ": Is a directory"},
           Case{"facts " + unit + "/none", "/none: No such file or directory"},
           Case{unit + " facts -", "was not expected: " + unit},
           Case{"info", "DEVICE is required"},
       }) {
    const CommandResult result = RunTool("palsim " + arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_NE(result.output.find(message), std::string::npos) << result.output;
  }
}

}  // namespace

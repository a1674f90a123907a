// dcecfg as a person runs it.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"

namespace {

TEST(DcecfgCommand, AnswersWithItsExitStatus) {
  struct Case {
    std::string arguments;
    int status;
  };
  const TemporaryFolder folder;
  const std::string damaged = folder.Write("damaged", "\xBB\x09");
  const std::string sample = PROJECT_DIR "/devices/rm21/files/ConfigStore/dcecfg";
  for (const Case& test : {Case{"check " + sample, 0}, Case{"--help", 0}, Case{"dump", 2},
                           Case{"check " + damaged, 1}, Case{"dump " + damaged + ".missing", 1}}) {
    EXPECT_EQ(RunTool("dcecfg " + test.arguments).status, test.status) << test.arguments;
  }
}

TEST(DcecfgCommand, ChecksNothingThatIsNoConfigurationStore) {
  const TemporaryFolder folder;
  constexpr const char* kNone = "No section is found; the device would write nothing\n";
  constexpr const char* kText = "This is the text form; 'dcecfg build' makes the file of it\n";
  struct Case {
    std::string file;
    std::string output;
  };
  for (const Case& test :
       {Case{folder.Write("empty", ""), kNone}, Case{folder.Write("photo", "\x89PNG\r\n"), kNone},
        Case{PROJECT_DIR "/devices/rm21/dcecfg.txt", kText}}) {
    const CommandResult result = RunTool("dcecfg check " + test.file);
    EXPECT_EQ(result.status, 1) << test.file;
    EXPECT_EQ(result.output, test.output);
  }
}

TEST(DcecfgCommand, LeavesNoFileOfAWrongText) {
  const TemporaryFolder folder;
  const std::string text = folder.Write("text", "direct {\n  indexed 9 1\n}\n");
  const CommandResult result = RunTool("dcecfg build " + text + " -o " + text + ".out");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, text + ":2:11: the index is a number from 0 to 8\n");
  EXPECT_FALSE(std::filesystem::exists(text + ".out"));
}

}  // namespace

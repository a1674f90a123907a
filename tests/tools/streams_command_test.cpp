// What the tools read and write: full disks, closed pipes, links, and "-".
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"

namespace {

constexpr const char* kScenario = PROJECT_DIR "/scenarios/good-read.scenario";
constexpr const char* kStore = PROJECT_DIR "/devices/rm21/files/ConfigStore/dcecfg";
constexpr const char* kText = PROJECT_DIR "/devices/rm21/dcecfg.txt";

class ToolStreams : public ::testing::Test {
 protected:
  ToolStreams() { EXPECT_EQ(RunTool("palsim " + unit + " new").status, 0); }

  TemporaryFolder folder;
  std::string unit = folder.path() / "unit";
};

TEST_F(ToolStreams, AnOutputThatIsNotTakenIsAnErrorWithItsCause) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  close(ends[0]);
  const auto before = std::signal(SIGPIPE, SIG_IGN);  // so that the tools see the error
  const std::string palsim = "palsim " + unit;
  for (const std::string& command : std::vector<std::string>{
           "palsim --exports", "palsim --help", palsim + " info", palsim + " scan",
           palsim + " registry", palsim + " call PALBEEPKeyClick",
           palsim + " call PALBEEPKeyClick --journal", palsim + " journal", palsim + " timeline",
           palsim + " run --timeline " + kScenario, palsim + " timeline --html -",
           palsim + " timeline --wav -", palsim + " timeline --trace -", palsim + " new --force",
           std::string("dcecfg dump ") + kStore, std::string("dcecfg check ") + kStore,
           std::string("dcecfg build -o - ") + kText}) {
    const CommandResult full = RunTool(command + " 2>&1 >/dev/full #");
    EXPECT_EQ(full.status, 1) << command;
    EXPECT_NE(full.output.find(": standard output: No space left on device\n"), std::string::npos)
        << command << full.output;
    const CommandResult closed = RunTool(fmt::format("{} 2>&1 >&{} #", command, ends[1]));
    EXPECT_EQ(closed.status, 1) << command;
    EXPECT_EQ(closed.output.find("standard output"), std::string::npos) << closed.output;
  }
  std::signal(SIGPIPE, before);
  close(ends[1]);
}

TEST_F(ToolStreams, ReadLinksPipesAndStandardInput) {
  const std::string link = folder.path() / "link";
  const std::string pipe = folder.path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const auto& [command, input] :
       {std::pair{std::string("/palsim " + unit + " run --new "), std::string(kScenario)},
        std::pair{std::string("/dcecfg check "), std::string(kStore)},
        std::pair{std::string("/dcecfg build -o - "), std::string(kText)}}) {
    std::filesystem::remove(link);
    std::filesystem::create_symlink(input, link);
    EXPECT_EQ(RunTool(command.substr(1) + link).status, 0) << command;
    EXPECT_EQ(RunTool(command.substr(1) + "-", input).status, 0) << command;
    EXPECT_EQ(RunTool(fmt::format("dcecfg --help > /dev/null; cat {} > {} & {}{}{}", input, pipe,
                                  BINARY_DIR, command, pipe))
                  .status,
              0)
        << command;
  }
  const CommandResult folder_given = RunTool("dcecfg dump " + unit);
  EXPECT_EQ(folder_given.status, 1);
  EXPECT_EQ(folder_given.output, "dcecfg: " + unit + ": Is a directory\n");
}

TEST_F(ToolStreams, WriteThroughLinksAndToStandardOutput) {
  const std::string link = folder.path() / "link";
  const std::string target = folder.Write("target", "old");
  std::filesystem::create_symlink(target, link);
  EXPECT_EQ(RunTool("dcecfg build " + std::string(kText) + " -o " + link).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(RunTool("dcecfg dump " + target).output,
            RunTool("dcecfg dump " + std::string(kStore)).output);
  EXPECT_EQ(RunTool("dcecfg build " + std::string(kText) + " -o - | cmp - " + kStore + " #").status,
            0);
  const CommandResult full = RunTool("dcecfg build " + std::string(kText) + " -o /dev/full");
  EXPECT_EQ(full.status, 1);
  EXPECT_EQ(full.output, "dcecfg: /dev/full: No space left on device\n");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
  EXPECT_EQ(RunTool("palsim " + unit + " call PALBEEPKeyClick").status, 0);
  EXPECT_EQ(RunTool("palsim " + unit + " timeline --html - | head -c 9 #").output, "<!DOCTYPE");
}

}  // namespace

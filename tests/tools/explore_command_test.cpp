// palsim explore from the command line: a program with a fault, its scenario, and reports.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

bool Says(const CommandResult& result, const std::string& text) {
  return result.output.find(text) != std::string::npos;
}

TEST(ExploreCommand, FindsTheFaultOfAProgramAndWritesItsScenario) {
  const TemporaryFolder folder;
  const std::string found = folder.path() / "found";
  const std::string program = BINARY_DIR "/alarm.so";
  const CommandResult explored =
      RunTool("palsim explore --device rm21 --seeds 1-50 --program " + program + " --out " + found);
  EXPECT_EQ(explored.status, 1);
  EXPECT_TRUE(Says(explored, "does not hold: the level that is put back is one"))
      << explored.output;
  std::string scenario;
  for (const auto& entry : fs::directory_iterator(found)) {
    if (entry.path().extension() == ".scenario") scenario = entry.path();
  }
  ASSERT_NE(scenario, "");
  const std::string unit = folder.path() / "unit";
  const CommandResult played = RunTool("palsim " + unit + " run " + scenario + " --new");
  EXPECT_EQ(played.status, 1);
  EXPECT_TRUE(Says(played, "expected programs-hold")) << played.output;
}

TEST(ExploreCommand, MergesReports) {
  const TemporaryFolder folder;
  const std::string one = folder.path() / "one";
  const std::string two = folder.path() / "two";
  for (const std::string& shard : {" --shard 1/2 --out " + one, " --shard 2/2 --out " + two}) {
    EXPECT_EQ(RunTool("palsim explore --seeds 1-10 --steps 20 --faults none" + shard).status, 0);
  }
  const CommandResult merged = RunTool("palsim explore --merge " + one + " " + two);
  EXPECT_EQ(merged.status, 0);
  EXPECT_TRUE(Says(merged, "10 seeds, ")) << merged.output;
  std::ofstream(two + "/report.json") << "{\"seeds\": 4";
  EXPECT_EQ(RunTool("palsim explore --merge " + one + " " + two).status, 2);
}

TEST(ExploreCommand, RefusesWhatItDoesNotUnderstand) {
  for (const char* options : {"--seeds 5-4", "--shard 3/2", "--faults always", "--for soon",
                              "--for 0s", "--steps 0", "--processes 9", "--device nothing",
                              "--jobs -1", "--program /no/such.so", "unit explore"}) {
    const CommandResult result = RunTool(std::string("palsim explore ") + options);
    EXPECT_EQ(result.status, 2) << options << "\n" << result.output;
  }
}

}  // namespace

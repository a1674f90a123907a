// palsim explore from the command line: programs with a fault, their scenarios, and reports.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"
#include "tools/palsim/explore/play.h"

namespace {

namespace fs = std::filesystem;

bool Says(const CommandResult& result, const std::string& text) {
  return result.output.find(text) != std::string::npos;
}

std::string Read(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

// A folder's files, with what they hold.
std::map<std::string, std::string> Files(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files[entry.path().lexically_relative(folder)] = Read(entry);
  }
  return files;
}

// What stands in a scenario that a search with the program has written, and its name.
std::pair<std::string, std::string> FirstScenario(const fs::path& folder) {
  for (const auto& [name, text] : Files(folder)) {
    if (name.ends_with(".scenario")) return {name, text};
  }
  return {};
}

constexpr const char* kWithAlarm = " --device rm21 --seeds 1-50 --program " BINARY_DIR "/alarm.so";

TEST(ExploreCommand, FindsTheFaultOfAProgramAndWritesItsScenario) {
  const TemporaryFolder folder;
  const std::string found = folder.path() / "found";
  const CommandResult explored = RunTool(std::string("palsim explore --out ") + found + kWithAlarm);
  EXPECT_EQ(explored.status, 1);
  EXPECT_TRUE(Says(explored, "does not hold: the level that is put back is one"))
      << explored.output;
  const auto [name, text] = FirstScenario(found);
  ASSERT_NE(name, "");
  EXPECT_LT(std::ranges::count(text, '\n'), 15) << text;
  const CommandResult played = RunTool("palsim " + (folder.path() / "unit").string() + " run " +
                                       found + "/" + name + " --new");
  EXPECT_EQ(played.status, 1);
  EXPECT_TRUE(Says(played, "expected programs-hold")) << played.output;
  // A folder with findings in it is not used again.
  const auto files = Files(found);
  EXPECT_EQ(RunTool("palsim explore --seeds 1 --out " + found).status, 2);
  EXPECT_EQ(Files(found), files);
}

TEST(ExploreCommand, ShowsTheFaultOfTheExample) {
  const TemporaryFolder folder;
  std::string text = Read(PROJECT_DIR "/examples/alarm.scenario");
  const std::string program = "./alarm.so";
  text.replace(text.rfind(program), program.size(), BINARY_DIR "/alarm.so");
  const CommandResult played = RunTool("palsim " + (folder.path() / "unit").string() + " run " +
                                       folder.Write("alarm.scenario", text) + " --new");
  EXPECT_EQ(played.status, 1);
  EXPECT_TRUE(Says(played, "expected programs-hold")) << played.output;
}

// On a device of one's own; also where jobs are lost that had played worlds already.
TEST(ExploreCommand, GivesTheSameForAnyNumberOfJobs) {
  const TemporaryFolder folder;
  const std::string device = folder.path() / "my device";
  fs::copy(PROJECT_DIR "/devices/rm21", device, fs::copy_options::recursive);
  const std::string command = "palsim explore --seeds 1-60 --faults often --device '" + device +
                              "' --program " BINARY_DIR "/crashing_alarm.so --out ";
  const std::string one = folder.path() / "one";
  const std::string three = folder.path() / "three";
  const CommandResult first = RunTool(command + one + " --jobs 1 2>/dev/null; :");
  const CommandResult second = RunTool(command + three + " --jobs 3 2>/dev/null; :");
  EXPECT_EQ(first.output, second.output);
  EXPECT_TRUE(Says(first, "60 seeds, ")) << first.output;
  EXPECT_TRUE(Says(first, "worlds-end, seed ")) << first.output;
  EXPECT_TRUE(Says(first, "its process crashed: Aborted")) << first.output;
  EXPECT_TRUE(Says(first, " --device '" + device + "'")) << first.output;
  EXPECT_EQ(Files(one), Files(three));
  // The scenario is played on the copy of the device.
  const auto [name, text] = FirstScenario(one);
  ASSERT_NE(name, "");
  const CommandResult played = RunTool("palsim " + (folder.path() / "unit").string() + " run " +
                                       one + "/" + name + " --new --sample " + one + "/device");
  EXPECT_EQ(played.status, 1);
  EXPECT_TRUE(Says(played, "expected programs-hold")) << played.output;
}

TEST(ExploreCommand, LosesNothingWithAJob) {
  const std::string command = "palsim explore --seeds 1-100 --jobs 2 2>/dev/null";
  const CommandResult whole = RunTool(command + "; :");
  const CommandResult with_loss = RunTool(
      command +
      " & while kill -0 $! && job=$(cut -d' ' -f1 /proc/$!/task/$!/children) && [ ! \"$job\" ];"
      " do :; done; kill -9 $job; wait $!");
  EXPECT_EQ(with_loss.status, 0);
  EXPECT_TRUE(Says(whole, "100 seeds, ")) << whole.output;
  EXPECT_EQ(with_loss.output, whole.output);
}

TEST(ExploreCommand, ReportsWhatItHasFoundWhereItIsEnded) {
  const TemporaryFolder folder;
  const std::string out = folder.path() / "out";
  const CommandResult ended =
      RunTool("palsim explore --seeds 1-4294967295 --out " + out +
              " 2>&1 & while kill -0 $! && [ ! -e " + out + " ]; do :; done; kill $!; wait $!");
  EXPECT_EQ(ended.status, 1);
  EXPECT_TRUE(Says(ended, " seeds, ")) << ended.output;
  EXPECT_TRUE(Says(ended, "palsim: the search was ended by a signal\n")) << ended.output;
  EXPECT_TRUE(fs::exists(out + "/report.json"));
}

TEST(ExploreCommand, MergesReports) {
  const TemporaryFolder folder;
  const std::string one = folder.path() / "one";
  const std::string two = folder.path() / "two";
  for (const std::string& shard : {" --shard 1/2 --out " + one, " --shard 2/2 --out " + two}) {
    EXPECT_EQ(RunTool("palsim explore --seeds 1-10 --steps 20 --faults none" + shard).status, 0);
  }
  const std::string merge = "palsim explore --merge " + one + " " + two;
  const CommandResult merged = RunTool(merge);
  EXPECT_EQ(merged.status, 0);
  EXPECT_TRUE(Says(merged, "10 seeds, ")) << merged.output;
  EXPECT_EQ(RunTool(merge + " " + one + "/.").status, 2);

  const std::string report = Read(two + "/report.json");
  const auto with = [&](const std::string& old, const std::string& text) {
    std::string changed = report;
    return changed.replace(changed.find(old), old.size(), text);
  };
  const std::string finding =
      R"("findings": [{"property": "../escaped", "seed": 1, "how": "", "command": "",
                       "scenario": "x", "lines": []}])";
  for (const std::string& wrong :
       {std::string(R"({"seeds": 4)"), with("\"seeds\": ", "\"seeds\": -"),
        with("\"findings\": []", finding), with("\"findings\": []", "\"findings\": 1")}) {
    std::ofstream(two + "/report.json") << wrong;
    EXPECT_EQ(RunTool(merge + " --out " + (folder.path() / "all").string()).status, 2) << wrong;
  }
  EXPECT_FALSE(fs::exists(folder.path() / "escaped-1.scenario"));
}

// The journal of a whole world, with its threads and faults, in two processes: their addresses
// differ, and the order in which the host runs their threads.
TEST(ExploreCommand, LeavesTheSameJournalForTheSameSeed) {
  const TemporaryFolder folder;
  for (const std::uint64_t seed : {3U, 4U, 5U, 6U}) {
    const palsim::World world = palsim::MakeWorld(seed, {.faults = "often"});
    std::string text = "device " + world.sample->name + "\n";
    for (const palsim::Move& move : Play(*world.sample, world.moves, {}).moves) {
      text += move.Text() + "\n";
    }
    const std::string scenario = folder.Write("world.scenario", text);
    const fs::path one = folder.path() / fmt::format("one{}", seed);
    const fs::path two = folder.path() / fmt::format("two{}", seed);
    for (const fs::path& unit : {one, two}) {
      const CommandResult played =
          RunTool("palsim " + unit.string() + " run " + scenario + " --new --journal");
      EXPECT_NE(played.status, 2) << played.output;
      EXPECT_GT(played.output.size(), 10'000U);
    }
    EXPECT_EQ(Files(one), Files(two)) << seed;
  }
}

TEST(ExploreCommand, RefusesWhatItDoesNotUnderstand) {
  for (const char* options :
       {"--seeds 5-4", "--shard 3/2", "--faults always", "--for soon", "--for 0s", "--for -5m",
        "--steps 0", "--processes 9", "--device nothing", "--jobs -1", "--program /no/such.so",
        "unit explore"}) {
    const CommandResult result = RunTool(std::string("palsim explore ") + options);
    EXPECT_EQ(result.status, 2) << options << "\n" << result.output;
  }
}

}  // namespace

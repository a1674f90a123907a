// `palsim test`: many scenarios on many devices, and what CI systems read of it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"

namespace {

using nlohmann::json;

// Two calls that have waited for the same moment. Some seeds have the second end first.
constexpr const char* kRace =
    "device rm21\nscanner starts\nother starts\n"
    "scanner begins PALLEDGrLedToggle 2 as flash\nwait 220 ms\n"
    "other begins PALBEEPGoodReadEx 1 as beep\nwait for flash\nwait for beep\n"
    "expect call PALLEDGrLedToggle(2) = *\nexpect call PALBEEPGoodReadEx(1) = *\n";
constexpr const char* kLight =
    "scanner starts\nscanner calls PALLEDGrLedOn\nexpect call PALLEDGrLedOn() = *\n";

class Matrix : public ::testing::Test {
 protected:
  // The exit status; what was printed is in `output`.
  int Test(const std::string& arguments) {
    const CommandResult result = RunTool("palsim test " + arguments);
    output = result.output;
    return result.status;
  }
  [[nodiscard]] bool Printed(const std::string& text) const {
    return output.find(text) != std::string::npos;
  }
  // The report of a test, without the times of the host.
  json Report(const std::string& arguments) {
    Test(arguments + " --json " + (folder.path() / "report").string());
    std::ifstream file(folder.path() / "report");
    json report = json::parse(file);
    for (json& test : report["cases"]) test.erase("seconds");
    return report;
  }

  TemporaryFolder folder;
  std::string output;
};

TEST_F(Matrix, GivesTheSameHoweverManyRunAtOnceAndOnHoweverManyMachines) {
  const std::string race = folder.Write("race.scenario", kRace);
  const std::string light = folder.Write("light.scenario", kLight);
  const std::string arguments = race + " " + light + " --seeds 1-12";
  const json whole = Report(arguments + " --jobs 1");
  EXPECT_EQ(whole["tests"], 12 + 4 * 12) << "the race is for the rm21 alone";
  EXPECT_GT(whole["failed"], 0) << output;
  EXPECT_GT(whole["passed"], 48) << output;
  EXPECT_TRUE(Report(arguments + " --jobs 5") == whole);
  std::multiset<std::string> parts;
  for (const char* shard : {"1/3", "2/3", "3/3"}) {
    const json part = Report(arguments + " --shard " + shard);
    for (const json& test : part["cases"]) parts.insert(test.dump());
  }
  std::multiset<std::string> all;
  for (const json& test : whole["cases"]) all.insert(test.dump());
  EXPECT_TRUE(parts == all);
}

TEST_F(Matrix, RepeatsAFailureByTheCommandThatItSays) {
  const json report =
      Report("\"" + folder.Write("it's a race.scenario", kRace) + "\" --seeds 1-12");
  ASSERT_GT(report["failed"], 0) << output;
  for (const json& test : report["cases"]) {
    if (test["result"] != "failed") continue;
    std::string command = test["again"];
    EXPECT_TRUE(Printed("  again: " + command + "\n")) << output;
    const std::string tool = BINARY_DIR "/palsim ";
    ASSERT_TRUE(command.starts_with(tool + "/tmp/again run "));
    command.replace(0, tool.size() + 10, "palsim " + (folder.path() / "again").string());
    EXPECT_EQ(RunTool(command + " --journal").status, 1) << command;
    std::ostringstream expected;
    for (const std::string line : test["journal"]) expected << line << '\n';
    EXPECT_EQ(RunTool("palsim " + (folder.path() / "again").string() + " journal --last 50").output,
              expected.str());
  }
}

TEST_F(Matrix, WritesJUnitThatIsWellFormedWhateverARunSays) {
  folder.Write("failed.scenario", "title <&\n" + std::string(kLight) +
                                      "set HKLM\\A\\B = \"\xEF\xBF\xBF ]]> <&\"\n"
                                      "expect value HKLM\\A\\B = \"x\"\nexpect led \x1B\n");
  folder.Write("passed.scenario", kLight);
  folder.Write("error.scenario", "expect nobody returned S_OK\n");
  folder.Write("other.scenario", "device rx\n");
  const std::string file = (folder.path() / "junit.xml").string();
  EXPECT_EQ(Test(folder.path().string() + " --device rm21 --junit " + file), 1);
  EXPECT_TRUE(Printed("\n1 passed, 1 failed, 1 errors, 1 skipped\n")) << output;
  EXPECT_FALSE(Printed("\x1B")) << output;
  pugi::xml_document document;
  ASSERT_TRUE(document.load_file(file.c_str(), pugi::parse_full));
  const pugi::xml_node root = document.child("testsuites");
  for (const char* count : {"failures", "errors", "skipped"}) {
    EXPECT_EQ(root.attribute(count).as_int(), 1) << count;
  }
  EXPECT_EQ(root.attribute("tests").as_int(), 4);
  struct Case {
    const char *suite, *child, *text;
  };
  for (const Case& test : {Case{"failed", "failure", "\xEF\xBF\xBD ]]> <&"},
                           Case{"error", "error", "no process nobody has started"},
                           Case{"other", "skipped", ""}, Case{"passed", "", ""}}) {
    SCOPED_TRACE(test.suite);
    const std::string name = (folder.path() / test.suite).string() + ".scenario";
    const pugi::xml_node node =
        root.find_child_by_attribute("testsuite", "name", name.c_str()).child("testcase");
    EXPECT_STREQ(node.attribute("name").value(), "rm21");
    EXPECT_STREQ(node.attribute("file").value(), name.c_str());
    EXPECT_TRUE(std::string(node.attribute("classname").as_string()).ends_with(test.suite));
    EXPECT_GE(node.attribute("time").as_double(-1), 0);
    EXPECT_STREQ(node.first_child().name(), test.child);
    EXPECT_NE(std::string(node.child(test.child).text().get()).find(test.text), std::string::npos);
  }
}

TEST_F(Matrix, SaysWhatCannotBePlayedAndWritesNothing) {
  const std::string good = folder.Write("light.scenario", kLight);
  const std::string wrong = folder.Write("wrong.scenario", "scanner dances\n");
  std::filesystem::create_directories(folder.path() / "empty");
  const std::string junit = (folder.path() / "junit.xml").string();
  struct Case {
    std::string arguments, message;
  };
  for (const Case& test : {
           Case{(folder.path() / "empty").string(), "/empty has no file that ends with .scenario"},
           Case{good + " none.scenario", "none.scenario: No such file or directory"},
           Case{folder.path().string(), "wrong.scenario:1: 'scanner dances' is no statement"},
           Case{good + " --device none", "there is no sample device 'none'"},
           Case{folder.Write("rm99", "device rm99\n"), "name its folder with --device"},
           Case{good + " --shard 0/3", "'0/3' is no shard"},
           Case{good + " --shard ''", "'' is no shard"},
           Case{good + " --seeds 5-4", "'5-4' are no seeds"},
           Case{good + " --seeds 0-4294967295", "too many seeds"},
           Case{good + " --jobs 0", "not in range"},
           Case{good + " --json /nowhere/report", "there is no folder /nowhere"},
       }) {
    EXPECT_EQ(Test(test.arguments + " --junit " + junit), 2) << test.arguments;
    EXPECT_TRUE(Printed(test.message)) << test.arguments << output;
    EXPECT_FALSE(std::filesystem::exists(junit)) << test.arguments;
  }
  EXPECT_EQ(Test(good + " --junit /dev/full"), 1);
  EXPECT_TRUE(Printed("4 passed, 0 failed") && Printed("No space left on device")) << output;
}

TEST_F(Matrix, LeavesTheDevicesFoldersAsTheyAre) {
  const std::string unit = (folder.path() / "unit").string();
  ASSERT_EQ(RunTool("palsim " + unit + " new --sample rm23").status, 0);
  const auto written = std::filesystem::last_write_time(unit + "/device.toml");
  const std::string light = folder.Write("light.scenario", kLight);
  EXPECT_EQ(Test(light + " --device " + unit + " --device " + unit), 0);
  EXPECT_EQ(output, "1 passed, 0 failed, 0 errors, 0 skipped\n") << "one device, named twice";
  EXPECT_EQ(std::filesystem::last_write_time(unit + "/device.toml"), written);
  EXPECT_FALSE(std::filesystem::exists(unit + "/runs"));
  EXPECT_EQ(RunTool("palsim " + unit + " run " + light + " --new --sample " + unit).status, 2)
      << "it would be made from itself";
  EXPECT_EQ(RunTool("palsim " + unit + " run " + folder.Write("rx", "device rx\n") +
                    " --new --sample rm21")
                .status,
            2);
  EXPECT_EQ(RunTool("palsim " + unit + " info").output.substr(0, 30),
            "Model                     RM23");
}

}  // namespace

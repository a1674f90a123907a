// `palsim diff`: where two runs part.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"

namespace {

TEST(Diff, ShowsWhereTwoRunsPart) {
  const TemporaryFolder folder;
  const std::string unit = (folder.path() / "unit").string();
  const auto run = [&](const std::string& arguments) {
    return RunTool("palsim " + unit + " " + arguments);
  };
  const std::string once =
      folder.Write("once.scenario", "scanner starts\nwait 300 ms\nscanner calls PALLEDGrLedOn\n");
  ASSERT_EQ(run("run --new " + once).status, 0);
  ASSERT_EQ(run("call PALLEDGrLedOff").status, 0);
  ASSERT_EQ(run("run " + once).status, 0) << "later on the device's clock";
  const CommandResult same = run("diff 1 3");
  EXPECT_EQ(same.output.substr(0, 9), "the same ") << same.output;
  EXPECT_EQ(same.status, 0);

  const std::string journal =
      "= run A\n= start 1000\n     1.000 p1 t1 led LED 3 on\n     1.500 p1 t1 led LED 3 off\n";
  const std::string before = folder.Write("before", "= run Old\n" + journal);
  const std::string after =
      folder.Write("after",
                   "= run B\n     0.000 p1 t1 led LED 3 on\n     0.600 p1 t1 audio gain 5\n"
                   "     0.700 p1 t1 led LED 3 off\n     0.800 p1 t1 led LED 3 on\n");
  const CommandResult differ = RunTool("palsim diff " + before + " " + after);
  EXPECT_EQ(differ.status, 1);
  EXPECT_EQ(differ.output, "- " + before + ": A\n+ " + after +
                               ": B\nThey part at line 2:\n"
                               "       0.000 p1 t1 led LED 3 on\n"
                               "-      0.500 p1 t1 led LED 3 off\n"
                               "-  the run ends here\n"
                               "+      0.600 p1 t1 audio gain 5\n"
                               "+      0.700 p1 t1 led LED 3 off\n"
                               "+      0.800 p1 t1 led LED 3 on\n"
                               "\nlines              2       4\n"
                               "audio              0       1\n"
                               "led                2       3\n");
  EXPECT_EQ(RunTool("palsim diff - " + before, folder.Write("input", journal)).status, 0);
  for (const char* wrong : {"diff 1 9", "diff 0 1", "diff 1 none", "diff 1"}) {
    EXPECT_EQ(run(wrong).status, 2) << wrong;
  }
  EXPECT_EQ(RunTool("palsim diff 1 2").status, 2) << "no device, and no such files";
  EXPECT_EQ(RunTool("palsim diff /dev/null /dev/null").status, 2);
}

}  // namespace

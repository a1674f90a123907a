// palsim's view of the keypad, before and after a change.
#include <gtest/gtest.h>

#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"

namespace {

class KeypadCommand : public ::testing::Test {
 protected:
  int Run(const std::string& arguments) {
    const CommandResult result = RunTool("palsim " + unit + " " + arguments);
    output = result.output;
    return result.status;
  }
  [[nodiscard]] bool Printed(const std::string& text) const {
    return output.find(text) != std::string::npos;
  }

  TemporaryFolder folder;
  std::string unit = (folder.path() / "unit").string();
  std::string output;
};

TEST_F(KeypadCommand, ShowsAChangeOfAButton) {
  ASSERT_EQ(Run("new"), 0) << output;
  EXPECT_EQ(Run("keys"), 0);
  for (const char* line : {
           "Buttons of HKLM\\Hardware\\Devicemap\\Keybd\\Layout\\Numeric\n",
           "\n  1  -                  not supported\n",
           "\n  5  Left Side Top      6 Windows default    ",
           "\nShiftPlane0 of HKLM\\Hardware\\Devicemap\\Keybd\\Layout\\Numeric: 162 bytes\n",
           "\n    18  07 43 00 01 00 22  Left Side Top      ordinary\n",
           "\n   150  01 10 00 00 00 c1                     kind 1\n",
       }) {
    EXPECT_TRUE(Printed(line)) << line << output;
  }
  EXPECT_FALSE(Printed("of HKLM\\Software\\Dravonel\\PAL")) << output;

  EXPECT_EQ(Run("call PALKEYSetButtonAction 5 1"), 0);
  EXPECT_EQ(Run("journal --effect driver --last 1"), 0);
  EXPECT_TRUE(Printed("keypad reloaded, Hardware\\Devicemap\\Keybd\\Layout\\Numeric: 27 records"));
  EXPECT_EQ(Run("keys"), 0);
  for (
      const char* line : {
          "\n  5  Left Side Top      1 scan               DeltaLeftScan, StateLeftScan\n",
          "\n    18  07 43 00 02 02 05  Left Side Top      event 5: DeltaLeftScan, StateLeftScan\n",
          "\nShiftPlane2 of HKLM\\Software\\Dravonel\\PAL: 6 bytes\n"
          "     0  07 43 00 01 02 22  Left Side Top      ordinary\n",
      }) {
    EXPECT_TRUE(Printed(line)) << line << output;
  }
}

TEST_F(KeypadCommand, ShowsADeviceWithoutKeypadAndOnesWithOthers) {
  ASSERT_EQ(Run("new --sample rx"), 0);
  EXPECT_EQ(Run("keys"), 0);
  EXPECT_TRUE(Printed("  0  Handle             not supported\n")) << output;
  EXPECT_TRUE(Printed("Buttons of a device without active layout\n")) << output;
  ASSERT_EQ(Run("new --force --sample rm23"), 0);
  EXPECT_EQ(Run("keys"), 0);
  EXPECT_TRUE(Printed("  2  Left Side Bottom   4 camera scan")) << output;
  EXPECT_TRUE(Printed("  3  Middle             not supported\n")) << output;
}

}  // namespace

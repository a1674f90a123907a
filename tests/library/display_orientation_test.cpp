// Turning the screen, and what stays as it was where the driver refuses.
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/host_file.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kRotation = "HKLM\\System\\GDI\\Rotation";

class Orientation : public DeviceTest {
 protected:
  Orientation() { device.registry().SetDword(kRotation, "Angle", 7); }
  Lines Turns() { return device.journal().Texts(sim::Effect::kDisplay); }
  std::optional<DWORD> Angle() { return device.registry().GetDword(kRotation, "Angle"); }

  sim::Process process{device};
  const sim::Exports& pal = process.exports();
  sim::Display& display = device.hardware().display;
};

TEST_F(Orientation, TurnsTheScreenAndRemembersTheAngle) {
  struct Case {
    LONG angle;
    DWORD code;
  };
  for (const Case& test : {Case{90, 1}, Case{180, 2}, Case{270, 4}, Case{0, 0}}) {
    LONG angle = -1;
    EXPECT_EQ(pal.PALDISPSetOrientation(test.angle), S_OK);
    EXPECT_EQ(display.orientation(), test.code);
    EXPECT_EQ(Angle(), static_cast<DWORD>(test.angle));
    EXPECT_EQ(pal.PALDISPGetOrientation(&angle), S_OK);
    EXPECT_EQ(angle, test.angle);
  }
  EXPECT_EQ(Turns(), (Lines{"rotation 90", "rotation 180", "rotation 270", "rotation 0"}));
  EXPECT_EQ(TraceLines("PAL").at(7),
            "PALSetScreenOrientation - 0x0=ChangeDisplaySettingsEx(reg_angle:270[os_angle:4]). "
            "dur: 0\\r\\n");
}

TEST_F(Orientation, ARefusedChangeLeavesEverythingAsItWas) {
  for (const LONG angle : {45, 1, -90, 360, 4, std::numeric_limits<LONG>::min()}) {
    EXPECT_EQ(pal.PALDISPSetOrientation(angle), PAL_DISP_E_NO_SUCH_ORIENTATION) << angle;
  }
  EXPECT_EQ(device.calls("ChangeDisplaySettingsEx"), 0u);
  EXPECT_EQ(CategorisedLines().at(1),
            "0xC3EE0000 PALSetScreenOrientation - ERROR input.  in: 45\\r\\n");
  device.journal().Clear();
  display.orientations = {0, 1};
  EXPECT_EQ(pal.PALDISPSetOrientation(270), PAL_DISP_E_CHANGE_REFUSED);
  device.PlanFault({.call = "ChangeDisplaySettingsEx"});
  EXPECT_EQ(pal.PALDISPSetOrientation(90), PAL_DISP_E_CHANGE_REFUSED);
  EXPECT_EQ(display.turned_to, std::nullopt);
  EXPECT_EQ(Angle(), 7u);
  EXPECT_EQ(Turns(), Lines());
  const std::string change = "PALSetScreenOrientation - 0x";
  EXPECT_EQ(TraceLines(),
            (Lines{"PALDISPSetOrientation - PALSetScreenOrientation(270)\\r\\n",
                   change + "fffffffe=ChangeDisplaySettingsEx(reg_angle:270[os_angle:4]). "
                            "dur: 0\\r\\n",
                   "PALDISPSetOrientation - PALSetScreenOrientation(90)\\r\\n",
                   change + "ffffffff=ChangeDisplaySettingsEx(reg_angle:90[os_angle:1]). "
                            "dur: 0\\r\\n"}));
}

TEST_F(Orientation, AScreenMayTurnWithoutBeingRemembered) {
  device.registry().RemoveTree(kRotation);
  EXPECT_EQ(pal.PALDISPSetOrientation(90), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(display.orientation(), 1u);
}

TEST_F(Orientation, TheDriverIsAskedAndNotTheRegistry) {
  LONG angle = -1;
  display.first_orientation = 2;
  EXPECT_EQ(pal.PALDISPGetOrientation(&angle), S_OK);
  EXPECT_EQ(angle, 180);
  for (const DWORD unknown : {3U, 5U, 90U, 0xFFFFFFFFU}) {
    display.first_orientation = unknown;
    angle = -1;
    EXPECT_EQ(pal.PALDISPGetOrientation(&angle), S_OK);
    EXPECT_EQ(angle, 0) << unknown;
  }
  angle = -1;
  device.PlanFault({.call = "ChangeDisplaySettingsEx"});
  EXPECT_EQ(pal.PALDISPGetOrientation(&angle), E_FAIL);
  EXPECT_EQ(angle, -1);
  EXPECT_EQ(pal.PALDISPGetOrientation(nullptr), E_FAIL);
  EXPECT_EQ(Turns(), Lines());
  Lines lines = CategorisedLines();
  EXPECT_EQ(lines.at(1), "0xC3EE0000 PALGetScreenOrientation - ERROR invalid sys val: 3\\r\\n");
  EXPECT_EQ(lines.at(2), "0x43EE0000 PALGetScreenOrientation - Cur orientation:0\\r\\n");
  EXPECT_EQ(
      lines.back(),
      "0xC3EE0000 PALGetScreenOrientation - ERROR 0xffffffff=ChangeDisplaySettingsEx()\\r\\n");
}

// Programs that run one after another on a device in a folder find what the one before them set.
TEST(OrientationOfADevice, IsKeptInItsFolderAsTheBootOptionIs) {
  const TemporaryFolder folder;
  const std::string author =
      "name = \"x\"\n\n[display]\nrotation = 90\nrotations = [90, 270]\n\n"
      "[configuration_driver]\nboot_option = 3\n";
  folder.Write("device.toml", author);
  const std::string state = "\n# Kept by the simulator: do not edit below.\n[state]\n";
  struct Case {
    LONG angle_before;
    DWORD option_before;
    LONG angle;
    HRESULT result;
    DWORD option;
    std::string kept;
  };
  for (const Case& test :
       {Case{90, 3, 180, PAL_DISP_E_CHANGE_REFUSED, 256, ""},
        Case{90, 3, 270, PAL_E_FILE_NOT_FOUND, 5, state + "boot_option = 5\nrotation = 270\n"},
        Case{270, 5, 90, PAL_E_FILE_NOT_FOUND, 0, state + "boot_option = 0\nrotation = 90\n"},
        Case{90, 0, 0, PAL_DISP_E_CHANGE_REFUSED, 0, state + "boot_option = 0\nrotation = 90\n"}}) {
    sim::Device device;
    sim::LoadDevice(device, folder.path());
    {
      sim::Process process(device);
      LONG angle = -1;
      DWORD option = 0xABCD;
      EXPECT_EQ(process.exports().PALDISPGetOrientation(&angle), S_OK);
      EXPECT_EQ(angle, test.angle_before);
      EXPECT_EQ(process.exports().PALPWRGetBootOption(&option), S_OK);
      EXPECT_EQ(option, test.option_before);
      EXPECT_EQ(process.exports().PALDISPSetOrientation(test.angle), test.result);
      process.exports().PALPWRSetBootOption(test.option);
    }
    sim::SaveDevice(device, folder.path());
    EXPECT_EQ(sim::ReadHostFile(folder.path() / "device.toml"), author + test.kept);
  }
}

}  // namespace

// The image-capture policy, and the COM-port exports that do nothing.
#include <string>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kPolicy = "HKLM\\Software\\Dravonel\\Policy";
constexpr const char* kName = "DisableImageCapture";

class Switches : public DeviceTest {
 protected:
  DWORD Status() {
    DWORD status = 7;
    EXPECT_EQ(process.exports().PALImageCaptureGetStatus(&status), S_OK);
    EXPECT_EQ(process.new_handles(), 0u);
    return status;
  }
  void SetAit(std::vector<std::uint8_t> bytes) {
    device.hardware().parameters[0xD7] = {std::move(bytes)};
  }
  sim::Process process{device};
};

using ImageCapture = Switches;

TEST_F(ImageCapture, IsRuledOutByTheDeviceBeforeThePolicyIsAsked) {
  device.registry().SetDword(kPolicy, kName, 0);
  SetAit({1, 0});
  const unsigned opened = device.calls("RegOpenKeyExW");
  EXPECT_EQ(Status(), 0u);
  EXPECT_EQ(device.calls("RegOpenKeyExW"), opened);
  SetAit({0, 0});
  EXPECT_EQ(Status(), 1u);
  device.hardware().parameters.clear();
  EXPECT_EQ(Status(), 1u) << "a parameter that cannot be read rules nothing out";
}

TEST_F(ImageCapture, FollowsThePolicysValue) {
  SetAit({0, 0});
  EXPECT_EQ(Status(), 0u);
  EXPECT_EQ(CategorisedLines(),
            Lines{"0xC4460000 Failed to open HKLM\\Software\\Dravonel\\Policy. dwRet = 2"});
  device.registry().Create(kPolicy);
  struct Case {
    DWORD type;
    std::vector<BYTE> data;
    DWORD status;
    Lines lines;
  };
  const std::string path = "HKLM\\Software\\Dravonel\\Policy\\DisableImageCapture";
  for (const Case& test : {
           Case{REG_NONE,
                {},
                0,
                {"0x44460000 " + path + " = 0. lRet = 2",
                 "0xC4460000 Failed to get " + path + ". lRet = 2"}},
           Case{REG_DWORD, {0, 0, 0, 0}, 1, {"0x44460000 " + path + " = 0. lRet = 0"}},
           Case{REG_DWORD, {1, 0, 0, 0}, 2, {"0x44460000 " + path + " = 1. lRet = 0"}},
           Case{REG_BINARY, {0, 1}, 2, {"0x44460000 " + path + " = 256. lRet = 0"}},
           Case{REG_SZ,
                {'1', 0, '2', 0, 0, 0},
                0,
                {"0x44460000 " + path + " = 0. lRet = 234",
                 "0xC4460000 Failed to get " + path + ". lRet = 234"}},
       }) {
    device.journal().Clear();
    if (test.type != REG_NONE) {
      device.registry().Find(kPolicy)->SetValue(u"DisableImageCapture", test.type, test.data);
    }
    EXPECT_EQ(Status(), test.status);
    EXPECT_EQ(CategorisedLines(), test.lines);
  }
}

TEST_F(ImageCapture, IsSwitchedWhereThereIsAPolicy) {
  const auto& set_enable = process.exports().PALImageCapture_SetEnable;
  EXPECT_EQ(set_enable(TRUE), 1u);
  EXPECT_EQ(CategorisedLines(),
            Lines{"0xC45A0000 Failed to open HKLM\\Software\\Dravonel\\Policy. dwRet = 2"});
  EXPECT_EQ(device.registry().Find(kPolicy), nullptr);

  device.registry().Create(kPolicy);
  for (const auto& [enable, stored] : {std::pair{0, 1u}, {1, 0u}, {0, 1u}, {5, 0u}, {-1, 0u}}) {
    EXPECT_EQ(set_enable(enable), 0u);
    EXPECT_EQ(device.registry().GetDword(kPolicy, kName), stored) << enable;
  }
  device.journal().Clear();
  device.PlanFault({.call = "RegSetValueExW", .error = 5});
  EXPECT_EQ(set_enable(0), 1u);
  EXPECT_EQ(CategorisedLines(), Lines{"0xC45A0000 Failed to set HKLM\\Software\\Dravonel\\Policy\\"
                                      "DisableImageCapture to 1. lRet = 5"});
  EXPECT_EQ(device.registry().GetDword(kPolicy, kName), 0u);
  EXPECT_EQ(process.new_handles(), 0u);
}

TEST_F(ImageCapture, RefusesNull) {
  const unsigned asked = device.calls("KernelIoControl");
  EXPECT_EQ(process.exports().PALImageCaptureGetStatus(nullptr), E_FAIL);
  EXPECT_EQ(device.calls("KernelIoControl"), asked);
}

using ComPortPower = Switches;

TEST_F(ComPortPower, DoesNothingButTrace) {
  const auto& exports = process.exports();
  const unsigned calls = device.calls("RegOpenKeyExW") + device.calls("CreateFileW");
  PALComPortPower power{1, 3};
  EXPECT_EQ(exports.PALCOMxPwr_SetPower(TEXT("COM3:"), &power), S_OK);
  EXPECT_EQ(exports.PALCOMxPwr_SetPower(nullptr, &power), S_OK);
  for (const WCHAR* port : {TEXT("COM3:"), static_cast<const WCHAR*>(nullptr)}) {
    power.enable = 1;
    EXPECT_EQ(exports.PALCOMxPwr_GetPower(port, &power), S_OK);
    EXPECT_EQ(power.enable, 0u);
    EXPECT_EQ(power.port_id, 3u);
  }
  EXPECT_EQ(exports.PALCOMxPwr_SetPower(TEXT("COM3:"), nullptr), E_FAIL);
  EXPECT_EQ(exports.PALCOMxPwr_GetPower(TEXT("COM3:"), nullptr), E_FAIL);
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0x444E0000 SetPower: COM3:, fEnable:1, portId:3 - Does nothing",
                   "0x444E0000 SetPower: (null), fEnable:1, portId:3 - Does nothing",
                   "0x444E0000 PALCOMxPwr_GetPower: Comx:COM3:, portId:3 - Does nothing",
                   "0x444E0000 PALCOMxPwr_GetPower: Comx:(null), portId:3 - Does nothing"}));
  EXPECT_EQ(device.calls("RegOpenKeyExW") + device.calls("CreateFileW"), calls);
}

}  // namespace

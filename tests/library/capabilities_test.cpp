// Which capabilities the device has, and whether they are enabled.
#include <fmt/format.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/accelerometer.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kPlugins = "HKLM\\Software\\Dravonel\\PAL\\DeviceCapabilities";
constexpr const char* kRadio = "HKLM\\Software\\Microsoft\\RIL";

class Capabilities : public DeviceTest {
 protected:
  void TearDown() override { EXPECT_EQ(process.new_handles(), 0u); }
  DWORD Installed(const std::string& name) {
    const DWORD state = exports.PALDevCap_GetDevCapsA(name.c_str());
    const std::u16string wide(name.begin(), name.end());
    EXPECT_EQ(exports.PALDevCap_GetDevCapsW(wide.c_str()), state) << name;
    return state;
  }
  DWORD Enabled(const std::string& name) {
    const DWORD state = exports.PALDevCap_EnabledA(name.c_str());
    const std::u16string wide(name.begin(), name.end());
    EXPECT_EQ(exports.PALDevCap_EnabledW(wide.c_str()), state) << name;
    return state;
  }
  void SetInternalDevice(std::uint8_t code) {
    device.hardware().parameters[0x001A].bytes = {code, 0, 0, 0};
  }
  void SetSecondDevice(char code) {
    device.files().Write("\\ConfigStore\\datacoll", std::string(2, '\0') + code);
  }
  // Every optional part there is, all of them at work.
  void FitEverything() {
    sim::Hardware& hardware = device.hardware();
    SetInternalDevice(0x0C);
    SetSecondDevice(0x19);
    hardware.parameters[0x00D7].bytes = {0, 0, 0, 0};
    hardware.interfaces = {{.description = "ar6k_sd1"}};
    device.files().Write("\\ConfigStore\\BMN0", "");
    hardware.bluetooth = sim::BluetoothMode::kConnectable;
    hardware.leds.vibrator = sim::Vibrator{};
    device.files().Write("\\Windows\\ril.dll", "");
    device.registry().SetDword(kRadio, "LastEquipmentState", 2);
    hardware.drivers = {std::make_shared<sim::Accelerometer>()};
  }

  sim::Process process{device};
  const sim::Exports& exports = process.exports();
};

using Prepare = std::function<void()>;

TEST_F(Capabilities, TellWhatIsThere) {
  struct Row {
    std::string name;
    DWORD bare_installed;
    DWORD bare_enabled;
    DWORD full_installed;
    DWORD full_enabled;
  };
  const std::vector<Row> rows{
      {"Camera", 3, 4, 1, 5},           // a device without datacoll cannot be asked
      {"Wifi", 2, 0, 1, 0},             //
      {"Bluetooth", 2, 2, 1, 5},        //
      {"InternalScanner", 1, 5, 1, 5},  // without parameter: the engine that most devices have
      {"Vibrate", 2, 2, 1, 5},          //
      {"WWAN", 2, 4, 1, 5},             //
      {"GPS", 2, 4, 1, 5},              //
      {"Compass", 2, 0, 2, 0},          //
      {"Accelerometer", 2, 2, 1, 5},    //
      {"Pedometer", 2, 4, 2, 4},        //
      {"Wi-Fi", 0, 0, 0, 0},            //
      {"Camer", 0, 0, 0, 0},            //
      {"Camera ", 0, 0, 0, 0},          //
      {"", 0, 0, 0, 0},                 //
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Installed(row.name), row.bare_installed) << row.name;
    EXPECT_EQ(Enabled(row.name), row.bare_enabled) << row.name;
  }
  FitEverything();
  for (const Row& row : rows) {
    EXPECT_EQ(Installed(row.name), row.full_installed) << row.name;
    EXPECT_EQ(Enabled(row.name), row.full_enabled) << row.name;
  }
  for (const char* name : {"wifi", "WIFI", "bLuEtOoTh", "gps", "internalscanner"}) {
    EXPECT_EQ(Installed(name), 1u) << name;
  }
}

TEST_F(Capabilities, ExportedProbesAreThoseOfTheirNames) {
  struct Row {
    sim::Export<DWORD()> sim::Exports::*probe;
    DWORD state;
    std::string name;  // with its entry and exit lines; empty: none are traced
  };
  FitEverything();
  for (const Row& row : std::vector<Row>{
           {&sim::Exports::PalSysinfo_IsBluetoothInstalled, 1, ""},
           {&sim::Exports::PalSysinfo_IsIntScannerInstalled, 1, "PalSysinfo_IsIntScannerInstalled"},
           {&sim::Exports::PalSysinfo_IsCameraInstalled, 1, "PalSysinfo_IsCameraInstalled"},
           {&sim::Exports::PalSysinfo_IsWwanInstalled, 1, "PalSysinfo_IsWwanInstalled"},
           {&sim::Exports::PalSysinfo_IsAccelInstalled, 1, ""},
           {&sim::Exports::PalSysinfo_IsCompassInstalled, 2, "PalSysinfo_IsCompassInstalled"},
           {&sim::Exports::PalSysinfo_IsPedometerInstalled, 2, "PalSysinfo_IsPedometerInstalled"},
           {&sim::Exports::PalSysinfo_IsGpsInstalled, 1, "PalSysinfo_IsGpsInstalled"},
       }) {
    device.journal().Clear();
    EXPECT_EQ((exports.*row.probe)(), row.state) << row.name;
    const Lines lines = TraceLines();
    if (row.name.empty()) {
      EXPECT_EQ(lines, Lines{});
      continue;
    }
    EXPECT_EQ(lines.front(), row.name + "() - Entry");
    EXPECT_EQ(lines.back(), fmt::format("{:#x}={}() - Exit", row.state, row.name));
  }
}

TEST_F(Capabilities, LinesOfAProbeStandInsideThoseThatAskIt) {
  FitEverything();
  EXPECT_EQ(exports.PALDevCap_EnabledA("gps"), 5u);
  EXPECT_EQ(CategorisedLines(), (Lines{
                                    "0x440F0000 PALDevCap_EnabledA(gps) - Entry",
                                    "0x440F0000 PalSysinfo_IsGpsEnabled() - Entry",
                                    "0x440F0000 PalSysinfo_IsWwanEnabled() - Entry",
                                    "0x440F0000 PalSysinfo_IsWwanInstalled() - Entry",
                                    "0x440F0000 0x1=PalSysinfo_IsWwanInstalled() - Exit",
                                    "0x440F0000 0x5=PalSysinfo_IsWwanEnabled() - Exit",
                                    "0x440F0000 0x5=PalSysinfo_IsGpsEnabled() - Exit",
                                    "0x440F0000 0x5=PALDevCap_EnabledA(gps) - Exit",
                                }));
  device.journal().Clear();
  EXPECT_EQ(exports.PALDevCap_GetDevCapsW(u"GPS"), 1u);
  EXPECT_EQ(
      TraceLines(),
      (Lines{"PalSysinfo_IsGpsInstalled() - Entry", "PalSysinfo_IsWwanInstalled() - Entry",
             "0x1=PalSysinfo_IsWwanInstalled() - Exit", "0x1=PalSysinfo_IsGpsInstalled() - Exit"}));
}

TEST_F(Capabilities, LogOfACameraThatCannotBeAskedFor) {
  EXPECT_EQ(exports.PALDevCap_GetDevCapsA("Camera"), 3u);
  EXPECT_EQ(CategorisedLines(),
            (Lines{
                "0x440F0000 PalSysinfo_IsCameraInstalled() - Entry",
                "0x43F00000 Entry PALMFGOpt_InternalDevice2Type,SECOND_INTERNAL_DEVICE_OFFSET:2 ",
                "0x43F00000 Entry LoadCFGDatacoll, dwMaxDataSizeBytes:1024",
                "0xC3F00000 LoadCFGDatacoll - CreateFile() error, GetLastError:0x2",
                "0x43F00000 Exit LoadCFGDatacoll, hr:0x80070002, dwBytesRead:0, "
                "*pdwDataSizeBytes:0",
                "0xC3F00000 PALMFGOpt_InternalDevice2Type error hr:0x80070002, dwDataSizeBytes:0",
                "0xC40F0000 PalIsCameraInstalled - "
                "0x80070002=PALMFGOpt_InternalDevice2Type()\\r\\n",
                "0x440F0000 0x3=PalSysinfo_IsCameraInstalled() - Exit",
            }));
}

TEST_F(Capabilities, HaveAStateForEachWayTheyCanBe) {
  FitEverything();
  sim::Hardware& hardware = device.hardware();
  struct Case {
    std::string name;
    Prepare prepare;
    DWORD installed;
    DWORD enabled;
  };
  const auto equipment = [&](std::uint32_t state) {
    return [this, state] { device.registry().SetDword(kRadio, "LastEquipmentState", state); };
  };
  for (const Case& test : std::vector<Case>{
           {"Camera", [&] { SetSecondDevice(0); }, 2, 4},
           {"Camera", [&] { SetSecondDevice(0x0B); }, 0, 4},
           {"Camera", [&] { device.files().Write("\\ConfigStore\\datacoll", "12"); }, 2, 4},
           {"Camera", [&] { device.files().Write("\\ConfigStore\\datacoll", ""); }, 3, 4},
           {"Camera", [&] { SetSecondDevice(0x19); }, 1, 5},
           {"Camera",
            [&] {
              hardware.parameters[0x00D7].bytes = {1, 0, 0, 0};
            },
            1, 4},
           {"InternalScanner", [&] { SetInternalDevice(0); }, 2, 4},
           {"InternalScanner", [&] { SetInternalDevice(0x0B); }, 0, 4},
           {"Bluetooth", [&] { hardware.bluetooth = sim::BluetoothMode::kDiscoverable; }, 1, 5},
           {"Bluetooth", [&] { hardware.bluetooth = sim::BluetoothMode::kOff; }, 1, 4},
           {"Bluetooth", [&] { hardware.bluetooth.reset(); }, 1, 3},
           {"Bluetooth", [&] { device.files().Remove("\\ConfigStore\\BMN0"); }, 2, 2},
           {"WWAN", equipment(1), 1, 4},
           {"GPS", equipment(7), 1, 7},
           {"WWAN", equipment(0xFFFFFFFF), 1, 0xFFFFFFFF},
           {"WWAN", [&] { device.registry().RemoveTree(kRadio); }, 1, 3},
           {"GPS", [&] { device.files().Remove("\\Windows\\ril.dll"); }, 2, 4},
           {"Vibrate", [&] { hardware.leds.vibrator.reset(); }, 2, 2},
           {"Accelerometer", [&] { hardware.drivers.clear(); }, 2, 2},
       }) {
    test.prepare();
    EXPECT_EQ(Installed(test.name), test.installed) << test.name;
    EXPECT_EQ(Enabled(test.name), test.enabled) << test.name;
  }
}

TEST_F(Capabilities, WifiAdapterIsLookedForByNameAndType) {
  struct Case {
    std::vector<sim::NetworkInterface> interfaces;
    DWORD installed;
    unsigned entries;
  };
  const sim::NetworkInterface usb{"RNDISFN1", 6, 0};
  for (const Case& test : std::vector<Case>{
           {{}, 2, 1},
           {{usb}, 2, 2},
           {{usb, {"TIWLN1", 6, 1}}, 1, 2},
           {{{"Ar6k_Sd1", 6, 0}, usb}, 1, 1},
           {{usb, {"TIWLN1", 71, 1}}, 2, 3},
           {{usb, {"TIWLN10", 6, 1}}, 2, 3},
           {{usb, {"TIWLN", 6, 1}}, 2, 3},
           {{usb, {std::string(256, 'T'), 6, 1}}, 2, 3},
           {{usb, {"TIWLN1", 6, 2}}, 1, 3},  // its index is the count itself
           {{usb, {"TIWLN1", 6, 3}}, 2, 3},
           {std::vector(256, usb), 2, 257},
           {std::vector(257, usb), 3, 257},  // more than a device has: the rest is not asked for
       }) {
    device.hardware().interfaces = test.interfaces;
    const unsigned before = device.calls("GetIfEntry");
    EXPECT_EQ(exports.PALDevCap_GetDevCapsA("Wifi"), test.installed);
    EXPECT_EQ(device.calls("GetIfEntry") - before, test.entries);
  }
  device.journal().Clear();
  device.hardware().interfaces = {{"tiwln1", 6, 0}};
  EXPECT_EQ(exports.PALDevCap_GetDevCapsA("Wifi"), 1u);
  device.PlanFault({.call = "GetNumberOfInterfaces", .error = 50});
  EXPECT_EQ(exports.PALDevCap_GetDevCapsA("Wifi"), 3u);
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0x440F0000 PalDevCap_IsWifiInstalled WAN adapter found: tiwln1\\r\\n",
                   "0xC40F0000 PalDevCap_IsWifiInstalled 0x32=GetNumberOfInterfaces() "
                   "failed.\\r\\n"}));
}

TEST_F(Capabilities, PluginsHoldForInstalledOnly) {
  FitEverything();
  sim::Registry& registry = device.registry();
  registry.SetDword(kPlugins, "Compass", 1);
  registry.SetDword(kPlugins, "Camera", 0);
  registry.SetDword(kPlugins, "Printer", 0x80000000);
  registry.SetDword(kPlugins, "Scale", 0);
  struct Row {
    std::string name;
    DWORD installed;
    DWORD enabled;
  };
  for (const Row& row : std::vector<Row>{
           {"Compass", 1, 0},
           {"COMPASS", 1, 0},
           {"Camera", 2, 5},
           {"Printer", 1, 0},
           {"Scale", 2, 0},
           {"Wifi", 1, 0},
       }) {
    EXPECT_EQ(Installed(row.name), row.installed) << row.name;
    EXPECT_EQ(Enabled(row.name), row.enabled) << row.name;
  }
}

TEST_F(Capabilities, NameWithoutMemoryIsStillLookedUp) {
  device.PlanFault({.call = "malloc", .from_then_on = true});
  EXPECT_EQ(exports.PALDevCap_GetDevCapsA("Compass"), 2u);
  EXPECT_EQ(exports.PALDevCap_GetDevCapsA("Printer"), 3u);
  EXPECT_EQ(TraceLines("ERROR "),
            (Lines{"ERROR PalDevCap_IsPluginInstalled(Compass) Failure to allocate mem\\r\\n",
                   "ERROR PalDevCap_IsPluginInstalled(Printer) Failure to allocate mem\\r\\n"}));
}

TEST_F(Capabilities, NullNamesAreRefused) {
  EXPECT_EQ(exports.PALDevCap_GetDevCapsA(nullptr), 3u);
  EXPECT_EQ(exports.PALDevCap_GetDevCapsW(nullptr), 3u);
  EXPECT_EQ(exports.PALDevCap_EnabledA(nullptr), 0u);
  EXPECT_EQ(exports.PALDevCap_EnabledW(nullptr), 0u);
  EXPECT_EQ(CategorisedLines(),
            (Lines{
                "0xC40F0000 PALDevCap_GetDevCapsA - Input invalid. dwRet:0x3\\r\\n",
                "0xC40F0000 PALDevCap_GetDevCapsW - Input invalid. dwRet:0x3\\r\\n",
                "0x440F0000 PALDevCap_EnabledA((null)) - Entry",
                "0xC40F0000 PALDevCap_EnabledA - Input invalid. dwRet:0x0\\r\\n",
                "0x440F0000 0x0=PALDevCap_EnabledA((null)) - Exit",
                "0x440F0000 PALDevCap_EnabledW((null)) - Entry",
                "0xC40F0000 PALDevCap_EnabledW - Input invalid. dwRet:0x0\\r\\n",
                "0x440F0000 0x0=PALDevCap_EnabledW((null)) - Exit",
            }));
}

TEST(CapabilityDescription, GivesTheDeviceItsParts) {
  const TemporaryFolder folder;
  folder.Write(
      "device.toml",
      "name = \"x\"\n[bluetooth]\nmode = \"discoverable\"\n[accelerometer]\n"
      "[[interfaces]]\ndescription = \"A\"\n[[interfaces]]\ndescription = \"B\"\ntype = 71\n"
      "[[interfaces]]\ndescription = \"C\"\nindex = 7\n");
  sim::Device device;
  sim::LoadDevice(device, folder.path());
  const sim::Hardware& hardware = device.hardware();
  EXPECT_EQ(hardware.bluetooth, sim::BluetoothMode::kDiscoverable);
  ASSERT_EQ(hardware.drivers.size(), 1u);
  EXPECT_EQ(hardware.drivers[0]->name(), "ISL0:");
  std::string interfaces;
  for (const sim::NetworkInterface& each : hardware.interfaces) {
    interfaces += fmt::format("{} {} {}, ", each.description, each.type, each.index);
  }
  EXPECT_EQ(interfaces, "A 6 0, B 71 1, C 6 7, ");
}

TEST_F(Capabilities, LongNamesAreUnknownToBothForms) {
  for (const std::size_t length : {127u, 128u}) {
    const std::string name(length, 'y');
    device.registry().SetDword(kPlugins, name, 1);
    EXPECT_EQ(Installed(name), length < 128 ? 1u : 0u);
    EXPECT_EQ(Enabled(name), 0u);
  }
  EXPECT_EQ(exports.PALDevCap_GetDevCapsA(std::string(5000, 'x').c_str()), 0u);
}

TEST_F(Capabilities, ProbesWithoutEntryLinesTraceTheirFailures) {
  const std::string bluetooth = "0xC40F0000 PalSysinfo_IsBluetoothInstalled - ERROR ";
  EXPECT_EQ(exports.PalSysinfo_IsBluetoothInstalled(), 2u);
  EXPECT_EQ(device.calls("ReadFile"), 0u) << "there is nothing to read from";
  device.files().Write("\\ConfigStore\\BMN0", "x");
  device.PlanFault({.call = "ReadFile", .error = 5});
  EXPECT_EQ(exports.PalSysinfo_IsBluetoothInstalled(), 2u);
  EXPECT_EQ(exports.PalSysinfo_IsAccelInstalled(), 2u);
  EXPECT_EQ(CategorisedLines(),
            (Lines{bluetooth + "CreateFile(). win32err: 0x2\\r\\n",
                   bluetooth + "ReadFile(). win32err: 0x5\\r\\n",
                   "0xC40F0000 PalSysinfo_IsAccelInstalled - ERROR CreateFile(). "
                   "win32err: 0x37\\r\\n"}));
  device.journal().Clear();
  EXPECT_EQ(exports.PALDevCap_GetDevCapsA("Vibrate"), 2u);
  EXPECT_EQ(CategorisedLines().back(),
            "0xC40F0000 PalSysinfo_IsVibrateInstalled - ERROR PALVIBIsInstalled(). "
            "hr: 0x80004005\\r\\n");
}

}  // namespace

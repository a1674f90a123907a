// What the device is to a USB host, and whether it takes USB disks.
#include <string>
#include <tuple>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/usb_function_bus.h"
#include "platform/sim/text.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"

namespace {

using Lines = std::vector<std::string>;
using Bus = sim::UsbFunctionBus;

std::vector<std::uint8_t> Wide(std::u16string_view text) {
  return sim::WideTextAnswer(text, sim::Terminator::kMissing).bytes;
}

class UsbTest : public DeviceTest {
 protected:
  void TearDown() override { EXPECT_EQ(process.new_handles(), 0u); }
  Lines ErrorLines() { return LinesBehind("0xC44F0000 "); }
  Lines InfoLines() { return LinesBehind("0x444F0000 "); }

  sim::Process process{device};
};

class UsbFunction : public UsbTest {
 protected:
  static constexpr const char* kKey = "HKLM\\Drivers\\USB\\FunctionDrivers\\Mass_Storage_Class";

  UsbFunction() {
    device.hardware().drivers = {bus};
    device.registry().SetString(kKey, "DeviceName", "DSK9:");
  }
  HRESULT Get(DWORD& option) { return process.exports().PALStore_GetUsbFuncDriver(&option); }
  HRESULT Set(DWORD option) { return process.exports().PALStore_SetUsbFuncDriver(option); }
  Lines DriverLines() { return device.journal().Texts(sim::Effect::kDriver); }

  std::shared_ptr<Bus> bus = std::make_shared<Bus>(
      std::vector<sim::UsbFunctionClient>{
          {"Serial_Class"}, {"rndis"}, {"Mass_Storage_Class"}, {"Other"}},
      "Other");
};

TEST_F(UsbFunction, IsChosenInTwoSteps) {
  struct Case {
    DWORD option;
    std::string client, volume;
  };
  for (const Case& test :
       {Case{0, "Serial_Class", "DSK9:"}, Case{1, "rndis", "DSK9:"},
        Case{2, "Mass_Storage_Class", "DSK1:"}, Case{3, "Mass_Storage_Class", "DSK2:"}}) {
    ASSERT_EQ(Set(test.option), S_OK);
    EXPECT_EQ(bus->default_client(), test.client);
    EXPECT_EQ(bus->current_client(), test.client);
    EXPECT_EQ(device.registry().GetString(kKey, "DeviceName"), test.volume);
    DWORD option = 9;
    EXPECT_EQ(Get(option), S_OK);
    EXPECT_EQ(option, test.option);
  }
  EXPECT_EQ(ErrorLines(), Lines{});
  const std::u16string_view stored(u"DSK2:\0\0", 7);
  EXPECT_EQ(device.registry().FindValue(kKey, "DeviceName")->data, Wide(stored));
}

TEST_F(UsbFunction, TracesItsSteps) {
  EXPECT_EQ(Set(3), S_OK);
  DWORD option = 9;
  EXPECT_EQ(Get(option), S_OK);
  const std::string key = "\\Drivers\\USB\\FunctionDrivers\\Mass_Storage_Class";
  EXPECT_EQ(
      InfoLines(),
      (Lines{"SetClientOption - In client name: Mass_Storage_Class, ioctl:0x220018\\r\\n",
             "SetUsbMassStorage - input:3, Reg:" + key + "\\DeviceName=DSK2:\\r\\n",
             "SetClientOption - In client name: Mass_Storage_Class, ioctl:0x220010\\r\\n",
             "GetClientOption - Client name: Mass_Storage_Class, len: 38\\r\\n",
             "PALStore_GetUsbFuncDriver - Mass storage client. Read " + key + " : DeviceName\\r\\n",
             "PALStore_GetUsbFuncDriver - Found match. DSK2:\\r\\n",
             "PALStore_GetUsbFuncDriver - Return. iOpt:3, hr:0x0\\r\\n"}));
}

TEST_F(UsbFunction, IsNotChosenByANumberAboveThree) {
  const unsigned calls = device.calls("CreateFileW") + device.calls("RegOpenKeyExW");
  for (const DWORD option : {4U, 0x80000000U, 0xFFFFFFFFU}) {
    device.journal().Clear();
    EXPECT_EQ(Set(option), PAL_STORE_E_INVALID_INPUT);
    EXPECT_EQ(ErrorLines(), Lines{"ERROR PALStore_SetUsbFuncDriver - Invalid input opt. iOpt:" +
                                  std::to_string(static_cast<int>(option)) + "\\r\\n"});
  }
  EXPECT_EQ(device.calls("CreateFileW") + device.calls("RegOpenKeyExW"), calls);
}

// Each step fails in turn: what was done before it stays, and nothing is done behind it.
TEST_F(UsbFunction, StopsAtTheFirstStepThatFails) {
  struct Case {
    sim::Fault fault;
    HRESULT result;
    std::string default_client, volume, error;
  };
  const std::string storage = "Mass_Storage_Class";
  const std::string error = "SetClientOption - ERROR 0x";
  for (const Case& test : std::vector<Case>{
           {{.call = "CreateFileW", .error = 5},
            PAL_STORE_E_BUS_NOT_OPENED,
            "Other",
            "DSK9:",
            "ffffffff=CreateFile(). win32err: 0x5"},
           {{.call = "DeviceIoControl", .error = 31},
            PAL_STORE_E_SELECT_FAILED,
            "Other",
            "DSK9:",
            "0=DeviceIoControl(ioctl:0x220018). win32err: 0x1f"},
           {{.call = "RegOpenKeyExW", .error = 2}, PAL_E_FILE_NOT_FOUND, storage, "DSK9:", ""},
           {{.call = "RegSetValueExW", .error = 5}, PAL_E_ACCESS_DENIED, storage, "DSK9:", ""},
           {{.call = "CreateFileW", .nth = 2, .error = 55},
            PAL_STORE_E_BUS_NOT_OPENED,
            storage,
            "DSK1:",
            "ffffffff=CreateFile(). win32err: 0x37"},
           {{.call = "DeviceIoControl", .nth = 2, .error = 170},
            PAL_STORE_E_SELECT_FAILED,
            storage,
            "DSK1:",
            "0=DeviceIoControl(ioctl:0x220010). win32err: 0xaa"},
       }) {
    bus->set_default_client("Other");
    device.registry().SetString(kKey, "DeviceName", "DSK9:");
    device.journal().Clear();
    device.PlanFault(test.fault);
    EXPECT_EQ(Set(2), test.result);
    device.ClearFaults();
    EXPECT_EQ(bus->default_client(), test.default_client);
    EXPECT_EQ(bus->current_client(), "Other");
    EXPECT_EQ(device.registry().GetString(kKey, "DeviceName"), test.volume);
    EXPECT_EQ(ErrorLines(), test.error.empty() ? Lines{} : Lines{error + test.error + "\\r\\n"});
  }
}

TEST_F(UsbFunction, IsKnownByItsClientOrVolumeInAnyCase) {
  struct Case {
    std::u16string client;
    std::vector<std::uint8_t> volume;  // empty: no value
    HRESULT result;
    DWORD option;
  };
  constexpr DWORD kUntouched = 9;
  const std::u16string terminated(u"dSK2:\0", 6);
  const std::u16string full(128, u'x');
  for (const Case& test : {
           Case{u"sERIAL_cLASS", {}, S_OK, 0}, Case{u"RNDIS", {}, S_OK, 1},
           Case{u"mass_storage_class", Wide(u"dsk1:"), S_OK, 2},  // without a terminator
           Case{u"Mass_Storage_Class", Wide(terminated), S_OK, 3},
           Case{u"Mass_Storage_Class", {}, PAL_STORE_E_UNKNOWN_CLIENT, kUntouched},
           Case{u"Mass_Storage_Class", Wide(u"DSK3:"), PAL_STORE_E_UNKNOWN_CLIENT, kUntouched},
           Case{u"Mass_Storage_Class", Wide(full), PAL_STORE_E_UNKNOWN_CLIENT, kUntouched},
           Case{u"Mass_Storage_Class", Wide(full + u"x"), PAL_STORE_E_UNKNOWN_CLIENT, kUntouched},
           Case{u"RNDIS2", {}, PAL_STORE_E_UNKNOWN_CLIENT, kUntouched},
           Case{u"", {}, PAL_STORE_E_UNKNOWN_CLIENT, kUntouched},
           Case{std::u16string(127, u'c'), {}, PAL_STORE_E_UNKNOWN_CLIENT, kUntouched},
           Case{std::u16string(128, u'c'), {}, PAL_STORE_E_INVALID_INPUT, kUntouched},
           Case{std::u16string(378, u'c'),
                {},
                PAL_STORE_E_INVALID_INPUT,
                kUntouched},  // to the record's end
       }) {
    bus->set_told_name(test.client);
    const auto key = device.registry().Find(kKey);
    key->DeleteValue(u"DeviceName");
    if (!test.volume.empty()) key->SetValue(u"DeviceName", REG_SZ, test.volume);
    DWORD option = kUntouched;
    EXPECT_EQ(Get(option), test.result) << sim::ToUtf8(test.client);
    EXPECT_EQ(option, test.option);
  }
  EXPECT_EQ(ErrorLines(),
            (Lines{"GetClientOption - Input buff too short, inlen: 256, Ucn.name_len: 258\\r\\n",
                   "GetClientOption - Input buff too short, inlen: 256, Ucn.name_len: 758\\r\\n"}));
}

TEST_F(UsbFunction, IsNotToldByABusThatFails) {
  struct Case {
    std::string call;
    HRESULT result;
    std::string error;
  };
  for (const Case& test :
       {Case{"CreateFileW", PAL_STORE_E_BUS_NOT_OPENED,
             "GetClientOption - 0xffffffff=CreateFile(). win32err: 0x5\\r\\n"},
        Case{"DeviceIoControl", PAL_STORE_E_GET_FAILED,
             "GetClientOption - ERROR 0x0=DeviceIoControl(). win32err: 0x5\\r\\n"}}) {
    device.journal().Clear();
    device.PlanFault({.call = test.call, .error = 5});
    DWORD option = 9;
    EXPECT_EQ(Get(option), test.result);
    EXPECT_EQ(option, 9u);
    EXPECT_EQ(ErrorLines(), Lines{test.error});
  }
  EXPECT_EQ(process.exports().PALStore_GetUsbFuncDriver(nullptr), E_FAIL);
}

TEST_F(UsbFunction, IsUnknownWhereTheVolumeCannotBeRead) {
  bus->set_told_name(u"Mass_Storage_Class");
  const std::string key = "\\Drivers\\USB\\FunctionDrivers\\Mass_Storage_Class";
  for (const std::string call : {"RegOpenKeyExW", "RegQueryValueExW", ""}) {
    if (call.empty()) {
      device.registry().RemoveTree(kKey);
    } else {
      device.PlanFault({.call = call, .error = 5});
    }
    device.journal().Clear();
    DWORD option = 9;
    EXPECT_EQ(Get(option), PAL_STORE_E_UNKNOWN_CLIENT) << call;
    EXPECT_EQ(option, 9u);
    device.ClearFaults();
    EXPECT_EQ(CategorisedLines(),
              (Lines{"0x444F0000 GetClientOption - Client name: Mass_Storage_Class, len: 38\\r\\n",
                     "0x444F0000 PALStore_GetUsbFuncDriver - Mass storage client. Read " + key +
                         " : DeviceName\\r\\n",
                     "0x444F0000 PALStore_GetUsbFuncDriver - Return. iOpt:-1, "
                     "hr:0x844f0005\\r\\n"}));
  }
}

TEST(UsbFunctionDescription, KeepsItsClientsAndTheirRefusals) {
  const TemporaryFolder folder;
  folder.Write("device.toml",
               "name = \"x\"\n[usb_function]\nclients = [\"RNDIS\", \"Serial_Class\", { name = "
               "\"Mass_Storage_Class\", error = 170 }]\ndefault = \"RNDIS\"\n");
  {
    sim::Device device;
    sim::LoadDevice(device, folder.path());
    sim::Process process(device);
    EXPECT_EQ(process.exports().PALStore_SetUsbFuncDriver(0), S_OK);
    device.registry().Create("HKLM\\Drivers\\USB\\FunctionDrivers\\Mass_Storage_Class");
    EXPECT_EQ(process.exports().PALStore_SetUsbFuncDriver(2), PAL_STORE_E_SELECT_FAILED);
    EXPECT_EQ(device.journal().Texts(sim::Effect::kDriver),
              (Lines{"$bus\\OTG_0_2_0 set default client: Serial_Class",
                     "$bus\\OTG_0_2_0 set current client: Serial_Class",
                     "$bus\\OTG_0_2_0 set default client: Mass_Storage_Class",
                     "$bus\\OTG_0_2_0 set current client: Mass_Storage_Class"}));
    sim::SaveDevice(device, folder.path());
  }
  sim::Device device;
  sim::LoadDevice(device, folder.path());
  const auto& bus = dynamic_cast<const Bus&>(*device.hardware().drivers.at(0));
  EXPECT_EQ(bus.current_client(), "Serial_Class");
  EXPECT_EQ(bus.default_client(), "Mass_Storage_Class");
  sim::Process process(device);
  EXPECT_THROW(process.exports().PALBOOT_BootTerminal('0'), sim::ProcessKilled);
  EXPECT_EQ(bus.current_client(), "Mass_Storage_Class") << "a restart takes the default up";
}

class UsbHostStorage : public UsbTest {
 protected:
  static constexpr const char* kKey = "HKLM\\Drivers\\USB\\ClientDrivers\\Mass_Storage_Class";
  static inline const std::string kPath = "\\Drivers\\USB\\ClientDrivers\\Mass_Storage_Class";

  // Three drivers, one of them with nothing to move.
  void AddDrivers() {
    SetText("2", "Dll", "a.dll");
    device.registry().Create(std::string(kKey) + "\\4");
    SetText("5", "Dll", "b.dll");
  }
  void SetText(const std::string& driver, const char* name, const char* text) {
    device.registry().SetString(std::string(kKey) + '\\' + driver, name, text);
  }
  // "Dll=a.dll", for each value of each driver.
  Lines Values() {
    Lines values;
    for (const auto& driver : device.registry().Find(kKey)->keys()) {
      for (const sim::RegistryValue& value : driver->values()) {
        const std::string name = sim::ToUtf8(value.name);
        values.push_back(
            name + '=' +
            device.registry().GetString(sim::ToUtf8(driver->Path()), name).value_or("no text"));
      }
    }
    return values;
  }
  HRESULT Enable(BOOL enable) {
    return process.exports().PALStore_SetUsbHostMassStorageEnable(enable);
  }
  std::pair<HRESULT, DWORD> Enabled() {
    DWORD enabled = 9;
    const HRESULT result = process.exports().PALStore_GetUsbHostMassStorageEnable(&enabled);
    return {result, enabled};
  }
};

TEST_F(UsbHostStorage, IsSwitchedBothWaysAndTwice) {
  AddDrivers();
  const auto before = device.registry().FindValue(std::string(kKey) + "\\2", "Dll")->data;
  EXPECT_EQ(Enabled(), std::pair(S_OK, 1U));
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(Enable(0), S_OK);
    EXPECT_EQ(Values(), (Lines{"Dll__=a.dll", "Dll__=b.dll"}));
    EXPECT_EQ(Enabled(), std::pair(S_OK, 0U));
  }
  for (const BOOL on : {1, 5}) {
    EXPECT_EQ(Enable(on), S_OK);
    EXPECT_EQ(Values(), (Lines{"Dll=a.dll", "Dll=b.dll"}));
    EXPECT_EQ(Enabled(), std::pair(S_OK, 1U));
  }
  EXPECT_EQ(device.registry().FindValue(std::string(kKey) + "\\2", "Dll")->data, before);
  EXPECT_EQ(ErrorLines(), Lines{});
  const std::string off = "Successfully disabled all USB Mass Storage client drivers";
  const std::string on = "Successfully enabled all USB Mass Storage client drivers";
  EXPECT_EQ(InfoLines(), (Lines{off, off, off, off, on, on})) << "two of them are the getter's";
}

TEST_F(UsbHostStorage, PassesOverWhatIsNoText) {
  AddDrivers();
  device.registry().SetDword(std::string(kKey) + "\\2", "Dll", 5);
  device.registry().SetBinary(std::string(kKey) + "\\4", "Dll", std::vector<BYTE>(600));
  EXPECT_EQ(Enable(0), S_OK);
  EXPECT_EQ(Values(), (Lines{"Dll=no text", "Dll=no text", "Dll__=b.dll"}));
  EXPECT_EQ(Enabled(), std::pair(S_OK, 0U));

  const std::string longest(259, 'x');
  SetText("4", "Dll", longest.c_str());
  EXPECT_EQ(Enable(0), S_OK);
  EXPECT_EQ(Values(), (Lines{"Dll=no text", "Dll__=" + longest, "Dll__=b.dll"}));
  SetText("2", "Dll", (longest + "xx").c_str());
  EXPECT_EQ(Enable(0), PAL_E_MORE_DATA) << "a text that is too long ends the walk";
  EXPECT_EQ(Enabled(), std::pair(PAL_E_MORE_DATA, 0U));
}

TEST_F(UsbHostStorage, IsOffWithoutDriversAndFailsWithoutTheirKey) {
  EXPECT_EQ(Enable(0), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(Enable(1), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(Enabled(), std::pair(PAL_E_FILE_NOT_FOUND, 0U));
  const std::string line = "Error opening HKLM\\" + kPath + ". dwRet = 2";
  EXPECT_EQ(ErrorLines(), (Lines{line, line, line}));
  device.registry().Create(kKey);
  EXPECT_EQ(Enabled(), std::pair(S_OK, 0U));
  EXPECT_EQ(Enable(1), S_OK);
  EXPECT_EQ(process.exports().PALStore_GetUsbHostMassStorageEnable(nullptr), E_FAIL);
}

// The walk fails at each of its calls in turn: what it leaves behind is what it had done by then.
TEST_F(UsbHostStorage, LeavesAWalkThatFailsWhereItWas) {
  struct Case {
    BOOL enable;
    std::string call, on, error;  // no error: none is traced
    Lines values;
  };
  const std::string second = kPath + "\\5";
  const std::string enumerating = "Error enumerating USB Mass Storage Client drivers";
  for (const auto& [enable, call, on, error, values] : std::vector<Case>{
           {0, "RegOpenKeyExW", "", "Error opening HKLM\\" + kPath, {"Dll=a.dll", "Dll=b.dll"}},
           {0, "RegEnumKeyExW", "[2]", enumerating, {"Dll__=a.dll", "Dll=b.dll"}},
           {0,
            "RegOpenKeyExW",
            "\\5",
            "Error opening HKLM\\" + second,
            {"Dll__=a.dll", "Dll=b.dll"}},
           {0, "RegQueryValueExW", "5\\Dll", "", {"Dll__=a.dll", "Dll=b.dll"}},
           {0,
            "RegSetValueExW",
            "5\\Dll__",
            "Error backing up HKLM\\" + second + "\\Dll",
            {"Dll__=a.dll", "Dll=b.dll"}},
           {0,
            "RegDeleteValueW",
            "5\\Dll",
            "Error deleting HKLM\\" + second + "\\Dll",
            {"Dll__=a.dll", "Dll=b.dll", "Dll__=b.dll"}},
           {1, "RegEnumKeyExW", "[2]", enumerating, {"Dll=a.dll", "Dll__=b.dll"}},
           {1,
            "RegQueryValueExW",
            "5\\Dll__",
            "Error reading restore name from HKLM\\" + second + "\\Dll__",
            {"Dll=a.dll", "Dll__=b.dll"}},
           {1,
            "RegSetValueExW",
            "5\\Dll",
            "Error restoring up HKLM\\" + second + "\\Dll",
            {"Dll=a.dll", "Dll__=b.dll"}},
           {1,
            "RegDeleteValueW",
            "5\\Dll__",
            "Error deleting HKLM\\" + second + "\\Dll__",
            {"Dll=a.dll", "Dll__=b.dll", "Dll=b.dll"}},
       }) {
    device.registry().RemoveTree(kKey);
    AddDrivers();
    if (enable != 0) {
      EXPECT_EQ(Enable(0), S_OK);
    }
    device.journal().Clear();
    device.PlanFault({.call = call, .on = on, .error = 5});
    EXPECT_EQ(Enable(enable), PAL_E_ACCESS_DENIED) << call << on;
    device.ClearFaults();
    EXPECT_EQ(Values(), values) << call << on;
    EXPECT_EQ(ErrorLines(), error.empty() ? Lines{} : Lines{error + ". dwRet = 5"});
    EXPECT_EQ(InfoLines(), Lines{});
    EXPECT_EQ(Enable(enable), S_OK) << "a second walk finishes the first";
  }
}

TEST_F(UsbHostStorage, IsNotToldByAWalkThatFails) {
  AddDrivers();
  const std::string enumerating = "Error enumerating USB Mass Storage Client drivers. dwRet = 5";
  const std::string opening = "Error opening HKLM\\" + kPath + "\\2. dwRet = 5";
  for (const auto& [call, on, errors] : std::vector<std::tuple<std::string, std::string, Lines>>{
           {"RegEnumKeyExW", "", {enumerating}},
           {"RegOpenKeyExW", "\\2", {opening}},
           {"RegQueryValueExW", "", {}}}) {
    device.journal().Clear();
    device.PlanFault({.call = call, .on = on, .error = 5});
    EXPECT_EQ(Enabled(), std::pair(PAL_E_ACCESS_DENIED, 0U)) << call;
    device.ClearFaults();
    EXPECT_EQ(ErrorLines(), errors);
    EXPECT_EQ(InfoLines(), Lines{});
  }
}

}  // namespace

#include "platform/sim/device_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <utility>

#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kDescription =
    "# My device.\r\nname = \"rm21\"   # odd blanks\n\tdescription = \"A handheld.\"\n\n"
    "[modules]\n\"DVLEventLog.dll\" = []";

class DeviceFolderTest : public ::testing::Test {
 protected:
  void Empty() const {
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
  void Put(const std::string& file, const std::string& text) const {
    fs::create_directories((folder / file).parent_path());
    std::ofstream(folder / file, std::ios::binary) << text;
  }
  [[nodiscard]] std::string Get(const std::string& file) const {
    std::ifstream stream(folder / file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  // Every file and folder with its bytes and its time.
  [[nodiscard]] std::map<std::string, std::pair<std::string, fs::file_time_type>> Everything()
      const {
    std::map<std::string, std::pair<std::string, fs::file_time_type>> all;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      const std::string name = fs::relative(entry.path(), folder).generic_string();
      all[name] = {entry.is_regular_file() ? Get(name) : "", fs::last_write_time(entry.path())};
    }
    return all;
  }
  // The message of the error for the folder, without the folder's path.
  [[nodiscard]] std::string LoadError() const {
    try {
      sim::Device device;
      sim::LoadDevice(device, folder);
      return "loaded";
    } catch (const sim::DeviceFolderError& error) {
      std::string message = error.what();
      const std::string prefix = (folder / "").string();
      if (!message.starts_with(prefix)) return message;
      // The file's name has the host's separators.
      const std::size_t end = message.find(": ");
      const fs::path file(message.substr(prefix.size(), end - prefix.size()));
      return file.generic_string() + message.substr(end);
    }
  }

  TemporaryFolder temporary;
  fs::path folder = temporary.path();
};

TEST_F(DeviceFolderTest, LoadFillsANewDevice) {
  Put("device.toml", kDescription);
  Put("registry.reg", "[HKLM\\Software]\n\"n\"=dword:5\n");
  Put("files/ConfigStore/dcecfg", std::string("\x01\0\xFF", 3));
  fs::create_directories(folder / "files/Windows");
  sim::Device device;
  const sim::DeviceIdentity identity = sim::LoadDevice(device, folder);
  EXPECT_EQ(identity.name, "rm21");
  EXPECT_EQ(identity.description, "A handheld.");
  EXPECT_EQ(device.registry().GetDword("HKLM\\Software", "n"), 5U);
  const std::vector<std::uint8_t>* file = device.files().Read("\\configstore\\DCECFG");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(*file, (std::vector<std::uint8_t>{1, 0, 0xFF}));
  ASSERT_NE(device.files().Find("\\Windows"), nullptr);
  EXPECT_TRUE(device.files().Find("\\Windows")->is_folder);
  EXPECT_EQ(device.now_ms(), 0U);
  ASSERT_EQ(device.modules().size(), 1U);
  EXPECT_EQ(device.modules().front().name, "DVLEventLog.dll");
  EXPECT_TRUE(device.modules().front().entries.empty());
}

TEST_F(DeviceFolderTest, TheServicesWorkWhereTheLibraryHasAnotherNameThanTheProvider) {
  const std::string author = "name = \"x\"\n";
  for (const auto& [text, result] :
       {std::pair{author + "library = '\\Windows\\library.dll'\n", S_OK}, {author, E_FAIL}}) {
    Put("device.toml", text);
    sim::Device loaded;
    sim::LoadDevice(loaded, folder);
    sim::Device device;
    device.CopyFrom(loaded);
    sim::Process process(device);
    EXPECT_EQ(process.exports().PALSysio_DVLEnableCamera(1), result) << text;
  }
}

TEST_F(DeviceFolderTest, LoadReadsTheIdentity) {
  Put("device.toml",
      "name = \"x\"\n[parameters]\n0x00D5 = \"RM\"\n0xFFFF = { hex = \"01 fF\", returned = 9 }\n"
      "0x0001 = { error = 31 }\n[system]\noem_information = \"\u00c4\"\nfirmware = \"1.20\"\n"
      "device_id = \"G\"\nos = { minor = 1 }\n"
      "[[adapters]]\nname = \"A\"\ntype = 71\naddress = \"0A0B\"\n");
  sim::Device device;
  sim::LoadDevice(device, folder);
  using Bytes = std::vector<std::uint8_t>;
  auto& hardware = device.hardware();
  EXPECT_EQ(hardware.parameters[0x00D5].bytes, (Bytes{'R', 'M', 0}));
  EXPECT_EQ(hardware.parameters[0xFFFF].bytes, (Bytes{1, 0xFF}));
  EXPECT_EQ(hardware.parameters[0xFFFF].returned, 9U);
  EXPECT_EQ(hardware.parameters[0x0001].error, 31U);
  EXPECT_EQ(hardware.system.oem_information.bytes, (Bytes{0xC4, 0, 0, 0}));
  EXPECT_EQ(hardware.system.firmware_information.bytes.size(), 128U);
  EXPECT_EQ(hardware.system.firmware_information.bytes[63], '1');
  EXPECT_EQ(hardware.system.device_id.bytes, (Bytes{29, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 20, 0,  0,
                                                    0,  9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  'G'}));
  EXPECT_EQ(hardware.system.platform_type.error, sim::kErrorNotSupported);
  EXPECT_EQ(hardware.system.os_version.minor, 1U);
  ASSERT_EQ(hardware.adapters.size(), 1U);
  EXPECT_EQ(hardware.adapters[0].address, (Bytes{0x0A, 0x0B}));
}

TEST_F(DeviceFolderTest, SavingAnUnchangedDeviceTouchesNothing) {
  Put("device.toml", kDescription);
  Put("registry.reg", "; with a comment\n[HKLM\\Software]\n\"n\"=hex(4):05,00,00,00\n");
  Put("files/Windows/sound.wav", "RIFF");
  const auto before = Everything();
  sim::Device device;
  sim::LoadDevice(device, folder);
  sim::SaveDevice(device, folder);
  EXPECT_EQ(Everything(), before);
}

TEST_F(DeviceFolderTest, SaveKeepsTheDevicesStateAndTheAuthorsText) {
  Put("device.toml", kDescription);
  Put("files/gone", "x");
  Put("files/becomes_folder", "x");
  Put("files/becomes_file/inside", "x");
  Put("files/Same", "x");
  const fs::file_time_type same = fs::last_write_time(folder / "files/Same");
  sim::Device device;
  sim::LoadDevice(device, folder);
  device.set_now_ms(1234);
  device.registry().SetString("HKLM\\New\\Key", "text", "value");
  for (const char* path : {"gone", "becomes_folder", "becomes_file"}) device.files().Remove(path);
  device.files().Write("\\becomes_folder\\new", "new");
  device.files().Write("\\becomes_file", "now");
  device.files().CreateFolder("\\empty");
  sim::SaveDevice(device, folder);

  EXPECT_EQ(Get("device.toml"), std::string(kDescription) +
                                    "\n\n# Kept by the simulator: do not edit below.\n[state]\n"
                                    "clock_ms = 1234\n");
  std::string names;
  for (const auto& [name, entry] : Everything()) names += name + ' ';
  EXPECT_EQ(names,
            "device.toml files files/Same files/becomes_file files/becomes_folder "
            "files/becomes_folder/new files/empty registry.reg ");
  EXPECT_EQ(Get("files/becomes_file"), "now");
  EXPECT_EQ(fs::last_write_time(folder / "files/Same"), same);

  sim::Device next;
  sim::LoadDevice(next, folder);
  EXPECT_EQ(next.now_ms(), 1234U);
  EXPECT_EQ(next.registry().GetString("HKLM\\New\\Key", "text"), "value");
  next.set_now_ms(0);
  sim::SaveDevice(next, folder);
  EXPECT_EQ(Get("device.toml"), std::string(kDescription) +
                                    "\n\n# Kept by the simulator: do not edit below.\n[state]\n");
}

TEST_F(DeviceFolderTest, ASaveThatFailsLeavesTheOldFiles) {
  Put("device.toml", kDescription);
  Put("registry.reg", "[HKLM\\Old]\n");
  sim::Device device;
  sim::LoadDevice(device, folder);
  device.registry().SetDword("HKLM\\New", "n", 1);
  Put(".palsim-saved/removed/device.toml", "");
  EXPECT_THROW(sim::SaveDevice(device, folder), sim::DeviceFolderError);
  EXPECT_EQ(Get("registry.reg"), "[HKLM\\Old]\n");
  EXPECT_FALSE(fs::exists(folder / ".palsim-saving"));
  EXPECT_THROW(sim::SaveDevice(device, folder / "nowhere"), sim::DeviceFolderError);
}

TEST_F(DeviceFolderTest, BadFoldersAreRefusedWithFileAndLine) {
  struct Row {
    std::string file;
    std::string text;
    std::string message;
  };
  const std::string name = "name = \"x\"\n";
  const std::string kept = name + "\n# Kept by the simulator: do not edit below.\n";
  const std::vector<Row> rows = {
      {"device.toml", "", "device.toml: the key 'name' is missing"},
      {"device.toml", "name = \"\"", "device.toml:1: the name is empty"},
      {"device.toml", "\nname = 5", "device.toml:2: expected a text: name = \"...\""},
      {"device.toml", kept + "[state]\nclock_ms = -1",
       "device.toml:5: expected milliseconds from 0 up: clock_ms = 0"},
      {"device.toml", kept + "[state]\nclock_ms = \"now\"",
       "device.toml:5: expected milliseconds from 0 up: clock_ms = 0"},
      {"device.toml", kept + "[state]\nrotation = 3",
       "device.toml:5: expected an angle: rotation = 0, 90, 180 or 270"},
      {"device.toml", kept + "[state]\nboot_option = -1",
       "device.toml:5: expected a number from 0 to 255: boot_option = 0"},
      {"device.toml", kept + "[modules]", "device.toml:4: unknown key 'modules'; allowed: state"},
      {"registry.reg", "[HKLM\\Key]\nx\ny\n",
       "registry.reg:2: neither a key, a value nor a comment (and 1 more)"},
      {"files", "no folder", "files: this is not a folder"},
  };
  for (const Row& row : rows) {
    Empty();
    Put("device.toml", name);
    Put(row.file, row.text);
    EXPECT_EQ(LoadError(), row.message) << row.text;
  }
  // Messages that end with the parser's own words, or with a list of the known keys.
  const std::vector<Row> beginnings = {
      {"device.toml", name + "\ncolour = 1",
       "device.toml:3: unknown key 'colour'; allowed: name, description, modules, "},
      {"device.toml", name + "[state]\nclock_ms = 1",
       "device.toml:2: unknown key 'state'; allowed: name, description, modules, "},
      {"device.toml", name + "name = \"y\"", "device.toml:2: "},
      {"device.toml", kept + "[state\n", "device.toml:4: "},
      {"device.toml", name + "[modules]\n\"other.dll\" = []",
       "device.toml:3: unknown key 'other.dll'; allowed: "},
      {"device.toml", name + "[modules]\n\"DVLEventLog.dll\" = [\"Other\"]",
       "device.toml:3: DVLEventLog.dll has no entry 'Other'; allowed: "},
  };
  for (const Row& row : beginnings) {
    Empty();
    Put(row.file, row.text);
    EXPECT_EQ(LoadError().substr(0, row.message.size()), row.message);
  }
}

TEST_F(DeviceFolderTest, BadPartsAreRefusedWithTheirLine) {
  const std::string mode =
      "expected a mode of the radio: mode = \"off\", \"connectable\" or \"discoverable\"";
  const std::string kept = "# Kept by the simulator: do not edit below.\n[state]\n";
  const std::pair<std::string, std::string> rows[] = {
      {"journal = 20", "2: expected a table: [journal]"},
      {"[journal]\nkeep = 20", R"(3: expected a number of runs from 1 up: keep = "20 runs")"},
      {"[journal]\nkeep = \"0 runs\"",
       R"(3: expected a number of runs from 1 up: keep = "20 runs")"},
      {"[journal]\nkeep = \"20 days\"",
       R"(3: expected a number of runs from 1 up: keep = "20 runs")"},
      {"description = []", "2: expected a text: description = \"...\""},
      {"modules = 1", "2: expected a table of libraries with lists of their entries"},
      {"library = 5", R"(2: expected a path from the root: library = '\Windows\library.dll')"},
      {"library = 'library.dll'",
       R"(2: expected a path from the root: library = '\Windows\library.dll')"},
      {"library = '\\Windows\\'",
       R"(2: expected a path from the root: library = '\Windows\library.dll')"},
      {"[modules]\n\"DVLEventLog.dll\" = \"all\"",
       R"(3: expected a list of entry names: ["...", "..."])"},
      {"[modules]\n\"DVLEventLog.dll\" = [\n 1]",
       R"(4: expected a list of entry names: ["...", "..."])"},
      {"[parameters]\n0x0001 = 5",
       "3: expected a text, or a table with hex or error: "
       R"({ hex = "01 0A", returned = 2 }, { error = 31 })"},
      {"[parameters]\n0x0001 = { hex = \"0G\" }",
       R"(3: expected bytes as hexadecimal digits: "01 0A FF")"},
      {"[parameters]\n0x10001 = \"a\"", "3: '0x10001' is no parameter id; write 0x00D5"},
      {"[parameters]\n0x00D5 = \"a\"\n0x00d5 = \"b\"", "4: the parameter 0x00d5 is there already"},
      {"[system]\nos = { error = -1 }", "3: expected a number from 0 to 4294967295"},
      {"[[adapters]]\ntype = 6",
       "2: expected an adapter's name of at most 259 characters: name = \"...\""},
      {"[[adapters]]\nname = \"a\"\naddress = \"010203040506070809\"",
       "4: an address has at most 8 bytes"},
      {"[display]\nrotation = 45", "3: expected an angle: 0, 90, 180 or 270"},
      {"[display]\nrotations = [0, 91]", "3: expected an angle: 0, 90, 180 or 270"},
      {"[configuration_driver]\nboot_option = 256",
       "3: expected a number from 0 to 255: boot_option = 0"},
      {"[bluetooth]", "2: " + mode},
      {"[bluetooth]\nmode = 1", "3: " + mode},
      {"[bluetooth]\nmode = \"on\"", "3: " + mode},
      {"accelerometer = true", "2: expected a table: [accelerometer]"},
      {"interfaces = 1", "2: expected tables: [[interfaces]]"},
      {"[[interfaces]]\ntype = 6",
       "2: expected a description of at most 255 characters: description = \"...\""},
      {"[[interfaces]]\ndescription = \"\"\nindex = -1",
       "4: expected a number from 0 to 0xFFFFFFFF: index = 0"},
      {"leds = 3", "2: expected a table of LEDs by their numbers"},
      {"[leds]\nred = \"on\"", "3: 'red' is no LED number from 0 to 99"},
      {"[leds]\n100 = \"on\"", "3: '100' is no LED number from 0 to 99"},
      {"[leds]\n3 = 1", "3: expected a state: \"off\", \"on\" or \"blink\""},
      {"[leds]\n3 = \"dim\"", "3: expected a state: \"off\", \"on\" or \"blink\""},
      {"[vibrator]\npreset = 1", "3: unknown key 'preset'; allowed: number, length_ms"},
      {"[vibrator]\nlength_ms = -1", "3: expected a number from 0 to 60000: length_ms = 200"},
      {"[vibrator]\nnumber = 3", "2: the number 3 is that of an LED"},
      {"scanner = 1", "2: expected a table: [scanner]"},
      {"[scanner]\npower = 1", "3: expected true or false: power = true"},
      {"[scanner]\nlaser = true",
       "3: unknown key 'laser'; allowed: power, enabled, download, trigger"},
      {"[scanner]\n" + kept + "scanner = { trigger = \"on\" }",
       "5: expected true or false: trigger = true"},
      {"[usb_function]\ncolour = 1", "3: unknown key 'colour'; allowed: clients, default"},
      {"[usb_function]\nclients = 1", R"(3: expected a list: clients = ["RNDIS"])"},
      {"[usb_function]\nclients = [1]", R"(3: expected a name, or { name = "RNDIS", error = 31 })"},
      {"[usb_function]\nclients = [\"a b\"]",
       R"(3: expected a name of 1 to 127 letters, digits and underscores: "RNDIS")"},
      {"[usb_function]\nclients = [{ name = \"a\", error = 0 }]",
       "3: expected a number from 1 to 65535: error = 31"},
      {"[usb_function]\nclients = [\"a\"]\ndefault = \"b\"", "4: the bus has no client 'b'"},
      {"[one_wire]\ncolour = 1", "3: unknown key 'colour'; allowed: devices, failures"},
      {"[one_wire]\ndevices = 1", "3: expected a list: devices = [{ ... }]"},
      {"[one_wire]\ndevices = [\n{ memory = \"\" }]", "4: the key 'id' is missing"},
      {"[one_wire]\ndevices = [{ id = \"0102\", memory = \"\" }]",
       "3: expected 8 bytes as hexadecimal digits: id = \"14 00 00 01 7A 3F 52 C9\""},
      {"[one_wire]\ndevices = [\n{ id = \"0102030405060708\", memory = \"0 1\" }]",
       "4: expected at most 65536 bytes as hexadecimal digits: memory = \"01 38 37\""},
      {"[one_wire]\nfailures = [{ call = \"reset\", status = 1 }]",
       "3: no call 'reset'; allowed: search, get_device_count, get_device_id, "
       "get_memory_size, read_memory"},
      {"[one_wire]\nfailures = [{ call = \"search\" }]",
       "3: expected one of the keys 'error' and 'status'"},
      {"[one_wire]\nfailures = [{ call = \"search\", status = -1 }]",
       "3: expected a number from 1 to 0xFFFFFFFF: status = 1"},
      {"[audio]\nvolume = -1", "3: expected a number from 0 to 4294967295"},
      {"[audio]\ngain = 4294967296", "3: expected a number from 0 to 4294967295"},
      {"[audio]\ngain = \"50\"", "3: expected a number from 0 to 4294967295"},
      {"[programs]\ntool = 1", "3: expected a path from the root: '\\Windows\\program.exe'"},
      {"[programs]\n'\\a?' = 1", "3: expected a path from the root: '\\Windows\\program.exe'"},
      {"[programs]\n'\\a' = 1", R"(3: expected a table: { does = "import", takes_ms = 0 })"},
      {"[programs]\n'\\a' = { takes_ms = 1 }", "3: the key 'does' is missing"},
      {"[programs]\n\n'\\a' = { does = 1 }", R"(4: expected does = "import" or "nothing")"},
      {"[programs]\n'\\a' = { does = \"dance\" }", R"(3: expected does = "import" or "nothing")"},
      {"[programs]\n'\\a' = { does = \"import\", exit_code = 1 }",
       "3: unknown key 'exit_code'; allowed: does, takes_ms"},
      {"[programs]\n'\\a' = { does = \"import\", takes_ms = -1 }",
       "3: expected a number from 0 up: takes_ms = 0"},
      {"[programs]\n'\\a' = { does = \"nothing\", exit_code = \"one\" }",
       "3: expected a number from 0 up: exit_code = 0"},
  };
  for (const auto& [part, message] : rows) {
    Put("device.toml", "name = \"x\"\n" + part);
    EXPECT_EQ(LoadError(), "device.toml:" + message) << part;
  }
}

TEST_F(DeviceFolderTest, LinksAndNamesThatADeviceCannotHaveAreRefused) {
  Put("device.toml", "name = \"x\"");
  Put("files/Name", "");
  const bool host_has_such_names = !fs::exists(folder / "files/name");
  if (!host_has_such_names) GTEST_SKIP() << "the host has neither such names nor links";
  for (const std::string file : {"files/a?b", "files/a\\b"}) {
    Put(file, "");
    EXPECT_EQ(LoadError(), file + ": a file of the device cannot have this name");
    fs::remove(folder / file);
  }
  Put("files/name", "");
  EXPECT_EQ(LoadError(),
            "files/name: another name differs from this one by upper and lower case only");
  fs::remove(folder / "files/name");
  fs::create_symlink("Name", folder / "files/link");
  EXPECT_EQ(LoadError(), "files/link: symbolic links are not followed");
  fs::remove(folder / "files/link");
  EXPECT_EQ(LoadError(), "loaded");
}

TEST_F(DeviceFolderTest, MissingAndLargeFilesAreRefused) {
  EXPECT_EQ(LoadError(), "device.toml: there is no such file");
  Put("device.toml", "name = \"x\"");
  Put("files/Name", "");
  fs::resize_file(folder / "files/Name", (64U << 20) + 1);
  EXPECT_EQ(LoadError(), "files/Name: the file is larger than 64 MB");
  fs::remove(folder / "files/Name");
  EXPECT_EQ(LoadError(), "loaded");
}

}  // namespace

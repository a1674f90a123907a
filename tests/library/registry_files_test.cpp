// Registry files: which are imported on which device, when, and what happens where that fails.
#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "platform/sim/programs/registry_importer.h"
#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kStore = "HKLM\\Software\\Dravonel\\REGCHKSUMS";
constexpr const char* kBase = "HKLM\\Software\\Dravonel\\";

class RegistryFiles : public DeviceTest {
 protected:
  void SetUp() override {
    device.files().Write(sim::kRegistryImporterPath, "");
    SetModel("RM21");
    Write("stack.reg", "[HKLM\\Imported]\n\"n\"=dword:1\n");
  }
  void SetModel(const std::string& model) {
    device.hardware().parameters[0x00D5].bytes.assign(model.begin(), model.end());
  }
  void Write(const std::string& name, std::string_view text) {
    device.files().Write("\\Store\\" + name, text);
  }
  HRESULT Load(const std::u16string& name, DWORD clear_trees = 0) {
    device.journal().Clear();
    return process.exports().PALREG_LoadRegistry(TEXT("\\Store"), name.c_str(), clear_trees);
  }
  bool importer_ran() {
    const Lines lines = device.journal().Texts(sim::Effect::kProcess);
    return std::ranges::any_of(
        lines, [](const auto& line) { return line.starts_with("orqautoreg.exe started"); });
  }
  std::optional<DWORD> Stored(std::string_view name) {
    return device.registry().GetDword(kStore, name);
  }

  sim::Process process{device, "provision.exe"};
};

TEST_F(RegistryFiles, AreImportedOnTheModelsOfTheirFamily) {
  const std::set<std::string> rm21 = {"RM22", "RM20", "RM21", "RM23", "RM19"};
  const std::set<std::string> rm18 = {"RM18", "RM17", "RM16"};
  const std::set<std::string> every = {"RM22", "RM20", "RM21", "RM23",  "RM19",  "RM18", "RM17",
                                       "RM16", "RMV",  "RM15", "RM13",  "RM12F", "RM11", "RM10",
                                       "RM12", "P7",   "P8",   "RMX14", "XRM21"};
  struct Case {
    std::u16string name;
    std::set<std::string> models;
  };
  const std::vector<Case> cases = {
      {u"DCS_RM21.reg", rm21},
      {u"dcs_rm21.reg", rm21},
      {u"RM18", rm18},
      {u"xRmV.reg", {"RMV"}},
      {u"RMx14.reg", {}},  // never, also not on its own family
      {u"RMX14.reg", {}},
      {u"RM13.reg", {"RM13"}},
      {u"RM11.reg", {"RM12F", "RM11"}},
      {u"rm10.reg", {"RM10"}},
      {u"P8.reg", {}},
      {u"shop7.reg", {}},  // "P7" is in it
      {u"p7_rm10.reg", {"RM10"}},
      {u"RM11 RM13.reg", {"RM12F", "RM11", "RM13"}},
      {u"RM22.reg", every},  // the name of a model that is no tag
      {u"RM 21.reg", every},
      {u"rm2\u01311.reg", every},  // a letter that the device's 8-bit text does not have
  };
  for (const Case& test : cases) {
    const std::string name = "\\Store\\" + std::string(test.name.begin(), test.name.end());
    for (const std::string& prefix : every) {
      std::string lower_case = prefix;
      for (char& unit : lower_case) unit = static_cast<char>(std::tolower(unit));
      for (const std::string& model : {prefix + "-x", lower_case}) {
        device.registry().RemoveTree(kStore);
        SetModel(model);
        EXPECT_EQ(Load(test.name), S_OK);
        const bool expected = test.models.contains(prefix);
        EXPECT_EQ(importer_ran(), expected) << name << " on " << model;
        EXPECT_EQ(TraceLines("PALREG_LoadRegistry Did not import \\Store,").size(),
                  expected ? 0u : 1u);
      }
    }
  }
}

TEST_F(RegistryFiles, ImportTracesEveryStep) {
  Write("rm21.reg", "[HKLM\\Imported]\n\"n\"=dword:1\n");
  const std::string checksum = "0xf2279867";
  EXPECT_EQ(Load(u"rm21.reg", 0), S_OK);
  EXPECT_EQ(device.registry().GetDword("HKLM\\Imported", "n"), 1u);
  EXPECT_EQ(
      CategorisedLines(),
      (Lines{"0x445E0000 PALREG_LoadRegistry(\\Store,rm21.reg,0x0) Entry",
             "0x445E0000 PalGetModel(RM21,5)", "0x445E0000 PALREG_LoadRegistry Importing RM21.REG",
             "0x445E0000 PALInitChecksumFile(\\Store\\rm21.reg) Entry",
             "0x445E0000 PALInitCheckAndLoadRegFile: Importing \\Store\\rm21.reg",
             "0x445E0000 PALInitCheckAndLoadRegFile: Writing rm21.reg checksum:" + checksum,
             "0x445E0000 0x0=PALREG_LoadRegistry(\\Store,rm21.reg,0x0) Exit"}));
  EXPECT_EQ(device.journal().Texts(sim::Effect::kDebug).size(), 1u);

  EXPECT_EQ(Load(u"rm21.reg", 1), S_OK);
  EXPECT_FALSE(importer_ran()) << "unchanged";
  EXPECT_EQ(TraceLines("PALInitCheckAndLoadRegFile"),
            (Lines{"PALInitCheckAndLoadRegFile: rm21.reg saved: " + checksum +
                       ", calcd: " + checksum + ".",
                   "PALInitCheckAndLoadRegFile: Checksum equal. Not applying rm21.reg"}));

  Write("rm21.reg", "[HKLM\\Imported]\n\"n\"=dword:2\n");
  EXPECT_EQ(Load(u"rm21.reg"), S_OK);
  EXPECT_EQ(device.registry().GetDword("HKLM\\Imported", "n"), 2u) << "changed";
}

TEST_F(RegistryFiles, ChecksumAddsWordsAndTheBytesBehindThem) {
  std::string large(64 * 1024 + 4 + 3, '\0');  // larger than what is read at once
  large.front() = 2;
  large[64 * 1024] = 3;
  for (const std::size_t from_end : {1U, 2U, 3U}) large[large.size() - from_end] = '\xFF';
  struct Case {
    std::string bytes;
    DWORD checksum;
  };
  for (const Case& test : {Case{{"\x01\0\0\0\xFF\x02", 6}, 0x102}, Case{"\x80", 0x80},
                           Case{"\x01\x02\x03", 6}, Case{"\xFF\xFF\xFF\xFF\x02", 1},
                           Case{{"\0\0\0\x80\0\0\0\x80", 8}, 0}, Case{large, 5 + 3 * 0xFF}}) {
    device.registry().RemoveTree(kStore);
    Write("sum", test.bytes);
    EXPECT_EQ(Load(u"sum"), S_OK);
    EXPECT_EQ(Stored("sum"), test.checksum) << test.bytes.size();
  }
  device.registry().RemoveTree(kStore);
  device.PlanFault({.call = "GetFileSize"});
  EXPECT_EQ(Load(u"sum"), S_OK);
  EXPECT_EQ(Stored("sum"), 0u);
  EXPECT_EQ(LinesBehind("0xC45E0000 PALInitChecksumFile - "), Lines{"-1=GetFileSize()"});
  // What a read does not bring counts as zeros.
  device.registry().RemoveTree(kStore);
  Write("sum", {"\x01\0\0\0\xFF\x02", 6});
  device.PlanFault({.call = "ReadFile", .transfers = 5});
  EXPECT_EQ(Load(u"sum"), S_OK);
  EXPECT_EQ(Stored("sum"), 0x100U);
}

TEST_F(RegistryFiles, OnlyAStoredNumberOfFourBytesCounts) {
  Write("sum", "\x05");
  struct Case {
    std::uint32_t type;
    std::vector<std::uint8_t> data;
    bool imports;
  };
  for (const Case& test :
       {Case{REG_DWORD, {5, 0, 0, 0}, false}, Case{REG_DWORD, {4, 0, 0, 0}, true},
        Case{REG_BINARY, {5, 0, 0, 0}, true}, Case{REG_DWORD, {5, 0}, true},
        Case{REG_DWORD, {5, 0, 0, 0, 0}, true}, Case{REG_DWORD, {}, true}}) {
    device.registry().SetRaw(kStore, "sum", test.type, test.data);
    EXPECT_EQ(Load(u"sum"), S_OK);
    EXPECT_EQ(importer_ran(), test.imports) << test.data.size();
    EXPECT_EQ(Stored("sum"), 5u);
  }
}

TEST_F(RegistryFiles, AFileThatCannotBeReadHasTheChecksumZero) {
  for (const auto& [name, line] : {std::pair<std::u16string, std::string>{
                                       u"absent.reg",
                                       "PALInitChecksumFile - CreateFile(\\Store\\absent.reg) "
                                       "failed winerr:0x2"},
                                   {u"empty.reg", "PALInitChecksumFile - 0=GetFileSize()"}}) {
    Write("empty.reg", "");
    device.registry().RemoveTree(kStore);
    EXPECT_EQ(Load(name), S_OK);
    EXPECT_TRUE(importer_ran());
    EXPECT_EQ(TraceLines("PALInitChecksumFile - "), Lines{line});
    EXPECT_EQ(Stored(std::string(name.begin(), name.end())), 0u);
    EXPECT_EQ(Load(name), S_OK);
    EXPECT_FALSE(importer_ran());
  }
}

TEST_F(RegistryFiles, TreesAreClearedBeforeTheImporterStarts) {
  const std::array<std::string, 12> trees = {"ADCDevices",
                                             "ADCGroupConfig",
                                             "ADCGroups",
                                             "ADCPorts",
                                             "DataServer",
                                             "Decodes",
                                             "Drivers",
                                             "RUM",
                                             "SRAutoLaunch",
                                             "SRConfigCommands",
                                             "SRRegComComponents",
                                             "VersionedFiles"};
  std::string deep = kBase + trees[5];
  for (int level = 4; level <= 16; ++level) deep += "\\level";  // the deepest that there can be
  const auto make = [&] {
    for (const std::string& tree : trees) {
      device.registry().SetDword(kBase + tree + "\\a\\b", "n", 1);
      device.registry().SetDword(kBase + tree + "\\c", "n", 1);
    }
    device.registry().Create(deep);
    device.registry().RemoveTree(kStore);
  };
  std::set<std::string> left;
  device.InstallProgram({sim::kRegistryImporterPath, [&](const std::string&) {
                           left.clear();
                           for (const std::string& tree : trees) {
                             if (device.registry().Find(kBase + tree)) left.insert(tree);
                           }
                           return 0U;
                         }});
  make();
  EXPECT_EQ(Load(u"stack.reg", 0), S_OK);
  EXPECT_EQ(left.size(), trees.size());
  device.registry().RemoveTree(kStore);
  EXPECT_EQ(Load(u"stack.reg", 2), S_OK);
  EXPECT_EQ(left, (std::set<std::string>{"ADCDevices", "ADCPorts", "DataServer"}));
  EXPECT_EQ(device.registry().GetDword(std::string(kBase) + "ADCPorts\\a\\b", "n"), 1u);

  make();
  device.PlanFault({.call = "RegDeleteKeyW", .nth = 2, .from_then_on = true});
  EXPECT_EQ(Load(u"stack.reg", 1), S_OK) << "it ends, and the import goes on";
  EXPECT_EQ(left.size(), trees.size());
}

TEST_F(RegistryFiles, AKeyThatIsOpenElsewhereEndsTheClearingOfItsTree) {
  for (const char* key : {"Decodes\\a\\1", "Decodes\\b\\2", "Decodes\\c\\3", "Drivers\\d"}) {
    device.registry().Create(std::string(kBase) + key);
  }
  const auto is_left = [&](const char* key) {
    return device.registry().Find(std::string(kBase) + key) != nullptr;
  };
  sim::Process other(device, "other.exe");
  HKEY held = nullptr;
  other.Run([&] {
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\Decodes\\b"), 0, 0, &held);
  });
  EXPECT_EQ(Load(u"stack.reg", 1), S_OK) << "the import goes on";
  EXPECT_FALSE(is_left("Decodes\\a"));
  EXPECT_FALSE(is_left("Decodes\\b\\2")) << "what is below the open key goes first";
  EXPECT_TRUE(is_left("Decodes\\b"));
  EXPECT_TRUE(is_left("Decodes\\c\\3"));
  EXPECT_FALSE(is_left("Drivers")) << "the other trees are cleared";

  other.Run([&] { RegCloseKey(held); });
  device.registry().RemoveTree(kStore);
  EXPECT_EQ(Load(u"stack.reg", 1), S_OK);
  EXPECT_FALSE(is_left("Decodes"));
}

TEST_F(RegistryFiles, AnImporterThatIsMissingOrSlowLeavesNoChecksum) {
  const auto expect_failure = [&](const std::string& line) {
    EXPECT_EQ(Load(u"stack.reg"), E_FAIL);
    EXPECT_EQ(Stored("stack.reg"), std::nullopt);
    const Lines lines = CategorisedLines();
    EXPECT_EQ(lines[lines.size() - 2], "0xC45E0000 PALInitCheckAndLoadRegFile: " + line);
    EXPECT_EQ(lines.back(),
              "0x445E0000 0x80004005=PALREG_LoadRegistry(\\Store,stack.reg,0x0) Exit");
    EXPECT_EQ(process.new_handles(), 0u);
  };
  device.files().Remove(sim::kRegistryImporterPath);
  expect_failure("Failed to run \\Windows\\orqautoreg.exe, GetLastErr:0x2");

  device.files().Write(sim::kRegistryImporterPath, "");
  device.InstallProgram(sim::RegistryImporter(120001));
  expect_failure("stack.reg timeout 120000 msec waiting for autoreg.exe");
  EXPECT_EQ(device.now_ms(), 120000u);

  device.InstallProgram(sim::RegistryImporter(119999));
  EXPECT_EQ(Load(u"stack.reg"), S_OK);
  EXPECT_TRUE(Stored("stack.reg").has_value());
}

TEST_F(RegistryFiles, HowTheImporterEndsIsNotLookedAt) {
  device.InstallProgram({sim::kRegistryImporterPath, [](const std::string&) { return 1U; }});
  EXPECT_EQ(Load(u"stack.reg"), S_OK);
  EXPECT_TRUE(Stored("stack.reg").has_value());
}

TEST_F(RegistryFiles, ModelThatCannotBeReadImportsNothing) {
  device.hardware().parameters.clear();
  EXPECT_EQ(Load(u"stack.reg"), E_FAIL);
  EXPECT_FALSE(importer_ran());
  EXPECT_EQ(TraceLines("PALREG_LoadRegistry"),
            (Lines{"PALREG_LoadRegistry(\\Store,stack.reg,0x0) Entry",
                   "PALREG_LoadRegistry - Failure. 0x80004005=PalGetModel()"}));
  EXPECT_EQ(TraceLines().back(), "0x80004005=PALREG_LoadRegistry(\\Store,stack.reg,0x0) Exit");
  EXPECT_EQ(device.journal().Texts(sim::Effect::kDebug).size(), 1u);
}

TEST_F(RegistryFiles, NamesThatAreNoneAreRefused) {
  const std::u16string longest(259 - 7, u'n');  // with "\Store\" in front of it
  struct Case {
    const WCHAR* directory;
    const WCHAR* name;
    HRESULT result;
  };
  const std::u16string too_long = longest + u'n';
  const std::u16string huge(5000, u'n');
  for (const Case& test :
       {Case{nullptr, TEXT("a"), E_FAIL}, Case{TEXT("\\Store"), nullptr, E_FAIL},
        Case{TEXT("\\Store"), TEXT(""), E_FAIL}, Case{TEXT("\\Store"), too_long.c_str(), E_FAIL},
        Case{huge.c_str(), TEXT("a"), E_FAIL}, Case{TEXT("\\Store"), huge.c_str(), E_FAIL},
        Case{TEXT("\\Store"), longest.c_str(), S_OK}}) {
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALREG_LoadRegistry(test.directory, test.name, 1), test.result);
    EXPECT_EQ(TraceLines("PalGetModel(").size(), test.result == S_OK ? 1u : 0u);
    EXPECT_EQ(importer_ran(), test.result == S_OK);
    EXPECT_EQ(device.registry().Find(kStore) != nullptr, test.result == S_OK);
  }
}

struct FailingCall {
  std::string call;
  HRESULT result;  // where its first call fails
  bool stores;     // a checksum
  bool is_zero = false;
};

// Only what the import needs fails it, and what is not stored is imported again.
TEST_F(RegistryFiles, GoesOnWithoutWhatItCanDoWithout) {
  const std::vector<FailingCall> calls = {
      {"KernelIoControl", E_FAIL, false}, {"CreateFileW", S_OK, true, true},
      {"GetFileSize", S_OK, true, true},  {"malloc", S_OK, true, true},
      {"ReadFile", S_OK, true, true},     {"RegCreateKeyExW", S_OK, false},
      {"RegQueryValueExW", S_OK, true},   {"RegOpenKeyExW", S_OK, true},
      {"RegEnumKeyExW", S_OK, true},      {"RegDeleteKeyW", S_OK, true},
      {"CreateProcessW", E_FAIL, false},  {"WaitForSingleObject", E_FAIL, false},
      {"RegSetValueExW", S_OK, false},
  };
  for (const FailingCall& test : calls) {
    SCOPED_TRACE(test.call);
    device.registry().RemoveTree("HKLM\\Software");
    device.registry().Create(std::string(kBase) + "Decodes\\a");
    device.PlanFault({.call = test.call});
    EXPECT_EQ(process.exports().PALREG_LoadRegistry(TEXT("\\Store"), TEXT("stack.reg"), 1),
              test.result);
    device.ClearFaults();
    EXPECT_EQ(Stored("stack.reg").has_value(), test.stores);
    EXPECT_EQ(Stored("stack.reg") == 0U, test.is_zero);
    device.RunUntilIdle();  // an importer that nobody waited for
  }
}

}  // namespace

// How the device was built and what its owner allows, through the exports that say so.
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"

namespace {

using namespace std::string_literals;

constexpr DWORD kUntouched = 0xDEADBEEF;

constexpr std::uint16_t kInternalDeviceCode = 0x1A;
constexpr std::uint16_t kDataCollectionFlags = 0x1B;
constexpr std::uint16_t kAitBit = 0xD7;

constexpr const char* kPolicy = "HKLM\\Software\\Dravonel\\Policy";
constexpr const char* kFeature = "HKLM\\Software\\Dravonel\\Policy\\Camera";
constexpr const char* kStates = "HKLM\\Software\\States";

class ManufacturingOptions : public DeviceTest {
 protected:
  void SetUp() override { device.files().CreateFolder("\\ConfigStore"); }
  using Query = sim::Export<HRESULT(DWORD*)>;
  // The result of a query with one answer, and that answer.
  static std::pair<HRESULT, DWORD> Ask(const Query& query) {
    DWORD answer = kUntouched;
    const HRESULT result = query(&answer);
    return {result, answer};
  }

  void SetParameter(std::uint16_t id, const std::optional<sim::QueryAnswer>& answer) {
    device.hardware().parameters.erase(id);
    if (answer) device.hardware().parameters[id] = *answer;
  }

  // A policy of the feature "Camera" whose state stands in a key of its own.
  void SetPolicy(DWORD state) {
    device.registry().SetString(kFeature, "PolicyLocation", "Software\\States");
    device.registry().SetString(kFeature, "PolicyKey", "CameraOff");
    device.registry().SetDword(kStates, "CameraOff", state);
  }

  [[nodiscard]] std::optional<std::string> File(const char* path) {
    const std::vector<std::uint8_t>* data = device.files().Read(path);
    if (data == nullptr) return std::nullopt;
    return std::string(data->begin(), data->end());
  }

  sim::Process process{device};
  const sim::Exports& pal = process.exports();
};

TEST_F(ManufacturingOptions, InternalDeviceTypeComesFromItsParameter) {
  struct Case {
    std::optional<sim::QueryAnswer> parameter;
    DWORD type;
  };
  const Case cases[] = {
      {{{.bytes = {0x0C, 0, 0, 0}}}, 34},
      {{{.bytes = {0x8C, 0xFF, 0xFF, 0xFF}}}, 34},  // the low 7 bits alone count
      {{{.bytes = {0x16, 0, 0, 0}}}, 47},           // the second of two rows of one name
      {{{.bytes = {0x1C, 0, 0, 0}}}, 56},           // behind the name table
      {{{.bytes = {0x0B, 0, 0, 0}}}, 254},
      {{{.bytes = {0x00, 0, 0, 0}}}, 255},
      {{{.bytes = {0x20, 0, 0, 0}}}, 254},  // more than any code
      {{{.bytes = {0x03}}}, 8},
      {{{.bytes = {}}}, 255},  // bytes that are not there are 0
      {{{.bytes = {0x02, 0, 0, 0, 1, 1, 1, 1}, .returned = 0xFFFFFFFF}}, 15},
      {{{.error = 5}}, 34},
      {std::nullopt, 34},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(&test - cases);
    SetParameter(kInternalDeviceCode, test.parameter);
    DWORD type = kUntouched;
    DWORD s6_installed = kUntouched;
    EXPECT_EQ(pal.PALMFGOpt_InternalDeviceType(&type, &s6_installed), S_OK);
    EXPECT_EQ(type, test.type);
    EXPECT_EQ(s6_installed, 0u);
  }
}

TEST_F(ManufacturingOptions, InternalDeviceCodesStandForTheirTypes) {
  constexpr std::array<DWORD, 32> kTypes{255, 11, 15,  8,   16,  10, 10, 27,  28,  30,  31,
                                         254, 34, 254, 254, 254, 37, 38, 254, 42,  254, 254,
                                         47,  50, 51,  52,  54,  55, 56, 254, 254, 53};
  for (std::size_t code = 0; code < kTypes.size(); ++code) {
    SetParameter(kInternalDeviceCode, sim::QueryAnswer{.bytes = {static_cast<BYTE>(code)}});
    DWORD type = kUntouched;
    DWORD s6_installed = kUntouched;
    EXPECT_EQ(pal.PALMFGOpt_InternalDeviceType(&type, &s6_installed), S_OK);
    EXPECT_EQ(type, kTypes.at(code)) << code;
  }
}

TEST_F(ManufacturingOptions, DatacollHasOrientationRotationAndTheSecondDevice) {
  struct Answers {
    HRESULT result;
    DWORD type, orientation, rotation;
  };
  struct Case {
    std::optional<std::string> file;
    Answers answers;
  };
  const Case cases[] = {
      {std::nullopt, {PAL_E_FILE_NOT_FOUND, 255, 0, 0}},
      {"", {E_FAIL, 255, 0, 0}},
      {"\xFF\xFF", {S_OK, 255, 0, 0}},
      {"\xFF\xFF\x19", {S_OK, 52, 0, 0}},
      {"\xFF\xFF\x99\xFF", {S_OK, 254, 0, 0}},  // here the high bit counts
      {"\xFF\xFF\x00\xFF\x82"s, {S_OK, 255, 0x82, 0}},
      {"\xFF\xFF\x01\xFF\x02\xFE", {S_OK, 11, 2, 0xFE}},
      {"\xFF\xFF\x01\xFF\x02\x03" + std::string(3000, '\x55'), {S_OK, 11, 2, 3}},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(&test - cases);
    device.files().Remove("\\ConfigStore\\datacoll");
    if (test.file) device.files().Write("\\ConfigStore\\datacoll", *test.file);
    const auto& [result, type, orientation, rotation] = test.answers;
    EXPECT_EQ(Ask(pal.PALMFGOpt_InternalDevice2Type), std::pair(result, type));
    EXPECT_EQ(Ask(pal.PALMFGOpt_InternalDevice_ImageOrientation), std::pair(result, orientation));
    EXPECT_EQ(Ask(pal.PALMFGOpt_InternalDevice2_MountingRotation), std::pair(result, rotation));
  }
  EXPECT_EQ(TraceLines("LoadCFGDatacoll, rgucCFGData[1023]=85").size(), 3u);
  EXPECT_EQ(TraceLines("LoadCFGDatacoll, rgucCFGData[1024]").size(), 0u);
  for (const auto& [call, error] : {std::pair{"CreateFileW", 32u}, {"ReadFile", 31u}}) {
    device.PlanFault({.call = call, .from_then_on = true, .error = error});
    EXPECT_EQ(Ask(pal.PALMFGOpt_InternalDevice2Type), std::pair(PAL_E_WIN32(error), DWORD{255}));
    EXPECT_EQ(Ask(pal.PALMFGOpt_InternalDevice_ImageOrientation).first, PAL_E_WIN32(error));
    device.ClearFaults();
  }
}

TEST_F(ManufacturingOptions, CameraNeedsTheParameterAndTheOwnersLeave) {
  struct Case {
    std::optional<sim::QueryAnswer> ait;
    std::optional<DWORD> disable;
    DWORD enabled;
  };
  const sim::QueryAnswer zero{.bytes = {0, 0, 0, 0}};
  const Case cases[] = {
      {zero, std::nullopt, 1},
      {zero, 0, 1},
      {zero, 1, 0},
      {zero, 0x100, 0},
      {std::nullopt, 0, 1},
      {std::nullopt, 1, 0},
      {{{.bytes = {1}}}, 0, 0},
      {{{.bytes = {0, 0, 0, 0x80}}}, std::nullopt, 0},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(&test - cases);
    SetParameter(kAitBit, test.ait);
    device.registry().RemoveTree(kPolicy);
    if (test.disable) device.registry().SetDword(kPolicy, "DisableImageCapture", *test.disable);
    device.journal().Clear();
    EXPECT_EQ(Ask(pal.PALMFGOpt_IsCameraEnabled), std::pair(S_OK, test.enabled));
    EXPECT_EQ(device.journal().Texts(sim::Effect::kDebug).size(), test.ait ? 0u : 1u);
  }
}

TEST_F(ManufacturingOptions, ContentIsEnabledUnlessItsFlagsAreZero) {
  SetParameter(kDataCollectionFlags, sim::QueryAnswer{.bytes = {0, 0, 0, 0}});
  EXPECT_EQ(Ask(pal.PALMFGOpt_IsDataCollectionContentEnabled), std::pair(S_OK, DWORD{0}));
  EXPECT_EQ(Ask(pal.PALMFGOpt_IsDravonelContentEnabled), std::pair(S_OK, DWORD{1}));
  SetParameter(kDataCollectionFlags, sim::QueryAnswer{.bytes = {0, 0x40}});
  EXPECT_EQ(Ask(pal.PALMFGOpt_IsDataCollectionContentEnabled), std::pair(S_OK, DWORD{1}));
  SetParameter(kDataCollectionFlags, std::nullopt);
  EXPECT_EQ(Ask(pal.PALMFGOpt_IsDataCollectionContentEnabled), std::pair(E_FAIL, DWORD{1}));
}

constexpr HRESULT kEnabled = 0x04320001;
constexpr HRESULT kDisabled = 0x04320002;

// A fault of one value of a policy that otherwise says "disabled".
struct PolicyCase {
  const char* what;
  HRESULT result;
  void (*arrange)(sim::Registry& registry);
};

constexpr PolicyCase kPolicyCases[] = {
    {"disabled", kDisabled, [](sim::Registry&) {}},
    {"enabled", kEnabled, [](sim::Registry& r) { r.SetDword(kStates, "CameraOff", 0); }},
    {"neither", PAL_MFGOPT_E_VALUE_INVALID,
     [](sim::Registry& r) { r.SetDword(kStates, "CameraOff", 2); }},
    {"no feature", PAL_MFGOPT_E_NO_SUCH_FEATURE, [](sim::Registry& r) { r.RemoveTree(kFeature); }},
    {"no location", PAL_MFGOPT_E_LOCATION_UNREADABLE,
     [](sim::Registry& r) { r.Find(kFeature)->DeleteValue(u"PolicyLocation"); }},
    {"location too long", PAL_MFGOPT_E_LOCATION_UNREADABLE,
     [](sim::Registry& r) { r.SetString(kFeature, "PolicyLocation", std::string(260, 'x')); }},
    {"location empty", PAL_MFGOPT_E_LOCATION_UNREADABLE,
     [](sim::Registry& r) { r.SetRaw(kFeature, "PolicyLocation", REG_SZ, {}); }},
    {"location is no text", PAL_MFGOPT_E_LOCATION_UNREADABLE,
     [](sim::Registry& r) { r.SetDword(kFeature, "PolicyLocation", 1); }},
    {"location without its null", kDisabled,
     [](sim::Registry& r) {
       std::vector<std::uint8_t> data = sim::StringData(u"Software\\States");
       data.resize(data.size() - 2);
       r.SetRaw(kFeature, "PolicyLocation", REG_SZ, data);
     }},
    {"location names no key", kEnabled, [](sim::Registry& r) { r.RemoveTree(kStates); }},
    {"no name", PAL_MFGOPT_E_VALUE_UNREADABLE,
     [](sim::Registry& r) {
       r.Find(kFeature)->DeleteValue(u"PolicyKey");
       r.SetString(kStates, "PolicyKey", "CameraOff");  // the wrong key to look in
     }},
    {"no state", PAL_MFGOPT_E_VALUE_UNREADABLE,
     [](sim::Registry& r) { r.Find(kStates)->DeleteValue(u"CameraOff"); }},
    {"state empty", PAL_MFGOPT_E_VALUE_UNREADABLE,
     [](sim::Registry& r) { r.SetRaw(kStates, "CameraOff", REG_DWORD, {}); }},
    {"state too long", PAL_MFGOPT_E_VALUE_UNREADABLE,
     [](sim::Registry& r) {
       r.SetRaw(kStates, "CameraOff", REG_DWORD, {1, 0, 0, 0, 0});
     }},
    {"state short", kDisabled,
     [](sim::Registry& r) { r.SetRaw(kStates, "CameraOff", REG_DWORD, {1}); }},
    {"state is no number", PAL_MFGOPT_E_VALUE_UNREADABLE,
     [](sim::Registry& r) { r.SetString(kStates, "CameraOff", "1"); }},
};

TEST_F(ManufacturingOptions, PoliciesAnswerByTheirResultAndCloseTheirKeys) {
  for (const PolicyCase& test : kPolicyCases) {
    SetPolicy(1);
    test.arrange(device.registry());
    EXPECT_EQ(pal.PALMFGOpt_IsDisabledByPolicy(TEXT("Camera")), test.result) << test.what;
    EXPECT_EQ(process.new_handles(), 0u) << test.what;
    device.registry().RemoveTree(kPolicy);
    device.registry().RemoveTree(kStates);
  }
  EXPECT_EQ(pal.PALMFGOpt_IsDisabledByPolicy(nullptr), PAL_MFGOPT_E_NO_FEATURE_GIVEN);
  EXPECT_EQ(Texts(sim::Effect::kRegistry), std::vector<std::string>{});
}

TEST_F(ManufacturingOptions, PoliciesHaveNamesOfAtMost234Units) {
  std::u16string name(234, u'f');
  device.registry().Create(kPolicy + ("\\" + std::string(234, 'f')));
  EXPECT_EQ(pal.PALMFGOpt_IsDisabledByPolicy(name.c_str()), PAL_MFGOPT_E_LOCATION_UNREADABLE);
  name += u'f';
  const unsigned opens = device.calls("RegOpenKeyExW");
  EXPECT_EQ(pal.PALMFGOpt_IsDisabledByPolicy(name.c_str()), PAL_MFGOPT_E_NO_SUCH_FEATURE);
  EXPECT_EQ(device.calls("RegOpenKeyExW"), opens);
}

TEST_F(ManufacturingOptions, BluetoothIsInstalledUnlessItsPolicyDisablesIt) {
  const std::string feature = kPolicy + "\\Bluetooth"s;
  EXPECT_EQ(Ask(pal.PALMFGOpt_IsBluetoothModuleInstalled), std::pair(S_OK, DWORD{1}));
  device.registry().SetString(feature, "PolicyLocation", "Software\\States");
  device.registry().SetString(feature, "PolicyKey", "NoRadio");
  for (const auto& [state, installed] : {std::pair{0u, 1u}, {1u, 0u}, {2u, 1u}}) {
    device.registry().SetDword(kStates, "NoRadio", state);
    EXPECT_EQ(Ask(pal.PALMFGOpt_IsBluetoothModuleInstalled), std::pair(S_OK, DWORD{installed}));
  }
}

constexpr const char* kDpmFile = "\\ConfigStore\\DCEDPM";

TEST_F(ManufacturingOptions, DpmStatusKeepsOneByteForScanType4AndOneForTheOthers) {
  DWORD status = kUntouched;
  EXPECT_EQ(pal.PALMFGOpt_GetDPMStatus(4, &status), S_OK);
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(File(kDpmFile), "\0\0"s) << "created by the first to ask";
  EXPECT_EQ(TraceLines("PALMFGOpt_GetDPMStatus"),
            std::vector<std::string>{"PALMFGOpt_GetDPMStatus. eScanType: 4, hr: 0x0,*peStatus:0, "
                                     "dwBytesRead:2"})
      << "a new file is read from its start";
  device.files().Remove(kDpmFile);

  EXPECT_EQ(pal.PALMFGOpt_SetDPMStatus(4, 0x101), S_OK);
  EXPECT_EQ(File(kDpmFile), "\0\x01"s);
  for (const DWORD scan_type : {0u, 5u, 0xFFFFFFFFu}) {
    EXPECT_EQ(pal.PALMFGOpt_SetDPMStatus(scan_type, 0xFFFFFF90 + scan_type), S_OK);
    EXPECT_EQ(pal.PALMFGOpt_GetDPMStatus(scan_type, &status), S_OK);
    EXPECT_EQ(status, (0x90 + scan_type) & 0xFF);
    EXPECT_EQ(pal.PALMFGOpt_GetDPMStatus(4, &status), S_OK);
    EXPECT_EQ(status, 1u);
  }
}

TEST_F(ManufacturingOptions, DpmStatusTakesFilesThatAreShortOrLong) {
  struct Case {
    std::string file;
    DWORD type4, other;
    std::string after;
  };
  for (const Case& test : {Case{"", 0, 0, "\0\x07"s}, Case{"\x05", 0, 5, "\x05\x07"},
                           Case{"\x05\x06\x07", 6, 5, "\x05\x07\x07"}}) {
    device.files().Write(kDpmFile, test.file);
    DWORD status = kUntouched;
    EXPECT_EQ(pal.PALMFGOpt_GetDPMStatus(4, &status), S_OK);
    EXPECT_EQ(status, test.type4);
    EXPECT_EQ(pal.PALMFGOpt_GetDPMStatus(0, &status), S_OK);
    EXPECT_EQ(status, test.other);
    EXPECT_EQ(File(kDpmFile), test.file);
    EXPECT_EQ(pal.PALMFGOpt_SetDPMStatus(4, 7), S_OK);
    EXPECT_EQ(File(kDpmFile), test.after);
  }
}

// A call that fails gives its error and stops there; one that moves no whole status does not.
TEST_F(ManufacturingOptions, DpmStatusTellsWhatFailedInItsFile) {
  const std::string old = "\x05\x06";
  struct Case {
    std::optional<std::string> file;  // before
    sim::Fault fault;
    HRESULT set;  // and its file after
    std::optional<std::string> after;
    HRESULT get;
  };
  const HRESULT denied = PAL_E_ACCESS_DENIED;
  const HRESULT failure = PAL_E_WIN32(0x1F);
  const Case cases[] = {
      {old, {.call = "CreateFileW", .error = 5}, denied, old, denied},
      {{}, {.call = "CreateFileW", .nth = 2, .error = 5}, denied, {}, denied},
      {{}, {.call = "WriteFile"}, failure, "", failure},
      {{}, {.call = "WriteFile", .nth = 2}, failure, "\0\0"s, S_OK},
      {old, {.call = "SetFilePointer"}, failure, old, failure},
      {old, {.call = "WriteFile", .transfers = 0}, E_FAIL, old, S_OK},
      {{}, {.call = "WriteFile", .transfers = 1}, S_OK, "\0\x09"s, S_OK},
      {old, {.call = "ReadFile"}, S_OK, "\x05\x09", failure},
      {old, {.call = "ReadFile", .transfers = 1}, S_OK, "\x05\x09", S_OK},
      // Another process makes the file between the two opens.
      {old, {.call = "CreateFileW", .error = 2}, PAL_E_WIN32(0x50), old, PAL_E_WIN32(0x50)},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(&test - cases);
    const auto arrange = [&] {
      device.ClearFaults();
      device.files().Remove(kDpmFile);
      if (test.file) device.files().Write(kDpmFile, *test.file);
      device.PlanFault(test.fault);
    };
    arrange();
    EXPECT_EQ(pal.PALMFGOpt_SetDPMStatus(4, 9), test.set);
    EXPECT_EQ(File(kDpmFile), test.after);
    arrange();
    DWORD status = kUntouched;
    EXPECT_EQ(pal.PALMFGOpt_GetDPMStatus(4, &status), test.get);
    const bool reads_on = test.get == S_OK && test.file && test.fault.call == "WriteFile";
    EXPECT_EQ(status, reads_on ? 6u : 0u);
  }
  device.ClearFaults();
  const std::vector<std::string> lines = TraceLines("PALMFGOpt_OpenDPMCStore. Failed to Write");
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front(), "PALMFGOpt_OpenDPMCStore. Failed to Write Init value, error:31");
}

TEST_F(ManufacturingOptions, NullPointersAreRefusedBeforeAnythingIsDone) {
  const unsigned calls = device.calls();
  DWORD type = kUntouched;
  EXPECT_EQ(pal.PALMFGOpt_InternalDeviceType(nullptr, &type), E_FAIL);
  EXPECT_EQ(pal.PALMFGOpt_InternalDeviceType(&type, nullptr), E_FAIL);
  EXPECT_EQ(type, kUntouched);
  for (const Query& query :
       {pal.PALMFGOpt_InternalDevice2Type, pal.PALMFGOpt_InternalDevice_ImageOrientation,
        pal.PALMFGOpt_InternalDevice2_MountingRotation, pal.PALMFGOpt_IsCameraEnabled,
        pal.PALMFGOpt_IsDravonelContentEnabled, pal.PALMFGOpt_IsDataCollectionContentEnabled,
        pal.PALMFGOpt_IsBluetoothModuleInstalled}) {
    EXPECT_EQ(query(nullptr), E_FAIL);
  }
  EXPECT_EQ(pal.PALMFGOpt_GetDPMStatus(4, nullptr), E_FAIL);
  EXPECT_EQ(device.calls(), calls);
}

TEST_F(ManufacturingOptions, StepsAreTraced) {
  device.files().Write("\\ConfigStore\\datacoll", "\x01\x02\x7F");
  SetParameter(kInternalDeviceCode, sim::QueryAnswer{.bytes = {0x7F}});
  DWORD number = 0;
  DWORD s6_installed = 0;
  pal.PALMFGOpt_InternalDeviceType(&number, &s6_installed);
  pal.PALMFGOpt_InternalDevice2Type(&number);
  SetPolicy(3);
  pal.PALMFGOpt_IsDisabledByPolicy(TEXT("Camera"));
  pal.PALMFGOpt_IsDisabledByPolicy(TEXT("Other"));
  device.files().Write(kDpmFile, "\x05");
  pal.PALMFGOpt_GetDPMStatus(2, &number);
  std::vector<std::string> lines = CategorisedLines();
  std::erase_if(lines,
                [](const std::string& line) { return line.find("hFile:0x") != std::string::npos; });
  EXPECT_EQ(
      lines,
      (std::vector<std::string>{
          "0x43F00000 Entry PALMFGOpt_InternalDeviceType",
          "0x43F00000 EEP DeviceType: 0x7f",
          "0xC3F00000 Did not find device type 0x7f",
          "0x43F00000 Exit PALMFGOpt_InternalDeviceType hr: 0x0, DeviceType: 254, S6 Installed: 0",
          "0x43F00000 Entry PALMFGOpt_InternalDevice2Type,SECOND_INTERNAL_DEVICE_OFFSET:2 ",
          "0x43F00000 Entry LoadCFGDatacoll, dwMaxDataSizeBytes:1024",
          "0x43F00000 LoadCFGDatacoll, rgucCFGData[0]=1",
          "0x43F00000 LoadCFGDatacoll, rgucCFGData[1]=2",
          "0x43F00000 LoadCFGDatacoll, rgucCFGData[2]=127",
          "0x43F00000 Exit LoadCFGDatacoll, hr:0x0, dwBytesRead:3, *pdwDataSizeBytes:3",
          "0x43F00000 Did not find device type 127",
          "0x43F00000 Exit PALMFGOpt_InternalDevice2Type hr: 0x0, *peDeviceType: 254",
          "0x43F00000 IsDisabledByPolicy - Open indirect subkey: "
          "Software\\Dravonel\\Policy\\Camera",
          "0x43F00000 IsDisabledByPolicy - Disabled keyvalue state:3",
          "0x43F00000 IsDisabledByPolicy - Open indirect subkey: Software\\Dravonel\\Policy\\Other",
          "0xC3F00000 IsDisabledByPolicy - Err open indirect subkey: Software\\Dravonel\\Policy",
          "0xC3F00000 PALMFGOpt_GetDPMStatus. dwBytesRead:1 != 2",
          "0x43F00000 PALMFGOpt_GetDPMStatus. eScanType: 2, hr: 0x0,*peStatus:5, dwBytesRead:1",
      }));
}

}  // namespace

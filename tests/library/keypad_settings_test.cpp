// Control keys, shift keys, the click of a key, the keyboard's type.
#include "platform/sim/hardware/hardware.h"
#include "tests/support/keypad_test.h"

namespace {

using Lines = std::vector<std::string>;

class KeypadSettings : public KeypadTest {
 protected:
  static constexpr const char* kShiftKeys = R"(HKLM\Hardware\Layout\ShiftKeys)";
  static constexpr const char* kVolume = R"(HKCU\ControlPanel\Volume)";

  [[nodiscard]] Bytes Value(const std::string& key, const std::string& name) {
    const sim::RegistryValue* value = device.registry().FindValue(key, name);
    return value == nullptr ? Bytes{} : value->data;
  }
  HRESULT GetShift(DWORD& behavior) { return process.exports().PALKEYGetShiftBehavior(&behavior); }
};

TEST_F(KeypadSettings, SwitchesControlKeys) {
  struct Case {
    LONG key;
    DWORD state;
    HRESULT result;
    Lines written;
  };
  const std::string path = R"(HKEY_LOCAL_MACHINE\Hardware\Devicemap\Keybd )";
  for (const Case& test : {
           Case{0, 1, S_OK, {path + "\"VolumeKeyEnable\"=dword:00000001"}},
           Case{1,
                5,
                S_OK,
                {path + "\"ContrastKeyEnable\"=dword:00000001",
                 path + "\"HighContrastKeyEnable\"=dword:00000001"}},
           Case{2, 0, S_OK, {path + "\"BacklightKeyEnable\"=dword:00000000"}},
           Case{3, 0x80000000, S_OK, {path + "\"AltTabEnable\"=dword:00000001"}},
           Case{4, 1, PAL_KEY_E_NO_SUCH_CONTROL_KEY, {}},
           Case{-1, 1, PAL_KEY_E_NO_SUCH_CONTROL_KEY, {}},
       }) {
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALKEYControlKeyState(test.key, test.state), test.result);
    EXPECT_EQ(Changes(), test.written) << test.key;
  }
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0xC3ED0000 PALKEYControlKeyState - Incorrect key specified. hr: "
                   "0x83ed0004\\r\\n",
                   "0xC3ED0000 PALKEYContolKeyState - ERROR copying reg string. hr: "
                   "0x83ed0004\\r\\n"}));
  device.journal().Clear();
  device.PlanFault({.call = "RegSetValueExW", .error = 5});
  EXPECT_EQ(process.exports().PALKEYControlKeyState(1, 1), S_OK) << "of the last write";
  EXPECT_EQ(Changes().size(), 1u);
  device.registry().RemoveTree(kKeyboard);
  EXPECT_EQ(process.exports().PALKEYControlKeyState(1, 1), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(Changes().size(), 1u) << "the key is not created";
}

struct ShiftValue {
  std::string name;
  std::uint32_t type;
  Bytes data;
};
using ShiftValues = std::vector<ShiftValue>;

TEST_F(KeypadSettings, TellsWhatTheShiftKeysDo) {
  struct Case {
    const char* what;
    ShiftValues values;
    DWORD behavior;
  };
  const ShiftValue other{"ShiftKeyA", REG_BINARY, {4, 0, 0, 0}};
  for (const Case& test : {
           Case{"none", {}, 0},
           Case{"bit 1", {{"ShiftKey", REG_BINARY, {1, 0, 0, 0}}}, 0},
           Case{"bit 2", {{"ShiftKeyBlue", REG_BINARY, {0xFA, 9, 9, 9}}}, 1},
           Case{"bit 4", {{"sHIFTkEY1", REG_BINARY, {4, 0, 0, 0}}, other}, 2},
           Case{"several bits", {{"ShiftKey1", REG_BINARY, {6, 0, 0, 0}}}, 1},
           Case{"no bit", {{"ShiftKey1", REG_BINARY, {0xF8, 1, 1, 1}}}, 3},
           Case{"different", {other, {"ShiftKeyB", REG_BINARY, {2, 0, 0, 0}}}, 3},
           Case{"the same but for other bits",
                {other, {"ShiftKeyB", REG_BINARY, {0x84, 1, 0, 0}}},
                2},
           Case{"other values between",
                {{"", REG_BINARY, {1, 0, 0, 0}},
                 {"Shift", REG_BINARY, {1, 0, 0, 0}},
                 {"ShiftKeyLong", REG_BINARY, {1, 0, 0, 0, 0}},
                 {"ShiftKeyShort", REG_BINARY, {1, 0, 0}},
                 {"ShiftKeyEmpty", REG_BINARY, {}},
                 {"ShiftKeyNumber", REG_DWORD, {1, 0, 0, 0}},
                 {std::string(255, 'S'), REG_SZ, Bytes(600, 'x')},
                 {"ShiftKey" + std::string(252, 'S'), REG_BINARY, {4, 0, 0, 0}},
                 {"ShiftKey" + std::string(253, 'S'), REG_BINARY, {1, 0, 0, 0}}},
                2},
       }) {
    SCOPED_TRACE(test.what);
    Arrange();
    device.registry().Create(kShiftKeys);
    for (const ShiftValue& value : test.values) {
      device.registry().SetRaw(kShiftKeys, value.name, value.type, value.data);
    }
    DWORD behavior = 77;
    EXPECT_EQ(GetShift(behavior), S_OK);
    EXPECT_EQ(behavior, test.behavior);
    EXPECT_EQ(Changes(), Lines{});
  }
}

TEST_F(KeypadSettings, SetsEveryShiftKeyAndNothingElse) {
  const ShiftValues others = {{"ShiftKeyLong", REG_BINARY, {1, 0, 0, 0, 0}},
                              {"ShiftKeyNumber", REG_DWORD, {1, 0, 0, 0}},
                              {"Sticky", REG_BINARY, {1, 0, 0, 0}}};
  const Bytes bits = {1, 2, 4};
  for (const DWORD behavior : {2u, 0u, 1u}) {
    for (const ShiftValue& value : others) {
      device.registry().SetRaw(kShiftKeys, value.name, value.type, value.data);
    }
    device.registry().SetBinary(kShiftKeys, "ShiftKeyBlue", {0xFF, 0x10, 2, 3});
    device.registry().SetBinary(kShiftKeys, "SHIFTKEYORANGE", {0, 0x11, 2, 3});
    EXPECT_EQ(process.exports().PALKEYSetShiftBehavior(behavior), S_OK);
    const std::uint8_t bit = bits[behavior];
    EXPECT_EQ(Value(kShiftKeys, "ShiftKeyBlue"),
              (Bytes{static_cast<std::uint8_t>(0xF8 | bit), 0x10, 2, 3}));
    EXPECT_EQ(Value(kShiftKeys, "ShiftKeyOrange"), (Bytes{bit, 0x11, 2, 3}));
    for (const ShiftValue& value : others) EXPECT_EQ(Value(kShiftKeys, value.name), value.data);
    DWORD read = 0;
    EXPECT_EQ(GetShift(read), S_OK);
    EXPECT_EQ(read, behavior);
  }
  device.journal().Clear();
  EXPECT_EQ(process.exports().PALKEYSetShiftBehavior(3), E_INVALIDARG);
  EXPECT_EQ(process.exports().PALKEYSetShiftBehavior(0xFFFFFFFF), E_INVALIDARG);
  EXPECT_EQ(Changes(), Lines{});
  EXPECT_EQ(process.exports().PALKEYGetShiftBehavior(nullptr), E_FAIL);
}

TEST_F(KeypadSettings, FailsWhereTheShiftKeysCannotBeReached) {
  struct Case {
    const char* what;
    sim::Fault fault;
    HRESULT get, set;
    DWORD behavior;
    std::string get_line, set_line;
  };
  const std::string keyboard = "HKLM\\Hardware\\Devicemap\\Keybd";
  const std::string keys = "HKLM\\Hardware\\Layout\\ShiftKeys";
  const HRESULT denied = PAL_E_ACCESS_DENIED;
  for (const Case& test : {
           Case{"keyboard",
                {.call = "RegOpenKeyExW", .on = "Keybd", .error = 5},
                denied,
                denied,
                77,
                "opening " + keyboard,
                "opening " + keyboard},
           Case{"path",
                {.call = "RegQueryValueExW", .on = "CurrentActiveLayoutKey", .error = 5},
                denied,
                denied,
                77,
                "querying " + keyboard + "\\CurrentActiveLayoutKey",
                "querying " + keyboard + "\\CurrentActiveLayoutKey"},
           Case{"shift keys",
                {.call = "RegOpenKeyExW", .on = "ShiftKeys", .error = 5},
                denied,
                denied,
                77,
                "opening " + keys,
                "opening " + keys},
           Case{"list",
                {.call = "RegEnumValueW", .on = "[1]", .error = 5},
                denied,
                S_OK,
                0xFFFFFFFF,
                "enumerating values " + keys,
                "enumerating " + keys},
           Case{"write",
                {.call = "RegSetValueExW", .on = "ShiftKeyA", .error = 5},
                S_OK,
                denied,
                1,
                "",
                "saving " + keys + "\\ShiftKeyA"},
       }) {
    SCOPED_TRACE(test.what);
    Arrange();
    device.registry().SetBinary(kShiftKeys, "ShiftKeyA", {2, 0, 0, 0});
    device.registry().SetBinary(kShiftKeys, "ShiftKeyB", {2, 0, 0, 0});
    DWORD behavior = 77;
    device.PlanFault(test.fault);
    EXPECT_EQ(GetShift(behavior), test.get);
    EXPECT_EQ(behavior, test.behavior);
    device.ClearFaults();
    device.PlanFault(test.fault);
    EXPECT_EQ(process.exports().PALKEYSetShiftBehavior(2), test.set);
    device.ClearFaults();
    EXPECT_EQ(Value(kShiftKeys, "ShiftKeyB"), (Bytes{2, 0, 0, 0})) << "behind the failure";
    EXPECT_EQ(process.new_handles(), 0u);
    const Lines get_lines = TraceLines("PALKEYGetShiftBehavior - Error ");
    const Lines set_lines = TraceLines("PALKEYSetShiftBehavior - Error ");
    if (test.get_line.empty()) {
      EXPECT_EQ(get_lines, Lines{});
    } else {
      EXPECT_EQ(get_lines,
                Lines{"PALKEYGetShiftBehavior - Error " + test.get_line + ". dwRet = 0x5\\r\\n"});
    }
    EXPECT_EQ(set_lines,
              Lines{"PALKEYSetShiftBehavior - Error " + test.set_line + ". dwRet = 0x5\\r\\n"});
  }
}

TEST_F(KeypadSettings, KeepsTheClickOfAKey) {
  const auto set = [&](DWORD level) { return process.exports().PALKEYSetKeyTapVol(level); };
  DWORD level = 77;
  EXPECT_EQ(set(1), PAL_E_FILE_NOT_FOUND) << "there is no such key yet";
  EXPECT_EQ(process.exports().PALKEYGetKeyTapVol(&level), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(level, 77u);
  EXPECT_EQ(CategorisedLines(), (Lines{"0xC3ED0000 PALDISPSetKeyTapVol - Could not set reg key: "
                                       "ControlPanel\\Volume\\Key\\r\\n",
                                       "0xC3ED0000 PALDISPSetKeyTapVol - Could not read reg key: "
                                       "ControlPanel\\Volume\\Key\\r\\n"}));
  EXPECT_EQ(process.exports().PALKEYGetKeyTapVol(nullptr), E_FAIL);
  device.registry().Create(kVolume);
  const std::vector<DWORD> stored = {0, 1, 0x10002};
  for (const DWORD wanted : {2u, 0u, 1u}) {
    device.journal().Clear();
    EXPECT_EQ(set(wanted), S_OK);
    EXPECT_EQ(device.registry().GetDword(kVolume, "Key"), stored[wanted]);
    EXPECT_EQ(process.exports().PALKEYGetKeyTapVol(&level), S_OK);
    EXPECT_EQ(level, wanted);
    EXPECT_EQ(device.journal().Texts(sim::Effect::kAudio).size(), 1u) << "the driver is told";
  }
  for (const DWORD wrong : {3u, 0x10002u, 0xFFFFFFFFu}) EXPECT_EQ(set(wrong), E_FAIL);
  EXPECT_EQ(device.registry().GetDword(kVolume, "Key"), 1u);
  for (const auto& [there, read] : {std::pair{0x10000u, 0u}, {0x10001u, 0x10001u}, {7u, 7u}}) {
    device.registry().SetDword(kVolume, "Key", there);
    EXPECT_EQ(process.exports().PALKEYGetKeyTapVol(&level), S_OK);
    EXPECT_EQ(level, read);
  }
  device.RemoveModule("coredll.dll");
  EXPECT_EQ(set(2), E_FAIL);
  EXPECT_EQ(device.registry().GetDword(kVolume, "Key"), 0x10002u) << "written before";
}

TEST_F(KeypadSettings, TellsTheKeyboardsType) {
  struct Case {
    const char* what;
    std::optional<sim::QueryAnswer> answer;
    DWORD type;
    bool traced;
  };
  for (const Case& test : {
           Case{"four bytes", sim::QueryAnswer{.bytes = {1, 2, 3, 4}}, 0x04030201, false},
           Case{"one byte", sim::QueryAnswer{.bytes = {9}}, 9, false},
           Case{"no byte", sim::QueryAnswer{.bytes = {}}, 0, true},
           Case{"an error", sim::QueryAnswer{.error = 31}, 0, true},
           Case{"no parameter", std::nullopt, 0, true},
       }) {
    SCOPED_TRACE(test.what);
    device.journal().Clear();
    device.hardware().parameters.clear();
    if (test.answer) device.hardware().parameters[0x0035] = *test.answer;
    DWORD type = 77;
    EXPECT_EQ(process.exports().PALKEYGetType(&type), S_OK);
    EXPECT_EQ(type, test.type);
    EXPECT_EQ(TraceLines("GetKBType - KernelIoControl() failed. win32err: ").size(),
              test.traced ? 1u : 0u);
  }
  EXPECT_EQ(process.exports().PALKEYGetType(nullptr), E_FAIL);
}

}  // namespace

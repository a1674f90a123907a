// Control keys, shift keys, the keyboard's type.
#include "platform/sim/hardware/hardware.h"
#include "tests/support/keypad_test.h"

namespace {

using Lines = std::vector<std::string>;

class KeypadSettings : public KeypadTest {
 protected:
  static constexpr const char* kShiftKeys = R"(HKLM\Hardware\Layout\ShiftKeys)";

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
    std::string call, on;
    HRESULT get, set;
    DWORD behavior;
    std::string get_line, set_line;
  };
  const std::string keyboard = "HKLM\\Hardware\\Devicemap\\Keybd";
  const std::string path = "querying " + keyboard + "\\CurrentActiveLayoutKey";
  const std::string keys = "HKLM\\Hardware\\Layout\\ShiftKeys";
  const HRESULT denied = PAL_E_ACCESS_DENIED;
  for (const Case& test : {
           Case{"RegOpenKeyExW", "Keybd", denied, denied, 77, "opening " + keyboard,
                "opening " + keyboard},
           Case{"RegQueryValueExW", "CurrentActiveLayoutKey", denied, denied, 77, path, path},
           Case{"RegOpenKeyExW", "ShiftKeys", denied, denied, 77, "opening " + keys,
                "opening " + keys},
           Case{"RegEnumValueW", "[1]", denied, S_OK, 0xFFFFFFFF, "enumerating values " + keys,
                "enumerating " + keys},
           Case{"RegSetValueExW", "ShiftKeyA", S_OK, denied, 1, "",
                "saving " + keys + "\\ShiftKeyA"},
       }) {
    SCOPED_TRACE(test.call + test.on);
    Arrange();
    device.registry().SetBinary(kShiftKeys, "ShiftKeyA", {2, 0, 0, 0});
    device.registry().SetBinary(kShiftKeys, "ShiftKeyB", {2, 0, 0, 0});
    DWORD behavior = 77;
    const sim::Fault fault{.call = test.call, .on = test.on, .error = 5};
    device.PlanFault(fault);
    EXPECT_EQ(GetShift(behavior), test.get);
    EXPECT_EQ(behavior, test.behavior);
    device.ClearFaults();
    device.PlanFault(fault);
    EXPECT_EQ(process.exports().PALKEYSetShiftBehavior(2), test.set);
    device.ClearFaults();
    EXPECT_EQ(Value(kShiftKeys, "ShiftKeyB"), (Bytes{2, 0, 0, 0})) << "behind the failure";
    EXPECT_EQ(process.new_handles(), 0u);
    const auto expect_line = [&](const std::string& begin, const std::string& line) {
      const Lines expected{begin + line + ". dwRet = 0x5\\r\\n"};
      EXPECT_EQ(TraceLines(begin), line.empty() ? Lines{} : expected);
    };
    expect_line("PALKEYGetShiftBehavior - Error ", test.get_line);
    expect_line("PALKEYSetShiftBehavior - Error ", test.set_line);
  }
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

// The open commands of CAB packages: what makes the protection on, and what a switch leaves alone.
#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

constexpr const char* kSkin = "HKCR\\tdyskin\\Shell\\Open\\Command";
constexpr const char* kCab = "HKCR\\cabfile\\Shell\\Open\\Command";

using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

Bytes Units(const std::string& text) {
  Bytes bytes;
  for (const char unit : text) bytes.insert(bytes.end(), {static_cast<std::uint8_t>(unit), 0});
  return bytes;
}
// A command with its terminator.
Bytes Command(const std::string& text) {
  return Units(text + '\0');
}

// The line of a command that fails with a system error.
std::string NotOpened(const std::string& class_name, int error) {
  return "0xC4460000 Failed to open HKLM\\" + class_name +
         "\\Shell\\Open\\Command. dwRet = " + std::to_string(error);
}
std::string NotRead(const std::string& class_name, int error) {
  return "0xC4460000 Failed to get HKEY_CLASSES_ROOT\\" + class_name +
         "\\Shell\\Open\\Command default value. dwRet = " + std::to_string(error);
}
std::string NotWritten(const std::string& class_name, int error,
                       const std::string& command = "cabchck.exe") {
  return "0xC4460000 Error writing " + command + " to HKEY_CLASSES_ROOT\\" + class_name +
         "\\Shell\\Open\\Command. dwRet = " + std::to_string(error);
}

class CabProtection : public DeviceTest {
 protected:
  void Put(const char* key, const Bytes& command, DWORD type = REG_SZ) {
    device.registry().SetRaw(key, "", type, command);
  }
  [[nodiscard]] Bytes Get(const char* key) {
    const sim::RegistryValue* value = device.registry().FindValue(key, "");
    return value == nullptr ? Bytes() : value->data;
  }
  HRESULT Set(DWORD enable) {
    const HRESULT result = process.exports().PALSecurity_SetCabFilePasswordProtect(enable);
    EXPECT_EQ(process.new_handles(), 0U);
    return result;
  }
  DWORD IsOn() {
    DWORD enabled = 99;
    EXPECT_EQ(process.exports().PALSecurity_GetCabFilePasswordProtect(&enabled), S_OK);
    EXPECT_EQ(process.new_handles(), 0U);
    return enabled;
  }

  sim::Process process{device};
};

TEST_F(CabProtection, SwitchesThereAndBack) {
  const Bytes installs = Command("wceload.exe \"%1\" /noui");
  const Bytes checks = Command("cabchck.exe \"%1\" /noui");
  Put(kSkin, installs);
  Put(kCab, installs);
  EXPECT_EQ(IsOn(), 0U);
  for (const DWORD enable : {1U, 1U, 0U, 0U, 1U, 2U, 1U, 0xFFFFFFFFU}) {
    EXPECT_EQ(Set(enable), S_OK);
    EXPECT_EQ(IsOn(), enable == 1 ? 1U : 0U);
    EXPECT_EQ(Get(kSkin), enable == 1 ? checks : installs);
    EXPECT_EQ(Get(kCab), enable == 1 ? checks : installs);
  }
  EXPECT_TRUE(TraceLines().empty());
}

TEST_F(CabProtection, IsOnWhereEitherCommandBeginsWithTheChecker) {
  struct Case {
    Bytes skin, cab;
    DWORD is_on;
  };
  const Bytes installs = Command("wceload.exe \"%1\"");
  for (const Case& test : {
           Case{installs, Command("cabchck.exe \"%1\""), 1}, Case{Command("CabChck"), installs, 1},
           Case{Units("cabchck"), installs, 1},  // not terminated
           Case{Command("cabchc"), installs, 0}, Case{Command(" cabchck"), installs, 0},
           Case{Command("\"cabchck\""), installs, 0}, Case{{}, {}, 0},
           Case{{'c'}, {'c', 0, 'a'}, 0},
           Case{Command("cabchck" + std::string(248, ' ')), installs, 1},  // 512 bytes
           Case{Command("cabchck" + std::string(249, ' ')), installs, 0},  // too large to be read
       }) {
    Put(kSkin, test.skin);
    Put(kCab, test.cab);
    EXPECT_EQ(IsOn(), test.is_on) << std::string(test.skin.begin(), test.skin.end());
  }
}

TEST_F(CabProtection, IsOffWithoutCommands) {
  for (const std::string& no_skin : {NotOpened("tdyskin", 2), NotRead("tdyskin", 2)}) {
    device.journal().Clear();
    EXPECT_EQ(IsOn(), 0U);
    EXPECT_EQ(Set(1), PAL_E_FILE_NOT_FOUND);
    EXPECT_EQ(CategorisedLines(), (Lines{no_skin, NotOpened("cabfile", 2), no_skin}));
    device.registry().Create(kSkin);
  }
  EXPECT_EQ(process.exports().PALSecurity_GetCabFilePasswordProtect(nullptr), E_FAIL);
}

TEST_F(CabProtection, KeepsTypeAndSizeOfTheCommand) {
  const std::string longest(248, 'x');
  struct Case {
    Bytes before, after;
    DWORD type;
  };
  Bytes odd = Command("wceload a");
  odd.push_back(0x77);
  Bytes odd_after = Command("cabchck a");
  odd_after.push_back(0x77);
  for (const Case& test : {
           Case{Command("wceload"), Command("cabchck"), REG_SZ},
           Case{Command("explore.exe"), Command("cabchck.exe"), REG_EXPAND_SZ},
           Case{odd, odd_after, REG_BINARY},
           Case{Command("wceload" + longest), Command("cabchck" + longest), REG_SZ},
           // not terminated within their size, of the least and the largest that is read
           Case{Units("wceload"), Units("cabchck"), REG_SZ},
           Case{Units("wceload " + longest), Units("cabchck " + longest), REG_SZ},
           Case{Units(std::string("wceload\0x", 9)), Units(std::string("cabchck\0x", 9)),
                REG_MULTI_SZ},
       }) {
    Put(kSkin, test.before, test.type);
    Put(kCab, test.before, test.type);
    EXPECT_EQ(Set(1), S_OK);
    for (const char* key : {kSkin, kCab}) {
      const sim::RegistryValue* value = device.registry().FindValue(key, "");
      EXPECT_EQ(value->data, test.after);
      EXPECT_EQ(value->type, test.type);
    }
  }
}

// Of two commands each in turn is one that cannot be switched.
TEST_F(CabProtection, LeavesWhatItCannotSwitchAlone) {
  struct Case {
    Bytes command;
    HRESULT result;
    int error = 13;  // of the trace
  };
  const Bytes good = Command("wceload.exe");
  for (const Case& test : {
           Case{{}, E_FAIL}, Case{Command(""), E_FAIL}, Case{Command("wceloa"), E_FAIL},
           Case{Units("wceloa"), E_FAIL}, Case{{'w'}, E_FAIL},
           Case{Command("wceload" + std::string(249, ' ')), PAL_E_MORE_DATA, 234},  // 514 bytes
       }) {
    device.journal().Clear();
    Put(kSkin, test.command);
    Put(kCab, good);
    EXPECT_EQ(Set(1), test.result);
    EXPECT_EQ(Get(kSkin), test.command);
    EXPECT_EQ(Get(kCab), good) << "the second is left alone";
    Put(kSkin, good);
    Put(kCab, test.command);
    EXPECT_EQ(Set(1), test.result);
    EXPECT_EQ(Get(kSkin), Command("cabchck.exe"));
    EXPECT_EQ(Get(kCab), test.command);
    EXPECT_EQ(CategorisedLines(),
              (Lines{NotRead("tdyskin", test.error), NotRead("cabfile", test.error)}));
  }
}

TEST_F(CabProtection, TellsTheErrorOfTheFirstKeyThatFails) {
  struct Case {
    sim::Fault fault;
    std::string line;
    bool first_is_switched = false;
  };
  const Bytes good = Command("wceload.exe");
  const std::string cab_command = R"(cabfile\Shell\Open\Command)";
  for (const Case& test : {
           Case{{.call = "RegOpenKeyExW"}, NotOpened("tdyskin", 5)},
           Case{{.call = "RegOpenKeyExW", .on = cab_command}, NotOpened("cabfile", 5), true},
           Case{{.call = "RegQueryValueExW"}, NotRead("tdyskin", 5)},
           Case{{.call = "RegQueryValueExW", .on = cab_command}, NotRead("cabfile", 5), true},
           Case{{.call = "RegSetValueExW"}, NotWritten("tdyskin", 5)},
           Case{{.call = "RegSetValueExW", .on = cab_command}, NotWritten("cabfile", 5), true},
       }) {
    Put(kSkin, good);
    Put(kCab, good);
    device.journal().Clear();
    sim::Fault fault = test.fault;
    fault.error = 5;
    device.PlanFault(fault);
    EXPECT_EQ(Set(1), PAL_E_ACCESS_DENIED);
    device.ClearFaults();
    EXPECT_EQ(Get(kSkin), test.first_is_switched ? Command("cabchck.exe") : good) << test.line;
    EXPECT_EQ(Get(kCab), good) << test.line;
    EXPECT_EQ(CategorisedLines(), Lines{test.line});
  }
}

TEST_F(CabProtection, TracesACommandWithoutItsTerminatorUpToItsEnd) {
  const std::string longest(249, 'x');  // 512 bytes
  Put(kSkin, Units("wceload" + longest));
  device.PlanFault({.call = "RegSetValueExW", .error = 5});
  EXPECT_EQ(Set(1), PAL_E_ACCESS_DENIED);
  EXPECT_EQ(CategorisedLines(), Lines{NotWritten("tdyskin", 5, "cabchck" + longest)});
}

}  // namespace

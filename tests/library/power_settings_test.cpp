// Timeouts, power button, boot option, and the events that tell of changes.
#include <fmt/format.h>

#include <limits>
#include <regex>
#include <string>
#include <variant>
#include <vector>

#include "platform/sim/hardware/configuration_driver.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/text.h"
#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;
using sim::Exports;

constexpr const char* kTimeouts = "HKLM\\System\\CurrentControlSet\\Control\\Power\\Timeouts";
constexpr const char* kButton = "HKLM\\Drivers\\Builtin\\Pwrbutton";
constexpr const char* kCodeName = "PowerButtonSuspendType";
constexpr DWORD kUntouched = 0xABCD;

class PowerSettings : public DeviceTest {
 protected:
  PowerSettings() {
    device.registry().Create(kTimeouts);
    device.registry().Create(kButton);
    EXPECT_EQ(pal.PALPWRInit(), S_OK);
    device.journal().Clear();
  }
  void TearDown() override { pal.PALPWRTerm(); }

  // The lines at error severity, with every handle as "*".
  Lines ErrorLines() {
    Lines lines = LinesBehind("0xC3EF0000 ");
    for (std::string& line : lines) {
      line = std::regex_replace(line, std::regex("(event|handle): ?0x[1-9a-f][0-9a-f]*,"), "$1 *,");
    }
    return lines;
  }
  Lines EventLines() { return device.journal().Texts(sim::Effect::kEvent); }

  sim::Process process{device};
  const Exports& pal = process.exports();
};

// What is answered for other input, without an event, and where it cannot be set (error 0x12006).
struct Results {
  HRESULT refused, no_event, event_failed;
};
constexpr Results kDeviceOff{PAL_PWR_E_NO_SUCH_TIMEOUT, PAL_PWR_E_NO_EVENT,
                             PAL_PWR_E_EVENT(0x2006)};
constexpr Results kScreenOff{S_OK, S_OK, PAL_E_WIN32(0x2006)};

struct Timeout {
  const char* value;
  std::variant<sim::Export<HRESULT(DWORD)> Exports::*, sim::Export<HRESULT(LONG)> Exports::*>
      setter;
  sim::Export<HRESULT(DWORD*)> Exports::*getter;
  LONG seconds_per_unit;
  std::vector<LONG> allowed;
  Results results;
  // The lines of a wrong 7, a failed write, no event, an event that cannot be set, a failed read.
  Lines lines;

  HRESULT set(const Exports& pal, LONG number) const {
    return std::visit(
        [&]<class Argument>(sim::Export<HRESULT(Argument)> Exports::*member) {
          return (pal.*member)(static_cast<Argument>(number));
        },
        setter);
  }
  HRESULT get(const Exports& pal, DWORD* number) const { return (pal.*getter)(number); }
};

Lines DeviceOffLines(const std::string& name, const std::string& getter) {
  const std::string begin = "PALPWRSet" + name + " - ";
  return {begin + "ERROR invalid input: 0x7\\r\\n", "",
          begin + "ERROR Cannot signal driver of chg event: 0x0\\r\\n",
          begin + "SetEvent failed. event *, win32err: 0x12006\\r\\n",
          getter + ": -2147024894\\r\\n"};
}

Lines ScreenOffLines(const std::string& name, const std::string& value) {
  const std::string path =
      "HKLM\\System\\CurrentControlSet\\Control\\Power\\Timeouts\\" + value + "\\r\\n";
  return {"Set" + name + " - Invalid input. input: 7\\r\\n",
          "Set" + name + " - Error writing to: " + path,
          "Set" + name + " - Error event invalid: 0x0\\r\\n",
          "Set" + name + " - Error setting event. win32err: 0x12006\\r\\n",
          "Get" + name + " - Error reading: " + path};
}

const std::vector<Timeout>& Timeouts() {
  static const std::vector<Timeout> timeouts = {
      {"BattSuspendTimeout",
       &Exports::PALPWRSetDeviceOff_Batt,
       &Exports::PALPWRGetDeviceOff_Batt,
       60,
       {0, 1, 2, 3, 4, 5, 6, 10, 11, 15, 30},
       kDeviceOff,
       DeviceOffLines("DeviceOff_Batt", "GetDeviceOff - DeviceOff_Batt disabled battsuspend")},
      {"ACSuspendTimeout",
       &Exports::PALPWRSetDeviceOff_ExtPwr,
       &Exports::PALPWRGetDeviceOff_ExtPwr,
       60,
       {0, 1, 2, 5, 6, 10, 11, 15, 30},
       kDeviceOff,
       DeviceOffLines("DeviceOff_ExtPwr", "GetDeviceOff_ExtPwr - ERROR reading reg ACsuspend")},
      {"BattUserIdle",
       &Exports::PALPWRSetScreenOff_Batt,
       &Exports::PALPWRGetScreenOff_Batt,
       1,
       {0, 60, 120, 180, 240, 300, 360, 660},
       kScreenOff,
       ScreenOffLines("ScreenOff_Batt", "BattUserIdle")},
      {"ACUserIdle",
       &Exports::PALPWRSetScreenOff_ExtPwr,
       &Exports::PALPWRGetScreenOff_ExtPwr,
       1,
       {0, 60, 120, 121, 180, 240, 300, 360, 600, 660, 900, 1800},
       kScreenOff,
       ScreenOffLines("ScreenOff_ExtPwr", "ACUserIdle")},
  };
  return timeouts;
}

TEST_F(PowerSettings, TimeoutsTakeTheirValuesAndNoOther) {
  std::vector<LONG> tried{-1, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max(),
                          71582789};  // whose seconds are 44 in 32 bits
  for (LONG value = 0; value <= 1801; ++value) tried.push_back(value);
  for (const Timeout& timeout : Timeouts()) {
    device.journal().Clear();
    std::vector<LONG> taken;
    for (const LONG value : tried) {
      device.registry().SetDword(kTimeouts, timeout.value, kUntouched);
      const HRESULT result = timeout.set(pal, value);
      const DWORD stored = device.registry().GetDword(kTimeouts, timeout.value).value_or(0);
      if (stored == kUntouched) {
        EXPECT_EQ(result, timeout.results.refused) << timeout.value << ' ' << value;
        continue;
      }
      taken.push_back(value);
      EXPECT_EQ(result, S_OK) << timeout.value << ' ' << value;
      EXPECT_EQ(stored, static_cast<DWORD>(value * timeout.seconds_per_unit));
      DWORD read = kUntouched;
      EXPECT_EQ(timeout.get(pal, &read), S_OK);
      EXPECT_EQ(read, static_cast<DWORD>(value));
    }
    EXPECT_EQ(taken, timeout.allowed) << timeout.value;
    EXPECT_EQ(EventLines(), Lines(taken.size(), "PowerManager/ReloadActivityTimeouts set"));
  }
}

TEST_F(PowerSettings, TimeoutsAnswerEachFailureInTheirWay) {
  for (const Timeout& timeout : Timeouts()) {
    SCOPED_TRACE(timeout.value);
    device.journal().Clear();
    const auto stored = [&] { return device.registry().GetDword(kTimeouts, timeout.value); };
    EXPECT_EQ(timeout.set(pal, 7), timeout.results.refused);
    device.PlanFault({.call = "RegSetValueExW", .error = 5});
    EXPECT_EQ(timeout.set(pal, 0), PAL_E_ACCESS_DENIED);
    EXPECT_EQ(stored(), std::nullopt);
    device.ClearFaults();
    EXPECT_EQ(EventLines(), Lines());

    pal.PALPWRTerm();
    EXPECT_EQ(timeout.set(pal, 0), timeout.results.no_event);
    EXPECT_EQ(stored(), 0u);
    pal.PALPWRInit();
    device.registry().SetDword(kTimeouts, timeout.value, kUntouched);
    device.PlanFault({.call = "EventModify", .error = 0x12006});
    EXPECT_EQ(timeout.set(pal, 0), timeout.results.event_failed);
    EXPECT_EQ(stored(), 0u);
    device.ClearFaults();

    device.registry().Find(kTimeouts)->DeleteValue(sim::ToUtf16(timeout.value));
    DWORD read = kUntouched;
    EXPECT_EQ(timeout.get(pal, &read), PAL_E_FILE_NOT_FOUND);
    Lines expected = timeout.lines;
    std::erase(expected, "");
    EXPECT_EQ(ErrorLines(), expected);

    device.registry().SetBinary(kTimeouts, timeout.value, {1, 2, 3, 4, 5});
    EXPECT_EQ(timeout.get(pal, &read), PAL_E_MORE_DATA);
    EXPECT_EQ(read, kUntouched);
    EXPECT_EQ(timeout.get(pal, nullptr), E_FAIL);
    device.registry().RemoveTree(kTimeouts);
    EXPECT_EQ(timeout.set(pal, 0), PAL_E_FILE_NOT_FOUND);
    device.registry().Create(kTimeouts);
  }
}

TEST_F(PowerSettings, DeviceOffIsReadInWholeMinutes) {
  struct Case {
    DWORD seconds;
    DWORD minutes;
  };
  for (const Case& test : {Case{150, 2}, Case{59, 0}, Case{0xFFFFFFFF, 71582788}}) {
    device.registry().SetDword(kTimeouts, "BattSuspendTimeout", test.seconds);
    DWORD minutes = kUntouched;
    EXPECT_EQ(pal.PALPWRGetDeviceOff_Batt(&minutes), S_OK);
    EXPECT_EQ(minutes, test.minutes);
  }
}

TEST_F(PowerSettings, EveryStepThatSucceedsIsInformation) {
  device.hardware().drivers = {std::make_shared<sim::ConfigurationDriver>()};
  for (const Timeout& timeout : Timeouts()) {
    EXPECT_EQ(timeout.set(pal, timeout.allowed.back()), S_OK);
    DWORD read = kUntouched;
    EXPECT_EQ(timeout.get(pal, &read), S_OK);
  }
  DWORD option = kUntouched;
  EXPECT_EQ(pal.PALPWRSetPwrButton(4), S_OK);
  EXPECT_EQ(pal.PALPWRGetPwrButton(&option), S_OK);
  EXPECT_EQ(pal.PALPWRSetBootOption(0xFE), S_OK);
  EXPECT_EQ(pal.PALPWRGetBootOption(&option), S_OK);
  Lines expected{
      "SetDeviceOff_Batt - user_val: 30, adjusted_val: 1800\\r\\n",
      "GetDeviceOff_Batt - sys_val: 1800sec, user_val: 30min\\r\\n",
      fmt::format("SetDeviceOff_ExtPwr - user_val: 30, adjusted_val: 1800, procid: 0x{:x}\\r\\n",
                  process.id()),
      "GetDeviceOff_ExtPwr - sys_val: 1800sec, user_val: 30min\\r\\n",
      "SetScreenOff_Batt - input: 660\\r\\n",
      "GetScreenOff_Batt - timeout: 660\\r\\n",
      "SetScreenOff_ExtPwr - input: 1800\\r\\n",
      "GetScreenOff_ExtPwr - timeout: 1800\\r\\n",
      "PALPWRSetPwrButton - Entry.  in_opt: 4\\r\\n",
      "SetPwrButton - Entry.  val: 0x800000",
      fmt::format("PALPWRGetBootOption - bootoption: 0xfe, proc_id: 0x{:x}\\r\\n", process.id())};
  for (std::string& line : expected) line.insert(0, "0x43EF0000 ");
  EXPECT_EQ(CategorisedLines(), expected);
}

TEST_F(PowerSettings, PowerButtonStoresACodeForEveryOptionAndZeroForOthers) {
  struct Case {
    LONG option;
    DWORD stored;
    DWORD read;
  };
  for (const Case& test :
       {Case{1, 0x01000000, 1}, Case{2, 0x00200000, 2}, Case{3, 0x00040000, 3},
        Case{4, 0x00800000, 4}, Case{5, 0x00020000, 5}, Case{0, 0, 0}, Case{6, 0, 0}, Case{7, 0, 0},
        Case{-1, 0, 0}, Case{std::numeric_limits<LONG>::min(), 0, 0}}) {
    device.registry().SetDword(kButton, kCodeName, kUntouched);
    EXPECT_EQ(pal.PALPWRSetPwrButton(test.option), S_OK) << test.option;
    EXPECT_EQ(device.registry().GetDword(kButton, kCodeName), test.stored) << test.option;
    DWORD read = kUntouched;
    EXPECT_EQ(pal.PALPWRGetPwrButton(&read), S_OK);
    EXPECT_EQ(read, test.read) << test.option;
  }
  EXPECT_EQ(ErrorLines(), (Lines{"PALPWRSetPwrButton - Input invalid.  in: 6\\r\\n",
                                 "PALPWRSetPwrButton - Input invalid.  in: 7\\r\\n",
                                 "PALPWRSetPwrButton - Input invalid.  in: -1\\r\\n",
                                 "PALPWRSetPwrButton - Input invalid.  in: -2147483648\\r\\n"}));
}

TEST_F(PowerSettings, PowerButtonFailures) {
  DWORD read = kUntouched;
  device.registry().SetDword(kButton, kCodeName, 0x00100000);
  EXPECT_EQ(pal.PALPWRGetPwrButton(&read), E_FAIL);
  device.registry().RemoveTree(kButton);
  EXPECT_EQ(pal.PALPWRGetPwrButton(&read), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(pal.PALPWRSetPwrButton(1), PAL_E_FILE_NOT_FOUND);
  EXPECT_EQ(pal.PALPWRGetPwrButton(nullptr), E_FAIL);
  EXPECT_EQ(read, kUntouched);
  EXPECT_EQ(device.registry().Find(kButton), nullptr);
  EXPECT_EQ(ErrorLines(),
            (Lines{"GetPwrButton - Invalid reg entry for power button: 0x100000\\r\\n",
                   "GetPwrButton - ERROR reading reg: "
                   "Drivers\\Builtin\\Pwrbutton\\PowerButtonSuspendType",
                   "SetPwrButton - ERROR saving power button"}));
}

TEST_F(PowerSettings, BootOptionIsKeptByTheDriver) {
  const auto driver = std::make_shared<sim::ConfigurationDriver>(std::uint8_t{0xFE});
  device.hardware().drivers = {driver};
  const unsigned handles = process.new_handles();
  DWORD option = kUntouched;
  EXPECT_EQ(pal.PALPWRGetBootOption(&option), S_OK);
  EXPECT_EQ(option, 0xFEu);
  for (const DWORD wanted : {0U, 1U, 255U}) {
    EXPECT_EQ(pal.PALPWRSetBootOption(wanted), S_OK);
    EXPECT_EQ(driver->boot_option(), wanted);
    EXPECT_EQ(pal.PALPWRGetBootOption(&option), S_OK);
    EXPECT_EQ(option, wanted);
  }
  EXPECT_EQ(ErrorLines(), Lines());

  EXPECT_EQ(pal.PALPWRSetBootOption(256), 19);
  device.PlanFault({.call = "DeviceIoControl", .from_then_on = true, .error = 31});
  EXPECT_EQ(pal.PALPWRSetBootOption(3), 19);
  option = kUntouched;
  EXPECT_EQ(pal.PALPWRGetBootOption(&option), 19);
  device.ClearFaults();
  EXPECT_EQ(driver->boot_option(), 255);
  EXPECT_EQ(process.new_handles(), handles);

  device.hardware().drivers.clear();
  EXPECT_EQ(pal.PALPWRSetBootOption(3), PAL_E_DEV_NOT_EXIST);
  EXPECT_EQ(pal.PALPWRGetBootOption(&option), PAL_E_DEV_NOT_EXIST);
  EXPECT_EQ(pal.PALPWRGetBootOption(nullptr), E_FAIL);
  EXPECT_EQ(option, kUntouched);
  const std::string refused =
      "PALPWRSetBootOption - ERROR DeviceIoControl(handle *, code:100001).  Aborting request. "
      "win32err: ";
  EXPECT_EQ(
      ErrorLines(),
      (Lines{refused + "0x57\\r\\n", refused + "0x1f\\r\\n",
             "PALPWRGetBootOption - ERROR DeviceIoControl(handle *,code:100000) failed. "
             "win32err: 0x1f\\r\\n",
             "PALPWRSetBootOption - ERROR Failed to open device: CFG1:, win32err: 0x37\\r\\n",
             "PALPWRGetBootOption - ERROR Failed to open device: CFG1:, win32err: 0x37\\r\\n"}));
}

TEST_F(PowerSettings, InitKeepsBothEventsOrNone) {
  const unsigned with_events = process.new_handles();
  EXPECT_EQ(pal.PALPWRInit(), S_OK);
  EXPECT_EQ(process.new_handles(), with_events);
  pal.PALPWRTerm();
  EXPECT_EQ(pal.PALPWRTerm(), S_OK);
  EXPECT_EQ(process.new_handles(), with_events - 2);
  for (const char* failing : {"ReloadActivityTimeouts", "BackLightChangeEvent"}) {
    device.PlanFault({.call = "CreateEventW", .on = failing, .error = 0x12008});
    EXPECT_EQ(pal.PALPWRInit(), PAL_PWR_E_EVENT(0x2008));
    device.ClearFaults();
    EXPECT_EQ(process.new_handles(), with_events - 2);
    EXPECT_EQ(pal.PALPWRSetDeviceOff_Batt(0), PAL_PWR_E_NO_EVENT);
  }
  EXPECT_EQ(pal.PALPWRInit(), S_OK);
  EXPECT_EQ(pal.PALPWRSetDeviceOff_Batt(0), S_OK);
  const std::string cannot_signal =
      "PALPWRSetDeviceOff_Batt - ERROR Cannot signal driver of chg event: 0x0\\r\\n";
  EXPECT_EQ(ErrorLines(),
            (Lines{"PALPWRInit - ERROR power mgr event. win32err: 0x12008, hr: 0x83ef2008\\r\\n",
                   cannot_signal,
                   "PALPWRInit - ERROR display event. win32err: 0x12008, hr: 0x83ef2008\\r\\n",
                   cannot_signal}));
}

// An auto-reset event wakes one of those that wait for a change.
TEST_F(PowerSettings, AChangeWakesThePowerManager) {
  sim::Process manager(device, "powermanager.exe");
  DWORD waited = WAIT_FAILED;
  sim::Thread thread = manager.Start([&] {
    const HANDLE reload =
        CreateEventW(nullptr, FALSE, FALSE, TEXT("PowerManager/ReloadActivityTimeouts"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    waited = WaitForSingleObject(reload, 5000);
    EXPECT_EQ(WaitForSingleObject(reload, 0), WAIT_TIMEOUT);
    CloseHandle(reload);
  });
  device.Advance(1000);
  EXPECT_EQ(pal.PALPWRSetScreenOff_ExtPwr(121), S_OK);
  EXPECT_TRUE(thread.Join());
  EXPECT_EQ(waited, WAIT_OBJECT_0);
}

}  // namespace

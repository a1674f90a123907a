// What the keypad writes to the event log: whole changes, and the lines of what goes wrong.
#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <sstream>

#include "platform/sim/hardware/hardware.h"
#include "tests/support/keypad_test.h"

namespace {

using Lines = std::vector<std::string>;

// From one line each, with "I " before information and "E " before errors.
Lines Log(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (line.empty()) continue;
    lines.push_back((line[0] == 'E' ? "0xC3ED0000" : "0x43ED0000") + line.substr(1));
  }
  return lines;
}

// A log with "@" for the plane, once for each plane.
std::string ForEachPlane(const std::string& text, std::string_view planes = "012") {
  std::string all;
  for (const char plane : planes) {
    std::string own = text;
    std::replace(own.begin(), own.end(), '@', plane);
    all += own;
  }
  return all;
}

const std::string kButton5IsSupported = R"(
I ButtonIsSupported(5) - Read \ShiftPlane0: Hardware\Layout\r\n
I ButtonIsSupported(5) key:0x43 found\r\n)";
const std::string kIsAnOrdinaryKey = R"(
I GetActionForDefaultWindowsKeys Enter hr=0x0\r\n
I GetActionForDefaultWindowsKeys Complete (eAction-1)=5\r\n)";
const std::string kNothingToSave = R"(
I SetupKeyForScanKeys Enter\r\n
I SetupKeyForScanKeys Complete hr=0x0\r\n)";

class KeypadLog : public KeypadTest {};

TEST_F(KeypadLog, ShowsAChangeWhole) {
  EXPECT_EQ(Set(5, 1), S_OK);
  EXPECT_EQ(CategorisedLines(), Log(R"(
I SetButtonAction(5,1)\r\n)" + kButton5IsSupported +
                                    R"(
I GetButtonAction(5,*)\r\n)" + kButton5IsSupported +
                                    kIsAnOrdinaryKey + kIsAnOrdinaryKey + R"(
I 0x00000000=GetButtonAction(5,*6)\r\n
I SetupKeyForScanKeys Enter\r\n)" + ForEachPlane(R"(
I GetKeyValues Hardware\Layout: Enter ShiftPlane@ ID:5\r\n
I Key(6):0x7, 0x43, 0x1, 0x1, 0x@, 0x22 found\r\n
I Key (6):0x7, 0x43, 0x1, 0x1, 0x@, 0x22 copied\r\n
I GetKeyValues Complete hr=0x0\r\n
I SetKeyValues Software\Dravonel\PAL: Enter ShiftPlane@ ID:5\r\n
I Key (0):0x7, 0x43, 0x1, 0x1, 0x@, 0x22 added\r\n
I SetKeyValues Complete hr=0x0\r\n
I ModifyKeyDataForEventTrigger: Enter Event: Event5 index: 5\r\n
I ModifyKeyDataForEventTrigger: Complete Key (67):0x7, 0x43, 0x1, 0x2, 0x2, 0x5 modified\r\n
I SetKeyValues Hardware\Layout: Enter ShiftPlane@ ID:5\r\n
I Key(6):0x7, 0x43, 0x1, 0x1, 0x@, 0x22 found\r\n
I Key (6):0x7, 0x43, 0x1, 0x2, 0x2, 0x5 copied\r\n
I SetKeyValues Complete hr=0x0\r\n)") +
                                    R"(
I SetupKeyForScanKeys Complete hr=0x0\r\n
I SetButtonAction: "Left Side Top", Hardware\Layout\EVENTS\DELTA, Event5=DeltaLeftScan\r\n)" +
                                    kNothingToSave + R"(
I SetButtonAction: "Left Side Top", Hardware\Layout\EVENTS\STATE, Event5=StateLeftScan\r\n
I PALKEYSetButtonAction - Flushing keypad driver registry subkey
I 0x00000000=SetButtonAction(5,0 "zero based adjusted")\r\n)"));

  // Back, from the scan of the other side.
  SetEvents(kLayout, "Event5", Unterminated(u"DeltaRightScan"), Unterminated(u"StateRightScan"));
  device.journal().Clear();
  EXPECT_EQ(Set(5, 6), S_OK);
  EXPECT_EQ(CategorisedLines(), Log(R"(
I SetButtonAction(5,6)\r\n)" + kButton5IsSupported +
                                    R"(
I GetButtonAction(5,*)\r\n)" + kButton5IsSupported +
                                    R"(
I "Left Side Top", Event5=DeltaRightScan, Hardware\Layout\EVENTS\DELTA\r\n
I Changed to DeltaLeftScan\r\n
I Changed to StateLeftScan\r\n
I 0x00000000=GetButtonAction(5,*1)\r\n)" +
                                    kNothingToSave + R"(
I SetButtonAction: "Left Side Top", Hardware\Layout\EVENTS\DELTA, Event5=DeltaWindowsDefault\r\n)" +
                                    ForEachPlane(R"(
I GetKeyValues Software\Dravonel\PAL: Enter ShiftPlane@ ID:5\r\n
I Key(0):0x7, 0x43, 0x1, 0x1, 0x@, 0x22 found\r\n
I Key (0):0x7, 0x43, 0x1, 0x1, 0x@, 0x22 copied\r\n
I GetKeyValues Complete hr=0x0\r\n
I SetKeyValues Hardware\Layout: Enter ShiftPlane@ ID:5\r\n
I Key(6):0x7, 0x43, 0x1, 0x2, 0x2, 0x5 found\r\n
I Key (6):0x7, 0x43, 0x1, 0x1, 0x@, 0x22 copied\r\n
I SetKeyValues Complete hr=0x0\r\n)") +
                                    R"(
I SetButtonAction()2 "Left Side Top", Event5=StateRightScan\r\n)" +
                                    kNothingToSave + R"(
I SetButtonAction: "Left Side Top", Hardware\Layout\EVENTS\STATE, Event5=StateWindowsDefault\r\n
I PALKEYSetButtonAction - Flushing keypad driver registry subkey
I 0x00000000=SetButtonAction(5,5 "zero based adjusted")\r\n)"));
}

TEST_F(KeypadLog, ShowsTheRepairWhole) {
  std::string events;
  for (const auto& [kind, name, event] : {std::tuple{"DELTA", "DeltaWindowsDefault", 5},
                                          {"DELTA", "DeltaWindowsDefault", 6},
                                          {"DELTA", "DeltaWindowsDefault", 7},
                                          {"STATE", "StateWindowsDefault", 5},
                                          {"STATE", "StateWindowsDefault", 6},
                                          {"STATE", "StateWindowsDefault", 7},
                                          {"DELTA", "DeltaLeftScan", 2},
                                          {"STATE", "StateLeftScan", 2}}) {
    events += fmt::format(R"(
I CreateEventForEventKey Enter EventName={0} EventValue=Event{1}\r\n
I CreateEventForEventKey Reg Path=Hardware\Layout\EVENTS\{2}\r\n
I CreateEventForEventKey({0},Event{1}) Complete hr=0\r\n)",
                          name, event, kind);
  }
  device.hardware().parameters[0x00D5] = sim::TextAnswer("RM21");
  device.registry().RemoveTree(kSettings);
  for (const char* plane : {"ShiftPlane0", "ShiftPlane1"}) {
    device.registry().SetBinary(kLayout, plane, {7, 0x91, 4, 1, 0, 0x20});
  }
  Delete(kLayout, "ShiftPlane2");
  const std::string whole = R"(
I PALKEYInit - Entry
I FixScanKeyEvents Enter\r\n
I FixScanKeyEvents: Modifying registry for side buttons\r\n)" +
                            events +
                            ForEachPlane(R"(
I GetKeyValues Hardware\Layout: Enter ShiftPlane@ ID:2\r\n
I Key(0):0x7, 0x91, 0x4, 0x1, 0x0, 0x20 found\r\n
I Key (0):0x7, 0x91, 0x4, 0x1, 0x0, 0x20 copied\r\n
I GetKeyValues Complete hr=0x0\r\n
I ModifyKeyDataForEventTrigger: Enter Event: Event2 index: 2\r\n
I ModifyKeyDataForEventTrigger: Complete Key (145):0x7, 0x91, 0x4, 0x2, 0x2, 0x2 modified\r\n
I SetKeyValues Hardware\Layout: Enter ShiftPlane@ ID:2\r\n
I Key(0):0x7, 0x91, 0x4, 0x1, 0x0, 0x20 found\r\n
I Key (0):0x7, 0x91, 0x4, 0x2, 0x2, 0x2 copied\r\n
I SetKeyValues Complete hr=0x0\r\n)",
                                         "01") +
                            R"(
I GetKeyValues Hardware\Layout: Enter ShiftPlane2 ID:2\r\n
I GetKeyValues Complete hr=0x0\r\n
E FixScanKeyEvents: Did not get Values for Left Side Bottom button in shift plane 2\r\n
I FixScanKeyEvents - Flushing keypad driver registry subkey
I FixScanKeyEvents Complete hr=0x0\r\n)";
  device.journal().Clear();
  EXPECT_EQ(process.exports().PALKEYInit(), S_OK);
  Lines own;
  for (const std::string& line : CategorisedLines()) {
    if (line.substr(3, 3) == "3ED") own.push_back(line);
  }
  EXPECT_EQ(own, Log(whole));
}

TEST_F(KeypadLog, TellsWhatGoesWrong) {
  sim::Registry& registry = device.registry();
  const auto& keypad = process.exports();
  const std::string no_driver =
      R"( - Could not open Drivers\HID\ClientDrivers\DVLKeyboard. winerr:0x2)";
  const std::string no_flush =
      R"( - RegFlushKey Drivers\HID\ClientDrivers\DVLKeyboard failure. winerr:0x5)";
  const auto set = [&] { return Set(5, 1); };
  const auto repair = [&] {
    registry.SetDword(kSettings, "FixActive", 0);
    return keypad.PALKEYInit();
  };
  const auto remove_driver = [&] { registry.RemoveTree(kDriver); };
  const auto fail_flush = [&] { device.PlanFault({.call = "RegFlushKey", .error = 5}); };
  struct Case {
    std::string line;
    std::function<void()> arrange;
    std::function<HRESULT()> call;
    HRESULT result;
  };
  for (const Case& test : {
           Case{"E PALKEYSetButtonAction" + no_driver, remove_driver, set, E_FAIL},
           Case{"E FixScanKeyEvents" + no_driver, remove_driver, repair, S_OK},
           Case{"E PALKEYSetButtonAction" + no_flush, fail_flush, set, S_OK},
           Case{"E FixScanKeyEvents" + no_flush, fail_flush, repair, S_OK},
           Case{R"(I Failed to read indirect base from Hardware\Devicemap\Keybd : )"
                R"(CurrentActiveLayoutKey\r\n)",
                [&] { Delete(kKeyboard, "CurrentActiveLayoutKey"); }, repair, S_OK},
           Case{R"(I Failed to open Hardware\Devicemap\Keybd\r\n)",
                [&] { registry.RemoveTree(kKeyboard); }, repair, S_OK},
           Case{R"(E PALKEYContolKeyState - ERROR control key. key: 3, state: 0x7, hr: )"
                R"(0x80070002\r\n)",
                [&] { registry.RemoveTree(kKeyboard); },
                [&] { return keypad.PALKEYControlKeyState(3, 7); }, PAL_E_FILE_NOT_FOUND},
           Case{R"(I PALKEYGetShiftBehavior - Not all shift keys have the same behavior\r\n)",
                [&] {
                  const std::string keys = std::string(kLayout) + "\\ShiftKeys";
                  registry.SetBinary(keys, "ShiftKeyA", {2, 0, 0, 0});
                  registry.SetBinary(keys, "ShiftKeyB", {4, 0, 0, 0});
                },
                [&] {
                  DWORD behavior = 0;
                  return keypad.PALKEYGetShiftBehavior(&behavior);
                },
                S_OK},
           Case{R"(E PALKEYSetShiftBehavior - Invalid argument 3\r\n)", [] {},
                [&] { return keypad.PALKEYSetShiftBehavior(3); }, E_INVALIDARG},
       }) {
    SCOPED_TRACE(test.line);
    Arrange();
    test.arrange();
    EXPECT_EQ(test.call(), test.result);
    device.ClearFaults();
    const Lines lines = CategorisedLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), Log(test.line).front()), 1);
    registry.Create(kKeyboard);
  }
}

}  // namespace

// What the programmable buttons do: every action there and back, what is read, what is refused.
#include <fmt/format.h>

#include <algorithm>

#include "platform/sim/programs/keypad_driver.h"
#include "tests/support/keypad_test.h"

namespace {

using Lines = std::vector<std::string>;

const std::string kFlushed = R"(HKEY_LOCAL_MACHINE\Drivers\HID\ClientDrivers\DVLKeyboard flushed)";
const std::string kSignalled = "DVL_KEYBOARD_CHANGE_USB set";

struct EventPair {
  std::u16string delta, state;
};

struct Button {
  LONG id;
  std::string name;
  std::uint8_t scan_code;
  std::string event;
  EventPair reader;  // of action 3
};
const std::vector<Button> kButtons = {
    {0, "Handle", 0, "Event1", {u"RFIDDCE_CENTER_DELTA", u"RFIDDCE_CENTER_STATE"}},
    {2, "Left Side Bottom", 0x91, "Event2", {u"RFIDDCE_LEFT_DELTA", u"RFIDDCE_LEFT_STATE"}},
    {3, "Middle", 0x90, "Event1", {u"RFIDDCE_MIDDLE_DELTA", u"RFIDDCE_MIDDLE_STATE"}},
    {5, "Left Side Top", 0x43, "Event5", {u"RFIDDCE_LEFT_DELTA", u"RFIDDCE_LEFT_STATE"}},
    {6, "Right Side Top", 0x3F, "Event6", {u"RFIDDCE_RIGHT_DELTA", u"RFIDDCE_RIGHT_STATE"}},
    {7, "Right Side Bottom", 0x40, "Event7", {u"RFIDDCE_RIGHT_DELTA", u"RFIDDCE_RIGHT_STATE"}},
};

EventPair EventsOf(const Button& button, LONG action) {
  const std::vector<EventPair> events = {
      {u"DeltaLeftScan", u"StateLeftScan"},
      {u"DVL_RFID_TRIGGER_EVENT", u"DVL_RFID_TRIGGER_STATE"},
      button.reader,
      {u"DeltaCameraScan", u"StateCameraScan"},
      {u"DeltaFlashlight", u"StateFlashlight"},
      {u"DeltaWindowsDefault", u"StateWindowsDefault"},
      {u"DeltaOEMTriggerEvent", u"StateOEMTriggerEvent"},
  };
  return events.at(static_cast<std::size_t>(action) - 1);
}

class KeypadAction : public KeypadTest {
 protected:
  // The record of a scan code and kind 7 in a plane; empty where there is none.
  static Bytes RecordOf(const Bytes& plane, DWORD scan_code) {
    for (std::size_t at = 0; at + 6 <= plane.size(); at += 6) {
      if (plane[at] == 7 && plane[at + 1] == scan_code) {
        return {plane.begin() + static_cast<long>(at), plane.begin() + static_cast<long>(at) + 6};
      }
    }
    return {};
  }
  static void Replace(Bytes& plane, const Bytes& record) {
    for (std::size_t at = 0; at + 6 <= plane.size(); at += 6) {
      if (plane[at] == record[0] && plane[at + 1] == record[1]) {
        std::copy(record.begin(), record.end(), plane.begin() + static_cast<long>(at));
      }
    }
  }
};

TEST_F(KeypadAction, GoesThereAndBackForEveryButton) {
  for (const Button& button : kButtons) {
    const bool is_handle = button.id == 0;
    const bool is_key = button.id >= 5;
    const std::string layout = is_handle ? kHandleLayout : kLayout;
    for (LONG action = 1; action <= 7; ++action) {
      SCOPED_TRACE(fmt::format("{} {}", button.name, action));
      Arrange();
      const Planes before = PlanesOf(kLayout);
      ASSERT_EQ(Set(button.id, action), S_OK);
      EXPECT_EQ(Get(button.id), static_cast<DWORD>(action));
      const EventPair events = EventsOf(button, action);
      EXPECT_EQ(EventOf(layout, "DELTA", button.event), Unterminated(events.delta));
      EXPECT_EQ(EventOf(layout, "STATE", button.event), Unterminated(events.state));

      Planes expected = before;
      Planes saved;
      for (std::size_t plane = 0; is_key && plane < expected.size(); ++plane) {
        Bytes record = RecordOf(*before[plane], button.scan_code);
        saved[plane] = record;
        if (action == 6) continue;  // restored at once
        record[3] = record[4] = 2;
        record[5] = static_cast<std::uint8_t>(button.event.back() - '0');
        Replace(*expected[plane], record);
      }
      EXPECT_EQ(PlanesOf(kLayout), expected);
      EXPECT_EQ(PlanesOf(kSettings), saved);
      const Lines changes = Changes();
      ASSERT_GE(changes.size(), 2u);
      const Lines last(changes.end() - 2, changes.end());
      if (is_handle) {
        EXPECT_EQ(changes.size(), 2u) << "its two events alone";
      } else {
        EXPECT_EQ(last, (Lines{kFlushed, kSignalled}));
      }

      EXPECT_EQ(Set(button.id, 6), S_OK);
      EXPECT_EQ(Get(button.id), 6u);
      EXPECT_EQ(PlanesOf(kLayout), before);
      EXPECT_EQ(PlanesOf(kSettings), saved) << "the copy stays";
    }
  }
}

TEST_F(KeypadAction, KeepsTheFirstOriginalOverSeveralChanges) {
  const Planes before = PlanesOf(kLayout);
  for (const LONG button : {5, 6, 7, 2}) {
    for (const LONG action : {1, 4, 4, 7}) EXPECT_EQ(Set(button, action), S_OK);
  }
  EXPECT_EQ(PlanesOf(kSettings)[1]->size(), 3u * 6) << "one record for each ordinary key";
  for (const LONG button : {6, 5, 7}) EXPECT_EQ(Set(button, 6), S_OK);
  EXPECT_EQ(PlanesOf(kLayout), before);
}

TEST_F(KeypadAction, IsReadFromBothEvents) {
  const Bytes left = Unterminated(u"DeltaLeftScan");
  const Bytes left_state = Unterminated(u"StateLeftScan");
  const Bytes right = Unterminated(u"DeltaRightScan");
  const Bytes right_state = Unterminated(u"StateRightScan");
  const Bytes half_unit = {0x41};
  const Bytes end = {0, 0};
  struct Case {
    const char* what;
    LONG button;
    std::optional<Bytes> delta;
    std::optional<Bytes> state;
    DWORD action;
  };
  for (const Case& test : {
           Case{"unterminated", 2, left, left_state, 1},
           Case{"terminated", 2, left + end, left_state + end, 1},
           Case{"followed by more", 2, left + end + left, left_state + end + left, 1},
           Case{"half a unit behind it", 2, left + half_unit, left_state + half_unit, 1},
           Case{"the right scan", 2, right, right_state, 1},
           Case{"one of each side", 2, right, left_state, 1},
           Case{"of another position", 2, Unterminated(u"RFIDDCE_RIGHT_DELTA"),
                Unterminated(u"RFIDDCE_RIGHT_STATE"), 255},
           Case{"other case", 2, Unterminated(u"deltaleftscan"), left_state, 255},
           Case{"of two actions", 2, left, Unterminated(u"StateFlashlight"), 255},
           Case{"the same in both", 5, left, left, 255},
           Case{"empty", 5, Bytes{}, Bytes{}, 255},
           Case{"as large as can be", 5, Bytes(512, 0x41), left_state, 255},
           Case{"larger", 5, Bytes(514, 0x41), Unterminated(u"StateWindowsDefault"), 6},
           Case{"larger, and no key", 2, Bytes(514, 0x41), left_state, 255},
           Case{"neither", 7, std::nullopt, std::nullopt, 6},
           Case{"neither, and no key", 3, std::nullopt, std::nullopt, 255},
           Case{"no state", 5, left, std::nullopt, 6},
           Case{"no state, and no key", 3, left, std::nullopt, 255},
           Case{"no delta", 6, std::nullopt, left_state, 255},
       }) {
    SCOPED_TRACE(test.what);
    Arrange();
    const std::string name = test.button == 3 ? "Event1" : fmt::format("Event{}", test.button);
    SetEvents(kLayout, name, test.delta.value_or(Bytes{}), test.state.value_or(Bytes{}));
    if (!test.delta) Delete(std::string(kLayout) + "\\EVENTS\\DELTA", name);
    if (!test.state) Delete(std::string(kLayout) + "\\EVENTS\\STATE", name);
    EXPECT_EQ(Get(test.button), test.action);
    EXPECT_EQ(TraceLines("GetButtonAction error in HKLM\\Hardware\\Layout\\EVENTS\\").size(),
              test.action == 255 ? 1u : 0u);
    EXPECT_EQ(Changes(), Lines{});
  }
}

TEST_F(KeypadAction, IsUnknownWithoutTheKeysOfTheEvents) {
  const Bytes delta = Unterminated(u"DeltaLeftScan");
  const Bytes state = Unterminated(u"StateLeftScan");
  for (const std::string kind : {"STATE", "DELTA"}) {
    Arrange();
    SetEvents(kLayout, "Event5", delta, state);
    SetEvents(kHandleLayout, "Event1", delta, state);
    device.registry().RemoveTree(std::string(kLayout) + "\\EVENTS\\" + kind);
    EXPECT_EQ(Get(0), 1u) << "the handle has keys of its own";
    EXPECT_EQ(Get(5), 255u);
    EXPECT_EQ(
        CategorisedLines()[CategorisedLines().size() - 2],
        "0xC3ED0000 GetButtonAction error in HKLM\\Hardware\\Layout\\EVENTS\\" + kind + "\\r\\n");
  }
}

TEST_F(KeypadAction, IsRefusedCleanly) {
  struct Case {
    LONG button, action;
    HRESULT result;
  };
  for (const Case& test :
       {Case{5, 0, PAL_KEY_E_NO_SUCH_ACTION}, Case{5, 8, PAL_KEY_E_NO_SUCH_ACTION},
        Case{5, -1, PAL_KEY_E_NO_SUCH_ACTION}, Case{1, 1, PAL_KEY_E_NOT_SUPPORTED},
        Case{4, 8, PAL_KEY_E_NOT_SUPPORTED}, Case{8, 1, PAL_KEY_E_NOT_SUPPORTED},
        Case{-1, 1, PAL_KEY_E_NOT_SUPPORTED}, Case{0x7FFFFFFF, 1, PAL_KEY_E_NOT_SUPPORTED}}) {
    EXPECT_EQ(Set(test.button, test.action), test.result) << test.button << ' ' << test.action;
    EXPECT_EQ(TraceLines().back(),
              fmt::format("0x{:08X}=SetButtonAction({},{} \"zero based adjusted\")\\r\\n",
                          static_cast<DWORD>(test.result), test.button, test.action));
  }
  DWORD action = 1;
  EXPECT_EQ(process.exports().PALKEYGetButtonAction(4, &action), PAL_KEY_E_NOT_SUPPORTED);
  EXPECT_EQ(action, 255u);
  EXPECT_EQ(process.exports().PALKEYGetButtonAction(5, nullptr), E_FAIL);
  EXPECT_EQ(Changes(), Lines{});
}

TEST_F(KeypadAction, NamesTheButtonOfEachScanCode) {
  DWORD count = 0;
  EXPECT_EQ(process.exports().PALKEYGetNumButtons(&count), S_OK);
  EXPECT_EQ(count, 8u);
  EXPECT_EQ(process.exports().PALKEYGetNumButtons(nullptr), E_FAIL);
  std::array<char, PAL_KEY_BUTTON_NAME_LENGTH> name{};
  DWORD length = 0;
  for (const Button& button : kButtons) {
    device.registry().SetBinary(kLayout, "ShiftPlane0", {7, button.scan_code, 0, 1, 0, 0});
    for (LONG id = 0; id < 8; ++id) {
      EXPECT_EQ(process.exports().PALKEYGetButtonName(id, name.data(), &length),
                id == button.id ? S_OK : PAL_KEY_E_NOT_SUPPORTED)
          << button.name << ' ' << id;
    }
    EXPECT_EQ(name.data(), button.name);
    EXPECT_EQ(length, button.name.size());
  }
  EXPECT_EQ(process.exports().PALKEYGetButtonName(7, nullptr, &length), E_FAIL);
  EXPECT_EQ(process.exports().PALKEYGetButtonName(7, name.data(), nullptr), E_FAIL);
  EXPECT_STREQ(name.data(), "Right Side Bottom");
  EXPECT_EQ(length, 17u);
}

// What was written before a failure stays; nothing behind it is written.
TEST_F(KeypadAction, StopsAtAFailure) {
  const std::string events = std::string(kLayout) + "\\EVENTS\\";
  struct Case {
    std::string missing_key;
    sim::Fault fault;
    HRESULT result;
    std::string done;
  };
  const sim::Fault none{.call = "PlaySoundW"};
  for (const Case& test : std::vector<Case>{
           {events + "DELTA", none, E_FAIL, ""},
           {events + "STATE", none, E_FAIL, " delta"},
           {kSettings, none, E_FAIL, ""},
           {kDriver, none, E_FAIL, " planes delta state"},
           {"", {.call = "CreateEventW"}, S_OK, " planes delta state"},
           {"", {.call = "RegFlushKey"}, S_OK, " planes delta state signal"},
           {"", {.call = "RegSetValueExW", .on = "DELTA\\Event5"}, E_FAIL, " planes"},
           {"",
            {.call = "RegSetValueExW", .on = "STATE\\Event5"},
            S_OK,
            " planes delta flush signal"},
       }) {
    SCOPED_TRACE(test.missing_key + test.fault.call + test.fault.on);
    Arrange();
    const Planes before = PlanesOf(kLayout);
    if (!test.missing_key.empty()) device.registry().RemoveTree(test.missing_key);
    device.PlanFault(test.fault);
    EXPECT_EQ(Set(5, 1), test.result);
    device.ClearFaults();
    std::string done;
    if (PlanesOf(kLayout) != before) done += " planes";
    if (!EventOf(kLayout, "DELTA", "Event5").empty()) done += " delta";
    if (!EventOf(kLayout, "STATE", "Event5").empty()) done += " state";
    for (const std::string& change : Changes()) {
      if (change == kFlushed) done += " flush";
      if (change == kSignalled) done += " signal";
    }
    EXPECT_EQ(done, test.done);
    EXPECT_EQ(process.new_handles(), 0u);
  }
}

TEST_F(KeypadAction, IsReadByTheDriverOnceItIsTold) {
  device.StartProgram(sim::KeypadDriver());
  EXPECT_EQ(Set(5, 1), S_OK);
  EXPECT_EQ(device.journal().Texts(sim::Effect::kDriver), Lines{}) << "not before its turn";
  device.Advance(0);
  EXPECT_EQ(device.journal().Texts(sim::Effect::kDriver),
            Lines{"keypad reloaded, Hardware\\Layout: 9 records, 9 records, 9 records"});
  EXPECT_EQ(Set(0, 1), S_OK);
  device.registry().SetBinary(kLayout, "ShiftPlane1", Bytes(8));
  device.registry().SetDword(kLayout, "ShiftPlane2", 1);
  EXPECT_EQ(Set(2, 1), S_OK);
  device.Advance(0);
  EXPECT_EQ(device.journal().Texts(sim::Effect::kDriver).back(),
            "keypad reloaded, Hardware\\Layout: 9 records, 1 records and 2 bytes, not binary");
  EXPECT_EQ(device.journal().Texts(sim::Effect::kDriver).size(), 2u) << "the handle tells nobody";
}

}  // namespace

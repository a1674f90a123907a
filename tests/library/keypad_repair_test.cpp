// The repair of the buttons' layout: once in the life of a device.
#include "platform/sim/hardware/hardware.h"
#include "tests/support/keypad_test.h"

namespace {

using Lines = std::vector<std::string>;

const Bytes kDeltaDefault = Unterminated(u"DeltaWindowsDefault");
const Bytes kStateDefault = Unterminated(u"StateWindowsDefault");

class KeypadRepair : public KeypadTest {
 protected:
  KeypadRepair() { device.registry().RemoveTree(kSettings); }

  void Init() {
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALKEYInit(), S_OK);
  }
  [[nodiscard]] bool IsDone() { return device.registry().GetDword(kSettings, "FixActive") == 1u; }
  // Every further attach leaves the device as it is.
  void ExpectNeverAgain() {
    EXPECT_TRUE(IsDone());
    Init();
    EXPECT_EQ(Changes(), Lines{});
    EXPECT_EQ(TraceLines(), (Lines{"PALKEYInit - Entry", "FixScanKeyEvents Enter\\r\\n",
                                   "FixScanKeyEvents Complete hr=0x0\\r\\n"}));
  }
};

TEST_F(KeypadRepair, GivesTheScanToButton2AndTheKeysTheirMeaning) {
  struct Case {
    std::optional<std::string> model;
    std::u16string delta, state;
  };
  for (const Case& test : {
           Case{"RM21", u"DeltaLeftScan", u"StateLeftScan"},
           Case{"RM23", u"DeltaCameraScan", u"StateCameraScan"},
           Case{"RM23X", u"DeltaLeftScan", u"StateLeftScan"},
           Case{"rm23", u"DeltaLeftScan", u"StateLeftScan"},
           Case{std::nullopt, u"DeltaLeftScan", u"StateLeftScan"},
       }) {
    SCOPED_TRACE(test.model.value_or("no model"));
    Arrange();
    device.registry().RemoveTree(kSettings);
    device.hardware().parameters.clear();
    if (test.model) device.hardware().parameters[0x00D5] = sim::TextAnswer(*test.model);
    const Bytes ordinary = {7, 0x91, 4, 1, 0, 0x20};
    Planes planes = PlanesOf(kLayout);
    device.registry().SetBinary(kLayout, "ShiftPlane1", OtherRecords(3) + ordinary);
    Init();
    EXPECT_EQ(EventOf(kLayout, "DELTA", "Event2"), Unterminated(test.delta));
    EXPECT_EQ(EventOf(kLayout, "STATE", "Event2"), Unterminated(test.state));
    for (const std::string name : {"Event5", "Event6", "Event7"}) {
      EXPECT_EQ(EventOf(kLayout, "DELTA", name), kDeltaDefault);
      EXPECT_EQ(EventOf(kLayout, "STATE", name), kStateDefault);
    }
    planes[1] = OtherRecords(3) + Bytes{7, 0x91, 4, 2, 2, 2};
    EXPECT_EQ(PlanesOf(kLayout), planes);
    EXPECT_EQ(PlanesOf(kSettings), Planes{}) << "nothing is saved";
    const Lines changes = Changes();
    const Lines last(changes.end() - 4, changes.end());
    EXPECT_EQ(
        last,
        (Lines{R"(HKEY_LOCAL_MACHINE\Drivers\HID\ClientDrivers\DVLKeyboard flushed)",
               "DVL_KEYBOARD_CHANGE_USB set", R"(HKEY_LOCAL_MACHINE\Software\Dravonel\PAL created)",
               R"(HKEY_LOCAL_MACHINE\Software\Dravonel\PAL "FixActive"=dword:00000001)"}));
    ExpectNeverAgain();
  }
}

TEST_F(KeypadRepair, IsRunForAFlagThatSaysNothing) {
  device.registry().SetDword(kSettings, "FixActive", 0);
  Init();
  EXPECT_EQ(EventOf(kLayout, "DELTA", "Event5"), kDeltaDefault);
  ExpectNeverAgain();
}

TEST_F(KeypadRepair, IsNotTriedAgainAfterAFailure) {
  struct Case {
    const char* what;
    std::string missing;
    bool signalled;
    std::string result;
  };
  const std::string events = std::string(kLayout) + "\\EVENTS";
  for (const Case& test : {
           Case{"no keyboard", R"(HKLM\Hardware)", false, "0x80004005"},
           Case{"no layout", kLayout, false, "0x80070002"},
           Case{"no events", events, true, "0x0"},
           Case{"no driver", kDriver, false, "0x80004005"},
       }) {
    SCOPED_TRACE(test.what);
    Arrange();
    device.registry().RemoveTree(kSettings);
    device.registry().RemoveTree(test.missing);
    Init();
    EXPECT_EQ(device.journal().Texts(sim::Effect::kEvent).size(), test.signalled ? 1u : 0u);
    EXPECT_EQ(TraceLines().back(), "FixScanKeyEvents Complete hr=" + test.result + "\\r\\n");
    ExpectNeverAgain();
  }
}

TEST_F(KeypadRepair, PassesOverPlanesWithoutTheButton) {
  for (const char* plane : kPlaneNames)
    device.registry().SetBinary(kLayout, plane, OtherRecords(2));
  Delete(kLayout, "ShiftPlane2");
  const Planes before = PlanesOf(kLayout);
  Init();
  EXPECT_EQ(PlanesOf(kLayout), before);
  EXPECT_EQ(TraceLines("FixScanKeyEvents: Did not get Values for Left Side Bottom button").size(),
            3u);
  EXPECT_EQ(device.journal().Texts(sim::Effect::kEvent).size(), 1u) << "the driver is told";
}

// The layout is opened three times for each plane: for its record, to read it, and to write it.
TEST_F(KeypadRepair, EndsAtPlane2AndNotBefore) {
  struct Case {
    const char* what;
    sim::Fault fault;
    bool signalled;
  };
  constexpr const char* kPlanes = "Hardware\\Layout";
  constexpr const char* kQuery = "RegQueryValueExW";
  for (const Case& test : {
           Case{"record of plane 0", {.on = kPlanes, .nth = 1}, true},
           Case{"plane 1 to write", {.on = kPlanes, .nth = 6}, true},
           Case{"record of plane 2", {.on = kPlanes, .nth = 7}, false},
           Case{"plane 2 to read", {.on = kPlanes, .nth = 8}, false},
           Case{"plane 2 to write", {.on = kPlanes, .nth = 9}, false},
           Case{"driver", {.on = "DVLKeyboard"}, false},
           Case{"unreadable record of plane 2", {.call = kQuery, .on = "ShiftPlane2"}, true},
           Case{"unreadable plane 2", {.call = kQuery, .on = "ShiftPlane2", .nth = 2}, false},
       }) {
    SCOPED_TRACE(test.what);
    Arrange();
    device.registry().RemoveTree(kSettings);
    const Planes planes = PlanesOf(kLayout);
    sim::Fault fault = test.fault;
    if (fault.call.empty()) fault.call = "RegOpenKeyExW";
    device.PlanFault(fault);
    Init();
    device.ClearFaults();
    EXPECT_EQ(device.journal().Texts(sim::Effect::kEvent).size(), test.signalled ? 1u : 0u);
    EXPECT_EQ(PlanesOf(kLayout), planes);
    ExpectNeverAgain();
  }
}

TEST_F(KeypadRepair, IsDoneWhicheverCallFailsButTheFlagsOwn) {
  Lines undone;
  for (unsigned nth = 1;; ++nth) {
    Arrange();
    device.registry().RemoveTree(kSettings);
    device.PlanFault({.nth = nth});
    Init();
    const Lines faulted = device.faulted_calls();
    device.ClearFaults();
    if (faulted.empty()) break;
    if (!IsDone()) undone.push_back(faulted.front());
  }
  EXPECT_EQ(undone, (Lines{"RegCreateKeyExW", "RegSetValueExW"}));
}

}  // namespace

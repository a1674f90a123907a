// Layouts and shift planes that are odd: what is read, what is rewritten, and what stays.
#include <algorithm>

#include "tests/support/keypad_test.h"

namespace {

const Bytes kButton5 = {7, 0x43, 9, 1, 0, 0x22};
const Bytes kButton5Signals = {7, 0x43, 9, 2, 2, 5};
const Bytes kButton6 = {7, 0x3F, 9, 1, 0, 0x21};

class KeypadLayout : public KeypadTest {
 protected:
  bool IsSupported(LONG button) {
    std::array<char, PAL_KEY_BUTTON_NAME_LENGTH> name{};
    DWORD length = 0;
    const HRESULT result = process.exports().PALKEYGetButtonName(button, name.data(), &length);
    EXPECT_TRUE(result == S_OK || result == PAL_KEY_E_NOT_SUPPORTED);
    return result == S_OK;
  }
  void Put(const std::string& layout, const std::string& plane, const std::optional<Bytes>& bytes) {
    device.registry().SetBinary(layout, plane, bytes.value_or(Bytes{}));
    if (!bytes) Delete(layout, plane);
  }
};

TEST_F(KeypadLayout, IsFoundByAPathOfAnyAllowedForm) {
  const std::u16string path = u"Hardware\\Layout";
  // Repeated backslashes make a path longer and change nothing else.
  const auto padded = [](std::size_t units) {
    return u"Hardware" + std::u16string(units - 14, u'\\') + u"Layout";
  };
  const Bytes end = {0, 0};
  struct Case {
    const char* what;
    std::optional<Bytes> data;
    bool supported;
    HRESULT shift_result;
    std::string repair_result;
    std::uint32_t type = REG_SZ;
  };
  const HRESULT not_found = PAL_E_FILE_NOT_FOUND;
  const HRESULT more_data = PAL_E_MORE_DATA;
  const std::string fail = "0x80004005";
  for (const Case& test : {
           Case{"terminated", Unterminated(path) + end, true, S_OK, "0x0"},
           Case{"unterminated", Unterminated(path), true, S_OK, "0x0"},
           Case{"of another type", Unterminated(path), true, S_OK, "0x0", REG_DWORD},
           Case{"half a unit behind it", Unterminated(path) + Bytes{0x41}, true, S_OK, "0x0"},
           Case{"259 units", Unterminated(padded(259)) + end, true, S_OK, "0x0"},
           Case{"260 units, unterminated", Unterminated(padded(260)), true, S_OK, "0x0"},
           Case{"260 units", Unterminated(padded(260)) + end, false, more_data, fail},
           Case{"much longer", Unterminated(padded(2000)), false, more_data, fail},
           Case{"empty", Bytes{}, false, not_found, "0x0"},
           Case{"only its end", end, false, not_found, "0x0"},
           Case{"half a unit", Bytes{0x41}, false, not_found, "0x0"},
           Case{"of no layout", Unterminated(u"Hardware\\Other"), false, not_found, "0x80070002"},
           Case{"missing", std::nullopt, false, not_found, fail},
       }) {
    SCOPED_TRACE(test.what);
    const auto arrange = [&] {
      Arrange();
      device.registry().SetRaw(kKeyboard, "CurrentActiveLayoutKey", test.type,
                               test.data.value_or(Bytes{}));
      if (!test.data) Delete(kKeyboard, "CurrentActiveLayoutKey");
    };
    arrange();
    EXPECT_EQ(IsSupported(5), test.supported);
    EXPECT_EQ(Set(5, 4), test.supported ? S_OK : PAL_KEY_E_NOT_SUPPORTED);
    const Bytes written = EventOf(kLayout, "STATE", "Event5");
    EXPECT_EQ(written, test.supported ? Unterminated(u"StateCameraScan") : Bytes{});
    if (test.supported) {
      EXPECT_EQ(Get(5), 4u);
    }

    arrange();
    const std::string shift_keys = std::string(kLayout) + "\\ShiftKeys";
    device.registry().SetBinary(shift_keys, "ShiftKeyA", {2, 0, 0, 0});
    DWORD behavior = 77;
    EXPECT_EQ(process.exports().PALKEYGetShiftBehavior(&behavior), test.shift_result);
    EXPECT_EQ(behavior, test.supported ? 1u : 77u);
    EXPECT_EQ(process.exports().PALKEYSetShiftBehavior(2), test.shift_result);
    EXPECT_EQ(device.registry().FindValue(shift_keys, "ShiftKeyA")->data,
              (Bytes{static_cast<std::uint8_t>(test.supported ? 4 : 2), 0, 0, 0}));

    device.registry().SetDword(kSettings, "FixActive", 0);
    EXPECT_EQ(process.exports().PALKEYInit(), S_OK);
    EXPECT_EQ(TraceLines().back(), "FixScanKeyEvents Complete hr=" + test.repair_result + "\\r\\n");
    EXPECT_EQ(EventOf(kLayout, "DELTA", "Event5"),
              test.supported ? Unterminated(u"DeltaWindowsDefault") : Bytes{});
  }
}

TEST_F(KeypadLayout, SupportsTheButtonsOfPlane0) {
  struct Case {
    const char* what;
    std::optional<Bytes> plane;
    bool supported;
  };
  for (const Case& test : {
           Case{"alone", kButton5, true},
           Case{"missing plane", std::nullopt, false},
           Case{"empty plane", Bytes{}, false},
           Case{"cut short", Bytes(kButton5.begin(), kButton5.end() - 1), false},
           Case{"of another kind", Bytes{1, 0x43, 0, 0, 0, 0}, false},
           Case{"not at a record's start", Bytes{0, 0, 0} + kButton5, false},
           Case{"last of 1020 bytes", OtherRecords(169) + kButton5, true},
           Case{"and four bytes", OtherRecords(169) + kButton5 + Bytes(4), true},
           Case{"and five", OtherRecords(169) + kButton5 + Bytes(5), false},
           Case{"first of a long plane", kButton5 + OtherRecords(300), false},
       }) {
    SCOPED_TRACE(test.what);
    Put(kLayout, "ShiftPlane0", test.plane);
    EXPECT_EQ(IsSupported(5), test.supported);
  }
  Put(kLayout, "ShiftPlane0", Bytes(6 * 3));
  EXPECT_FALSE(IsSupported(0)) << "zeros are no record of the handle";
  device.registry().SetRaw(kLayout, "ShiftPlane0", REG_SZ, kButton5);
  EXPECT_TRUE(IsSupported(5)) << "of whatever type";
  const unsigned calls = device.calls("RegOpenKeyExW");
  for (const LONG button : {1, 4, 8, -1}) EXPECT_FALSE(IsSupported(button));
  EXPECT_EQ(device.calls("RegOpenKeyExW"), calls) << "the registry is not asked";
}

// Plane 2 is the one whose result counts.
TEST_F(KeypadLayout, RewritesWholeRecordsAndNothingElse) {
  const Bytes other_kind = {1, 0x43, 0, 0, 0, 0};
  const Bytes button5_later = {7, 0x43, 8, 1, 1, 0x23};
  const Bytes later_signals = {7, 0x43, 8, 2, 2, 5};
  struct Case {
    const char* what;
    std::optional<Bytes> plane;
    std::optional<Bytes> rewritten;
    std::optional<Bytes> saved;
  };
  for (const Case& test : {
           Case{"missing", std::nullopt, std::nullopt, std::nullopt},
           Case{"empty", Bytes{}, Bytes{}, std::nullopt},
           Case{"without the button", kButton6, kButton6, std::nullopt},
           Case{"another kind", other_kind, other_kind, std::nullopt},
           Case{"cut short", Bytes{7, 0x43, 9}, Bytes{7, 0x43, 9}, std::nullopt},
           Case{"beside another kind", other_kind + kButton5 + kButton6,
                other_kind + kButton5Signals + kButton6, kButton5},
           Case{"twice", kButton5 + kButton6 + button5_later,
                later_signals + kButton6 + later_signals, button5_later},
           Case{"bytes behind the last record", kButton5 + Bytes{7, 0x43, 1},
                kButton5Signals + Bytes{7, 0x43, 1}, kButton5},
           Case{"last of 682 records", OtherRecords(681) + kButton5,
                OtherRecords(681) + kButton5Signals, kButton5},
           Case{"4096 bytes", OtherRecords(681) + kButton5 + Bytes(4),
                OtherRecords(681) + kButton5 + Bytes(4), kButton5},
           Case{"more", kButton5 + Bytes(4091), kButton5 + Bytes(4091), std::nullopt},
       }) {
    SCOPED_TRACE(test.what);
    Arrange();
    Put(kLayout, "ShiftPlane2", test.plane);
    EXPECT_EQ(Set(5, 1), S_OK);
    EXPECT_EQ(PlanesOf(kLayout)[2], test.rewritten);
    EXPECT_EQ(PlanesOf(kSettings)[2], test.saved);
    const auto errors = TraceLines(
        "SetupKeyForScanKeys: Did not get Values for Left Side Top button in shift plane 2");
    EXPECT_EQ(errors.empty(), test.saved.has_value());
    EXPECT_EQ(Get(5), 1u);
  }
}

TEST_F(KeypadLayout, TakesAPlaneOfAnyTypeAndWritesItAsBinary) {
  device.registry().SetRaw(kLayout, "ShiftPlane2", REG_SZ, kButton5);
  EXPECT_EQ(Set(5, 1), S_OK);
  EXPECT_EQ(device.registry().FindValue(kLayout, "ShiftPlane2")->type, REG_BINARY);
  EXPECT_EQ(PlanesOf(kLayout)[2], kButton5Signals);
}

TEST_F(KeypadLayout, SavesRecordsBesideThoseThatAreThere) {
  const Bytes stale = {7, 0x43, 0, 2, 2, 5};
  const std::string full = "2 Source Buffer too short dwLen = ";
  struct Case {
    const char* what;
    Bytes there;
    Bytes saved;
    std::string error;
    bool taken_over = true;  // else the save has failed, and the layout keeps its record
  };
  for (const Case& test : {
           Case{"another button's", kButton6, kButton6 + kButton5, ""},
           Case{"its own", stale + kButton6, kButton5 + kButton6, ""},
           Case{"bytes that are no record", kButton6 + Bytes{7, 0x43}, kButton6 + kButton5, ""},
           Case{"681 records", OtherRecords(681), OtherRecords(681) + kButton5, ""},
           Case{"4089 bytes", OtherRecords(681) + Bytes(3), OtherRecords(681) + kButton5, ""},
           Case{"682 records", OtherRecords(682), OtherRecords(682),
                full + "4092 dwBufLen=6\\r\\n"},
           Case{"4096 bytes", Bytes(4096, 7), Bytes(4096, 7), full + "4096 dwBufLen=6\\r\\n",
                false},
           Case{"more", Bytes(5000, 7), Bytes(5000, 7), full + "4096 dwBufLen=6\\r\\n", false},
       }) {
    SCOPED_TRACE(test.what);
    Arrange();
    Put(kLayout, "ShiftPlane2", kButton5);
    Put(kSettings, "ShiftPlane2", test.there);
    device.journal().Clear();
    EXPECT_EQ(Set(5, 1), test.taken_over ? S_OK : E_FAIL);
    EXPECT_EQ(PlanesOf(kSettings)[2], test.saved);
    EXPECT_EQ(PlanesOf(kLayout)[2], test.taken_over ? kButton5Signals : kButton5);
    const auto changes = Changes();
    EXPECT_EQ(std::count_if(changes.begin(), changes.end(),
                            [](const std::string& change) {
                              return change.starts_with(
                                  R"(HKEY_LOCAL_MACHINE\Software\Dravonel\PAL "ShiftPlane2"=)");
                            }),
              test.taken_over ? 1 : 0)
        << "also the plane that has no room is written back";
    const auto errors = TraceLines(full);
    EXPECT_EQ(errors.empty() ? "" : errors.front(), test.error);
  }
}

TEST_F(KeypadLayout, RestoresARecordThatTheLayoutHasLost) {
  ASSERT_EQ(Set(5, 1), S_OK);
  const Bytes original = *PlanesOf(kSettings)[2];
  Put(kLayout, "ShiftPlane2", kButton6);
  Put(kLayout, "ShiftPlane1", std::nullopt);
  Put(kSettings, "ShiftPlane0", std::nullopt);
  const Planes before = PlanesOf(kLayout);
  EXPECT_EQ(Set(5, 6), S_OK);
  EXPECT_EQ(PlanesOf(kLayout)[0], before[0]) << "nothing was saved for it";
  EXPECT_EQ(PlanesOf(kLayout)[1], (Bytes{7, 0x43, 1, 1, 1, 0x22}));
  EXPECT_EQ(PlanesOf(kLayout)[2], kButton6 + original);
  EXPECT_EQ(
      TraceLines("SetupKeyForWinDefkeys: Did not get Values for Left Side Top button in shift ")
          .size(),
      1u);
}

TEST_F(KeypadLayout, RestoresNothingWhereNothingWasSaved) {
  const std::string line =
      "SetupKeyForWinDefkeys: Did not get Values for Left Side Top button in shift plane ";
  ASSERT_EQ(Set(5, 1), S_OK);
  const Planes signals = PlanesOf(kLayout);
  device.registry().RemoveTree(kSettings);
  EXPECT_EQ(Set(5, 6), S_OK);
  EXPECT_EQ(Get(5), 6u);
  EXPECT_EQ(PlanesOf(kLayout), signals);
  EXPECT_EQ(TraceLines(line).size(), 3u);
  EXPECT_EQ(device.registry().Find(kSettings), nullptr) << "the key is not created";
}

// A plane is read for its record, and once more to be written with it.
TEST_F(KeypadLayout, WritesOverNoPlaneThatItCannotRead) {
  struct Case {
    const char* what;
    sim::Fault fault;
    HRESULT result;
    Bytes saved;
  };
  for (const Case& test : {Case{"not found", {.on = "Layout\\ShiftPlane2"}, S_OK, kButton6},
                           Case{"not saved", {.on = "PAL\\ShiftPlane2"}, E_FAIL, kButton6},
                           Case{"not rewritten",
                                {.on = "Layout\\ShiftPlane2", .nth = 2},
                                E_FAIL,
                                kButton6 + kButton5}}) {
    SCOPED_TRACE(test.what);
    Arrange();
    Put(kLayout, "ShiftPlane2", kButton5);
    Put(kSettings, "ShiftPlane2", kButton6);
    sim::Fault fault = test.fault;
    fault.call = "RegQueryValueExW";
    device.PlanFault(fault);
    EXPECT_EQ(Set(5, 1), test.result);
    device.ClearFaults();
    EXPECT_EQ(PlanesOf(kLayout)[2], kButton5);
    EXPECT_EQ(PlanesOf(kSettings)[2], test.saved);
    EXPECT_EQ(TraceLines("SetupKeyForScanKeys: Did not get Values for Left Side Top button").size(),
              test.result == S_OK ? 1u : 0u);
  }
}

TEST_F(KeypadLayout, TracesARecordAsAddedAlsoWhereThePlaneHasNoKey) {
  device.registry().RemoveTree(kSettings);
  const Planes before = PlanesOf(kLayout);
  EXPECT_EQ(Set(5, 1), E_FAIL);
  EXPECT_EQ(TraceLines("Key (0):0x7, 0x43, ").size(), 3u) << "one for each plane";
  EXPECT_EQ(TraceLines("SetupKeyForScanKeys Complete hr=0x80070002").size(), 1u);
  EXPECT_EQ(PlanesOf(kLayout), before);
  EXPECT_EQ(device.registry().Find(kSettings), nullptr) << "the key is not created";
}

TEST_F(KeypadLayout, AnswersAsTheLastPlaneThatWasWritten) {
  const std::string line =
      "SetupKeyForScanKeys: Did not get Values for Left Side Top button in shift plane 2";
  unsigned unread = 0;
  for (unsigned open = 1; open <= 20; ++open) {
    Arrange();
    device.PlanFault({.call = "RegOpenKeyExW", .nth = open});
    const HRESULT result = Set(5, 1);
    device.ClearFaults();
    if (TraceLines(line).empty()) continue;
    ++unread;
    EXPECT_EQ(result, S_OK) << "planes 0 and 1 were written";
    EXPECT_EQ(Get(5), 1u);
  }
  EXPECT_EQ(unread, 1u);
}

}  // namespace

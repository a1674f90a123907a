// A device with a keypad: a layout with buttons and other keys in three planes, and what stands
// around it.
#ifndef TESTS_SUPPORT_KEYPAD_TEST_H_
#define TESTS_SUPPORT_KEYPAD_TEST_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/device_test.h"

using Bytes = std::vector<std::uint8_t>;
using Planes = std::array<std::optional<Bytes>, 3>;

class KeypadTest : public DeviceTest {
 protected:
  static constexpr const char* kKeyboard = R"(HKLM\Hardware\Devicemap\Keybd)";
  static constexpr const char* kLayout = R"(HKLM\Hardware\Layout)";
  static constexpr const char* kHandleLayout = R"(HKLM\Software\Dravonel\RFIDServer\Keybd)";
  static constexpr const char* kSettings = R"(HKLM\Software\Dravonel\PAL)";
  static constexpr const char* kDriver = R"(HKLM\Drivers\HID\ClientDrivers\DVLKeyboard)";
  static constexpr std::array kPlaneNames = {"ShiftPlane0", "ShiftPlane1", "ShiftPlane2"};

  KeypadTest() { Arrange(); }
  void TearDown() override;

  // The keypad as it leaves the factory, repaired, with nothing saved and an empty journal.
  void Arrange();
  [[nodiscard]] Planes PlanesOf(const std::string& layout);
  void SetEvents(const std::string& layout, const std::string& name, const Bytes& delta,
                 const Bytes& state);
  void Delete(const std::string& key, const std::string& name);
  [[nodiscard]] Bytes EventOf(const std::string& layout, const std::string& kind,
                              const std::string& name);

  HRESULT Set(LONG button, LONG action) {
    return process.exports().PALKEYSetButtonAction(button, action);
  }
  // Of a call that succeeds.
  DWORD Get(LONG button);
  // All that was written, flushed and signalled.
  [[nodiscard]] std::vector<std::string> Changes();

  sim::Process process{device};
};

// UTF-16 without a terminator, as the driver's texts are.
[[nodiscard]] Bytes Unterminated(std::u16string_view text);
[[nodiscard]] Bytes operator+(Bytes left, const Bytes& right);
// Some records of keys that are no buttons.
[[nodiscard]] Bytes OtherRecords(std::size_t count);

#endif  // TESTS_SUPPORT_KEYPAD_TEST_H_

// The scan engine and the password check on threads that really run at once, for the race detector.
#include <memory>

#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/scan_engine.h"
#include "tests/support/device_test.h"

namespace {

class ConcurrentScanner : public DeviceTest {
 protected:
  ConcurrentScanner() : DeviceTest(sim::Concurrency::kParallel) {}
};

// Callers ought to take turns; those that do not must still find whole values.
TEST_F(ConcurrentScanner, TwoThreadsDriveOneEngine) {
  device.hardware().parameters[0x001A].bytes = {0x10, 0, 0, 0};
  device.hardware().drivers = {std::make_shared<sim::ScanDriver>()};
  sim::Process process(device);
  const sim::Exports& exports = process.exports();
  EXPECT_EQ(exports.PALSysio_Open(), S_OK);
  const auto drive = [&exports] {
    for (int round = 0; round < 20; ++round) {
      EXPECT_EQ(exports.PALSysio_InternalScannerInterfaceInit(), S_OK);
      EXPECT_EQ(exports.PALSysio_SetScanTrigger(round % 2), S_OK);
      EXPECT_EQ(exports.PALSysio_ControlScanPower(PAL_SCANNER_POWER_DOWN), S_OK);
    }
  };
  sim::Thread first = process.Start(drive);
  sim::Thread second = process.Start(drive);
  EXPECT_TRUE(first.Join());
  EXPECT_TRUE(second.Join());
  EXPECT_EQ(exports.PALSysio_Close(), S_OK);
  EXPECT_EQ(process.new_handles(), 0U);
}

TEST_F(ConcurrentScanner, TwoProcessesCheckPasswordsAtOnce) {
  device.registry().Create("HKCU\\Comm\\Security\\Crypto\\UserKeys\\Default");
  device.registry().SetBinary("HKLM\\Software\\Dravonel\\SN\\M", "s", {'a', 'b', 'c'});
  device.registry().SetBinary("HKLM\\Software\\Dravonel\\SN\\M", "h",
                              {0xA9, 0x99, 0x3E, 0x36, 0x47, 0x06, 0x81, 0x6A, 0xBA, 0x3E,
                               0x25, 0x71, 0x78, 0x50, 0xC2, 0x6C, 0x9C, 0xD0, 0xD8, 0x9D});
  sim::Process first(device, "first.exe");
  sim::Process second(device, "second.exe");
  const auto check = [](sim::Process& process) {
    return process.Start([&process] {
      for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(process.exports().PALSecurity_CheckPx(TEXT("M"), TEXT("")), 0U);
        EXPECT_EQ(process.exports().PALSecurity_CheckPx(TEXT("M"), TEXT("x")), 1U);
      }
    });
  };
  sim::Thread first_thread = check(first);
  sim::Thread second_thread = check(second);
  EXPECT_TRUE(first_thread.Join());
  EXPECT_TRUE(second_thread.Join());
}

}  // namespace

// The scan engine on threads that really run at once, for the race detector.
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

}  // namespace

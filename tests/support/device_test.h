// What every test on a simulated device begins with, and what it must leave behind.
#ifndef TESTS_SUPPORT_DEVICE_TEST_H_
#define TESTS_SUPPORT_DEVICE_TEST_H_

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/device.h"
#include "platform/sim/exports.h"
#include "platform/wince.h"
#include "tests/support/internals_process.h"

// Fails a test on any misuse that it did not take from the device itself.
class DeviceTest : public ::testing::Test {
 protected:
  explicit DeviceTest(sim::Concurrency concurrency = sim::Concurrency::kOneAtATime)
      : device(concurrency) {}
  // Looks for misuse here and not in TearDown: the processes of a fixture have ended by now.
  ~DeviceTest() override;

  // The lines of the event log, without their stamps and without those that the library writes when
  // it attaches and detaches.
  // Those of them that begin so.
  [[nodiscard]] std::vector<std::string> TraceLines(std::string_view prefix = {});
  // "0xC3F00000 the line" for each.
  [[nodiscard]] std::vector<std::string> CategorisedLines();

  sim::Device device;

 private:
  std::vector<const sim::JournalEntry*> TraceEntries();
};

#endif  // TESTS_SUPPORT_DEVICE_TEST_H_

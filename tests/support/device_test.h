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

  // What the journal holds of one effect, but for what the library does when it attaches and
  // detaches.
  [[nodiscard]] std::vector<std::string> Texts(sim::Effect effect);
  // The lines of the event log, without their stamps, in the same way.
  // Those of them that begin so.
  [[nodiscard]] std::vector<std::string> TraceLines(std::string_view prefix = {});
  // "0xC3F00000 the line" for each.
  [[nodiscard]] std::vector<std::string> CategorisedLines();
  // What follows a beginning, of those that begin so.
  [[nodiscard]] std::vector<std::string> LinesBehind(std::string_view prefix);

  sim::Device device;

 private:
  std::vector<const sim::JournalEntry*> EntriesOf(sim::Effect effect);
};

#endif  // TESTS_SUPPORT_DEVICE_TEST_H_

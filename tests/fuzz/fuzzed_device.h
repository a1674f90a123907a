// What the fuzz targets of the exports have in common: a sample device with one process on it, made
// anew for every input, so that an input's outcome is its own.
#ifndef TESTS_FUZZ_FUZZED_DEVICE_H_
#define TESTS_FUZZ_FUZZED_DEVICE_H_

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/device.h"
#include "platform/sim/exports.h"
#include "tests/support/export_rows.h"

// Tells on the standard error what does not hold, and aborts.
void Require(bool holds, std::string_view what, std::string_view where);

// Some bytes of an input, at most so many. They may be one text over and over, up to about the size
// of a buffer that there is, so that a short input gives long data too.
std::string TakeBytes(FuzzedDataProvider& input, std::size_t most);

class FuzzedDevice {
 public:
  FuzzedDevice();

  [[nodiscard]] sim::Device& device() { return device_; }

  // Takes up to `most` rows behind one another, of one family or two, as an input says, and makes
  // the device what they want.
  std::vector<const ExportRow*> TakeRows(FuzzedDataProvider& input, std::size_t most);

  // Makes calls in the process, which it starts first where there is none. After each call the
  // process must hold no mutex, the caller's memory must be whole, and the result must be one that
  // the headers tell of. False once the device has restarted: then there is no process.
  bool Call(const std::string& name,
            const std::function<DWORD(const sim::Exports& exports, Room& room)>& call);
  bool Call(const ExportRow& row);

  // Ends the process, which must leave nothing behind and have made no misuse of a platform call.
  void Finish();

 private:
  sim::Device device_;
  std::unique_ptr<sim::Process> process_;
  std::string last_call_ = "no call";
};

#endif  // TESTS_FUZZ_FUZZED_DEVICE_H_

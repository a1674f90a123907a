// A fuzz target of the exports over drivers that answer anything: other bytes, too few, a count of
// more than there are, an error; and over calls that fail and files that hold anything.
#include <algorithm>
#include <array>
#include <string>

#include "tests/fuzz/fuzzed_device.h"

namespace {

constexpr std::array kFiles{
    R"(\ConfigStore\dcecfg)", R"(\ConfigStore\datacoll)",        R"(\ConfigStore\BMN0)",
    R"(\ConfigStore\DCEDPM)", R"(\Windows\Sounds\goodread.wav)", R"(\Store\RM21.reg)",
};

constexpr std::array kFailingCalls{
    "RegOpenKeyExW", "RegQueryValueExW", "RegSetValueExW", "RegCreateKeyExW", "CreateFileW",
    "ReadFile",      "WriteFile",        "malloc",         "CreateEventW",    "LoadLibraryW",
};

void WriteFile(FuzzedDataProvider& input, sim::Device& device) {
  const std::string data = TakeBytes(input, 1100);
  device.files().Write(input.PickValueInArray(kFiles), data);
}

void FailCall(FuzzedDataProvider& input, sim::Device& device) {
  sim::Fault fault;
  fault.call = input.PickValueInArray(kFailingCalls);
  fault.nth = input.ConsumeIntegralInRange<unsigned>(1, 16);
  fault.from_then_on = input.ConsumeBool();
  fault.error = input.ConsumeIntegralInRange<std::uint32_t>(1, 300);
  if (fault.call == "ReadFile" || fault.call == "WriteFile") {
    fault.transfers = input.ConsumeIntegral<std::uint8_t>();
  }
  device.PlanFault(fault);
}

void Lie(FuzzedDataProvider& input, sim::DriverAnswer& answer) {
  if (answer.call == "RegQueryValueExW") return;  // the registry is no driver
  enum class Kind : std::uint8_t { kTruth, kFailure, kSuccess, kBytes, kCount, kMaxValue = kCount };
  switch (input.ConsumeEnum<Kind>()) {
    case Kind::kTruth:
      return;
    case Kind::kFailure:
      answer.error = input.ConsumeIntegralInRange<std::uint32_t>(1, 300);
      return;
    case Kind::kSuccess:
      answer.error = 0;
      return;
    case Kind::kCount:
      answer.returned = input.ConsumeIntegral<std::uint32_t>();
      return;
    case Kind::kBytes:
      break;
  }
  const auto offset = input.ConsumeIntegralInRange<std::size_t>(0, answer.bytes.size());
  const std::string bytes = TakeBytes(input, answer.bytes.size() - offset);
  std::copy(bytes.begin(), bytes.end(), answer.bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  // A file that grew or shrank, but not to what no device has memory for.
  if (answer.call == "GetFileSize") std::fill(answer.bytes.begin() + 2, answer.bytes.end(), 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostCalls = 16;
  FuzzedDataProvider input(data, size);
  FuzzedDevice fuzzed;
  const auto rows = fuzzed.TakeRows(input, kMostCalls);
  if (input.ConsumeBool()) WriteFile(input, fuzzed.device());
  if (input.ConsumeBool()) FailCall(input, fuzzed.device());
  fuzzed.device().set_on_answer([&](sim::DriverAnswer& answer) { Lie(input, answer); });
  for (const ExportRow* row : rows) {
    if (!fuzzed.Call(*row)) break;
  }
  fuzzed.Finish();
  return 0;
}

#include "tests/fuzz/fuzzed_device.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <set>

#include "tests/support/documented_results.h"

// Speed before reports: where a block was allocated shows with ASAN_OPTIONS=malloc_context_size=30.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer's own name
extern "C" const char* __asan_default_options() {
  return "malloc_context_size=0:quarantine_size_mb=8";
}

void Require(bool holds, std::string_view what, std::string_view where) {
  if (holds) return;
  std::fprintf(stderr, "%.*s: %.*s\n", static_cast<int>(where.size()), where.data(),
               static_cast<int>(what.size()), what.data());
  std::abort();
}

std::string TakeBytes(FuzzedDataProvider& input, std::size_t most) {
  enum class Kind : std::uint8_t { kShort, kRepeated, kLong, kMaxValue = kLong };
  // What buffers hold, in the library and on the device.
  constexpr std::array<std::size_t, 12> kSizes{4,   8,   18,  32,  64,  128,
                                               256, 280, 512, 520, 756, 1024};
  constexpr std::size_t kShortBytes = 16;
  const auto kind = input.ConsumeEnum<Kind>();
  if (kind == Kind::kLong) return input.ConsumeRandomLengthString(most);
  const auto length = input.ConsumeIntegralInRange<std::size_t>(0, std::min(most, kShortBytes));
  std::string bytes = input.ConsumeBytesAsString(length);
  if (kind == Kind::kShort || bytes.empty()) return bytes;
  const std::size_t size = input.PickValueInArray(kSizes);
  const auto off = input.ConsumeBool() ? input.ConsumeIntegralInRange<std::size_t>(0, 4) - 2 : 0;
  const std::string part = bytes;
  while (bytes.size() < std::min(most, size + off)) bytes += part;
  bytes.resize(std::min(most, size + off));
  return bytes;
}

namespace {

void RequireDocumented(const std::string& name, DWORD result) {
  static std::set<std::pair<std::string, DWORD>> seen;
  const DocumentedResults& documented = ResultsByExport().at(name);
  // A capability may also answer whatever number the registry holds.
  if (name.starts_with("PALDevCap_Enabled") || seen.contains({name, result})) return;
  Require(documented.Has(result), fmt::format("answers {:#010x}", result), name);
  seen.emplace(name, result);
}

}  // namespace

FuzzedDevice::FuzzedDevice() {
  device_.journal().set_keeps_entries(false);
  ArrangeFor(ExportRow{}, device_);
}

std::vector<const ExportRow*> FuzzedDevice::TakeRows(FuzzedDataProvider& input, std::size_t most) {
  const std::vector<ExportRow>& all = ExportRows();
  const auto first = input.ConsumeIntegralInRange<std::size_t>(0, all.size() - 1);
  const auto count = input.ConsumeIntegralInRange<std::size_t>(1, most);
  std::vector<const ExportRow*> rows;
  for (std::size_t row = first; row < first + count; ++row) {
    rows.push_back(&all[row % all.size()]);
    if (rows.back()->arrange) rows.back()->arrange(device_);
  }
  return rows;
}

bool FuzzedDevice::Call(const std::string& name,
                        const std::function<DWORD(const sim::Exports& exports, Room& room)>& call) {
  if (process_ == nullptr) process_ = std::make_unique<sim::Process>(device_);
  last_call_ = name;
  Room room;
  try {
    const DWORD result = call(process_->exports(), room);
    RequireDocumented(name, result);
  } catch (const sim::ProcessKilled&) {
    return false;
  }
  Require(room.GuardsHold(), "wrote beside the caller's memory", name);
  Require(process_->held_mutexes() == 0, "keeps a mutex", name);
  return true;
}

bool FuzzedDevice::Call(const ExportRow& row) {
  if (process_ == nullptr) process_ = std::make_unique<sim::Process>(device_);
  if (row.before) row.before(*process_);
  return Call(row.name, row.run);
}

void FuzzedDevice::Finish() {
  if (process_ != nullptr) {
    // The scanner stays open until its caller closes it.
    if (process_->alive()) (void)process_->exports().PALSysio_Close();
    process_->End();
  }
  for (const std::string& misuse : device_.misuse()) Require(false, misuse, last_call_);
}

#include "tests/fuzz/fuzzed_device.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <set>

#include "tests/support/documented_results.h"

// Speed before reports: where a block was allocated shows with ASAN_OPTIONS=malloc_context_size=30.
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
  const bool repeats = input.ConsumeBool();
  const std::size_t wanted = repeats ? input.ConsumeIntegralInRange<std::size_t>(0, most) : 0;
  std::string bytes = input.ConsumeRandomLengthString(most);
  if (!bytes.empty() && bytes.size() < wanted) {
    const std::size_t length = bytes.size();
    bytes.resize(wanted);
    for (std::size_t at = length; at < wanted; ++at) bytes[at] = bytes[at - length];
  }
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
  std::vector<const ExportRow*> rows(input.ConsumeIntegralInRange<std::size_t>(1, most));
  for (const ExportRow*& row : rows) {
    row = &all[input.ConsumeIntegralInRange<std::size_t>(0, all.size() - 1)];
    if (row->arrange) row->arrange(device_);
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

// The [scanner] of device.toml: a scan engine, its state at the start, and its kept state.
#include <array>
#include <memory>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/scan_engine.h"

namespace sim {
namespace {

struct StateKey {
  std::string_view key;
  bool ScanEngineState::*member;
};

constexpr std::array kKeys{
    StateKey{"power", &ScanEngineState::has_power},
    StateKey{"enabled", &ScanEngineState::is_enabled},
    StateKey{"download", &ScanEngineState::is_downloading},
    StateKey{"trigger", &ScanEngineState::is_triggered},
};

ScanEngineState ReadEngineState(const Part& part, const toml::node& node) {
  const auto& table = part.As<toml::table>(node, "a table: [scanner]");
  std::vector<std::string_view> allowed;
  allowed.reserve(kKeys.size());
  for (const StateKey& row : kKeys) allowed.push_back(row.key);
  part.Allow(table, allowed);
  ScanEngineState state;
  for (const StateKey& row : kKeys) {
    const toml::node* value = table.get(row.key);
    if (value == nullptr) continue;
    const std::string expected = fmt::format("true or false: {} = true", row.key);
    state.*row.member = part.As<toml::value<bool>>(*value, expected).get();
  }
  return state;
}

}  // namespace

void ReadScanner(const Part& part, const toml::node& node, Device& device) {
  device.hardware().drivers.push_back(std::make_shared<ScanDriver>(ReadEngineState(part, node)));
}

// The kept state of an engine that the author has removed since is ignored.
void ReadScannerState(const Part& part, const toml::node& node, Device& device) {
  const ScanEngineState state = ReadEngineState(part, node);
  ScanDriver* scanner = FindScanDriver(device.hardware());
  if (scanner != nullptr) scanner->ChangeTo(state);
}

std::string ScannerStateText(Device& device) {
  const ScanDriver* scanner = FindScanDriver(device.hardware());
  if (scanner == nullptr || !scanner->has_changed()) return {};
  std::vector<std::string> values;
  values.reserve(kKeys.size());
  for (const StateKey& row : kKeys) {
    values.push_back(fmt::format("{} = {}", row.key, scanner->state().*row.member));
  }
  return fmt::format("{{ {} }}", fmt::join(values, ", "));
}

}  // namespace sim

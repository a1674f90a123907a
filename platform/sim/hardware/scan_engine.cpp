#include "platform/sim/hardware/scan_engine.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>

#include "platform/sim/hardware/hardware.h"

namespace sim {
namespace {

struct ScanCode {
  std::uint32_t code;
  std::string_view name;
  bool ScanEngineState::*member;
  std::uint32_t value_when_set;
  std::array<std::string_view, 2> changes;  // cleared, set
};

constexpr std::array kScanCodes{
    ScanCode{ScanDriver::kSetDownload,
             "set download",
             &ScanEngineState::is_downloading,
             1,
             {"in normal operation", "in flash download"}},
    ScanCode{ScanDriver::kSetPower,
             "set power",
             &ScanEngineState::has_power,
             1,
             {"power off", "power on"}},
    ScanCode{ScanDriver::kEnable,
             "enable",
             &ScanEngineState::is_enabled,
             1,
             {"scanning disabled", "scanning enabled"}},
    ScanCode{ScanDriver::kSetTrigger,
             "set trigger",
             &ScanEngineState::is_triggered,
             1,
             {"trigger released", "trigger pulled"}},
    ScanCode{ScanDriver::kSetSpiClock,
             "set SPI clock",
             &ScanEngineState::is_triggered,
             0,
             {"trigger released", "trigger pulled"}},
};

const ScanCode* FindCode(std::uint32_t code) {
  const auto* const row = std::ranges::find(kScanCodes, code, &ScanCode::code);
  return row == kScanCodes.end() ? nullptr : row;
}

// The 0 or 1 that a request holds in 32 bits; nothing for any other request.
std::optional<std::uint32_t> ValueOf(const DriverRequest& request) {
  constexpr std::array<std::uint8_t, 4> kNumbers[] = {{0, 0, 0, 0}, {1, 0, 0, 0}};
  for (std::uint32_t number = 0; number < std::size(kNumbers); ++number) {
    if (std::ranges::equal(request.in, kNumbers[number])) return number;
  }
  return std::nullopt;
}

}  // namespace

void ScanDriver::ChangeTo(const ScanEngineState& state) {
  state_ = state;
  has_changed_ = true;
}

std::string_view ScanDriver::CodeName(std::uint32_t code) const {
  const ScanCode* row = FindCode(code);
  return row == nullptr ? std::string_view() : row->name;
}

std::string ScanDriver::Describe(const DriverRequest& request) const {
  return fmt::format("{} {:02X}", CodeName(request.code), fmt::join(request.in, " "));
}

std::uint32_t ScanDriver::Control(DriverRequest& request) {
  const ScanCode& row = *FindCode(request.code);
  const std::optional<std::uint32_t> value = ValueOf(request);
  if (!value || !request.out.empty()) return kDriverInvalidParameter;
  const bool is_set = *value == row.value_when_set;
  ScanEngineState state = state_;
  state.*row.member = is_set;
  if (state == state_) return 0;
  ChangeTo(state);
  request.changes.emplace_back(row.changes.at(is_set ? 1 : 0));
  return 0;
}

ScanDriver* FindScanDriver(const Hardware& hardware) {
  for (const auto& driver : hardware.drivers) {
    if (auto* scanner = dynamic_cast<ScanDriver*>(driver.get())) return scanner;
  }
  return nullptr;
}

}  // namespace sim

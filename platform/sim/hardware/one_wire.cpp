#include "platform/sim/hardware/one_wire.h"

#include <algorithm>
#include <cstring>

namespace sim {
namespace {

struct OneWireCode {
  std::uint32_t code;
  std::string_view name;
};

constexpr std::array kOneWireCodes{
    OneWireCode{OneWireBus::kSearch, "search"},
    OneWireCode{OneWireBus::kGetDeviceCount, "get device count"},
    OneWireCode{OneWireBus::kGetDeviceId, "get device id"},
    OneWireCode{OneWireBus::kGetMemorySize, "get memory size"},
    OneWireCode{OneWireBus::kReadMemory, "read memory"},
};

constexpr std::uint8_t kIdleBus = 0xFF;  // the byte that is read where no device answers

}  // namespace

struct OneWireBus::Record {
  std::uint32_t index;
  std::array<std::uint8_t, 8> id;
  std::uint32_t start_address;
  std::uint32_t bytes;
  std::array<std::uint8_t, 256> memory;
  std::uint32_t status;
};

std::string_view OneWireBus::CodeName(std::uint32_t code) const {
  const auto* const row = std::ranges::find(kOneWireCodes, code, &OneWireCode::code);
  return row == kOneWireCodes.end() ? std::string_view() : row->name;
}

const OneWireFailure* OneWireBus::Due(std::uint32_t code) {
  const OneWireFailure* due = nullptr;
  for (Planned& planned : failures_) {
    if (planned.failure.code != code) continue;
    ++planned.seen;
    const bool now = planned.failure.nth == 0 || planned.failure.nth == planned.seen;
    if (now && due == nullptr) due = &planned.failure;
  }
  return due;
}

std::uint32_t OneWireBus::Control(DriverRequest& request) {
  static_assert(sizeof(Record) == 280);
  if (request.in.size() != sizeof(Record) || request.out.size() != sizeof(Record)) {
    return kDriverInvalidParameter;
  }
  Record record;
  std::memcpy(&record, request.in.data(), sizeof(record));
  const OneWireFailure* failure = Due(request.code);
  if (failure != nullptr && failure->error != 0) return failure->error;
  if (failure != nullptr) {
    record.status = failure->status;
  } else {
    record.status = 0;
    Answer(request.code, record);
  }
  std::memcpy(request.out.data(), &record, sizeof(record));
  request.returned = sizeof(record);
  return 0;
}

void OneWireBus::Answer(std::uint32_t code, Record& record) {
  if (code == kSearch) {
    found_ = attached_ ? devices_.size() : 0;
  } else if (code == kGetDeviceCount) {
    record.index = reported_count_.value_or(static_cast<std::uint32_t>(found_));
  } else if (record.index >= found_) {
    record.status = kNoSuchDevice;
  } else {
    AnswerForDevice(code, record);
  }
}

void OneWireBus::AnswerForDevice(std::uint32_t code, Record& record) const {
  const OneWireDevice& device = devices_[record.index];
  if (code == kGetDeviceId) record.id = device.id;
  if (code == kGetMemorySize) record.bytes = static_cast<std::uint32_t>(device.memory.size());
  if (code != kReadMemory) return;
  if (record.bytes > record.memory.size()) {
    record.status = kDriverInvalidParameter;
    return;
  }
  for (std::uint32_t at = 0; at < record.bytes; ++at) {
    const std::uint64_t address = std::uint64_t{record.start_address} + at;
    const bool is_answered = address < device.memory.size();
    record.memory[at] = is_answered ? device.memory[static_cast<std::size_t>(address)] : kIdleBus;
  }
}

}  // namespace sim

// The [one_wire] of device.toml: a bus, its memory devices, and its failures.
#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <optional>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/one_wire.h"

namespace sim {
namespace {

constexpr std::size_t kMaximumMemory = 65536;

struct CallName {
  std::string_view key;
  std::uint32_t code;
};

constexpr std::array kCalls{
    CallName{"search", OneWireBus::kSearch},
    CallName{"get_device_count", OneWireBus::kGetDeviceCount},
    CallName{"get_device_id", OneWireBus::kGetDeviceId},
    CallName{"get_memory_size", OneWireBus::kGetMemorySize},
    CallName{"read_memory", OneWireBus::kReadMemory},
};

// Pairs of hexadecimal digits; blanks may stand between pairs.
std::optional<std::vector<std::uint8_t>> HexBytes(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (text.empty()) return bytes;
    std::uint8_t byte = 0;
    const std::string_view pair = text.substr(0, 2);
    const auto [end, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
    if (error != std::errc() || end != pair.data() + 2) return std::nullopt;
    bytes.push_back(byte);
    text.remove_prefix(2);
  }
}

const toml::node& Required(const Part& part, const toml::table& table, std::string_view key) {
  const toml::node* node = table.get(key);
  if (node == nullptr) part.Fail(table.source(), fmt::format("the key '{}' is missing", key));
  return *node;
}

std::vector<std::uint8_t> ReadBytes(const Part& part, const toml::node& node, std::size_t least,
                                    std::size_t most, std::string_view expected) {
  const auto bytes = HexBytes(part.As<toml::value<std::string>>(node, expected).get());
  if (!bytes || bytes->size() < least || bytes->size() > most) {
    part.Fail(node.source(), fmt::format("expected {}", expected));
  }
  return *bytes;
}

OneWireDevice ReadOneWireDevice(const Part& part, const toml::node& node) {
  const auto& table = part.As<toml::table>(node, "a table: { id = \"...\", memory = \"...\" }");
  part.Allow(table, {"id", "memory"});
  OneWireDevice device;
  const auto id = ReadBytes(part, Required(part, table, "id"), device.id.size(), device.id.size(),
                            "8 bytes as hexadecimal digits: id = \"14 00 00 01 7A 3F 52 C9\"");
  std::copy(id.begin(), id.end(), device.id.begin());
  device.memory = ReadBytes(part, Required(part, table, "memory"), 0, kMaximumMemory,
                            "at most 65536 bytes as hexadecimal digits: memory = \"01 38 37\"");
  return device;
}

std::uint32_t ReadNumber(const Part& part, const toml::table& table, std::string_view key,
                         std::uint32_t least) {
  const toml::node* node = table.get(key);
  if (node == nullptr) return 0;
  const std::string expected =
      fmt::format("a number from {} to 0xFFFFFFFF: {} = {}", least, key, least);
  const std::int64_t number = part.As<toml::value<std::int64_t>>(*node, expected).get();
  if (number < least || number > 0xFFFFFFFF) {
    part.Fail(node->source(), fmt::format("expected {}", expected));
  }
  return static_cast<std::uint32_t>(number);
}

OneWireFailure ReadFailure(const Part& part, const toml::node& node) {
  const auto& table = part.As<toml::table>(node, "a table: { call = \"search\", status = 1 }");
  part.Allow(table, {"call", "nth", "error", "status"});
  const toml::node& call = Required(part, table, "call");
  const std::string& name = part.As<toml::value<std::string>>(call, "the name of a call").get();
  const auto* const known = std::ranges::find(kCalls, name, &CallName::key);
  if (known == kCalls.end()) {
    std::array<std::string_view, kCalls.size()> names;
    std::ranges::transform(kCalls, names.begin(), &CallName::key);
    part.Fail(call.source(),
              fmt::format("no call '{}'; allowed: {}", name, fmt::join(names, ", ")));
  }
  if (table.contains("error") == table.contains("status")) {
    part.Fail(table.source(), "expected one of the keys 'error' and 'status'");
  }
  return {known->code, ReadNumber(part, table, "nth", 1), ReadNumber(part, table, "error", 1),
          ReadNumber(part, table, "status", 1)};
}

}  // namespace

void ReadOneWire(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table: [one_wire]");
  part.Allow(table, {"devices", "failures"});
  std::vector<OneWireDevice> devices;
  if (const toml::node* list = table.get("devices")) {
    for (const toml::node& item : part.As<toml::array>(*list, "a list: devices = [{ ... }]")) {
      devices.push_back(ReadOneWireDevice(part, item));
    }
  }
  const auto bus = std::make_shared<OneWireBus>(std::move(devices));
  if (const toml::node* list = table.get("failures")) {
    for (const toml::node& item : part.As<toml::array>(*list, "a list: failures = [{ ... }]")) {
      bus->Plan(ReadFailure(part, item));
    }
  }
  device.hardware().drivers.push_back(bus);
}

}  // namespace sim

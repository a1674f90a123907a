// What device.toml says of the device's identity: [parameters], [system] and [[adapters]].
#include <charconv>
#include <initializer_list>
#include <optional>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/text.h"

namespace sim {
namespace {

constexpr std::string_view kHexadecimal = "bytes as hexadecimal digits: \"01 0A FF\"";
constexpr std::string_view kAnswer =
    "a text, or a table with hex or error: { hex = \"01 0A\", returned = 2 }, { error = 31 }";

// The value of a key that may be missing.
void ReadOptional(const Part& part, const toml::table& table, std::string_view key,
                  std::uint32_t& number) {
  if (const toml::node* node = table.get(key)) number = part.Number(*node);
}

template <class Number>
bool ParseHexadecimal(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return error == std::errc() && end == text.data() + text.size();
}

std::vector<std::uint8_t> ReadBytes(const Part& part, const toml::node& node) {
  std::string digits = part.As<toml::value<std::string>>(node, kHexadecimal).get();
  std::erase(digits, ' ');
  const auto fail = [&] { part.Fail(node.source(), fmt::format("expected {}", kHexadecimal)); };
  if (digits.size() % 2 != 0) fail();
  std::vector<std::uint8_t> bytes(digits.size() / 2);
  for (std::size_t index = 0; index < bytes.size(); ++index) {
    if (!ParseHexadecimal(std::string_view(digits).substr(2 * index, 2), bytes[index])) fail();
  }
  return bytes;
}

// `encode` makes an answer of a text; bytes and errors are the same for every query.
template <class Encode>
QueryAnswer ReadAnswer(const Part& part, const toml::node& node, const Encode& encode) {
  if (const auto* text = node.as_string()) return encode(text->get());
  const auto& table = part.As<toml::table>(node, kAnswer);
  part.Allow(table, {"hex", "returned", "error"});
  const toml::node* hex = table.get("hex");
  const toml::node* error = table.get("error");
  if ((hex == nullptr) == (error == nullptr)) {
    part.Fail(node.source(), fmt::format("expected {}", kAnswer));
  }
  QueryAnswer answer;
  if (hex != nullptr) answer.bytes = ReadBytes(part, *hex);
  if (error != nullptr) answer.error = part.Number(*error);
  if (const toml::node* returned = table.get("returned")) {
    answer.returned = part.Number(*returned);
  }
  return answer;
}

QueryAnswer EncodeText(const std::string& text) {
  return TextAnswer(text);
}

QueryAnswer EncodeWideText(const std::string& text) {
  return WideTextAnswer(ToUtf16(text));
}

OsVersion ReadOsVersion(const Part& part, const toml::node& node) {
  const auto& table =
      part.As<toml::table>(node, "a table: os = { major = 5, minor = 2, build = 19202 }");
  part.Allow(table, {"major", "minor", "build", "platform", "error"});
  OsVersion version;
  ReadOptional(part, table, "major", version.major);
  ReadOptional(part, table, "minor", version.minor);
  ReadOptional(part, table, "build", version.build);
  ReadOptional(part, table, "platform", version.platform);
  ReadOptional(part, table, "error", version.error);
  return version;
}

NetworkAdapter ReadAdapter(const Part& part, const toml::node& node) {
  constexpr std::size_t kMostNameBytes = 259;
  constexpr std::size_t kMostAddressBytes = 8;
  constexpr std::string_view kName = "an adapter's name of at most 259 characters: name = \"...\"";
  const auto& table = part.As<toml::table>(node, "tables: [[adapters]]");
  part.Allow(table, {"name", "address", "type"});
  NetworkAdapter adapter;
  const toml::node* name = table.get("name");
  if (name == nullptr) part.Fail(node.source(), fmt::format("expected {}", kName));
  adapter.name = part.As<toml::value<std::string>>(*name, kName).get();
  if (adapter.name.size() > kMostNameBytes) {
    part.Fail(name->source(), fmt::format("expected {}", kName));
  }
  if (const toml::node* address = table.get("address")) {
    adapter.address = ReadBytes(part, *address);
    if (adapter.address.size() > kMostAddressBytes) {
      part.Fail(address->source(), "an address has at most 8 bytes");
    }
  }
  ReadOptional(part, table, "type", adapter.type);
  return adapter;
}

}  // namespace

void ReadParameters(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table of parameters by their ids");
  for (const auto& [key, value] : table) {
    const std::string_view text = key.str();
    std::uint16_t id = 0;
    if (!text.starts_with("0x") || !ParseHexadecimal(text.substr(2), id)) {
      part.Fail(key.source(), fmt::format("'{}' is no parameter id; write 0x00D5", text));
    }
    if (!device.hardware().parameters.emplace(id, ReadAnswer(part, value, &EncodeText)).second) {
      part.Fail(key.source(), fmt::format("the parameter {:#06x} is there already", id));
    }
  }
}

void ReadSystem(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table: [system]");
  part.Allow(table, {"oem_information", "platform_type", "firmware", "device_id", "os"});
  SystemInformation& system = device.hardware().system;
  const auto read = [&](std::string_view key, QueryAnswer& answer, const auto& encode) {
    if (const toml::node* value = table.get(key)) answer = ReadAnswer(part, *value, encode);
  };
  read("oem_information", system.oem_information, &EncodeWideText);
  read("platform_type", system.platform_type, &EncodeWideText);
  read("firmware", system.firmware_information, &FirmwareInformation);
  read("device_id", system.device_id, &DeviceIdRecord);
  if (const toml::node* os = table.get("os")) system.os_version = ReadOsVersion(part, *os);
}

void ReadAdapters(const Part& part, const toml::node& node, Device& device) {
  for (const toml::node& item : part.As<toml::array>(node, "tables: [[adapters]]")) {
    device.hardware().adapters.push_back(ReadAdapter(part, item));
  }
}

}  // namespace sim

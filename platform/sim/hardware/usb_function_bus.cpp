#include "platform/sim/hardware/usb_function_bus.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/sim/text.h"

namespace sim {
namespace {

constexpr std::size_t kNameUnits = 128;
constexpr std::size_t kRecordUnits = kNameUnits + 250;

struct UsbCode {
  std::uint32_t code;
  std::string_view name;
};

constexpr std::array kUsbCodes{
    UsbCode{UsbFunctionBus::kGetCurrentClient, "get current client"},
    UsbCode{UsbFunctionBus::kSetDefaultClient, "set default client"},
    UsbCode{UsbFunctionBus::kSetCurrentClient, "set current client"},
};

// The name in a request; nothing where the request is not 256 bytes with a terminator.
std::optional<std::string> NameOf(const DriverRequest& request) {
  std::array<char16_t, kNameUnits> units{};
  if (request.in.size() != sizeof(units)) return std::nullopt;
  std::memcpy(units.data(), request.in.data(), sizeof(units));
  const auto* const end = std::ranges::find(units, u'\0');
  if (end == units.end()) return std::nullopt;
  return ToUtf8(std::u16string_view(units.data(), static_cast<std::size_t>(end - units.begin())));
}

}  // namespace

UsbFunctionBus::UsbFunctionBus(std::vector<UsbFunctionClient> clients, std::string default_client)
    : Driver("$bus\\OTG_0_2_0"),
      clients_(std::move(clients)),
      described_(std::move(default_client)),
      default_(described_),
      current_(described_) {}

bool UsbFunctionBus::HasChanged() const {
  return default_ != described_ || current_ != described_;
}

const UsbFunctionClient* UsbFunctionBus::Find(std::string_view client) const {
  const auto found = std::ranges::find_if(
      clients_, [&](const UsbFunctionClient& known) { return EqualNoCase(known.name, client); });
  return found == clients_.end() ? nullptr : &*found;
}

std::string_view UsbFunctionBus::CodeName(std::uint32_t code) const {
  const auto* const row = std::ranges::find(kUsbCodes, code, &UsbCode::code);
  return row == kUsbCodes.end() ? std::string_view() : row->name;
}

std::string UsbFunctionBus::Describe(const DriverRequest& request) const {
  const std::string code(CodeName(request.code));
  const std::optional<std::string> name = NameOf(request);
  return name && !name->empty() ? code + ": " + *name : code;
}

std::uint32_t UsbFunctionBus::Control(DriverRequest& request) {
  if (request.code == kGetCurrentClient) return TellCurrentClient(request);
  const std::optional<std::string> name = NameOf(request);
  if (!name) return kDriverInvalidParameter;
  const UsbFunctionClient* client = Find(*name);
  if (client == nullptr) return kNoSuchClient;
  if (request.code == kSetCurrentClient && client->error != 0) return client->error;
  (request.code == kSetDefaultClient ? default_ : current_) = client->name;
  return 0;
}

std::uint32_t UsbFunctionBus::TellCurrentClient(DriverRequest& request) const {
  std::array<char16_t, kRecordUnits> record{};
  static_assert(sizeof(record) == 756);
  if (request.out.size() != sizeof(record)) return kDriverInvalidParameter;
  const std::u16string name = told_name_ ? *told_name_ : ToUtf16(current_);
  std::ranges::copy(name.substr(0, record.size()), record.begin());
  std::memcpy(request.out.data(), record.data(), sizeof(record));
  request.returned = sizeof(record);
  return 0;
}

}  // namespace sim

// The [usb_function] of device.toml: the function bus and its clients.
#include <memory>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/usb_function_bus.h"

namespace sim {
namespace {

constexpr std::size_t kMaximumName = 127;

// Letters, digits and underscores, so that a name needs no quoting anywhere.
std::string ReadName(const Part& part, const toml::node& node) {
  constexpr std::string_view kExpected =
      "a name of 1 to 127 letters, digits and underscores: \"RNDIS\"";
  constexpr std::string_view kAllowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
  const std::string& name = part.As<toml::value<std::string>>(node, kExpected).get();
  const bool usable = !name.empty() && name.size() <= kMaximumName &&
                      name.find_first_not_of(kAllowed) == std::string::npos;
  if (!usable) part.Fail(node.source(), fmt::format("expected {}", kExpected));
  return name;
}

UsbFunctionClient ReadClient(const Part& part, const toml::node& node) {
  if (node.is_string()) return {ReadName(part, node), 0};
  const auto& table = part.As<toml::table>(node, "a name, or { name = \"RNDIS\", error = 31 }");
  part.Allow(table, {"name", "error"});
  const toml::node* name = table.get("name");
  if (name == nullptr) part.Fail(table.source(), "the key 'name' is missing");
  UsbFunctionClient client{ReadName(part, *name), 0};
  if (const toml::node* error = table.get("error")) {
    constexpr std::string_view kExpected = "a number from 1 to 65535: error = 31";
    const std::int64_t number = part.As<toml::value<std::int64_t>>(*error, kExpected).get();
    if (number < 1 || number > 0xFFFF)
      part.Fail(error->source(), fmt::format("expected {}", kExpected));
    client.error = static_cast<std::uint32_t>(number);
  }
  return client;
}

const std::string& ReadChoice(const Part& part, const toml::node& node) {
  return part.As<toml::value<std::string>>(node, "the name of a client: \"RNDIS\"").get();
}

std::shared_ptr<UsbFunctionBus> FindBus(Device& device) {
  for (const auto& driver : device.hardware().drivers) {
    if (auto bus = std::dynamic_pointer_cast<UsbFunctionBus>(driver)) return bus;
  }
  return nullptr;
}

}  // namespace

void ReadUsbFunction(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table: [usb_function]");
  part.Allow(table, {"clients", "default"});
  std::vector<UsbFunctionClient> clients;
  if (const toml::node* list = table.get("clients")) {
    for (const toml::node& item : part.As<toml::array>(*list, "a list: clients = [\"RNDIS\"]")) {
      clients.push_back(ReadClient(part, item));
    }
  }
  std::string chosen;
  if (const toml::node* node_of_default = table.get("default")) {
    chosen = ReadChoice(part, *node_of_default);
    if (!UsbFunctionBus(clients).Has(chosen)) {
      part.Fail(node_of_default->source(), fmt::format("the bus has no client '{}'", chosen));
    }
  }
  device.hardware().drivers.push_back(
      std::make_shared<UsbFunctionBus>(std::move(clients), std::move(chosen)));
}

// The kept state of a bus or client that the author has removed since is ignored.
void ReadUsbFunctionState(const Part& part, const toml::node& node, Device& device) {
  const auto& table =
      part.As<toml::table>(node, "a table: { default = \"...\", current = \"...\" }");
  part.Allow(table, {"default", "current"});
  const auto bus = FindBus(device);
  for (const auto& [key, choice] : table) {
    const std::string& client = ReadChoice(part, choice);
    if (bus == nullptr || !bus->Has(client)) continue;
    if (key.str() == "default") bus->set_default_client(client);
    if (key.str() == "current") bus->set_current_client(client);
  }
}

std::string UsbFunctionStateText(Device& device) {
  const auto bus = FindBus(device);
  if (bus == nullptr || !bus->HasChanged()) return {};
  return fmt::format("{{ default = \"{}\", current = \"{}\" }}", bus->default_client(),
                     bus->current_client());
}

}  // namespace sim

// The [configuration_driver] of device.toml, and the boot option that programs have set.
#include <algorithm>
#include <memory>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/configuration_driver.h"
#include "platform/sim/hardware/hardware.h"

namespace sim {
namespace {

constexpr std::int64_t kMostOption = 0xFF;

ConfigurationDriver* FindConfigurationDriver(Device& device) {
  for (const auto& driver : device.hardware().drivers) {
    if (auto* found = dynamic_cast<ConfigurationDriver*>(driver.get())) return found;
  }
  return nullptr;
}

}  // namespace

void ReadConfigurationDriver(const Part& part, const toml::node& node, Device& device) {
  constexpr std::string_view kExpected = "a number from 0 to 255: boot_option = 0";
  const auto& table = part.As<toml::table>(node, "a table: [configuration_driver]");
  part.Allow(table, {"boot_option"});
  std::int64_t option = 0;
  if (const toml::node* value = table.get("boot_option")) {
    option = part.As<toml::value<std::int64_t>>(*value, kExpected).get();
    if (option < 0 || option > kMostOption) {
      part.Fail(value->source(), fmt::format("expected {}", kExpected));
    }
  }
  device.hardware().drivers.push_back(
      std::make_shared<ConfigurationDriver>(static_cast<std::uint8_t>(option)));
}

// The kept option is ignored where the author has removed the driver since.
void ReadBootOptionState(const Part& part, const toml::node& node, Device& device) {
  constexpr std::string_view kExpected = "a number from 0 to 255: boot_option = 0";
  const std::int64_t option = part.As<toml::value<std::int64_t>>(node, kExpected).get();
  if (option < 0 || option > kMostOption) {
    part.Fail(node.source(), fmt::format("expected {}", kExpected));
  }
  ConfigurationDriver* driver = FindConfigurationDriver(device);
  if (driver != nullptr) driver->set_boot_option(static_cast<std::uint8_t>(option));
}

std::string BootOptionStateText(Device& device) {
  const ConfigurationDriver* driver = FindConfigurationDriver(device);
  if (driver == nullptr || !driver->set_option()) return {};
  return fmt::format("{}", *driver->set_option());
}

}  // namespace sim

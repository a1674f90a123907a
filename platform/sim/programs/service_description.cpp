// [services] of device.toml.
#include <array>

#include "platform/sim/description_part.h"
#include "platform/sim/programs/flush_service.h"
#include "platform/sim/programs/keypad_driver.h"

namespace sim {
namespace {

struct Service {
  std::string_view key;
  Program (*program)();
};

constexpr std::array kServices{
    Service{"flush", &FlushService},
    Service{"keypad", &KeypadDriver},
};

}  // namespace

void ReadServices(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table: [services]");
  std::vector<std::string_view> keys;
  keys.reserve(kServices.size());
  for (const Service& service : kServices) keys.push_back(service.key);
  part.Allow(table, keys);
  for (const Service& service : kServices) {
    const toml::node* runs = table.get(service.key);
    if (runs == nullptr) continue;
    const std::string expected = fmt::format("{} = true or false", service.key);
    if (part.As<toml::value<bool>>(*runs, expected).get()) device.StartProgram(service.program());
  }
}

}  // namespace sim

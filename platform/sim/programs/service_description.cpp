// [services] of device.toml.
#include "platform/sim/description_part.h"
#include "platform/sim/programs/flush_service.h"

namespace sim {

void ReadServices(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table: [services]");
  part.Allow(table, {"flush"});
  const toml::node* flush = table.get("flush");
  if (flush != nullptr && part.As<toml::value<bool>>(*flush, "flush = true or false").get()) {
    device.StartProgram(FlushService());
  }
}

}  // namespace sim

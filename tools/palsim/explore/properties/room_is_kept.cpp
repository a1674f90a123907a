#include <fmt/format.h>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

class Kept : public Property {
  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    if (!call.returned() || call.arguments->empty()) return;
    Met();
    if (!call.outcome->within_room) Violated(fmt::format("{} writes behind it", call.name));
  }
};

}  // namespace

std::unique_ptr<Property> RoomIsKept() {
  return std::make_unique<Kept>();
}

}  // namespace palsim

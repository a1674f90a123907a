#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/stored_changes.h"

namespace palsim {
namespace {

class NothingElse : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    const bool is_compared = ForEachStoredChange(scene, call, [&](const StoredChange& change) {
      if (!change.is_written_untouched) {
        Violated(std::string(call.name) + " changes " + change.where);
      }
    });
    if (is_compared) Met();
  }
};

}  // namespace

std::unique_ptr<Property> NothingElseIsStored() {
  return std::make_unique<NothingElse>();
}

}  // namespace palsim

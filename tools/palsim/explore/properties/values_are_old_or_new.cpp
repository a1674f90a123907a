#include <algorithm>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/stored_changes.h"

namespace palsim {
namespace {

// Whether a call writes this on the way where nothing fails: one that writes a value twice. A new
// file is empty, then it has zeros, and then it is written.
bool IsOnTheWay(Scene& scene, const StoredChange& change) {
  const auto is_zero = [](char byte) { return byte == 0; };
  if (!change.before && change.now && std::ranges::all_of(*change.now, is_zero)) return true;
  const auto& writes = scene.untouched().outcome().writes;
  const std::string line = change.where + (change.now ? "=" + *change.now : " deleted");
  return std::ranges::count(writes, line) != 0;
}

class OldOrNew : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    ForEachStoredChange(scene, call, [&](const StoredChange& change) {
      if (!change.is_written_untouched) return;
      Met();
      if (change.now == change.untouched || IsOnTheWay(scene, change)) return;
      Violated(std::string(call.name) + " leaves " + change.where + " between the old and the new");
    });
  }
};

}  // namespace

std::unique_ptr<Property> ValuesAreOldOrNew() {
  return std::make_unique<OldOrNew>();
}

}  // namespace palsim

// What a call has changed in what the device stores, beside what it changes where nothing fails.
#ifndef TOOLS_PALSIM_EXPLORE_STORED_CHANGES_H_
#define TOOLS_PALSIM_EXPLORE_STORED_CHANGES_H_

#include <functional>
#include <optional>
#include <string>

#include "tools/palsim/explore/property.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {

struct StoredChange {
  std::string where;
  std::optional<std::string> before;     // nothing: it was not there
  std::optional<std::string> now;        // nothing: it is not there
  std::optional<std::string> untouched;  // where nothing fails
  bool is_written_untouched = false;     // then it is written, in the end or meanwhile
};

// Tells `on_change` of each, but for what the call may store otherwise where a platform call fails.
// False, and nothing is told, for a call in which nothing failed or that did not run alone.
bool ForEachStoredChange(Scene& scene, const WatchedCall& call,
                         const std::function<void(const StoredChange& change)>& on_change);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_STORED_CHANGES_H_

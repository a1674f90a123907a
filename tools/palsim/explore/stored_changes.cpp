#include "tools/palsim/explore/stored_changes.h"

#include <algorithm>
#include <array>

namespace palsim {
namespace {

// What a call may store otherwise where something fails, as its header says: a plane that seems to
// be missing is made anew, a file that cannot be read has the checksum 0, a level whose word cannot
// be read has the word that the process knows, and a new file may stay shorter.
struct StoredOtherwise {
  std::string_view call;   // how the names of the calls begin
  std::string_view where;  // a part of the place; empty: all places
};
constexpr std::array<StoredOtherwise, 6> kStoredOtherwise{{
    {"PALKEYInit", ""},
    {"PALKEYSetButtonAction", ""},
    {"PALREG_LoadRegistry", ""},
    {"PALBEEPSetVolume", ""},
    {"PALBEEP", "CurrentVol"},
    {"PALMFGOpt_SetDPMStatus", "DCEDPM"},
}};

bool MayBeOtherwise(std::string_view call, std::string_view where) {
  return std::ranges::any_of(kStoredOtherwise, [&](const StoredOtherwise& row) {
    return call.starts_with(row.call) && where.find(row.where) != std::string_view::npos;
  });
}

std::optional<std::string> At(const Stored& stored, const std::string& where) {
  const auto found = stored.find(where);
  return found == stored.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

bool ForEachStoredChange(Scene& scene, const WatchedCall& call,
                         const std::function<void(const StoredChange&)>& on_change) {
  if (call.faults == 0 || !call.alone || !scene.untouched().Has(call)) return false;
  // A read that gives fewer bytes than there are is, for the caller, that of a shorter file.
  const std::vector<std::string> faulted = scene.device().faulted_calls();
  if (std::ranges::count(faulted, "ReadFile") != 0) return false;
  const Stored& before = scene.untouched().before();
  const Stored now = StoredOn(scene.device());
  const UntouchedOutcome& untouched = scene.untouched().outcome();
  const auto tell = [&](const std::string& where) {
    if (MayBeOtherwise(call.name, where)) return;
    StoredChange change{.where = where,
                        .before = At(before, where),
                        .now = At(now, where),
                        .untouched = At(untouched.stored, where)};
    if (change.now == change.before) return;
    change.is_written_untouched =
        change.untouched != change.before ||
        std::ranges::any_of(untouched.writes,
                            [&](const std::string& line) { return line.starts_with(where); });
    on_change(change);
  };
  for (const auto& [where, what] : now) tell(where);
  for (const auto& [where, what] : before) {
    if (!now.contains(where)) tell(where);
  }
  return true;
}

}  // namespace palsim

// What a call leaves in the registry and in files, also where platform calls fail, where its
// process is killed, and where the device restarts.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/names.h"

namespace palsim {
namespace {

// What a call opens and reads, and the memory for it.
constexpr auto kReads = std::to_array<sim::CallId>(
    {sim::CallId::RegOpenKeyExW, sim::CallId::RegCreateKeyExW, sim::CallId::RegQueryValueExW,
     sim::CallId::CreateFileW, sim::CallId::GetFileSize, sim::CallId::ReadFile,
     sim::CallId::malloc});

bool HasFailedRead(const Scene& scene, const WatchedCall& call) {
  return std::ranges::any_of(scene.FailedIn(call), [](sim::CallId failed) {
    return std::ranges::count(kReads, failed) != 0;
  });
}

// Calls that may store something else if a read fails, as their headers say. A plane that seems to
// be missing is created again. A file that cannot be read has the checksum 0. A file whose checksum
// cannot be read is imported. A level that cannot be read has the word that the process knows.
struct StoredOtherwise {
  std::string_view call;   // how the names of the calls begin
  std::string_view where;  // a part of the place; empty: all places
};
constexpr auto kStoredOtherwise = std::to_array<StoredOtherwise>({
    {"PALKEYInit", ""},
    {"PALKEYSetButtonAction", ""},
    {"PALREG_LoadRegistry", ""},
    {"PALBEEPSetVolume", ""},
    {"PALBEEP", "CurrentVol"},
});

bool MayBeOtherwise(std::string_view call, std::string_view where) {
  return std::ranges::any_of(kStoredOtherwise, [&](const StoredOtherwise& row) {
    return call.starts_with(row.call) && where.find(row.where) != std::string_view::npos;
  });
}

// Whether what a call stores is compared: something failed in it, and it ran alone.
bool IsCompared(Scene& scene, const WatchedCall& call) {
  // A read that gives fewer bytes than there are is, for the caller, that of a shorter file.
  return call.faults > 0 && call.alone && scene.untouched.Has(call) &&
         std::ranges::count(scene.FailedIn(call), sim::CallId::ReadFile) == 0;
}

using Content = std::optional<std::string>;  // nothing: it is not there

struct StoredChange {
  std::string where;
  Content before;
  Content now;
  Content untouched;  // where nothing fails
  bool is_written_untouched = false;
};

Content ContentAt(const Stored& stored, const std::string& where) {
  const auto found = stored.find(where);
  return found == stored.end() ? Content() : Content(found->second);
}

StoredChange ChangeAt(const std::string& where, const Stored& before, const Stored& now,
                      const UntouchedOutcome& untouched) {
  StoredChange change{.where = where,
                      .before = ContentAt(before, where),
                      .now = ContentAt(now, where),
                      .untouched = ContentAt(untouched.stored, where)};
  // In the end, or meanwhile.
  change.is_written_untouched = change.untouched != change.before ||
                                std::ranges::any_of(untouched.writes, [&](const std::string& line) {
                                  return line.starts_with(where);
                                });
  return change;
}

// What a call has changed, but for what it may store otherwise.
std::vector<StoredChange> ChangesOf(Scene& scene, const WatchedCall& call) {
  const Stored& before = scene.untouched.before();
  const Stored now = StoredOn(scene.device);
  std::set<std::string> places;
  for (const auto* const stored : {&before, &now}) {
    for (const auto& [where, what] : *stored) {
      if (ContentAt(before, where) != ContentAt(now, where)) places.insert(where);
    }
  }
  const bool has_failed_read = HasFailedRead(scene, call);
  std::vector<StoredChange> changes;
  for (const std::string& where : places) {
    if (has_failed_read && MayBeOtherwise(call.name, where)) continue;
    changes.push_back(ChangeAt(where, before, now, scene.untouched.outcome()));
  }
  return changes;
}

class NothingElseIsStored : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (!IsCompared(scene, call)) return;
    Met();
    for (const StoredChange& change : ChangesOf(scene, call)) {
      if (change.is_written_untouched) continue;
      Violated(fmt::format("{} changes {}", call.name, change.where));
    }
  }
};

// A call that fails or is killed may leave these intermediate states, as its header says. A new
// file is empty, then full of zeros, then written, and its end may be missing. A full import
// deletes trees first. A button that gets the default of Windows again has its records rewritten,
// and then written back.
bool IsOnTheWay(const UntouchedOutcome& untouched, const WatchedCall& call,
                const StoredChange& change) {
  const auto is_zero = [](char byte) { return byte == 0; };
  const bool is_new_file = !change.before && change.where.starts_with('\\');
  if (!change.now) return call.name == "PALREG_LoadRegistry";
  if (is_new_file && std::ranges::all_of(*change.now, is_zero)) return true;
  if (is_new_file && change.untouched.value_or("").starts_with(*change.now)) return true;
  return call.name == "PALKEYSetButtonAction" &&
         change.where.find("ShiftPlane") != std::string::npos &&
         std::ranges::count(untouched.writes, change.where + '=' + *change.now) != 0;
}

class ValuesAreOldOrNew : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (!IsCompared(scene, call)) return;
    for (const StoredChange& change : ChangesOf(scene, call)) {
      if (!change.is_written_untouched) continue;
      Met();
      if (change.now == change.untouched) continue;
      if (IsOnTheWay(scene.untouched.outcome(), call, change)) continue;
      Violated(fmt::format("{} leaves {} between the old and the new", call.name, change.where));
    }
  }
};

// Another living process may hold what these need: the scan driver, an event that is set, or the
// level of a sound.
constexpr auto kShareWithOthers = std::to_array<std::string_view>(
    {"PALSysio_", "PALLEDGrLedToggle", "PALBEEPStopTagSearch", "PALBOOT_BootTerminal"});

class NextProcessWorks : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (!call.returned() && call.process != nullptr && !call.process->alive()) {
      next_id_ = scene.device.kernel().next_process_id;
      due_ = scene.faults().due();
      scene.untouched.set_wants_every_call(true);
      return;
    }
    if (next_id_ == 0 || call.process->id() < next_id_) return;
    // The first call of the next process, where nothing has failed since.
    next_id_ = 0;
    scene.untouched.set_wants_every_call(false);
    const auto begins = [&](std::string_view name) { return call.name.starts_with(name); };
    const bool is_compared = call.undisturbed() && call.returned() &&
                             scene.faults().due() == due_ && scene.untouched.Has(call) &&
                             std::ranges::none_of(kShareWithOthers, begins);
    if (is_compared) Compare(scene, call);
  }

  void Compare(Scene& scene, const WatchedCall& call) {
    Met();
    const UntouchedOutcome& untouched = scene.untouched.outcome();
    if (untouched.code != call.outcome->code) {
      Violated(fmt::format("{} answers {}, and {} where none was killed", call.name,
                           ResultText(static_cast<HRESULT>(call.outcome->code)),
                           ResultText(static_cast<HRESULT>(untouched.code.value_or(0)))));
    }
    if (untouched.numbers != call.outcome->numbers) {
      Violated(fmt::format("{} gives the numbers {}, and {} where none was killed", call.name,
                           fmt::join(call.outcome->numbers, " "),
                           fmt::join(untouched.numbers, " ")));
    }
    const std::uint64_t took_ms = call.end_ms - call.begin_ms;
    if (took_ms > untouched.took_ms) {
      Violated(fmt::format("{} takes {} ms, and {} ms where none was killed", call.name, took_ms,
                           untouched.took_ms));
    }
    if (untouched.stored != StoredOn(scene.device)) {
      Violated(fmt::format("{} stores something else than where none was killed", call.name));
    }
  }

  std::uint32_t next_id_ = 0;  // the first one that a later process can have; 0: none was killed
  std::size_t due_ = 0;        // the faults until then
};

// A restart of the simulated device keeps everything, and that of a handheld what was flushed.
class RestartsLoseNothing : public Property {
  static constexpr std::string_view kRestart = "PALBOOT_BootTerminal";
  static constexpr std::string_view kPersist = "PALMFGOpt_PersistRegistry";

  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (call.name == kPersist) flushes_ = Flushes(scene);
    if (call.name != kRestart) return;
    RestartBegins(scene);
    is_kept_ = call.alone;
  }

  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (call.name == kRestart && !call.alone) is_kept_ = false;
    const bool is_persisted =
        call.name == kPersist && call.alone && call.returned() && call.outcome->code == 0;
    if (is_persisted) CheckFlushes(scene, call);
  }

  void RestartBegins(Scene& scene) override {
    before_ = StoredOn(scene.device);
    restarts_ = scene.device.restarts().size();
    is_kept_ = scene.running == 0;
  }

  void StatementEnds(Scene& scene) override {
    if (!is_kept_) return;
    is_kept_ = false;
    if (scene.device.restarts().size() == restarts_) return;
    Met();
    const Stored after = StoredOn(scene.device);
    for (const auto& [where, what] : before_) {
      if (ContentAt(after, where) != what) Violated(where + " is lost");
    }
  }

  // The roots that were flushed, and how often a flush service was told.
  struct FlushCounts {
    unsigned roots = 0;
    unsigned told = 0;
  };
  static FlushCounts Flushes(const Scene& scene) {
    return {scene.faults().calls(sim::CallId::RegFlushKey),
            scene.faults().calls(sim::CallId::EventModify)};
  }
  void CheckFlushes(const Scene& scene, const WatchedCall& call) {
    constexpr unsigned kRoots = 4;
    Met();
    const auto failed = [&](sim::CallId id) {
      return static_cast<unsigned>(std::ranges::count(scene.FailedIn(call), id));
    };
    const FlushCounts now = Flushes(scene);
    const unsigned roots = now.roots - flushes_.roots - failed(sim::CallId::RegFlushKey);
    const unsigned told = now.told - flushes_.told - failed(sim::CallId::EventModify);
    if (roots >= kRoots || told != 0) return;
    Violated(
        fmt::format("{} has flushed {} of {} roots, and told no service", kPersist, roots, kRoots));
  }

  Stored before_;
  std::size_t restarts_ = 0;
  bool is_kept_ = false;
  FlushCounts flushes_;
};

constexpr std::array kStorageRows{
    PropertyRow{"nothing-else-is-stored",
                "Nothing is stored that a call would not store where nothing fails.",
                &Make<NothingElseIsStored>},
    PropertyRow{"values-are-old-or-new",
                "Whatever fails, a value is the old one or the new one and none between.",
                &Make<ValuesAreOldOrNew>},
    PropertyRow{"next-process-works",
                "After a process was killed the next one does the same as if there had been none.",
                &Make<NextProcessWorks>},
    PropertyRow{"restarts-lose-nothing",
                "What was persisted is flushed, and a restart loses nothing that is stored.",
                &Make<RestartsLoseNothing>},
};

}  // namespace

std::span<const PropertyRow> StorageProperties() {
  return kStorageRows;
}

}  // namespace palsim

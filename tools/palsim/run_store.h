// The journal of a device's folder: "runs/000001.log" and so on, a file a run.
#ifndef TOOLS_PALSIM_RUN_STORE_H_
#define TOOLS_PALSIM_RUN_STORE_H_

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/folder_change.h"
#include "tools/palsim/run_record.h"

namespace palsim {

// An older version kept all runs in "journal.log"; they are as one run here.
struct StoredRun {
  std::size_t number = 0;  // from 1 on
  std::filesystem::path file;
};

// In their order.
[[nodiscard]] std::vector<StoredRun> StoredRuns(const std::filesystem::path& folder);
// The run with the number; the last one for 0. Throws UsageError where there is none.
[[nodiscard]] StoredRun FindRun(const std::filesystem::path& folder, std::size_t number);

// These throw sim::DeviceFolderError where the file cannot be read.
[[nodiscard]] RunRecord ReadRun(const StoredRun& run);
[[nodiscard]] std::string ReadTitle(const StoredRun& run);
void ReadEntries(const StoredRun& run, const std::function<void(const sim::JournalEntry&)>& take);
// From the last one on, until `take` says that it has enough. What stands before is not read.
bool ReadEntriesFromEnd(const StoredRun& run, const std::function<bool(sim::JournalEntry&&)>& take);

// Adds a run and keeps so many of the older ones. Without `others_kept` it is the first run of a
// new device.
void PutRun(const RunRecord& run, std::optional<std::size_t> others_kept,
            sim::FolderChange& change);
void RemoveRuns(sim::FolderChange& change);

}  // namespace palsim

#endif  // TOOLS_PALSIM_RUN_STORE_H_

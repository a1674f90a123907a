#include "tools/palsim/run_store.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

#include "platform/sim/device_folder.h"
#include "platform/sim/host_file.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOldJournal = "journal.log";

std::string NameOf(std::size_t number) {
  return fmt::format("runs/{:06}.log", number);
}

// 0 for what is no run's file.
std::size_t NumberOf(const fs::path& file) {
  const std::string name = file.filename().string();
  std::size_t number = 0;
  std::from_chars(name.data(), name.data() + name.size(), number);
  return fs::path(NameOf(number)).filename() == name && sim::IsHostFile(file) ? number : 0;
}

std::ifstream Open(const StoredRun& run) {
  std::ifstream stream(run.file, std::ios::binary);
  if (!stream) throw sim::DeviceFolderError(run.file.string() + " cannot be read");
  return stream;
}

// A file's lines, the last one first.
class LinesFromEnd {
 public:
  explicit LinesFromEnd(const StoredRun& run)
      : file_(Open(run)), left_(file_.seekg(0, std::ios::end).tellg()) {}

  bool Read(std::string& line) {
    std::size_t newline = block_.rfind('\n');
    while (newline == std::string::npos && left_ > 0) {
      block_.insert(0, ReadBlock(std::max(kBlock, block_.size())));
      newline = block_.rfind('\n');
    }
    if (newline == std::string::npos && block_.empty()) return false;
    line = newline == std::string::npos ? block_ : block_.substr(newline + 1);
    block_.resize(newline == std::string::npos ? 0 : newline);
    return true;
  }

 private:
  static constexpr std::size_t kBlock = 65536;

  std::string ReadBlock(std::size_t most) {
    const auto size = std::min(left_, static_cast<std::streamoff>(most));
    left_ -= size;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    file_.seekg(left_).read(bytes.data(), static_cast<std::streamsize>(size));
    return bytes;
  }

  std::ifstream file_;
  std::streamoff left_;  // what stands before this is not read yet
  std::string block_;    // what is read and not handed over
};

}  // namespace

std::vector<StoredRun> StoredRuns(const fs::path& folder) {
  std::vector<StoredRun> runs;
  for (const fs::path& entry : sim::HostEntries(folder / "runs")) {
    if (const std::size_t number = NumberOf(entry)) runs.push_back({number, entry});
  }
  std::ranges::sort(runs, {}, &StoredRun::number);
  if (sim::IsHostFile(folder / kOldJournal)) {
    runs.push_back({runs.empty() ? 1 : runs.back().number + 1, folder / kOldJournal});
  }
  return runs;
}

StoredRun FindRun(const fs::path& folder, std::size_t number) {
  const std::vector<StoredRun> runs = StoredRuns(folder);
  if (runs.empty()) throw UsageError(folder.string() + " has no run to show");
  if (number == 0) return runs.back();
  const auto found = std::ranges::find(runs, number, &StoredRun::number);
  if (found != runs.end()) return *found;
  throw UsageError(fmt::format("{0} has no run {1}; 'palsim {0} journal --runs' lists them",
                               folder.string(), number));
}

RunRecord ReadRun(const StoredRun& run) {
  std::ifstream file = Open(run);
  std::vector<RunRecord> runs = ReadRuns(file);
  return runs.empty() ? RunRecord() : std::move(runs.back());
}

std::string ReadTitle(const StoredRun& run) {
  std::ifstream file = Open(run);
  std::string line;
  std::getline(file, line);
  return line.starts_with(kRunHeading) ? sim::Escape(line.substr(kRunHeading.size())) : "";
}

void ReadEntries(const StoredRun& run, const std::function<void(const sim::JournalEntry&)>& take) {
  std::ifstream file = Open(run);
  for (std::string line; std::getline(file, line);) {
    if (const auto entry = sim::FromLine(sim::Escape(line))) take(*entry);
  }
}

bool ReadEntriesFromEnd(const StoredRun& run,
                        const std::function<bool(sim::JournalEntry&&)>& take) {
  LinesFromEnd lines(run);
  for (std::string line; lines.Read(line);) {
    std::optional<sim::JournalEntry> entry = sim::FromLine(sim::Escape(line));
    if (entry && !take(std::move(*entry))) return false;
  }
  return true;
}

void PutRun(const RunRecord& run, std::optional<std::size_t> others_kept,
            sim::FolderChange& change) {
  const std::vector<StoredRun> runs = StoredRuns(change.folder());
  const std::size_t number = !others_kept || runs.empty() ? 1 : runs.back().number + 1;
  const std::size_t first_kept = runs.size() - std::min(runs.size(), others_kept.value_or(0));
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const bool is_old_journal = NumberOf(runs[i].file) == 0;
    if (i >= first_kept && is_old_journal) {
      std::ifstream file = Open(runs[i]);
      change.Put(NameOf(runs[i].number), std::string(std::istreambuf_iterator<char>(file), {}));
    }
    // What gets a new file in its place is not removed.
    if (is_old_journal) {
      change.Remove(kOldJournal);
    } else if (i < first_kept && runs[i].number != number) {
      change.Remove(NameOf(runs[i].number));
    }
  }
  std::ostringstream text;
  WriteRun(text, run);
  change.Put(NameOf(number), text.str());
}

void RemoveRuns(sim::FolderChange& change) {
  for (const StoredRun& run : StoredRuns(change.folder())) {
    change.Remove(fs::relative(run.file, change.folder()));
  }
}

}  // namespace palsim

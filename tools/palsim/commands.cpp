#include "tools/palsim/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <functional>
#include <system_error>
#include <thread>

#include "platform/sim/kernel/registry_text.h"
#include "tools/palsim/device_lock.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/names.h"
#include "tools/palsim/nearest.h"
#include "tools/palsim/run_store.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/session.h"
#include "tools/streams.h"

namespace palsim {
namespace {

unsigned ParseFaultNumber(std::string_view text, const std::string& whole) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw UsageError("'" + whole + "' is no fault; write CALL, CALL:NTH or CALL:NTH:ERROR");
  }
  return number;
}

sim::Fault ParseFault(const std::string& text) {
  sim::Fault fault;
  const std::size_t first = text.find(':');
  fault.call = text.substr(0, first);
  if (first == std::string::npos) return fault;
  const std::size_t second = text.find(':', first + 1);
  const std::string_view view = text;
  fault.nth = ParseFaultNumber(view.substr(first + 1, second - first - 1), text);
  if (second != std::string::npos) fault.error = ParseFaultNumber(view.substr(second + 1), text);
  return fault;
}

std::optional<sim::Effect> ParseEffect(const std::string& name) {
  if (name.empty()) return std::nullopt;
  const std::optional<sim::Effect> effect = sim::EffectFromName(name);
  if (!effect) {
    throw UsageError(
        fmt::format("there is no effect '{}'{}", name, DidYouMean(name, EffectNames())));
  }
  return effect;
}

using IsWanted = std::function<bool(const sim::JournalEntry& entry)>;
using EntryText = std::function<std::string(const sim::JournalEntry& entry)>;

// The last of the wanted entries, the last one first. What stands before them is not read.
std::vector<sim::JournalEntry> LastEntries(const std::vector<StoredRun>& runs, std::size_t count,
                                           const IsWanted& is_wanted) {
  std::vector<sim::JournalEntry> entries;
  const auto take = [&](sim::JournalEntry&& entry) {
    if (is_wanted(entry)) entries.push_back(std::move(entry));
    return entries.size() < count;
  };
  static_cast<void>(std::find_if_not(runs.rbegin(), runs.rend(), [&](const StoredRun& run) {
    return ReadEntriesFromEnd(run, take);
  }));
  return entries;
}

// Of all runs, or the last ones where a number is given.
void PrintEntries(const std::vector<StoredRun>& runs, std::size_t last, const IsWanted& is_wanted,
                  const EntryText& text) {
  const auto print = [&](const sim::JournalEntry& entry) {
    if (is_wanted(entry)) fmt::print("{}\n", text(entry));
  };
  if (last == 0) {
    for (const StoredRun& run : runs) ReadEntries(run, print);
    return;
  }
  const std::vector<sim::JournalEntry> entries = LastEntries(runs, last, is_wanted);
  std::for_each(entries.rbegin(), entries.rend(), print);
}

// Without what an interrupted command can leave.
bool IsEmpty(const std::filesystem::path& folder) {
  return std::ranges::all_of(std::filesystem::directory_iterator(folder), [](const auto& entry) {
    return entry.path().filename() == sim::kSaving;
  });
}

// All of them, or none.
void PlanFaults(sim::Device& device, const std::vector<std::string>& faults) try {
  for (const std::string& fault : faults) device.PlanFault(ParseFault(fault));
} catch (const std::exception& error) {
  device.ClearFaults();
  throw UsageError(error.what());
}

CallOutcome CallWithFaults(Session& session, const CallOptions& options) {
  CheckCall(options.name, options.arguments);
  sim::Process& process = session.process();
  PlanFaults(session.device(), options.faults);
  CallOutcome outcome = CallExport(process, options.name, options.arguments);
  for (const std::string& fault : session.device().faults_not_reached()) {
    tools::PrintError("palsim: not reached: {}\n", fault);
  }
  session.device().ClearFaults();
  return outcome;
}

IsWanted IsInTrace(const TraceOptions& options) {
  constexpr std::uint32_t kWarning = 0x80000000;
  return [lowest = options.errors ? kWarning : 0](const sim::JournalEntry& entry) {
    return entry.effect == sim::Effect::kTrace && entry.category >= lowest;
  };
}

std::string TraceLine(const sim::JournalEntry& entry) {
  return fmt::format("{:6}.{:03} p{} t{} {:<22} {}", entry.time_ms / 1000, entry.time_ms % 1000,
                     entry.process_id, entry.thread_id, CategoryText(entry.category), entry.text);
}

// Of a session that goes on.
void PrintEntries(Session& session, std::size_t last, const IsWanted& is_wanted,
                  const EntryText& text) {
  std::vector<sim::JournalEntry> entries = session.device().journal().entries();
  std::erase_if(entries, [&](const sim::JournalEntry& entry) { return !is_wanted(entry); });
  const std::size_t left_out = last == 0 ? 0 : entries.size() - std::min(last, entries.size());
  for (std::size_t at = left_out; at < entries.size(); ++at) fmt::print("{}\n", text(entries[at]));
}

IsWanted IsOfEffect(const std::string& name) {
  const std::optional<sim::Effect> effect = ParseEffect(name);
  return [effect](const sim::JournalEntry& entry) { return !effect || entry.effect == *effect; };
}

}  // namespace

int ListSamples() {
  for (const std::string& name : SampleNames()) {
    sim::Device device;
    fmt::print("{:<8} {}\n", name, sim::LoadDevice(device, SampleFolder(name)).description);
  }
  return kSuccess;
}

sim::FolderLock LockForNewDevice(const std::filesystem::path& folder,
                                 const std::filesystem::path& sample, Replace replace) {
  const auto require = [&](bool holds, const char* otherwise) {
    if (!holds) throw UsageError(folder.string() + otherwise);
  };
  constexpr const char* kOther = " exists and is no device; choose another folder";
  require(!std::filesystem::exists(folder) || std::filesystem::is_directory(folder), kOther);
  std::filesystem::create_directories(folder);
  require(!std::filesystem::equivalent(folder, sample), " cannot be made from itself");
  sim::FolderLock lock = LockFolder(folder, Use::kChange);
  if (IsEmpty(folder)) return lock;
  require(WasDevice(folder), kOther);
  if (replace == Replace::kAny) return lock;
  require(replace == Replace::kUnedited, " is a device already; --force makes it anew");
  require(!sim::IsDescriptionEdited(folder),
          "/device.toml may have been edited; --force makes the device anew all the same");
  return lock;
}

int NewDevice(const std::filesystem::path& folder, const NewOptions& options) {
  const std::filesystem::path sample = FolderOf(options.sample);
  const sim::FolderLock sample_lock = LockDevice(sample, Use::kRead);
  sim::Device device;
  const sim::DeviceIdentity identity = sim::LoadDevice(device, sample);
  const sim::FolderLock lock =
      LockForNewDevice(folder, sample, options.force ? Replace::kAny : Replace::kNone);
  sim::FolderChange change(folder);
  sim::PutDevice(device, sample, change);
  RemoveRuns(change);
  change.Commit();
  fmt::print("{}: a new device of model {}\n", tools::Printable(folder.string()),
             tools::Printable(identity.name));
  return kSuccess;
}

int Call(const std::filesystem::path& folder, const CallOptions& options) {
  if (!sim::FileSystem::IsPathAllowed(options.process_name)) {
    throw UsageError("'" + options.process_name + "' is no name of a process");
  }
  Session session(folder);
  session.set_process_name(options.process_name);
  session.set_title(fmt::format("{} {}", options.name,
                                fmt::join(ShownArguments(options.name, options.arguments), " ")));
  const std::optional<sim::Effect> only = ParseEffect(options.only);
  if (options.journal || only) session.PrintJournal(only);
  if (options.real_time) {
    session.device().set_on_clock(
        [](std::uint64_t ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); });
  }
  const CallOutcome outcome = CallWithFaults(session, options);
  try {
    session.Save();
  } catch (const sim::DeviceFolderError&) {
    PrintOutcome(options.name, outcome);
    throw;
  }
  PrintOutcome(options.name, outcome);
  return outcome.failed ? kFailure : kSuccess;
}

int Call(Session& session, const CallOptions& options) {
  const CallOutcome outcome = CallWithFaults(session, options);
  PrintOutcome(options.name, outcome);
  return outcome.failed ? kFailure : kSuccess;
}

int Advance(Session& session, std::uint32_t ms) {
  session.device().Advance(ms);
  return kSuccess;
}

int ShowJournal(const std::filesystem::path& folder, const JournalOptions& options) {
  const IsWanted is_wanted = IsOfEffect(options.effect);
  const sim::FolderLock lock = LockDevice(folder, options.clear ? Use::kChange : Use::kRead);
  std::vector<StoredRun> runs = StoredRuns(folder);
  if (options.run != 0) runs = {FindRun(folder, options.run)};
  if (options.runs) {
    for (const StoredRun& run : runs) fmt::print("{:6}  {}\n", run.number, ReadTitle(run));
  } else {
    PrintEntries(runs, options.last, is_wanted, &sim::ToLine);
  }
  if (!options.clear) return kSuccess;
  if (std::fflush(stdout) != 0) throw std::system_error(errno, std::generic_category());
  sim::FolderChange change(folder);
  RemoveRuns(change);
  change.Commit();
  return kSuccess;
}

int ShowJournal(Session& session, const JournalOptions& options) {
  if (options.print == "on") {
    session.PrintJournal();
  } else if (options.print == "off") {
    session.device().journal().set_listener(nullptr);
  } else {
    PrintEntries(session, options.last, IsOfEffect(options.effect), &sim::ToLine);
  }
  return kSuccess;
}

int ShowTrace(const std::filesystem::path& folder, const TraceOptions& options) {
  const sim::FolderLock lock = LockDevice(folder, Use::kRead);
  PrintEntries(StoredRuns(folder), options.last, IsInTrace(options), &TraceLine);
  return kSuccess;
}

int ShowTrace(Session& session, const TraceOptions& options) {
  PrintEntries(session, options.last, IsInTrace(options), &TraceLine);
  return kSuccess;
}

int ShowRegistry(Session& session, const std::string& path) {
  if (path.empty()) {
    fmt::print("{}", sim::ExportRegistryText(session.device().registry()));
    return kSuccess;
  }
  const auto key = session.device().registry().Find(std::string_view(path));
  if (key == nullptr) {
    tools::PrintError("palsim: the registry has no key {}\n", path);
    return kFailure;
  }
  fmt::print("{}", sim::ExportRegistryText(*key));
  return kSuccess;
}

}  // namespace palsim

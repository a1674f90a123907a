#include "tools/palsim/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <thread>

#include "platform/sim/kernel/registry_text.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/names.h"
#include "tools/palsim/nearest.h"
#include "tools/palsim/session.h"

namespace palsim {
namespace {

const std::filesystem::path kSamples = PAL_DEVICES_DIR;

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

template <class Entry>
void KeepLast(std::vector<Entry>& entries, std::size_t count) {
  if (count == 0 || count >= entries.size()) return;
  entries.erase(entries.begin(), entries.end() - static_cast<std::ptrdiff_t>(count));
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
    fmt::print(stderr, "palsim: not reached: {}\n", fault);
  }
  session.device().ClearFaults();
  return outcome;
}

bool IsInTrace(const sim::JournalEntry& entry, const TraceOptions& options) {
  constexpr std::uint32_t kWarning = 0x80000000;
  return entry.effect == sim::Effect::kTrace && (!options.errors || entry.category >= kWarning);
}

std::string TraceLine(const sim::JournalEntry& entry) {
  return fmt::format("{:6}.{:03} p{} t{} {:<22} {}", entry.time_ms / 1000, entry.time_ms % 1000,
                     entry.process_id, entry.thread_id, CategoryText(entry.category), entry.text);
}

void PrintJournalLines(std::vector<sim::JournalEntry> entries, const JournalOptions& options) {
  const std::optional<sim::Effect> effect = ParseEffect(options.effect);
  std::erase_if(entries,
                [&](const sim::JournalEntry& entry) { return effect && entry.effect != *effect; });
  KeepLast(entries, options.last);
  for (const sim::JournalEntry& entry : entries) fmt::print("{}\n", sim::ToLine(entry));
}

void PrintTraceLines(std::vector<sim::JournalEntry> entries, const TraceOptions& options) {
  std::erase_if(entries,
                [&](const sim::JournalEntry& entry) { return !IsInTrace(entry, options); });
  KeepLast(entries, options.last);
  for (const sim::JournalEntry& entry : entries) fmt::print("{}\n", TraceLine(entry));
}

}  // namespace

std::vector<std::string> SampleNames() {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(kSamples, ignored)) {
    if (std::filesystem::exists(entry.path() / "device.toml")) {
      names.push_back(entry.path().filename().string());
    }
  }
  std::ranges::sort(names);
  return names;
}

std::filesystem::path SampleFolder(const std::string& name) {
  if (!std::filesystem::exists(kSamples / name / "device.toml")) {
    throw UsageError("there is no sample device '" + name + "'; 'palsim samples' lists them");
  }
  return kSamples / name;
}

std::filesystem::path FolderOf(const std::string& device) {
  const bool is_folder = std::filesystem::exists(std::filesystem::path(device) / "device.toml");
  return is_folder ? std::filesystem::path(device) : SampleFolder(device);
}

int ListSamples() {
  for (const std::string& name : SampleNames()) {
    sim::Device device;
    fmt::print("{:<8} {}\n", name, sim::LoadDevice(device, SampleFolder(name)).description);
  }
  return kSuccess;
}

int NewDevice(const std::filesystem::path& folder, const NewOptions& options) {
  const std::filesystem::path sample = FolderOf(options.sample);
  const bool exists = std::filesystem::exists(folder);
  if (exists && std::filesystem::equivalent(folder, sample)) {
    throw UsageError(folder.string() + " cannot be made from itself");
  }
  const bool is_device = std::filesystem::exists(folder / "device.toml");
  if (exists && !is_device && !std::filesystem::is_empty(folder)) {
    throw UsageError(folder.string() + " exists and is no device; choose another folder");
  }
  if (is_device && !options.force) {
    throw UsageError(folder.string() + " is a device already; --force makes it anew");
  }
  if (is_device) std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  for (const char* part : {"device.toml", "registry.reg", "files"}) {
    if (!std::filesystem::exists(sample / part)) continue;
    std::filesystem::copy(sample / part, folder / part, std::filesystem::copy_options::recursive);
  }
  Session session(folder);  // what is not sound is said now and not at the first call
  if (options.quiet) return kSuccess;
  fmt::print("{}: a new device of model {}\n", folder.string(), session.identity().name);
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
  session.Save();
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
  PrintJournalLines(ReadJournal(folder), options);
  if (options.clear) std::filesystem::remove(JournalFile(folder));
  return kSuccess;
}

int ShowJournal(Session& session, const JournalOptions& options) {
  if (options.print == "on") {
    session.PrintJournal();
  } else if (options.print == "off") {
    session.device().journal().set_listener(nullptr);
  } else {
    PrintJournalLines(session.device().journal().entries(), options);
  }
  return kSuccess;
}

int ShowTrace(const std::filesystem::path& folder, const TraceOptions& options) {
  PrintTraceLines(ReadJournal(folder), options);
  return kSuccess;
}

int ShowTrace(Session& session, const TraceOptions& options) {
  PrintTraceLines(session.device().journal().entries(), options);
  return kSuccess;
}

int ShowRegistry(const std::filesystem::path& folder, const std::string& path) {
  Session session(folder);
  return ShowRegistry(session, path);
}

int ShowRegistry(Session& session, const std::string& path) {
  if (path.empty()) {
    fmt::print("{}", sim::ExportRegistryText(session.device().registry()));
    return kSuccess;
  }
  const auto key = session.device().registry().Find(std::string_view(path));
  if (key == nullptr) {
    fmt::print(stderr, "palsim: the registry has no key {}\n", path);
    return kFailure;
  }
  fmt::print("{}", sim::ExportRegistryText(*key));
  return kSuccess;
}

}  // namespace palsim

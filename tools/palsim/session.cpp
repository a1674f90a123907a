#include "tools/palsim/session.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/sim/hardware/hardware.h"
#include "tools/palsim/run_store.h"
#include "tools/streams.h"

namespace palsim {
namespace {

constexpr std::uint32_t kWarning = 0x80000000;  // the lowest category of a warning or an error

// Effects of every call, even of one that changes nothing.
bool IsOfAnyCall(const sim::JournalEntry& entry) {
  constexpr std::array kOfAnyCall{sim::Effect::kProcess, sim::Effect::kCall,  sim::Effect::kModule,
                                  sim::Effect::kMutex,   sim::Effect::kDebug, sim::Effect::kDriver};
  if (entry.effect == sim::Effect::kTrace) return entry.category < kWarning;
  return std::ranges::find(kOfAnyCall, entry.effect) != kOfAnyCall.end();
}

}  // namespace

Session::Session(const std::filesystem::path& folder, Use use)
    : Session(LockDevice(folder, use), folder) {}

Session::Session(sim::FolderLock folder, std::filesystem::path sample)
    : lock_(std::move(folder)), origin_(std::move(sample)) {
  if (origin_ != this->folder()) origin_lock_.emplace(LockDevice(origin_, Use::kRead));
  identity_ = sim::LoadDevice(device_, origin_);
  record_.device = fmt::format("{}: {}", identity_.name, identity_.description);
  record_.start_ms = device_.now_ms();
  record_.volume = device_.hardware().audio.levels.volume;
  record_.gain = device_.hardware().audio.levels.gain;
}

void Session::set_title(std::string_view title, const std::vector<std::string>& about) {
  record_.title = sim::Escape(title);
  for (const std::string& paragraph : about) record_.about.push_back(sim::Escape(paragraph));
}

sim::Process& Session::process() {
  if (process_ != nullptr && !process_->alive()) process_.reset();  // the device has restarted
  if (process_ == nullptr) process_ = std::make_unique<sim::Process>(device_, process_name_);
  return *process_;
}

void Session::PrintJournal(std::optional<sim::Effect> only) {
  device_.journal().set_listener([only](const sim::JournalEntry& entry) {
    if (only && entry.effect != *only) return;
    tools::PrintAtOnce(fmt::format("  {}\n", sim::ToLine(entry)));
  });
}

void Session::End() {
  process_.reset();
  device_.Advance(0);  // services of the device go on with what they were asked for
  for (const std::string& misuse : device_.TakeMisuse()) {
    tools::PrintError("palsim: misuse of the platform: {}\n", misuse);
  }
}

void Session::Save(bool keeps_every_run) {
  End();
  record_.entries = device_.journal().entries();
  record_.end_ms = device_.now_ms();
  sim::FolderChange change(folder());
  sim::PutDevice(device_, origin_, change);
  const bool has_effects = !std::ranges::all_of(record_.entries, &IsOfAnyCall);
  if (keeps_every_run || has_effects || !change.empty()) {
    std::optional<std::size_t> others_kept;
    if (origin_ == folder()) others_kept = identity_.runs_kept - 1;
    PutRun(record_, others_kept, change);
  }
  change.Commit();
  origin_ = folder();
  origin_lock_.reset();
  device_.journal().Clear();
}

}  // namespace palsim

#include "tools/palsim/explore/untouched_run.h"

#include <fmt/format.h>

#include "platform/sim/kernel/process_state.h"
#include "platform/sim/kernel/registry_text.h"
#include "platform/sim/text.h"
#include "tools/palsim/explore/property.h"

namespace palsim {
namespace {

constexpr unsigned kRoots = 4;

void Collect(Stored& stored, const std::string& path, const sim::RegistryKey& key) {
  stored.emplace(path, "");
  for (const sim::RegistryValue& value : key.values()) {
    const std::string name = value.name.empty() ? "@" : '"' + sim::ToUtf8(value.name) + '"';
    stored.emplace(fmt::format("{} {}", path, name), sim::ValueText(value));
  }
  for (const auto& below : key.keys()) {
    Collect(stored, path + '\\' + sim::ToUtf8(below->name()), *below);
  }
}

void Collect(Stored& stored, const std::string& path, const sim::FileNode& folder) {
  for (const auto& node : folder.children.items()) {
    const std::string below = path + '\\' + node->name;
    stored.emplace(below, std::string(node->data.begin(), node->data.end()));
    if (node->is_folder) Collect(stored, below, *node);
  }
}

}  // namespace

Stored StoredOn(sim::Device& device) {
  Stored stored;
  for (unsigned root = 0; root < kRoots; ++root) {
    const sim::RegistryKey& key = *device.registry().root(root);
    Collect(stored, sim::ToUtf8(key.name()), key);
  }
  Collect(stored, "", *device.files().root());
  return stored;
}

void UntouchedRun::CallBegins(const WatchedCall& call, bool may_fail) {
  // A call in a thread of its own is left out: only the driver can make processes.
  const bool is_of_driver = sim::CurrentThread() == nullptr;
  if (!is_of_driver || !call.alone || !(may_fail || wants_every_call_)) return;
  if (copy_ == nullptr) copy_ = std::make_unique<sim::Device>();
  copy_->CopyFrom(device_);
  call_ = &call;
  outcome_.reset();
  before_ = StoredOn(device_);
}

void UntouchedRun::CallEnds(const WatchedCall& call) {
  if (call_ == &call) call_ = nullptr;
}

const UntouchedOutcome& UntouchedRun::outcome() {
  if (outcome_) return *outcome_;
  outcome_.emplace();
  copy_->journal().Clear();
  {
    sim::Process process(*copy_, "untouched.exe");
    const std::uint64_t begin_ms = copy_->now_ms();
    try {
      const CallOutcome outcome = CallPlainly(process, call_->export_index, *call_->arguments);
      outcome_->code = outcome.code;
      outcome_->numbers = outcome.numbers;
    } catch (const sim::ProcessKilled&) {  // it has no result
    }
    outcome_->took_ms = copy_->now_ms() - begin_ms;
    for (const sim::JournalEntry& entry : copy_->journal().entries()) {
      const bool is_write =
          entry.effect == sim::Effect::kRegistry || entry.effect == sim::Effect::kFile;
      if (is_write) outcome_->writes.push_back(entry.text);
    }
  }
  static_cast<void>(copy_->TakeMisuse());
  outcome_->stored = StoredOn(*copy_);
  return *outcome_;
}

}  // namespace palsim

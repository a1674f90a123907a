#include "tools/palsim/explore/watch.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tools/palsim/argument.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

constexpr std::array kRegistryWrites{sim::CallId::RegSetValueExW, sim::CallId::RegCreateKeyExW,
                                     sim::CallId::RegDeleteValueW, sim::CallId::RegDeleteKeyW,
                                     sim::CallId::CreateProcessW};

// These write what a file asks them to.
constexpr std::array<std::string_view, 2> kWriteAnything{"PALMFGOpt_ConfigStoreRegUpdate",
                                                         "PALREG_LoadRegistry"};

bool WritesAnything(std::string_view name) {
  return std::ranges::find(kWriteAnything, name) != kWriteAnything.end();
}

}  // namespace

std::uint32_t WatchedCall::Number(std::size_t argument) const {
  try {
    return static_cast<std::uint32_t>(ParseNumber(arguments->at(argument)));
  } catch (const UsageError&) {
    return 0;
  }
}

std::uint64_t Scene::Writes() const {
  std::uint64_t count = 0;
  for (const sim::CallId id : kRegistryWrites) count += faults().calls(id);
  return count;
}

std::span<const sim::CallId> Scene::FailedIn(const WatchedCall& call) const {
  const std::span<const sim::CallId> failed = std::span(faults().faulted()).last(call.faults);
  const bool was_killed = !call.returned() && !failed.empty();
  return was_killed ? failed.first(failed.size() - 1) : failed;
}

std::optional<std::uint32_t> Scene::Dword(std::string_view key, std::string_view name) const {
  const sim::RegistryValue* value = registry().FindValue(key, name);
  if (value == nullptr || value->data.size() > sizeof(std::uint32_t)) return std::nullopt;
  std::uint32_t number = 0;
  for (std::size_t at = value->data.size(); at-- > 0;) number = number << 8 | value->data[at];
  return number;
}

Watch::Watch(sim::Device& device, std::span<const PropertyRow> rows) : scene_(device), rows_(rows) {
  for (const PropertyRow& row : rows) properties_.push_back(row.make());
  DeviceChanged();
}

template <class Ask>
void Watch::AskAll(const Ask& ask) {
  for (std::size_t at = 0; at < properties_.size(); ++at) {
    Property& property = *properties_[at];
    ask(property);
    if (property.violation() && !violation_) {
      violation_ = Violation{rows_[at].name, rows_[at].sentence, *property.violation()};
    }
  }
}

Watch::Place Watch::CallBegins(const sim::Process& process, std::size_t export_index,
                               const std::vector<std::string>& arguments) {
  static const std::vector<std::string_view> names = ExportNames();
  ++calls_;
  WatchedCall call{.export_index = export_index,
                   .name = names[export_index],
                   .process = &process,
                   .arguments = &arguments,
                   .begin_ms = scene_.device.now_ms(),
                   .writes_at_begin = scene_.Writes(),
                   .due_at_begin = scene_.faults().due(),
                   .alone = calls_under_way_.empty() && scene_.programs == 0};
  for (WatchedCall& other : calls_under_way_) {
    other.alone = false;
    if (other.process != &process) continue;
    other.alone_in_process = call.alone_in_process = false;
  }
  calls_under_way_.push_back(call);
  scene_.running = static_cast<unsigned>(calls_under_way_.size());
  const auto place = std::prev(calls_under_way_.end());
  scene_.untouched.CallBegins(*place, scene_.faults().are_planned());
  AskAll([&](Property& property) { property.CallBegins(scene_, *place); });
  return place;
}

void Watch::CallEnds(Place place, const CallOutcome* outcome) {
  place->outcome = outcome;
  place->end_ms = scene_.device.now_ms();
  place->faults = scene_.faults().due() - place->due_at_begin;
  AskAll([&](Property& property) { property.CallEnds(scene_, *place); });
  scene_.untouched.CallEnds(*place);
  const bool changes = WritesAnything(place->name);
  calls_under_way_.erase(place);
  scene_.running = static_cast<unsigned>(calls_under_way_.size());
  if (changes) DeviceChanged();
}

void Watch::ProgramBegins() {
  ++scene_.programs;
  DeviceChanged();
}

void Watch::ProgramEnds() {
  --scene_.programs;
  DeviceChanged();
}

void Watch::Disturb() {
  for (WatchedCall& call : calls_under_way_) call.alone = call.alone_in_process = false;
}

void Watch::DeviceChanged() {
  Disturb();
  AskAll([&](Property& property) { property.DeviceChanged(scene_); });
  seen_writes_ = scene_.Writes();
}

void Watch::ProcessEnds() {
  AskAll([&](Property& property) { property.ProcessEnds(scene_); });
}

void Watch::RestartBegins() {
  AskAll([&](Property& property) { property.RestartBegins(scene_); });
}

void Watch::StatementEnds() {
  const std::uint64_t writes = scene_.Writes();
  // What a program of one's own writes is known at its end.
  if (std::exchange(seen_writes_, writes) != writes && scene_.programs == 0) {
    AskAll([&](Property& property) { property.RegistryChanged(scene_); });
  }
  AskAll([&](Property& property) { property.StatementEnds(scene_); });
}

std::vector<std::uint64_t> Watch::met() const {
  std::vector<std::uint64_t> counts;
  for (const auto& property : properties_) counts.push_back(property->met());
  return counts;
}

}  // namespace palsim

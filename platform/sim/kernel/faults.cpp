#include "platform/sim/kernel/faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace sim {
namespace {

constexpr std::array kCallNames = {
#define SIM_CALL(name) std::string_view(#name),
#include "calls.inc"
#undef SIM_CALL
};

}  // namespace

std::string_view CallName(CallId id) {
  return kCallNames.at(static_cast<std::size_t>(id));
}

std::optional<CallId> CallFromName(std::string_view name) {
  const auto* const found = std::ranges::find(kCallNames, name);
  if (found == kCallNames.end()) return std::nullopt;
  return static_cast<CallId>(found - kCallNames.begin());
}

void Faults::Plan(Fault fault) {
  Planned planned;
  if (!fault.call.empty()) {
    planned.id = CallFromName(fault.call);
    if (!planned.id) throw std::invalid_argument(fault.call + " is no platform call");
  }
  if (fault.transfers && fault.call != "ReadFile" && fault.call != "WriteFile") {
    throw std::invalid_argument("only ReadFile and WriteFile move bytes");
  }
  planned.fault = std::move(fault);
  plans_.push_back(std::move(planned));
}

const Fault* Faults::Count(CallId id, const std::function<std::string()>& subject) {
  ++counts_[static_cast<std::size_t>(id)];
  ++total_;
  const Fault* due = nullptr;
  for (Planned& planned : plans_) {
    if (planned.id && *planned.id != id) continue;
    if (!planned.fault.on.empty() && !subject().ends_with(planned.fault.on)) continue;
    ++planned.seen;
    const bool now = planned.fault.from_then_on ? planned.seen >= planned.fault.nth
                                                : planned.seen == planned.fault.nth;
    if (now && due == nullptr) due = &planned.fault;
  }
  if (due == nullptr) return nullptr;
  faulted_.push_back(id);
  if (due->kill) ++kills_;
  return due;
}

std::vector<std::string> Faults::NotReached() const {
  std::vector<std::string> texts;
  for (const Planned& planned : plans_) {
    if (planned.seen >= planned.fault.nth) continue;
    texts.push_back(fmt::format("{}:{}, of {} call{}", planned.fault.call, planned.fault.nth,
                                planned.seen, planned.seen == 1 ? "" : "s"));
  }
  return texts;
}

}  // namespace sim

#include "tools/palsim/timeline/timeline.h"

#include <fmt/format.h>

#include <algorithm>

namespace palsim {

std::string Timeline::ProcessName(std::uint32_t id) const {
  const auto found = process_places.find(id);
  return found == process_places.end() ? std::string("the device") : processes[found->second].name;
}

std::string Timeline::Actor(const sim::JournalEntry& entry) const {
  return entry.effect == sim::Effect::kExpect ? std::string("the scenario")
                                              : ProcessName(entry.process_id);
}

bool Timeline::Failed() const {
  return std::ranges::any_of(expectations, [](const Expectation& each) { return !each.held; });
}

std::string Timeline::Verdict() const {
  const auto all = expectations.size();
  const auto held = std::ranges::count(expectations, true, &Expectation::held);
  const auto failures = all - static_cast<std::size_t>(held);
  std::string text;
  if (all > 0) {
    text = failures == 0 ? fmt::format("{} expectation{}", all, all == 1 ? " holds" : "s hold")
                         : fmt::format("{} of {} expectations do not hold", failures, all);
  }
  std::ptrdiff_t calls = 0;
  for (const ProcessLine& line : processes) {
    calls += std::ranges::count(line.calls, true, &CallSpan::failed);
  }
  if (calls == 0) return text;
  return fmt::format("{}{}{} call{} failed", text, text.empty() ? "" : "; ", calls,
                     calls == 1 ? "" : "s");
}

std::string CallSpan::Text() const {
  if (result.empty()) return call + " did not return";
  const std::size_t blank = result.starts_with("0x") ? result.find(' ') : std::string::npos;
  return fmt::format("{}{} = {}", failed ? kFailedMark : "", call,
                     blank == std::string::npos ? result : result.substr(blank + 1));
}

std::string Expectation::MarkId() const {
  return fmt::format("{}{}", held ? "held" : "failed", time);
}

std::vector<std::uint32_t> MutexLine::Users() const {
  std::vector<Span> spans(holds.begin(), holds.end());
  spans.insert(spans.end(), waits.begin(), waits.end());
  std::ranges::stable_sort(spans, {}, &Span::begin);
  std::vector<std::uint32_t> users;
  for (const Span& span : spans) {
    if (std::ranges::find(users, span.process) == users.end()) users.push_back(span.process);
  }
  return users;
}

bool IsFailure(std::string_view result) {
  return result.size() > 2 && result.starts_with("0x") && result[2] >= '8';
}

std::string VolumeText(std::uint32_t word) {
  constexpr std::uint32_t kLoudest = 0xFFFF;
  const auto percent = [](std::uint32_t half) { return (half * 100 + kLoudest / 2) / kLoudest; };
  const std::uint32_t left = percent(word & kLoudest);
  const std::uint32_t right = percent(word >> 16);
  if (left == right) return fmt::format("{} %", left);
  return fmt::format("left {} %, right {} %", left, right);
}

std::string FileName(const std::string& path) {
  return path.substr(path.find_last_of('\\') + 1);
}

}  // namespace palsim

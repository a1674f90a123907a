// Calls every export in every build of the library, first to see that they do the same, then, under
// callgrind, to count the instructions: bench/measure.py starts it so and reads the counts.
#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "bench/export_rows.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_TOGGLE_COLLECT
#define CALLGRIND_DUMP_STATS_AT(name) static_cast<void>(name)
#endif

namespace {

using bench::Answer;
using bench::Build;
using bench::Row;
using bench::Subject;

constexpr int kCalls = 10;

constexpr const char* kPlatformCalls[] = {
#define SIM_CALL(name) #name,
#include "calls.inc"
#undef SIM_CALL
};
constexpr const char* kExports[] = {
#define PAL_EXPORT(name) #name,
#include "exports.inc"
#undef PAL_EXPORT
};

using Calls = std::map<std::string, unsigned>;

Calls CountCalls(const sim::Device& device) {
  Calls calls;
  for (const char* name : kPlatformCalls) {
    if (const unsigned count = device.calls(name)) calls[name] = count;
  }
  return calls;
}

Calls Difference(const Calls& before, Calls after) {
  for (const auto& [name, count] : before) after[name] -= count;
  std::erase_if(after, [](const auto& call) { return call.second == 0; });
  return after;
}

// What one call did. Memory is each build's own affair.
struct Deed {
  Answer answer{};
  Calls calls;
  unsigned allocations = 0;
  std::vector<std::string> effects;  // but for trace lines

  bool operator==(const Deed& other) const {
    return std::memcmp(&answer, &other.answer, sizeof(answer)) == 0 && calls == other.calls &&
           effects == other.effects;
  }
};

std::string Text(const Deed& deed) {
  std::string text =
      fmt::format("  result 0x{:x}, number {}, second {}, degrees {}, text {}", deed.answer.result,
                  deed.answer.number, deed.answer.second, deed.answer.degrees, deed.answer.text);
  for (const auto& [name, count] : deed.calls) text += fmt::format("\n    {} {}", count, name);
  for (const std::string& effect : deed.effects) text += "\n    " + effect;
  return text;
}

Deed Observe(const Row& row, Subject& subject) {
  Deed deed;
  subject.device().journal().Clear();
  subject.device().journal().set_keeps_entries(true);
  const Calls before = CountCalls(subject.device());
  row.call(subject, deed.answer);
  deed.calls = Difference(before, CountCalls(subject.device()));
  deed.allocations = deed.calls["malloc"];
  deed.calls.erase("malloc");
  deed.calls.erase("free");
  subject.device().journal().set_keeps_entries(false);
  for (const sim::JournalEntry& entry : subject.device().journal().entries()) {
    if (entry.effect == sim::Effect::kTrace || entry.effect == sim::Effect::kDebug) continue;
    deed.effects.push_back(entry.text);
  }
  return deed;
}

// Collecting is on for the calls alone.
void Count(const Row& row, Subject& subject, Build build) {
  Answer answer{};
  CALLGRIND_ZERO_STATS;
  for (int call = 0; call < kCalls; ++call) {
    CALLGRIND_TOGGLE_COLLECT;
    row.call(subject, answer);
    CALLGRIND_TOGGLE_COLLECT;
    if (row.undo != nullptr) row.undo(subject);
  }
  const std::string name = fmt::format("{} {}", row.name, bench::NameOf(build));
  CALLGRIND_DUMP_STATS_AT(name.c_str());
}

Deed Measure(const Row& row, Subject& subject, Build build) {
  Deed deed;
  subject.Run([&] {
    if (row.prepare != nullptr) row.prepare(subject);
    // The first call finds nothing in the caches that some sources have.
    Answer answer{};
    row.call(subject, answer);
    if (row.undo != nullptr) row.undo(subject);
    deed = Observe(row, subject);
    if (row.undo != nullptr) row.undo(subject);
    Count(row, subject, build);
    if (row.finish != nullptr) row.finish(subject);
  });
  return deed;
}

void PrintRow(const Row& row, const Deed& traced, const Deed& untraced) {
  unsigned all = 0;
  for (const auto& [name, count] : untraced.calls) all += count;
  fmt::print("{} calls={} malloc={}\n", row.name, all, traced.allocations);
}

bool HasAllExports() {
  std::set<std::string> missing(std::begin(kExports), std::end(kExports));
  for (const Row& row : bench::Rows()) missing.erase(row.name);
  for (const std::string& name : missing) fmt::print(stderr, "{} has no row\n", name);
  return missing.empty();
}

}  // namespace

int main() {
  bool is_good = HasAllExports();
  std::vector<std::unique_ptr<Subject>> subjects;
  subjects.reserve(bench::kBuilds.size());
  for (const Build build : bench::kBuilds) subjects.push_back(std::make_unique<Subject>(build));
  for (const Row& row : bench::Rows()) {
    std::vector<Deed> deeds;
    deeds.reserve(subjects.size());
    for (size_t at = 0; at < subjects.size(); ++at) {
      deeds.push_back(Measure(row, *subjects[at], bench::kBuilds[at]));
    }
    PrintRow(row, deeds[0], deeds[1]);
    if (deeds[1] == deeds[2]) continue;
    is_good = false;
    fmt::print(stderr, "{}: the builds differ\n{}\n{}\n", row.name, Text(deeds[1]), Text(deeds[2]));
  }
  return is_good ? 0 : 1;
}

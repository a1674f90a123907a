// The time of each row's call, in every build of the library.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>

#include "bench/export_rows.h"

namespace {

using bench::Row;
using bench::Subject;

Subject& SubjectOf(bench::Build build) {
  static std::map<bench::Build, std::unique_ptr<Subject>> subjects;
  std::unique_ptr<Subject>& subject = subjects[build];
  if (subject == nullptr) {
    subject = std::make_unique<Subject>(build);
    subject->device().journal().set_keeps_entries(false);
  }
  return *subject;
}

// A row's undoing is part of its time: stopping the clock for it would take longer than it does.
void Measure(benchmark::State& state, const Row& row, bench::Build build) {
  Subject& subject = SubjectOf(build);
  subject.Run([&] {
    if (row.prepare != nullptr) row.prepare(subject);
    bench::Answer answer{};
    for ([[maybe_unused]] auto iteration : state) {
      row.call(subject, answer);
      benchmark::DoNotOptimize(answer);
      if (row.undo != nullptr) row.undo(subject);
    }
    if (row.finish != nullptr) row.finish(subject);
  });
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const Row& row : bench::Rows()) {
    for (const bench::Build build : bench::kBuilds) {
      const std::string name = std::string(row.name) + "/" + bench::NameOf(build);
      benchmark::RegisterBenchmark(
          name.c_str(), [&row, build](benchmark::State& state) { Measure(state, row, build); });
    }
  }
  return true;
}();

}  // namespace

#include "tools/palsim/scenario/stage.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

// The lines of a message, indented as they are, as the parts of one.
std::string InOneLine(const std::string& message) {
  std::string line;
  bool at_start = false;
  for (const char character : message) {
    if (character == '\n') line += " | ";
    if (character == '\n' || (at_start && character == ' ')) {
      at_start = true;
      continue;
    }
    line += character;
    at_start = false;
  }
  return line;
}

}  // namespace

std::string ProcessFileName(const std::string& name) {
  return name.find('.') == std::string::npos ? name + ".exe" : name;
}

Stage::Stage(sim::Device& device, OnFailure on_failure)
    : restarts_seen(device.restarts().size()),
      device_(device),
      on_failure_(std::move(on_failure)),
      start_ms_(device.now_ms()),
      journal_start_(device.journal().entries().size()) {
  look_from = position = wait_from = journal_start_;
}

void Stage::Play(const Scenario& scenario) {
  PlayOn(scenario);
  Finish(scenario.name);
}

void Stage::PlayOn(const Scenario& scenario) {
  for (const Statement& statement : scenario.statements) {
    place_ = fmt::format("{}:{}", scenario.name, statement.line);
    PlayStatement(statement);
  }
}

void Stage::PlayStatement(const Statement& statement) {
  try {
    statement.form->play(*this, statement.filled);
  } catch (const std::invalid_argument& error) {
    throw UsageError(fmt::format("{}: {}", place_, error.what()));
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}: {}", place_, error.what()));
  }
}

void Stage::Finish(const std::string& place) {
  place_ = place;
  while (!running_.empty()) AwaitCall(running_.begin()->first);
  SayWhatWasNotReached();
  for (const auto& process : processes_) process->End();
  for (const std::string& misuse : device_.TakeMisuse()) {
    Expect(false, "no misuse of the platform", misuse);
  }
}

void Stage::SayWhatWasNotReached() const {
  for (const std::string& fault : device_.faults_not_reached()) {
    on_failure_(fmt::format("{}: not reached: {}", place_, fault));
  }
}

void Stage::StartProcess(const std::string& name) {
  const std::string file = ProcessFileName(name);
  const bool lives = std::ranges::any_of(
      processes_, [&](const auto& process) { return process->name() == file && process->alive(); });
  if (lives) throw UsageError(name + " has started already");
  try {
    processes_.push_back(std::make_unique<sim::Process>(device_, file));
  } catch (const std::logic_error& error) {
    throw UsageError(error.what());
  }
}

sim::Process& Stage::process(const std::string& name) {
  const std::string file = ProcessFileName(name);
  for (const auto& process : processes_) {
    if (process->name() == file && process->alive()) return *process;
  }
  throw UsageError(fmt::format("no process {} runs now; write '{} starts' before", name, name));
}

bool Stage::HasProcess() const {
  return std::ranges::any_of(processes_, [](const auto& process) { return process->alive(); });
}

std::uint32_t Stage::ProcessId(const std::string& name) const {
  const std::string file = ProcessFileName(name);
  const auto found = std::find_if(processes_.rbegin(), processes_.rend(),
                                  [&](const auto& process) { return process->name() == file; });
  if (found == processes_.rend()) throw UsageError("no process " + name + " has started");
  return (*found)->id();
}

void Stage::EndProcess(const std::string& name, bool kill) {
  sim::Process& process = this->process(name);
  wait_from = journal().size();
  if (kill) {
    process.Kill();
  } else {
    process.End();
  }
}

void Stage::Call(const std::string& process, const std::string& name,
                 const std::vector<std::string>& arguments) {
  sim::Process& caller = this->process(process);
  if (running_.contains(process)) {
    throw UsageError(process + " has a call that still runs; begin that one 'as' another name");
  }
  wait_from = journal().size();
  std::optional<CallOutcome>& outcome = outcomes_[process];
  outcome.reset();
  try {
    outcome = CallExport(caller, name, arguments);
  } catch (const sim::ProcessKilled&) {
    outcome.reset();
  }
  if (outcome && outcome->restart) device_.Advance(0);  // calls under way end, services start
}

void Stage::Begin(const std::string& process, const std::string& name,
                  const std::vector<std::string>& arguments, const std::string& as) {
  sim::Process& caller = this->process(process);
  if (running_.contains(as)) throw UsageError(as + " still runs; 'wait for' it before");
  wait_from = journal().size();
  outcomes_.erase(as);
  auto outcome = std::make_shared<std::optional<CallOutcome>>();
  sim::Thread thread = caller.Start(
      [&caller, name, arguments, outcome] { *outcome = CallExport(caller, name, arguments); });
  running_.emplace(as, RunningCall{std::move(thread), outcome});
  device_.Advance(0);
}

void Stage::AwaitCall(const std::string& as) {
  const auto found = running_.find(as);
  if (found == running_.end()) {
    if (outcomes_.contains(as)) return;
    throw UsageError("no call " + as + " was begun");
  }
  found->second.thread.Join();
  outcomes_[as] = *found->second.outcome;
  running_.erase(found);
}

const std::optional<CallOutcome>& Stage::outcome(const std::string& of) {
  const auto running = running_.find(of);
  if (running != running_.end()) {
    if (!running->second.thread.ended()) {
      throw UsageError(fmt::format("{} still runs; 'wait for {}' before", of, of));
    }
    AwaitCall(of);
  }
  const auto found = outcomes_.find(of);
  if (found == outcomes_.end()) {
    static_cast<void>(ProcessId(of));  // throws where no process has the name either
    throw UsageError(of + " has made no call");
  }
  return found->second;
}

void Stage::Expect(bool holds, const std::string& expected, const std::string& found,
                   std::optional<std::uint64_t> seen_ms) {
  ++expectations_;
  const std::string seen = seen_ms ? fmt::format(", seen at {} ms", *seen_ms) : "";
  const std::string instead = holds ? "" : "; there was " + found;
  device_.Note(sim::Effect::kExpect,
               InOneLine(fmt::format("{} {}{}: expected {}{}", place_, holds ? "held" : "failed",
                                     seen, expected, instead)));
  if (holds) return;
  ++failures_;
  on_failure_(fmt::format("{}: expected {}{}", place_, expected, instead));
}

const std::vector<sim::JournalEntry>& Stage::journal() const {
  return device_.journal().entries();
}

std::uint64_t Stage::TimeOf(const sim::JournalEntry& entry) const {
  return entry.time_ms - start_ms_;
}

}  // namespace palsim

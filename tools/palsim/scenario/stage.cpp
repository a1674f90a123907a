#include "tools/palsim/scenario/stage.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/palsim/names.h"
#include "tools/palsim/program/program_copy.h"
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

constexpr std::string_view kExtension = ".exe";

// Whether a process has this name in a scenario. It is asked several times for each call.
bool Is(const sim::Process& process, std::string_view name) {
  const std::string_view file = process.name();
  if (name.find('.') != std::string_view::npos) return file == name;
  return file.size() == name.size() + kExtension.size() && file.starts_with(name) &&
         file.ends_with(kExtension);
}

// The end of a program's run, also where its process is killed in it.
class ProgramEnd {
 public:
  explicit ProgramEnd(Watch* watch) : watch_(watch) {}
  ~ProgramEnd() {
    if (watch_ != nullptr) watch_->ProgramEnds();
  }
  ProgramEnd(const ProgramEnd&) = delete;
  ProgramEnd& operator=(const ProgramEnd&) = delete;

 private:
  Watch* watch_;
};

}  // namespace

std::string ProcessFileName(const std::string& name) {
  return name.find('.') == std::string::npos ? name + std::string(kExtension) : name;
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
    if (watch_ == nullptr) return;
    if (statement.form->is_from_outside) watch_->DeviceChanged();
    watch_->StatementEnds();
    SayWhatIsViolated();
  } catch (const std::invalid_argument& error) {
    throw UsageError(fmt::format("{}: {}", place_, error.what()));
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}: {}", place_, error.what()));
  }
}

void Stage::WatchFor(std::span<const PropertyRow> properties) {
  watch_ = std::make_unique<Watch>(device_, properties);
}

void Stage::SayWhatIsViolated() {
  if (said_violation_ || !watch_->violation()) return;
  said_violation_ = true;
  const Violation& violation = *watch_->violation();
  Expect(false, fmt::format("{}: {}", violation.property, violation.sentence), violation.how);
}

bool Stage::Lives(const std::string& process) const {
  return std::ranges::any_of(processes_,
                             [&](const auto& each) { return Is(*each, process) && each->alive(); });
}

bool Stage::RunsCallOf(const std::string& process) const {
  return std::ranges::any_of(running_,
                             [&](const auto& call) { return call.second.process == process; });
}

void Stage::TakeEndedCalls() {
  std::vector<std::string> ended;
  for (const auto& [name, call] : running_) {
    if (call.thread.ended()) ended.push_back(name);
  }
  for (const std::string& name : ended) {
    AwaitCall(name);
    outcomes_.erase(name);
  }
}

void Stage::Finish(const std::string& place) {
  place_ = place;
  while (!running_.empty()) AwaitCall(running_.begin()->first);
  SayWhatWasNotReached();
  for (const auto& process : processes_) End(*process);
  if (watch_ != nullptr) {
    watch_->StatementEnds();
    SayWhatIsViolated();
    if (!watch_->violation()) Expect(true, "what always holds", {});
  }
  for (const std::string& misuse : device_.TakeMisuse()) {
    Expect(false, "no misuse of the platform", misuse);
  }
}

void Stage::SayWhatWasNotReached() const {
  for (const std::string& fault : device_.faults_not_reached()) {
    on_failure_(fmt::format("{}: not reached: {}", place_, fault));
  }
}

void Stage::End(sim::Process& process) {
  if (watch_ != nullptr && process.alive()) watch_->ProcessEnds();
  try {
    process.End();
  } catch (const sim::ProcessKilled&) {  // while the library detached
    process.End();
  }
}

void Stage::StartProcess(const std::string& name) {
  if (Lives(name)) throw UsageError(name + " has started already");
  ForgetDeadProcesses();
  if (watch_ != nullptr) watch_->Disturb();
  const unsigned calls_before = device_.calls("RegSetValueExW");
  try {
    const std::string file = ProcessFileName(name);
    processes_.push_back(std::make_unique<sim::Process>(device_, file));
    last_ids_[file] = processes_.back()->id();
  } catch (const sim::ProcessKilled&) {      // while the library attached
  } catch (const std::logic_error& error) {  // the device has all that it can have
    throw UsageError(error.what());
  }
  if (watch_ != nullptr && device_.calls("RegSetValueExW") != calls_before) watch_->DeviceChanged();
}

// A call of a dead process may still be under way: then the process is kept.
void Stage::ForgetDeadProcesses() {
  std::erase_if(processes_, [&](const auto& process) {
    const bool is_in_use = std::ranges::any_of(
        running_, [&](const auto& call) { return Is(*process, call.second.process); });
    if (process->alive() || is_in_use) return false;
    End(*process);  // lets go of its copy of the library
    programs_.erase(process->id());
    return true;
  });
}

sim::Process& Stage::process(const std::string& name) {
  for (const auto& process : processes_) {
    if (Is(*process, name) && process->alive()) return *process;
  }
  throw UsageError(fmt::format("no process {} runs now; write '{} starts' before", name, name));
}

bool Stage::HasProcess() const {
  return std::ranges::any_of(processes_, [](const auto& process) { return process->alive(); });
}

std::uint32_t Stage::ProcessId(const std::string& name) const {
  const auto found = last_ids_.find(ProcessFileName(name));
  if (found == last_ids_.end()) throw UsageError("no process " + name + " has started");
  return found->second;
}

void Stage::EndProcess(const std::string& name, bool kill) {
  sim::Process& process = this->process(name);
  wait_from = journal().size();
  if (watch_ != nullptr) watch_->Disturb();
  if (kill) {
    process.Kill();
  } else {
    End(process);
  }
}

void Stage::Call(const std::string& process, const std::string& name,
                 const std::vector<std::string>& arguments) {
  sim::Process& caller = this->process(process);
  if (running_.contains(process)) {
    throw UsageError(process + " has a call that still runs; begin that one 'as' another name");
  }
  wait_from = journal().size();
  const std::size_t restarts_before = device_.restarts().size();
  std::optional<CallOutcome>& outcome = outcomes_[process];
  outcome.reset();
  try {
    outcome = MakeCall(caller, name, arguments);
  } catch (const sim::ProcessKilled&) {
    outcome.reset();
  }
  // Calls under way end, services start.
  if (device_.restarts().size() != restarts_before) device_.Advance(0);
}

CallOutcome Stage::MakeCall(sim::Process& caller, const std::string& name,
                            const std::vector<std::string>& arguments) {
  const std::size_t index = ExportIndex(name);
  const auto call = [&] {
    return plain_ ? CallPlainly(caller, index, arguments) : CallExport(caller, name, arguments);
  };
  if (watch_ == nullptr) return call();
  const Watch::Place place = watch_->CallBegins(caller, index, arguments);
  try {
    CallOutcome outcome = call();
    watch_->CallEnds(place, outcome.restart ? nullptr : &outcome);
    return outcome;
  } catch (const sim::ProcessKilled&) {
    watch_->CallEnds(place, nullptr);
    throw;
  }
}

void Stage::Begin(const std::string& process, const std::string& name,
                  const std::vector<std::string>& arguments, const std::string& as) {
  sim::Process& caller = this->process(process);
  BeginThread(caller, process, as,
              [this, &caller, name, arguments] { return MakeCall(caller, name, arguments); });
}

void Stage::RunProgram(const std::string& process, const std::string& file, const std::string& as) {
  sim::Process& caller = this->process(process);
  std::function<int()>& run = programs_[caller.id()];
  if (!run) run = LoadProgram(file);
  RunFunction(process, run, as);
}

void Stage::RunFunction(const std::string& process, std::function<int()> function,
                        const std::string& as) {
  BeginThread(this->process(process), process, as, [this, function = std::move(function)] {
    if (watch_ != nullptr) watch_->ProgramBegins();
    const ProgramEnd end(watch_.get());
    CallOutcome outcome;
    outcome.code = static_cast<std::uint32_t>(function());
    outcome.result = ResultText(static_cast<HRESULT>(outcome.code));
    return outcome;
  });
}

void Stage::BeginThread(sim::Process& process, const std::string& name, const std::string& as,
                        std::function<CallOutcome()> body) {
  if (running_.contains(as)) throw UsageError(as + " still runs; 'wait for' it before");
  wait_from = journal().size();
  outcomes_.erase(as);
  auto outcome = std::make_shared<std::optional<CallOutcome>>();
  sim::Thread thread = process.Start([outcome, body = std::move(body)] { *outcome = body(); });
  running_.emplace(as, RunningCall{std::move(thread), outcome, name});
  if (!turns_change_) device_.Advance(0);
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

void Stage::ChangeTurns(std::uint32_t seed) {
  turns_change_ = true;
  device_.ShuffleTurns(seed);
}

void Stage::Restart(sim::RestartKind kind) {
  wait_from = journal().size();
  if (watch_ != nullptr) {
    watch_->Disturb();
    watch_->RestartBegins();
  }
  device_.Restart(kind);
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

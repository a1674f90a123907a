// Where a scenario is played: the device with the processes that the scenario has started, and how
// far its expectations have read the journal.
#ifndef TOOLS_PALSIM_SCENARIO_STAGE_H_
#define TOOLS_PALSIM_SCENARIO_STAGE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/device.h"
#include "tools/palsim/explore/watch.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/scenario/scenario.h"

namespace palsim {

class Stage {
 public:
  using OnFailure = std::function<void(const std::string& message)>;
  // `on_failure` is told of each expectation that does not hold: "good-read.scenario:7: ...".
  Stage(sim::Device& device, OnFailure on_failure);

  // Plays a scenario to its end and finishes. Throws UsageError, with the line, where a statement
  // cannot be played.
  void Play(const Scenario& scenario);
  // Plays its statements alone.
  void PlayOn(const Scenario& scenario);
  // Waits for what still runs and ends all processes; `place` is for messages.
  void Finish(const std::string& place);
  [[nodiscard]] std::size_t expectations() const { return expectations_; }
  [[nodiscard]] std::size_t failures() const { return failures_; }

  // The same step by step. Calls leave no lines in the journal and no texts where nobody reads
  // them.
  void set_plain(bool plain) { plain_ = plain; }
  void PlayStatement(const Statement& statement);
  [[nodiscard]] bool Lives(const std::string& process) const;
  [[nodiscard]] bool Runs(const std::string& call) const { return running_.contains(call); }
  [[nodiscard]] bool RunsCallOf(const std::string& process) const;
  [[nodiscard]] bool RunsAnyCall() const { return !running_.empty(); }
  // The calls that were begun and have ended are forgotten.
  void TakeEndedCalls();

  // From here on these properties are checked. The first that does not hold is an expectation that
  // does not hold.
  void WatchFor(std::span<const PropertyRow> properties);
  [[nodiscard]] Watch* watch() { return watch_.get(); }

  // For the statements.
  [[nodiscard]] sim::Device& device() { return device_; }
  [[nodiscard]] std::uint64_t run_time_ms() const { return device_.now_ms() - start_ms_; }

  void StartProcess(const std::string& name);
  // Throws UsageError where none of this name lives.
  [[nodiscard]] sim::Process& process(const std::string& name);
  [[nodiscard]] bool HasProcess() const;  // one that lives
  // Of the one that started last under this name, whether it lives or not.
  [[nodiscard]] std::uint32_t ProcessId(const std::string& name) const;
  // Ends it as its owner would, or kills it.
  void EndProcess(const std::string& name, bool kill);

  // Runs a call to its end; its outcome has the process's name.
  void Call(const std::string& process, const std::string& name,
            const std::vector<std::string>& arguments);
  // Starts one in a thread of its own; its outcome has the name `as`. It runs at once until it
  // waits; where turns change, when it gets its turn.
  void Begin(const std::string& process, const std::string& name,
             const std::vector<std::string>& arguments, const std::string& as);
  // Runs a program of one's own (tools/palsim/program/palsim_program.h) as if it were a call.
  void RunProgram(const std::string& process, const std::string& file, const std::string& as);
  void RunFunction(const std::string& process, std::function<int()> function,
                   const std::string& as);
  void AwaitCall(const std::string& as);
  void ChangeTurns(std::uint32_t seed);
  void Restart(sim::RestartKind kind);
  // What a call gave; nothing where it was killed. Throws UsageError where there was none, or where
  // it still runs.
  [[nodiscard]] const std::optional<CallOutcome>& outcome(const std::string& of);

  // Says which of the planned faults have not come due.
  void SayWhatWasNotReached() const;
  // Counts an expectation and notes it in the journal; where it does not hold, says so.
  void Expect(bool holds, const std::string& expected, const std::string& found,
              std::optional<std::uint64_t> seen_ms = std::nullopt);

  // The journal as expectations read it: from where they look, and how far they have come.
  [[nodiscard]] const std::vector<sim::JournalEntry>& journal() const;
  [[nodiscard]] std::size_t journal_start() const { return journal_start_; }
  [[nodiscard]] std::uint64_t TimeOf(const sim::JournalEntry& entry) const;
  std::size_t look_from = 0;
  std::size_t position = 0;
  std::uint64_t matched_ms = 0;  // of the last line that was found
  std::size_t wait_from = 0;     // for waiting until a line is there
  std::size_t restarts_seen;     // that were there at the start, or were expected

 private:
  struct RunningCall {
    sim::Thread thread;
    std::shared_ptr<std::optional<CallOutcome>> outcome;
    std::string process;
  };
  // Throws ProcessKilled where its process ends in it.
  CallOutcome MakeCall(sim::Process& caller, const std::string& name,
                       const std::vector<std::string>& arguments);
  void SayWhatIsViolated();
  void ForgetDeadProcesses();
  void End(sim::Process& process);
  void BeginThread(sim::Process& process, const std::string& name, const std::string& as,
                   std::function<CallOutcome()> body);

  sim::Device& device_;
  OnFailure on_failure_;
  std::uint64_t start_ms_;
  std::size_t journal_start_;
  std::string place_;  // file and line of the statement that is played
  std::size_t expectations_ = 0;
  std::size_t failures_ = 0;
  std::unique_ptr<Watch> watch_;
  bool said_violation_ = false;
  // Those that live, in the order of their start, and some that have died since the last start.
  std::vector<std::unique_ptr<sim::Process>> processes_;
  std::map<std::string, std::uint32_t> last_ids_;           // by file name
  std::map<std::uint32_t, std::function<int()>> programs_;  // by process
  std::map<std::string, RunningCall> running_;
  std::map<std::string, std::optional<CallOutcome>> outcomes_;
  bool plain_ = false;
  bool turns_change_ = false;
};

// A file name for a process of a scenario: "scanner" is scanner.exe.
[[nodiscard]] std::string ProcessFileName(const std::string& name);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SCENARIO_STAGE_H_

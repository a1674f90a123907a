// The commands on a device, and those of its shell.
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "tools/palsim/command_line.h"
#include "tools/palsim/completion.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/samples.h"

namespace palsim {
namespace {

// 0 where standard output is no terminal.
std::size_t TerminalColumns() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace

void CommandLine::AddNew() {
  auto* command = AddOnDevice("new", "Make a device from a sample",
                              [this] { return NewDevice(folder_, new_); });
  command
      ->add_option("--sample", new_.sample,
                   fmt::format("The sample: {}", fmt::join(SampleNames(), ", ")))
      ->capture_default_str();
  command->add_flag("--force", new_.force, "Replace a device that is there");
}

void CommandLine::AddCall() {
  auto* command = AddOnDevice("call", "Call an export of the library", [this] {
    return On([this](auto& device) { return Call(device, call_); });
  });
  command->add_option("EXPORT", call_.name, "Its name")->required();
  command->add_option(
      "ARGUMENTS", call_.arguments,
      "Numbers (5, -1, 0x1F, PAL_USB_RNDIS), texts, out or null, as its usage has them");
  command->add_option("--fail", call_.faults, "Make a platform call fail: CALL[:NTH[:ERROR]]")
      ->expected(1)
      ->take_all();
  if (in_shell_) return;
  command->add_option("--process", call_.process_name, "The calling process's name")
      ->capture_default_str();
  command->add_flag("--journal", call_.journal, "Print every effect as it comes");
  command->add_option("--only", call_.only, "Print only this effect, such as registry or trace");
  command->add_flag("--real-time", call_.real_time, "Run in step with the wall clock");
}

void CommandLine::AddRun() {
  auto* command = AddOnDevice("run", "Play a scenario", [this] {
    return On([this](auto& device) { return palsim::Run(device, run_); });
  });
  command->add_option("FILE", run_.file, "The scenario's text; - is standard input")->required();
  command->add_flag("--timeline", run_.timeline.text, "Print the run's timeline");
  AddFiles(*command, run_.timeline);
  if (in_shell_) return;
  auto* fresh =
      command->add_flag("--new", run_.fresh, "Make the device anew, from the scenario's sample");
  command->add_flag("--force", run_.force, "With --new: also where device.toml was edited")
      ->needs(fresh);
  command->add_option("--sample", run_.sample, "With --new: another sample, or a device's folder")
      ->needs(fresh);
  command->add_option("--seed", run_.seed,
                      "Threads also change turns at platform calls, as SEED has it");
  command->add_flag("--journal", run_.journal, "Print every effect as it comes");
}

void CommandLine::AddTimeline() {
  auto* command = AddOnDevice("timeline", "Show a run on a time axis", [this] {
    timeline_.text = timeline_.html.empty() && timeline_.svg.empty() && timeline_.wav.empty() &&
                     timeline_.trace.empty();
    return On([this](auto& device) { return ShowTimeline(device, timeline_); });
  });
  if (!in_shell_) {
    command->add_option("--run", timeline_.run, "Its number, of journal --runs; else the last run");
  }
  AddFiles(*command, timeline_);
}

void CommandLine::AddFiles(CLI::App& command, TimelineOptions& options) {
  command.add_option("--html", options.html,
                     "Write the timeline as a page for a browser; - is standard output");
  command.add_option("--svg", options.svg,
                     "Write the page's chart as a picture; - is standard output");
  command.add_option("--wav", options.wav, "Write the run's sound; - is standard output");
  command.add_option("--trace", options.trace,
                     "Write the Chrome trace event format, which Perfetto opens; - is standard "
                     "output");
  options.columns = TerminalColumns();
}

void CommandLine::AddJournal() {
  auto* command = AddOnDevice("journal", "Show the effects of all runs", [this] {
    return On([this](auto& device) { return ShowJournal(device, journal_); });
  });
  command->add_option("--effect", journal_.effect, "Only this kind, such as registry or trace");
  command->add_option("--last", journal_.last, "Only the last N");
  if (!in_shell_) {
    command->add_option("--run", journal_.run, "Only the run of this number");
    command->add_flag("--runs", journal_.runs, "List the runs: number, length, title");
    command->add_flag("--clear", journal_.clear, "Show all, then remove all runs")
        ->excludes("--run", "--runs", "--last", "--effect");
    return;
  }
  command->add_option("PRINT", journal_.print, "on: print each as it comes; off: not any more")
      ->check(CLI::IsMember({"on", "off"}));
}

void CommandLine::AddTrace() {
  auto* command = AddOnDevice("trace", "Show the event log with families by name", [this] {
    return On([this](auto& device) { return ShowTrace(device, trace_); });
  });
  command->add_option("--last", trace_.last, "Only the last N");
  command->add_flag("--errors", trace_.errors, "Only warnings and errors");
}

void CommandLine::AddDiff() {
  auto* command = app_.add_subcommand("diff", "Show where two runs part")->group(kCommandsOnDevice);
  command->callback([this] { status_ = Diff(folder_, diff_); });
  command->add_option("RUN", diff_.left, "A run's number, or a journal's file: its last run")
      ->required();
  command->add_option("OTHER", diff_.right, "The other one; files need no DEVICE")->required();
}

void CommandLine::AddRegistry() {
  auto* command = AddOnDevice("registry", "Show the registry as import text", [this] {
    return OnQuery([this](Session& session) { return ShowRegistry(session, registry_path_); });
  });
  command->add_option("KEY", registry_path_, "A key, such as HKLM\\Software\\Dravonel");
}

void CommandLine::AddQueries() {
  AddOnDevice("info", "Show which device this is, as the library tells it",
              [this] { return OnQuery(&ShowInfo); });
  AddOnDevice("keys", "Show the buttons and the shift planes of the keypad",
              [this] { return OnQuery(&ShowKeys); });
  AddOnDevice("scan", "Show the scan engine", [this] { return OnQuery(&ShowScanEngine); });
}

// What only the shell has.
void CommandLine::AddOfShell() {
  AddOnDevice("advance", "Let time pass on the device",
              [this] { return Advance(*session_, milliseconds_); })
      ->add_option("MS", milliseconds_, "Milliseconds")
      ->required();
  AddOnDevice("usage", "Show how an export is called",
              [this] {
                fmt::print("{}", UsageText(word_));
                return kSuccess;
              })
      ->add_option("EXPORT", word_, "Its name")
      ->required();
  AddOnDevice("exports", "List the library's exports", &PrintExports);
  AddOnDevice("help", "Show the commands, or how one is used", [this] {
    PrintHelp(word_);
    return kSuccess;
  })->add_option("COMMAND", word_, "Its name");
  for (const char* name : {"exit", "quit"}) {
    AddOnDevice(name, "Detach, save the device and leave", [] { return kSuccess; });
  }
}

}  // namespace palsim

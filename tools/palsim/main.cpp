// palsim: runs the library on a simulated device that lives in a folder.
#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "platform/sim/device_folder.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/export_call.h"

namespace {

constexpr const char* kExamples = R"(
Examples:
  palsim /tmp/unit new                                     make a device from the sample rm21
  palsim /tmp/unit call PALMFGOpt_ConfigStoreRegUpdate --journal
                                                           call an export and watch its effects
  palsim /tmp/unit call PALMFGOpt_ConfigStoreRegUpdate --fail RegSetValueExW:2:5
                                                           the second write fails with error 5
  palsim /tmp/unit run scenarios/good-read.scenario --new --timeline
                                                           play a text with processes and events
  palsim /tmp/unit timeline --html run.html --wav run.wav  look at it, and listen
  palsim /tmp/unit info                                    which device this is
  palsim /tmp/unit keys                                    what the buttons do, key by key
  palsim /tmp/unit scan                                    how the scan engine stands
  palsim /tmp/unit registry 'HKLM\Software\Dravonel'       what the registry holds now
  palsim /tmp/unit journal --effect registry --last 20     what changed
  palsim /tmp/unit trace --errors                          what went wrong, by the event log
  palsim /tmp/unit shell                                   one process, many calls

Exit status: 0 done, 1 the call failed or the device cannot be used, 2 wrong usage.
)";

class CommandLine {
 public:
  CommandLine() {
    app_.footer(kExamples);
    app_.set_help_all_flag("--help-all", "Show the help of every command");
    app_.add_flag_callback("--exports", &PrintExports, "List the library's exports");
    app_.add_option_function<std::string>("--usage", &PrintUsage, "How to call an export");
    app_.add_flag_callback("--statements", &PrintStatements, "List what a scenario can say");
    app_.add_option("DEVICE", folder_, "The device's folder")->required();
    app_.require_subcommand(1);
    AddNew();
    AddCall();
    AddRun();
    AddTimeline();
    AddJournal();
    AddTrace();
    AddRegistry();
    auto* info = app_.add_subcommand("info", "Show which device this is, as the library tells it");
    info->callback([this] { status_ = palsim::ShowInfo(folder_); });
    auto* keys = app_.add_subcommand("keys", "Show the buttons and the shift planes of the keypad");
    keys->callback([this] { status_ = palsim::ShowKeys(folder_); });
    auto* scan = app_.add_subcommand("scan", "Show the scan engine");
    scan->callback([this] { status_ = palsim::ShowScanEngine(folder_); });
    auto* shell = app_.add_subcommand("shell", "Type calls into one attached process");
    shell->callback([this] { status_ = palsim::Shell(folder_); });
  }

  int Run(int argc, char** argv) {
    try {
      app_.parse(argc, argv);
      return status_;
    } catch (const CLI::ParseError& error) {
      return app_.exit(error) == 0 ? palsim::kSuccess : palsim::kUsage;
    }
  }

 private:
  static void PrintStatements() {
    palsim::PrintStatements();
    throw CLI::Success();
  }

  static void PrintUsage(const std::string& name) {
    fmt::print("{}", palsim::UsageText(name));
    throw CLI::Success();
  }

  static void PrintExports() {
    for (const std::string_view name : palsim::ExportNames()) fmt::print("{}\n", name);
    throw CLI::Success();
  }

  void AddNew() {
    auto* command = app_.add_subcommand("new", "Make a device from a sample");
    command
        ->add_option("--sample", new_.sample,
                     fmt::format("The sample: {}", fmt::join(palsim::SampleNames(), ", ")))
        ->capture_default_str();
    command->add_flag("--force", new_.force, "Replace a device that is there");
    command->callback([this] { status_ = palsim::NewDevice(folder_, new_); });
  }

  void AddCall() {
    auto* command = app_.add_subcommand("call", "Call an export of the library");
    command->add_option("EXPORT", call_.name, "Its name")->required();
    command->add_option(
        "ARGUMENTS", call_.arguments,
        "Numbers (5, -1, 0x1F, PAL_USB_RNDIS), texts, out or null (--usage EXPORT)");
    command->add_option("--process", call_.process_name, "The calling process's name")
        ->capture_default_str();
    command->add_option("--fail", call_.faults, "Make a platform call fail: CALL[:NTH[:ERROR]]")
        ->expected(1)
        ->take_all();
    command->add_flag("--journal", call_.journal, "Print every effect as it comes");
    command->add_option("--only", call_.only, "Print only this effect, such as registry or trace");
    command->add_flag("--real-time", call_.real_time, "Run in step with the wall clock");
    command->callback([this] { status_ = palsim::Call(folder_, call_); });
  }

  void AddRun() {
    auto* command = app_.add_subcommand("run", "Play a scenario");
    command->add_option("FILE", run_.file, "The scenario's text")->required();
    command->add_flag("--new", run_.fresh, "Make the device anew, from the scenario's sample");
    command->add_flag("--journal", run_.journal, "Print every effect as it comes");
    command->add_flag("--timeline", run_.timeline.text, "Print the run's timeline");
    AddFiles(*command, run_.timeline);
    command->callback([this] { status_ = palsim::Run(folder_, run_); });
  }

  void AddTimeline() {
    auto* command = app_.add_subcommand("timeline", "Show the last run on a time axis");
    AddFiles(*command, timeline_);
    command->callback([this] {
      timeline_.text = timeline_.html.empty() && timeline_.wav.empty();
      status_ = palsim::ShowTimeline(folder_, timeline_);
    });
  }

  static void AddFiles(CLI::App& command, palsim::TimelineOptions& options) {
    command.add_option("--html", options.html, "Write the timeline as a page for a browser");
    command.add_option("--wav", options.wav, "Write the run's sound");
  }

  void AddJournal() {
    auto* command = app_.add_subcommand("journal", "Show the effects of all runs");
    command->add_option("--effect", journal_.effect, "Only this kind, such as registry or trace");
    command->add_option("--last", journal_.last, "Only the last N");
    command->add_flag("--clear", journal_.clear, "Forget them afterwards");
    command->callback([this] { status_ = palsim::ShowJournal(folder_, journal_); });
  }

  void AddTrace() {
    auto* command = app_.add_subcommand("trace", "Show the event log with families by name");
    command->add_option("--last", trace_.last, "Only the last N");
    command->add_flag("--errors", trace_.errors, "Only warnings and errors");
    command->callback([this] { status_ = palsim::ShowTrace(folder_, trace_); });
  }

  void AddRegistry() {
    auto* command = app_.add_subcommand("registry", "Show the registry as import text");
    command->add_option("KEY", registry_path_, "A key, such as HKLM\\Software\\Dravonel");
    command->callback([this] { status_ = palsim::ShowRegistry(folder_, registry_path_); });
  }

  CLI::App app_{"Runs DVLORQPAL.dll on a simulated device.", "palsim"};
  std::string folder_;
  palsim::NewOptions new_;
  palsim::CallOptions call_;
  palsim::RunOptions run_;
  palsim::TimelineOptions timeline_;
  palsim::JournalOptions journal_;
  palsim::TraceOptions trace_;
  std::string registry_path_;
  int status_ = palsim::kSuccess;
};

}  // namespace

int main(int argc, char** argv) {
  try {
    return CommandLine().Run(argc, argv);
  } catch (const palsim::UsageError& error) {
    fmt::print(stderr, "palsim: {}\n", error.what());
    return palsim::kUsage;
  } catch (const std::exception& error) {
    fmt::print(stderr, "palsim: {}\n", error.what());
    return palsim::kFailure;
  }
}

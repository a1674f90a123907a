// palsim: runs the library on a simulated device that lives in a folder.
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <functional>

#include "frame/version.h"
#include "platform/sim/device_folder.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/device_lock.h"
#include "tools/palsim/explore/explore_command.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/nearest.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/shell.h"
#include "tools/streams.h"

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
  palsim /tmp/unit diff 1 2                                where two runs part
  palsim /tmp/unit shell                                   one process, many calls
  palsim test scenarios --seeds 1-20 --junit report.xml    play all, on every sample device
  palsim samples                                           the sample devices
  palsim facts palcheck.txt                                where a handheld answers otherwise
  palsim serve --stdio                                     a device for test benches

Exit status: 0 done, 1 the call failed or the device cannot be used, 2 wrong usage.
)";

constexpr const char* kServe = R"(
Each line of standard input is a JSON-RPC 2.0 request, and is answered by a line
of standard output (docs/test-bench.md). The end of the input ends the device,
which lives in memory alone.
)";

constexpr const char* kFacts = R"(
palcheck.exe writes FILE on a handheld. The same questions are put to a new
simulated device. Each fact that the two answer otherwise is listed; a fact
marked [chosen] is one that no document settles. What the exports of the library
answer depends on the model and on its settings, not on the platform: it is
counted apart.

Exit status: 0 every fact is the same, 1 one is not, or is not in FILE, 2 FILE is
not from palcheck.exe or cannot be read.
)";

// 0 where standard output is no terminal.
std::size_t TerminalColumns() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

// What is typed behind palsim, and what is typed in its shell.
class CommandLine {
 public:
  CommandLine() {
    app_.footer(kExamples);
    app_.set_version_flag("--version", std::string("palsim ") + pal::kLibraryVersion);
    app_.set_help_all_flag("--help-all", "Show the help of every command");
    app_.add_flag_callback("--exports", &PrintExports, "List the library's exports");
    app_.add_option_function<std::string>("--usage", &PrintUsage, "How to call an export");
    app_.add_flag_callback("--statements", &PrintStatements, "List what a scenario can say");
    app_.add_flag_callback("--properties", &PrintProperties, "List what explore checks");
    app_.add_flag_callback("--effects", &PrintEffects, "List the journal's effects");
    app_.failure_message([this](const CLI::App* /*app*/, const CLI::Error& error) {
      return fmt::format("{}{}\nRun with --help or --help-all for more information.\n",
                         tools::Printable(error.what()), CommandHint());
    });
    device_ = app_.add_option("DEVICE", folder_, "The device's folder");
    app_.require_subcommand(1);
    AddNew();
    AddCall();
    AddRun();
    AddTimeline();
    AddJournal();
    AddTrace();
    AddDiff();
    AddRegistry();
    AddQueries();
    AddOnDevice("shell", "Type calls into one attached process",
                [this] { return palsim::Shell(folder_, ForShell()); });
    AddTest();
    AddFacts();
    AddServe();
    AddExplore();
    AddAlone("samples", "List the sample devices", &palsim::ListSamples);
  }

  // Without a session it only knows what can be typed.
  explicit CommandLine(palsim::Session* session) : session_(session), in_shell_(true) {
    app_.name("");
    app_.require_subcommand(1);  // what follows it is never another
    AddCall();
    AddRun();
    AddQueries();
    AddRegistry();
    AddJournal();
    AddTrace();
    AddTimeline();
    AddOfShell();
    app_.get_subcommand("journal")->description(
        "Show the effects so far, or print each as it comes");
    app_.get_subcommand("timeline")->description("Show on a time axis what has happened so far");
  }

  void RunLine(const std::vector<std::string>& words) {
    try {
      app_.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp&) {
      PrintHelp(words[0]);
    } catch (const CLI::ParseError& error) {
      throw palsim::UsageError(fmt::format("{}; 'help {}' tells more", error.what(), words[0]));
    }
  }

  int Run(int argc, char** argv) {
    if (argc > 0) test_.program = argv[0];
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

  static void PrintProperties() {
    palsim::PrintProperties();
    throw CLI::Success();
  }

  static void PrintEffects() {
    palsim::PrintEffects();
    throw CLI::Success();
  }

  // Where no command was understood, the one that a word may have meant.
  [[nodiscard]] std::string CommandHint() const {
    if (!app_.get_subcommands().empty()) return {};
    std::vector<std::string> names;
    for (const CLI::App* command : app_.get_subcommands({})) names.push_back(command->get_name());
    std::vector<std::string> words = app_.remaining();
    words.push_back(folder_);
    for (const std::string& word : words) {
      std::string hint = palsim::DidYouMean(word, {names.begin(), names.end()});
      if (!hint.empty()) return hint;
    }
    return {};
  }

  static void PrintUsage(const std::string& name) {
    fmt::print("{}", palsim::UsageText(name));
    throw CLI::Success();
  }

  static void PrintExports() {
    for (const std::string_view name : palsim::ExportNames()) fmt::print("{}\n", name);
    throw CLI::Success();
  }

  static palsim::ShellCommands ForShell() {
    palsim::ShellCommands commands;
    CommandLine all(nullptr);
    for (const CLI::App* command : all.app_.get_subcommands({})) {
      commands.commands.push_back({command->get_name(), {}});
      for (const CLI::Option* option : command->get_options()) {
        const std::string name = option->get_name();
        if (name.starts_with("--")) commands.commands.back().words.push_back(name);
      }
    }
    commands.run = [](palsim::Session& session, const std::vector<std::string>& words) {
      CommandLine(&session).RunLine(words);
    };
    return commands;
  }

  // Of a command, or of all.
  void PrintHelp(const std::string& name) const {
    for (const CLI::App* command : app_.get_subcommands({})) {
      if (command->get_name() == name) return fmt::print("{}", command->help());
      if (!name.empty()) continue;
      fmt::print("  {:<10} {}\n", command->get_name(), command->get_description());
    }
    if (!name.empty()) throw palsim::UsageError(fmt::format("there is no command '{}'", name));
  }

  using Command = std::function<int()>;  // gives the exit status

  // On the device in its folder, or on the one that is open in the shell.
  template <class Work>
  int On(const Work& work) {
    return in_shell_ ? work(*session_) : work(folder_);
  }

  // A command on the device, which is named before it.
  CLI::App* AddOnDevice(const char* name, const char* what, const Command& run) {
    auto* command = app_.add_subcommand(name, what)->group("Commands on a DEVICE");
    if (!in_shell_) {
      command->add_option("--wait", wait_, "Seconds to wait for another command on the device")
          ->check(CLI::NonNegativeNumber)
          ->capture_default_str();
    }
    return command->callback([this, run] {
      if (!in_shell_ && device_->empty()) throw CLI::RequiredError("DEVICE");
      palsim::SetLockWait(wait_);
      status_ = run();
    });
  }

  // A command that stands alone.
  CLI::App* AddAlone(const char* name, const char* what, const Command& run) {
    auto* command = app_.add_subcommand(name, what)->group("Commands without a DEVICE");
    return command->callback([this, name, run] {
      if (!device_->empty()) throw CLI::ExtrasError(name, {folder_});
      status_ = run();
    });
  }

  void AddNew() {
    auto* command = AddOnDevice("new", "Make a device from a sample",
                                [this] { return palsim::NewDevice(folder_, new_); });
    command
        ->add_option("--sample", new_.sample,
                     fmt::format("The sample: {}", fmt::join(palsim::SampleNames(), ", ")))
        ->capture_default_str();
    command->add_flag("--force", new_.force, "Replace a device that is there");
  }

  void AddCall() {
    auto* command = AddOnDevice(
        "call", "Call an export of the library",

        [this] { return On([this](auto& device) { return palsim::Call(device, call_); }); });
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

  void AddRun() {
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

  void AddTimeline() {
    auto* command = AddOnDevice("timeline", "Show a run on a time axis", [this] {
      timeline_.text = timeline_.html.empty() && timeline_.wav.empty() && timeline_.trace.empty();
      return On([this](auto& device) { return palsim::ShowTimeline(device, timeline_); });
    });
    if (!in_shell_) {
      command->add_option("--run", timeline_.run,
                          "Its number, of journal --runs; else the last run");
    }
    AddFiles(*command, timeline_);
  }

  static void AddFiles(CLI::App& command, palsim::TimelineOptions& options) {
    command.add_option("--html", options.html,
                       "Write the timeline as a page for a browser; - is standard output");
    command.add_option("--wav", options.wav, "Write the run's sound; - is standard output");
    command.add_option("--trace", options.trace,
                       "Write the Chrome trace event format, which Perfetto opens; - is standard "
                       "output");
    options.columns = TerminalColumns();
  }

  void AddJournal() {
    auto* command = AddOnDevice("journal", "Show the effects of all runs", [this] {
      return On([this](auto& device) { return palsim::ShowJournal(device, journal_); });
    });
    command->add_option("--effect", journal_.effect, "Only this kind, such as registry or trace");
    command->add_option("--last", journal_.last, "Only the last N");
    if (!in_shell_) {
      command->add_option("--run", journal_.run, "Only the run of this number");
      command->add_flag("--runs", journal_.runs, "List the runs: number, length, title");
      command->add_flag("--clear", journal_.clear, "Forget them afterwards");
      return;
    }
    command->add_option("PRINT", journal_.print, "on: print each as it comes; off: not any more")
        ->check(CLI::IsMember({"on", "off"}));
  }

  void AddTrace() {
    auto* command = AddOnDevice("trace", "Show the event log with families by name", [this] {
      return On([this](auto& device) { return palsim::ShowTrace(device, trace_); });
    });
    command->add_option("--last", trace_.last, "Only the last N");
    command->add_flag("--errors", trace_.errors, "Only warnings and errors");
  }

  void AddDiff() {
    auto* command =
        app_.add_subcommand("diff", "Show where two runs part")->group("Commands on a DEVICE");
    command->callback([this] { status_ = palsim::Diff(folder_, diff_); });
    command->add_option("RUN", diff_.left, "A run's number, or a journal's file: its last run")
        ->required();
    command->add_option("OTHER", diff_.right, "The other one; files need no DEVICE")->required();
  }

  void AddRegistry() {
    auto* command = AddOnDevice("registry", "Show the registry as import text", [this] {
      return On([this](auto& device) { return palsim::ShowRegistry(device, registry_path_); });
    });
    command->add_option("KEY", registry_path_, "A key, such as HKLM\\Software\\Dravonel");
  }

  void AddTest() {
    auto* command = AddAlone("test", "Play many scenarios on copies of many devices",
                             [this] { return palsim::Test(test_); });
    command->add_option("PATH", test_.paths, "Scenarios, and folders of them; - is standard input")
        ->required();
    command
        ->add_option("--device", test_.devices,
                     "A sample, or a device's folder; without it every sample")
        ->expected(1)
        ->take_all();
    command->add_option("--seeds", test_.seeds,
                        "A-B: play each once for each seed, which says how threads change turns");
    command->add_option("--jobs", test_.jobs, "How many at once; without it as many as processors")
        ->check(CLI::Range(1, 256));
    command->add_option("--shard", test_.shard, "I/N: only this machine's part, from 1/N to N/N")
        ->capture_default_str();
    command->add_option("--timeout", test_.most_seconds, "The most seconds for one")
        ->check(CLI::Range(1, 86400))
        ->capture_default_str();
    command->add_option("--junit", test_.junit, "Write a JUnit report; - is standard output");
    command->add_option("--json", test_.json, "Write a report as JSON; - is standard output");
  }

  void AddQueries() {
    AddOnDevice("info", "Show which device this is, as the library tells it",
                [this] { return On([](auto& device) { return palsim::ShowInfo(device); }); });
    AddOnDevice("keys", "Show the buttons and the shift planes of the keypad",
                [this] { return On([](auto& device) { return palsim::ShowKeys(device); }); });
    AddOnDevice("scan", "Show the scan engine",
                [this] { return On([](auto& device) { return palsim::ShowScanEngine(device); }); });
  }

  // What only the shell has.
  void AddOfShell() {
    AddOnDevice("advance", "Let time pass on the device",
                [this] { return palsim::Advance(*session_, milliseconds_); })
        ->add_option("MS", milliseconds_, "Milliseconds")
        ->required();
    AddOnDevice("usage", "Show how an export is called",
                [this] {
                  fmt::print("{}", palsim::UsageText(word_));
                  return palsim::kSuccess;
                })
        ->add_option("EXPORT", word_, "Its name")
        ->required();
    AddOnDevice("exports", "List the library's exports", [] {
      for (const std::string_view name : palsim::ExportNames()) fmt::print("{}\n", name);
      return palsim::kSuccess;
    });
    AddOnDevice("help", "Show the commands, or how one is used", [this] {
      PrintHelp(word_);
      return palsim::kSuccess;
    })->add_option("COMMAND", word_, "Its name");
    for (const char* name : {"exit", "quit"}) {
      AddOnDevice(name, "Detach, save the device and leave", [] { return palsim::kSuccess; });
    }
  }

  void AddFacts() {
    auto* command = AddAlone("facts", "Compare a handheld with the simulated device",
                             [this] { return palsim::CompareFacts(facts_); });
    command->add_option("FILE", facts_.file, "\\palcheck.txt of the handheld; - is standard input")
        ->required();
    command->add_option("--device", facts_.device, "A sample device, or a device's folder")
        ->capture_default_str();
    command->add_flag("--library", facts_.library, "List also what the exports answer otherwise");
    command->footer(kFacts);
  }

  void AddServe() {
    auto* command = AddAlone("serve", "Serve a device to programs, such as a test bench",
                             [this] { return palsim::Serve(serve_); });
    command->add_flag("--stdio", serve_.stdio, "On standard input and output")->required();
    command->add_option("--device", serve_.device, "A sample device, or a device's folder")
        ->capture_default_str();
    command->footer(kServe);
  }

  void AddExplore() {
    auto* command =
        AddAlone("explore", "Search for runs in which a property does not hold", [this] {
          if (!merged_.empty()) return palsim::MergeReports(merged_, explore_.out);
          explore_.world.faults = palsim::ParseFaultRate(faults_);
          return palsim::Explore(explore_);
        });
    command->add_option("--device", explore_.world.device,
                        "A sample device, or a device's folder; else a sample by each seed");
    command->add_option("--seeds", explore_.seeds, "Which worlds: A-B")->capture_default_str();
    command->add_option("--steps", explore_.world.steps, "Of a world")
        ->check(CLI::Range(1, 100000))
        ->capture_default_str();
    command->add_option("--processes", explore_.world.processes, "Of a world, at most")
        ->check(CLI::Range(1, 8))
        ->capture_default_str();
    command->add_option("--jobs", explore_.jobs, "How many at once; 0: one for each processor")
        ->check(CLI::Range(0, 1024))
        ->capture_default_str();
    command->add_option("--shard", explore_.shard, "The part I of N of the seeds")
        ->capture_default_str();
    command->add_option("--for", explore_.time, "How long, such as 90s, 5m or 2h");
    command->add_option("--faults", faults_, "How often: none, rare or often")
        ->capture_default_str();
    command->add_option("--program", explore_.world.program,
                        "A shared library that takes part as a process");
    command->add_option("--out", explore_.out, "A folder for findings and report");
    command->add_option("--merge", merged_, "Add up the reports in these folders instead");
  }

  CLI::App app_{"Runs DVLORQPAL.dll on a simulated device.", "palsim"};
  CLI::Option* device_ = nullptr;
  std::string folder_;
  double wait_ = palsim::kDefaultWait;
  palsim::Session* session_ = nullptr;  // of the shell
  bool in_shell_ = false;
  std::uint32_t milliseconds_ = 0;
  std::string word_;
  palsim::NewOptions new_;
  palsim::CallOptions call_;
  palsim::RunOptions run_;
  palsim::TimelineOptions timeline_;
  palsim::JournalOptions journal_;
  palsim::TraceOptions trace_;
  palsim::DiffOptions diff_;
  std::string registry_path_;
  palsim::TestOptions test_;
  palsim::FactsOptions facts_;
  palsim::ServeOptions serve_;
  palsim::ExploreOptions explore_;
  std::string faults_ = "rare";
  std::vector<std::string> merged_;
  int status_ = palsim::kSuccess;
};

}  // namespace

int main(int argc, char** argv) {
  try {
    return tools::CheckedOutput("palsim", [&] { return CommandLine().Run(argc, argv); });
  } catch (const palsim::UsageError& error) {
    fmt::print(stderr, "palsim: {}\n", tools::Printable(error.what()));
    return palsim::kUsage;
  } catch (const std::exception& error) {
    fmt::print(stderr, "palsim: {}\n", tools::Printable(error.what()));
    return palsim::kFailure;
  }
}

#include "tools/palsim/command_line.h"

#include <fmt/format.h>

#include "frame/version.h"
#include "tools/command_words.h"
#include "tools/palsim/completion.h"
#include "tools/palsim/device_lock.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/nearest.h"
#include "tools/palsim/session.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
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

void PrintUsage(const std::string& name) {
  fmt::print("{}", UsageText(name));
  throw CLI::Success();
}

}  // namespace

CommandLine::CommandLine() {
  app_.footer(kExamples);
  app_.set_version_flag("--version", std::string("palsim ") + pal::kLibraryVersion);
  app_.set_help_all_flag("--help-all", "Show the help of every command");
  AddList("--exports", "List the library's exports", &PrintExports);
  app_.add_option_function<std::string>("--usage", &PrintUsage, "How to call an export");
  AddList("--statements", "List what a scenario can say", &PrintStatements);
  AddList("--properties", "List what explore checks", &PrintProperties);
  AddList("--effects", "List the journal's effects", &PrintEffects);
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
              [this] { return Shell(folder_, ForShell()); });
  AddTest();
  AddFacts();
  AddServe();
  AddExplore();
  AddAlone("samples", "List the sample devices", &ListSamples);
}

CommandLine::CommandLine(Session* session) : session_(session), in_shell_(true) {
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
  app_.get_subcommand("journal")->description("Show the effects so far, or print each as it comes");
  app_.get_subcommand("timeline")->description("Show on a time axis what has happened so far");
}

void CommandLine::RunLine(const std::vector<std::string>& words) {
  try {
    app_.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::CallForHelp&) {
    PrintHelp(words[0]);
  } catch (const CLI::ParseError& error) {
    throw UsageError(fmt::format("{}; 'help {}' tells more", error.what(), words[0]));
  }
}

int CommandLine::Run(int argc, char** argv) {
  if (argc > 0) test_.program = argv[0];
  if (argc > 1 && argv[1] == tools::kCompleteOption) return Complete({argv + 2, argv + argc});
  try {
    app_.parse(argc, argv);
    return status_;
  } catch (const CLI::ParseError& error) {
    return app_.exit(error) == 0 ? kSuccess : kUsage;
  }
}

int CommandLine::Complete(const std::vector<std::string>& words) const {
  const auto commands = tools::CommandsOf(app_);
  for (const std::string& word : CommandLineCompletions(words, tools::WordsOf(app_), commands)) {
    fmt::print("{}\n", word);
  }
  return kSuccess;
}

std::string CommandLine::CommandHint() const {
  if (!app_.get_subcommands().empty()) return {};
  std::vector<std::string> names;
  for (const CLI::App* command : app_.get_subcommands({})) names.push_back(command->get_name());
  std::vector<std::string> words = app_.remaining();
  words.push_back(folder_);
  for (const std::string& word : words) {
    std::string hint = DidYouMean(word, {names.begin(), names.end()});
    if (!hint.empty()) return hint;
  }
  return {};
}

int CommandLine::PrintExports() {
  for (const std::string_view name : ExportNames()) fmt::print("{}\n", name);
  return kSuccess;
}

ShellCommands CommandLine::ForShell() {
  ShellCommands commands;
  commands.commands = tools::CommandsOf(CommandLine(nullptr).app_);
  commands.run = [](Session& session, const std::vector<std::string>& words) {
    CommandLine(&session).RunLine(words);
  };
  return commands;
}

void CommandLine::PrintHelp(const std::string& name) const {
  for (const CLI::App* command : app_.get_subcommands({})) {
    if (command->get_name() == name) return fmt::print("{}", command->help());
    if (!name.empty()) continue;
    fmt::print("  {:<10} {}\n", command->get_name(), command->get_description());
  }
  if (!name.empty()) throw UsageError(fmt::format("there is no command '{}'", name));
}

void CommandLine::AddList(const char* name, const char* what, const std::function<void()>& print) {
  const auto print_alone = [print] {
    print();
    throw CLI::Success();
  };
  app_.add_flag_callback(name, print_alone, what);
}

int CommandLine::OnQuery(const std::function<int(Session&)>& work) {
  if (in_shell_) return work(*session_);
  Session session(folder_, Use::kRead);
  const int status = work(session);
  session.End();
  return status;
}

CLI::App* CommandLine::AddOnDevice(const char* name, const char* what, const Command& run) {
  auto* command = app_.add_subcommand(name, what)->group(kCommandsOnDevice);
  if (!in_shell_) {
    command->add_option("--wait", wait_, "Seconds to wait for another command on the device")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
  }
  return command->callback([this, run] {
    if (!in_shell_ && device_->empty()) throw CLI::RequiredError("DEVICE");
    SetLockWait(wait_);
    status_ = run();
  });
}

CLI::App* CommandLine::AddAlone(const char* name, const char* what, const Command& run) {
  auto* command = app_.add_subcommand(name, what)->group(kCommandsAlone);
  return command->callback([this, name, run] {
    if (!device_->empty()) throw CLI::ExtrasError(name, {folder_});
    status_ = run();
  });
}

}  // namespace palsim

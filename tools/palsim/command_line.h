// What is typed behind palsim, and what is typed in its shell.
#ifndef TOOLS_PALSIM_COMMAND_LINE_H_
#define TOOLS_PALSIM_COMMAND_LINE_H_

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/palsim/commands.h"
#include "tools/palsim/explore/explore_command.h"
#include "tools/palsim/shell.h"

namespace palsim {

class CommandLine {
 public:
  CommandLine();
  // Of the shell. Without a session it only knows what can be typed.
  explicit CommandLine(Session* session);

  // The exit status of what the program was started with.
  int Run(int argc, char** argv);
  // Does a line of the shell.
  void RunLine(const std::vector<std::string>& words);

 private:
  using Command = std::function<int()>;  // gives the exit status

  // Prints what can follow the words, for a shell of the host.
  [[nodiscard]] int Complete(const std::vector<std::string>& words) const;
  static int PrintExports();
  static ShellCommands ForShell();
  // If there is no such command: the one with the most similar name.
  [[nodiscard]] std::string CommandHint() const;
  // Of a command, or of all.
  void PrintHelp(const std::string& name) const;

  // Works on the device in the folder, or on the one that is open in the shell.
  template <class Work>
  int On(const Work& work) {
    return in_shell_ ? work(*session_) : work(folder_);
  }
  // An option that prints a list and ends the program.
  void AddList(const char* name, const char* what, const std::function<void()>& print);
  // A query of it, with a process of its own where there is none yet.
  int OnQuery(const std::function<int(Session&)>& work);
  // A command on the device, which is named before it.
  CLI::App* AddOnDevice(const char* name, const char* what, const Command& run);
  // A command that stands alone.
  CLI::App* AddAlone(const char* name, const char* what, const Command& run);

  void AddNew();
  void AddCall();
  void AddRun();
  void AddTimeline();
  static void AddFiles(CLI::App& command, TimelineOptions& options);
  void AddJournal();
  void AddTrace();
  void AddDiff();
  void AddRegistry();
  void AddQueries();
  void AddOfShell();
  void AddTest();
  void AddFacts();
  void AddServe();
  void AddExplore();

  CLI::App app_{"Runs DVLORQPAL.dll on a simulated device.", "palsim"};
  CLI::Option* device_ = nullptr;
  std::string folder_;
  double wait_ = kDefaultWait;
  Session* session_ = nullptr;  // of the shell
  bool in_shell_ = false;
  std::uint32_t milliseconds_ = 0;
  std::string word_;
  NewOptions new_;
  CallOptions call_;
  RunOptions run_;
  TimelineOptions timeline_;
  JournalOptions journal_;
  TraceOptions trace_;
  DiffOptions diff_;
  std::string registry_path_;
  TestOptions test_;
  FactsOptions facts_;
  ServeOptions serve_;
  ExploreOptions explore_;
  std::vector<std::string> merged_;
  int status_ = kSuccess;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_COMMAND_LINE_H_

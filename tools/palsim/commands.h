// What palsim does, one function a command. Each returns the exit status.
#ifndef TOOLS_PALSIM_COMMANDS_H_
#define TOOLS_PALSIM_COMMANDS_H_

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace palsim {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;  // the call failed, or the device cannot be read or written
constexpr int kUsage = 2;

struct NewOptions {
  std::string sample = "rm21";
  bool force = false;
  bool quiet = false;
};
int NewDevice(const std::filesystem::path& folder, const NewOptions& options);
[[nodiscard]] std::vector<std::string> SampleNames();
int ListSamples();
// The folder of a sample device. Throws UsageError where there is none of this name.
[[nodiscard]] std::filesystem::path SampleFolder(const std::string& name);
// Of a sample's name, or of a device's folder. Throws UsageError.
[[nodiscard]] std::filesystem::path FolderOf(const std::string& device);

struct CallOptions {
  std::string name;
  std::vector<std::string> arguments;
  std::string process_name = "palsim.exe";
  std::vector<std::string> faults;  // CALL[:NTH[:ERROR]]
  bool journal = false;
  std::string only;  // of the journal, this effect alone; empty: all
  bool real_time = false;
};
int Call(const std::filesystem::path& folder, const CallOptions& options);

// What is made of a run: each file where it has a name.
struct TimelineOptions {
  bool text = false;  // on the terminal
  std::string html;
  std::string wav;
};
// Of the device's last run.
int ShowTimeline(const std::filesystem::path& folder, const TimelineOptions& options);

struct RunOptions {
  std::string file;
  bool fresh = false;    // on a new device, of the sample that the scenario is for
  bool journal = false;  // print every effect as it comes
  TimelineOptions timeline;
};
// Plays a scenario; kFailure where an expectation does not hold.
int Run(const std::filesystem::path& folder, const RunOptions& options);
void PrintStatements();
// The journal's effects with the forms of their texts.
void PrintEffects();
[[nodiscard]] std::vector<std::string_view> EffectNames();

struct JournalOptions {
  std::string effect;    // empty: all
  std::size_t last = 0;  // 0: all
  bool clear = false;
};
int ShowJournal(const std::filesystem::path& folder, const JournalOptions& options);

struct TraceOptions {
  std::size_t last = 0;
  bool errors = false;  // warnings and errors alone
};
int ShowTrace(const std::filesystem::path& folder, const TraceOptions& options);

int ShowRegistry(const std::filesystem::path& folder, const std::string& path);
// The device's identity; what cannot be told is shown as its result code.
int ShowInfo(const std::filesystem::path& folder);
// The programmable buttons, and the shift planes of the active layout record by record.
int ShowKeys(const std::filesystem::path& folder);
// The scan engine and how it stands; fails where the device has none.
int ShowScanEngine(const std::filesystem::path& folder);
int Shell(const std::filesystem::path& folder);

struct ServeOptions {
  bool stdio = false;           // the one way that there is
  std::string device = "rm21";  // a sample, or a device's folder; it is not changed
};
// Answers each line of standard input, a request of JSON-RPC, by one of standard output
// (docs/test-bench.md).
int Serve(const ServeOptions& options);

struct FactsOptions {
  std::string file;             // from palcheck.exe; "-" is standard input
  std::string device = "rm21";  // a sample, or a device's folder; it is not changed
  bool library = false;         // list also what the exports answered otherwise
};
// Shows where the platform answered otherwise than the simulated device; kFailure where it did so
// for a fact, and where the file lacks one.
int CompareFacts(const FactsOptions& options);

}  // namespace palsim

#endif  // TOOLS_PALSIM_COMMANDS_H_

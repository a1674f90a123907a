// What palsim does, one function a command. Each returns the exit status.
#ifndef TOOLS_PALSIM_COMMANDS_H_
#define TOOLS_PALSIM_COMMANDS_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/host_disk.h"

namespace palsim {

class Session;

constexpr int kSuccess = 0;
constexpr int kFailure = 1;  // the call failed, or the device cannot be read or written
constexpr int kUsage = 2;

struct NewOptions {
  std::string sample = "rm21";
  bool force = false;
};
// Which device a new one may take the place of.
enum class Replace : std::uint8_t { kNone, kUnedited, kAny };
int NewDevice(const std::filesystem::path& folder, const NewOptions& options);
// Locks the folder for a new device of a sample, and makes it if there is none. Throws UsageError
// where it has something else, where it has a device and that may not be replaced, and where it is
// the sample.
[[nodiscard]] sim::FolderLock LockForNewDevice(const std::filesystem::path& folder,
                                               const std::filesystem::path& sample,
                                               Replace replace);
int ListSamples();

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
// A function that takes a Session works in one that is open: it uses its process and does not save
// the device. It ignores some options.
int Call(Session& session, const CallOptions& options);

// The outputs of a run. A file is written if its name is not empty.
struct TimelineOptions {
  std::size_t run = 0;      // its number; 0: the last
  bool text = false;        // on the terminal
  std::size_t columns = 0;  // the terminal's width; 0: standard output is no terminal
  std::string html;
  std::string svg;  // the chart of the page alone
  std::string wav;
  std::string trace;  // in the Chrome trace event format
};
int ShowTimeline(const std::filesystem::path& folder, const TimelineOptions& options);
int ShowTimeline(Session& session, const TimelineOptions& options);

struct RunOptions {
  std::string file;
  bool fresh = false;                 // on a new device
  std::string sample;                 // of which; empty: the one that the scenario is for
  bool force = false;                 // also in place of one whose description was edited
  std::optional<std::uint32_t> seed;  // threads also change turns at platform calls
  bool journal = false;               // print every effect as it comes
  TimelineOptions timeline;
};
// Plays a scenario; kFailure where an expectation does not hold.
int Run(const std::filesystem::path& folder, const RunOptions& options);
int Run(Session& session, const RunOptions& options);
void PrintStatements();

struct TestOptions {
  std::vector<std::string> paths;    // scenarios, and folders of them
  std::vector<std::string> devices;  // samples, or devices' folders; empty: every sample
  std::optional<std::string> seeds;  // A-B; without it one run, in which threads only wait
  std::string shard = "1/1";         // I/N
  unsigned jobs = 0;                 // at once; 0: as many as the machine has processors
  unsigned most_seconds = 60;        // of a case
  std::string junit;                 // the reports' files
  std::string json;
  std::string program = "palsim";  // as it was called, for the commands that repeat a case
};
// Plays every scenario on a copy of every device; kFailure where one does not pass.
int Test(const TestOptions& options);

// The journal's effects with the forms of their texts.
void PrintEffects();
[[nodiscard]] std::vector<std::string_view> EffectNames();

struct JournalOptions {
  std::string effect;    // empty: all
  std::size_t run = 0;   // 0: all
  std::size_t last = 0;  // 0: all
  bool runs = false;     // list the runs in place of the effects
  bool clear = false;
  std::string print;  // of a session: "on" prints each effect from now on, "off" none
};
int ShowJournal(const std::filesystem::path& folder, const JournalOptions& options);
int ShowJournal(Session& session, const JournalOptions& options);

struct DiffOptions {
  std::string left;  // each a number of the device's runs, or a journal's file with its last run
  std::string right;
};
// Shows where two runs part, by the times since their starts; kFailure where they do. Without a
// folder there are files alone. Throws UsageError where a run cannot be read.
int Diff(const std::filesystem::path& folder, const DiffOptions& options);

struct TraceOptions {
  std::size_t last = 0;
  bool errors = false;  // warnings and errors alone
};
int ShowTrace(const std::filesystem::path& folder, const TraceOptions& options);
int ShowTrace(Session& session, const TraceOptions& options);

int ShowRegistry(Session& session, const std::string& path);
// The device's identity; what cannot be told is shown as its result code.
int ShowInfo(Session& session);
// The programmable buttons, and the shift planes of the active layout record by record.
int ShowKeys(Session& session);
// The scan engine and how it stands; fails where the device has none.
int ShowScanEngine(Session& session);
// Lets time pass on the device.
int Advance(Session& session, std::uint32_t ms);

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

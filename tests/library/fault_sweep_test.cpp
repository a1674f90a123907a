// What every export does where the platform fails it, and what it leaves where its process ends.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string_view>

#include "platform/sim/hardware/hardware.h"
#include "platform/sim/kernel/registry_text.h"
#include "tests/support/device_test.h"
#include "tests/support/documented_results.h"
#include "tests/support/export_rows.h"

namespace {

using Lines = std::vector<std::string>;

// Under the sanitizers, which make each run many times longer, calls fail one at a time and with
// one of their errors from then on.
#ifdef SHORT_SWEEP
constexpr bool kIsShort = true;
#else
constexpr bool kIsShort = false;
#endif
// What is done about a failed call fails too: one of so many calls behind it.
constexpr unsigned kLaterCalls = kIsShort ? 0 : 24;

constexpr std::uint32_t kMissing = 2;      // ERROR_FILE_NOT_FOUND
constexpr std::uint32_t kAnyError = 31;    // ERROR_GEN_FAILURE: what a call can always give
constexpr std::uint32_t kFileExists = 80;  // ERROR_FILE_EXISTS

struct CallErrors {
  std::string_view call;
  std::array<std::uint32_t, 3> errors;  // beside kAnyError; 0: none
};

// The platform's error numbers; a wait gives 258 where its time has passed.
constexpr auto kCallErrors = std::to_array<CallErrors>({
    {"RegOpenKeyExW", {2, 5}},
    {"RegCreateKeyExW", {5, 14}},
    {"RegQueryValueExW", {2, 5, 234}},
    {"RegSetValueExW", {5, 14, 112}},
    {"RegDeleteValueW", {2, 5}},
    {"RegDeleteKeyW", {2, 5}},
    {"RegEnumKeyExW", {5, 234, 259}},
    {"RegEnumValueW", {5, 234, 259}},
    {"CreateFileW", {2, 5, 32}},
    {"ReadFile", {5, 38}},
    {"WriteFile", {5, 112}},
    {"DeviceIoControl", {1, 50, 87}},
    {"KernelIoControl", {50, 87}},
    {"CreateMutexW", {6, 14}},
    {"CreateEventW", {6, 14}},
    {"EventModify", {6}},
    {"WaitForSingleObject", {6, 258}},
    {"CreateThread", {8}},
    {"CreateProcessW", {2, 8}},
    {"LoadLibraryW", {8, 126}},
    {"GetProcAddressW", {127}},
    {"malloc", {14}},
    {"SystemParametersInfoW", {50, 87}},
    {"CryptAcquireContextW", {5, 0x80090016}},
    {"GetAdaptersInfo", {111, 232}},
    {"GetIfEntry", {2, 13}},
});

constexpr std::array<std::string_view, 5> kCannotFail{"free", "GetTickCount", "NKDbgPrintfW",
                                                      "Sleep", "SystemIdleTimerReset"};

std::vector<std::uint32_t> ErrorsOf(std::string_view call) {
  std::vector<std::uint32_t> errors{kAnyError};
  const auto* const row = std::ranges::find(kCallErrors, call, &CallErrors::call);
  if (row == kCallErrors.end()) return errors;
  std::ranges::copy_if(row->errors, std::back_inserter(errors),
                       [](std::uint32_t error) { return error != 0; });
  if (kIsShort) errors = {errors.back()};
  return errors;
}

// What came of one call of a row's export.
struct Outcome {
  std::optional<DWORD> result;  // nothing: its process ended in it
  Room room;
  Lines faulted;
  Lines writes;  // to registry and files
  std::uint64_t took_ms = 0;
};

// A device as a row wants it, with one process after another.
class Desk {
 public:
  explicit Desk(const ExportRow& row) : row_(row) {
    ArrangeFor(row, device_);
    StartProcess();
  }

  void StartProcess() {
    process_.reset();
    process_.emplace(device_);
    if (row_.before) row_.before(*process_);
  }

  void Call(Outcome& outcome, const std::vector<sim::Fault>& faults = {}) {
    device_.journal().Clear();
    const std::uint64_t begin = device_.now_ms();
    for (const sim::Fault& fault : faults) device_.PlanFault(fault);
    try {
      outcome.result = row_.run(process_->exports(), outcome.room);
    } catch (const sim::ProcessKilled&) {
    }
    outcome.faulted = device_.faulted_calls();
    device_.ClearFaults();
    outcome.took_ms = device_.now_ms() - begin;
    for (const sim::JournalEntry& entry : device_.journal().entries()) {
      const bool is_write =
          entry.effect == sim::Effect::kRegistry || entry.effect == sim::Effect::kFile;
      if (is_write) outcome.writes.push_back(entry.text);
    }
  }

  // Ends the process, too: what it leaves is misuse.
  Lines TakeMisuse() {
    if (row_.after && process_->alive()) row_.after(*process_);
    process_.reset();
    return device_.TakeMisuse();
  }
  [[nodiscard]] unsigned held_mutexes() const { return process_->held_mutexes(); }
  // What is stored: the registry, and below it the files of the configuration store. The end of one
  // that was not written is read as zeros.
  [[nodiscard]] std::string stored() {
    std::string text = sim::ExportRegistryText(device_.registry());
    for (const auto& file : device_.files().Find("\\ConfigStore")->children.items()) {
      const std::string data(file->data.begin(), file->data.end());
      text += file->name + "=" + data.substr(0, data.find_last_not_of('\0') + 1) + "\n";
    }
    return text;
  }

  // What a user sees and hears of the device.
  [[nodiscard]] std::string shown() {
    const sim::Hardware& hardware = device_.hardware();
    std::string text =
        fmt::format("volume {:x} gain {} turned {}", hardware.audio.levels.volume,
                    hardware.audio.levels.gain, hardware.display.turned_to.value_or(0));
    for (const auto& [number, led] : hardware.leds.all()) {
      text += fmt::format(" LED {} {}", number, static_cast<int>(led.state));
    }
    return text;
  }

 private:
  const ExportRow& row_;
  sim::Device device_;
  std::optional<sim::Process> process_;
};

// The lines of what is stored, each behind that of its key, in no order of time.
Lines Sorted(const std::string& stored) {
  Lines lines;
  std::string key;
  std::istringstream text(stored);
  for (std::string line; std::getline(text, line);) {
    if (line.starts_with('[')) key = line;
    lines.push_back(key + line);
  }
  std::ranges::sort(lines);
  return lines;
}

bool AreEqual(const std::string& left, const std::string& right) {
  return left == right || Sorted(left) == Sorted(right);
}

// What a row does where nothing fails.
struct Reference : Outcome {
  explicit Reference(const ExportRow& row) {
    Desk desk(row);
    desk.Call(*this);
    std::string once = desk.stored();
    const std::string shown_once = desk.shown();
    desk.StartProcess();
    Outcome again;
    desk.Call(again);
    if (desk.shown() == shown_once) shown = shown_once;
    if (!writes.empty() && desk.stored() == once) stored = std::move(once);
  }
  // What is stored then; nothing where it stores nothing, or goes a step further each time.
  std::optional<std::string> stored;
  std::optional<std::string> shown;  // then; nothing where a second call goes a step further
};

bool Contain(const Lines& all, const Lines& some) {
  return std::ranges::all_of(
      some, [&all](const std::string& line) { return std::ranges::count(all, line) != 0; });
}

bool IsDocumented(const ExportRow& row, DWORD result) {
  const auto documented = ResultsByExport().find(row.name);
  return documented == ResultsByExport().end() ? result == S_OK : documented->second.Has(result);
}

// A Win32 error comes from a call that failed, or from the making of a file that seemed missing.
bool IsOfFault(DWORD result, const std::vector<sim::Fault>& faults) {
  if (result >> 16 != 0x8007 || result == static_cast<DWORD>(E_INVALIDARG)) return true;
  const auto gives = [](std::uint32_t error) {
    return [error](const sim::Fault& fault) { return fault.error == error; };
  };
  return std::ranges::any_of(faults, gives(result & 0xFFFF)) ||
         ((result & 0xFFFF) == kFileExists && std::ranges::any_of(faults, gives(kMissing)));
}

// A beep that cannot put a level back leaves its own; a tag search has its own until it is stopped.
bool LeavesLevels(const ExportRow& row, const Lines& faulted) {
  return row.name == "PALBEEPStartTagSearch" ||
         std::ranges::any_of(faulted, [](const std::string& call) {
           return call == "waveOutSetVolume" || call == "waveInMessage";
         });
}

// What a call must not do, whatever fails; empty where it did nothing of the kind.
std::string Complaint(const ExportRow& row, const std::vector<sim::Fault>& faults,
                      const Outcome& reference, const Outcome& outcome) {
  if (!outcome.room.GuardsHold()) return "wrote beside an out-parameter";
  if (!outcome.result) return reference.result ? "the process ended" : "";
  if (!IsDocumented(row, *outcome.result)) {
    return fmt::format("the result {:#010x} is documented nowhere", *outcome.result);
  }
  if (outcome.result != reference.result && !IsOfFault(*outcome.result, faults)) {
    return fmt::format("the result {:#010x} is that of no call that failed", *outcome.result);
  }
  if (outcome.result == reference.result) {
    const bool answers = !reference.room.IsUntouched();
    if (answers && outcome.room.IsUntouched()) return "answered nothing";
  } else if (row.keeps_out) {
    const bool holds = outcome.room.IsUntouched()
                           ? !row.on_failure || row.or_untouched
                           : row.on_failure && outcome.room.Holds(*row.on_failure);
    if (!holds) return "an out-parameter does not hold what it should after a failure";
  }
  const bool is_missing = std::ranges::count(faults, kMissing, &sim::Fault::error) != 0;
  const bool writes_otherwise = row.other_writes == OtherWrites::kAlways ||
                                (row.other_writes == OtherWrites::kWhereMissing && is_missing);
  if (!writes_otherwise && !Contain(reference.writes, outcome.writes)) {
    return fmt::format("wrote what it never writes: {}", ::testing::PrintToString(outcome.writes));
  }
  return {};
}

// Tells of the first findings of a row only: one cause has many.
class Findings {
 public:
  explicit Findings(std::string row) : row_(std::move(row)) {}
  void Add(const std::string& when, std::string_view text) {
    if (text.empty() || ++count_ > 5) return;
    ADD_FAILURE() << row_ << ", " << when << ": " << text;
  }

 private:
  std::string row_;
  unsigned count_ = 0;
};

std::string Shown(const std::vector<sim::Fault>& faults, const Lines& faulted) {
  std::string text = faulted.empty() ? "untouched" : faulted.front();
  for (const sim::Fault& fault : faults) {
    text += fmt::format(", call {} {}with {}", fault.nth,
                        fault.from_then_on ? "and all that follow " : "", fault.error);
  }
  return text;
}

// Runs a row with faults, and once more without.
class FaultSweep {
 public:
  explicit FaultSweep(const ExportRow& row) : row_(row), findings_(row.title()), reference_(row) {}

  // Fails one call after another until there is none left to fail.
  void Run() {
    for (unsigned nth = 1;; ++nth) {
      const Lines first = RunWith({{.nth = nth, .error = kAnyError}});
      if (first.empty()) return;
      if (std::ranges::count(kCannotFail, first.front()) != 0) continue;
      for (const std::uint32_t error : ErrorsOf(first.front())) {
        if (error != kAnyError && !kIsShort) RunWith({{.nth = nth, .error = error}});
        RunWith({{.nth = nth, .from_then_on = true, .error = error}});
      }
      for (unsigned later = nth + 1; later <= nth + kLaterCalls; ++later) {
        const Lines both = RunWith({{.nth = nth, .error = kAnyError}, {.nth = later}});
        if (both.size() < 2) break;
      }
    }
  }
  [[nodiscard]] unsigned runs() const { return runs_; }

 private:
  // The calls that failed.
  Lines RunWith(const std::vector<sim::Fault>& faults) {
    ++runs_;
    Desk desk(row_);
    Outcome outcome;
    desk.Call(outcome, faults);
    const std::string when = Shown(faults, outcome.faulted);
    findings_.Add(when, Complaint(row_, faults, reference_, outcome));
    if (desk.held_mutexes() != 0) findings_.Add(when, "a mutex is held");
    if (row_.once_per_process) desk.StartProcess();
    Outcome again;
    desk.Call(again);
    if (again.result != reference_.result) findings_.Add(when, "does not succeed again");
    const bool completes = row_.other_writes != OtherWrites::kNever || !reference_.stored ||
                           AreEqual(desk.stored(), *reference_.stored);
    if (!completes) findings_.Add(when, "what it left is not completed by the next call");
    if (reference_.shown && !LeavesLevels(row_, outcome.faulted) &&
        desk.shown() != *reference_.shown) {
      findings_.Add(when, fmt::format("leaves {}, and not {}", desk.shown(), *reference_.shown));
    }
    for (const std::string& misuse : desk.TakeMisuse()) findings_.Add(when, misuse);
    return outcome.faulted;
  }

  const ExportRow& row_;
  Findings findings_;
  Reference reference_;
  unsigned runs_ = 0;
};

// Ends the process of a row between every two calls, and runs it in the next one.
class KillSweep {
 public:
  explicit KillSweep(const ExportRow& row) : row_(row), findings_(row.title()), reference_(row) {}

  void Run() {
    while (RunWith(runs_ + 1)) ++runs_;
  }
  [[nodiscard]] unsigned runs() const { return runs_; }

 private:
  // False where there is no such call.
  bool RunWith(unsigned nth) {
    Desk desk(row_);
    Outcome killed;
    desk.Call(killed, {{.nth = nth, .kill = true}});
    if (killed.faulted.empty()) return false;
    const std::string when = fmt::format("killed at call {} {}", nth, killed.faulted.front());
    const bool is_prefix =
        reference_.writes.size() >= killed.writes.size() &&
        std::ranges::equal(killed.writes, std::span(reference_.writes).first(killed.writes.size()));
    // Where it was a program that the row had started, its caller went on.
    const bool is_caller = !killed.result;
    if (is_caller && !is_prefix) findings_.Add(when, "wrote what it never writes");
    desk.StartProcess();
    Outcome next;
    desk.Call(next);
    if (next.result != reference_.result) {
      findings_.Add(when, "the next process does not succeed");
    }
    if (next.took_ms > reference_.took_ms) {
      findings_.Add(when, fmt::format("the next process takes {} ms", next.took_ms));
    }
    if (is_caller && reference_.stored && !AreEqual(desk.stored(), *reference_.stored)) {
      findings_.Add(when, "the next process does not complete what was begun");
    }
    for (const std::string& misuse : desk.TakeMisuse()) findings_.Add(when, misuse);
    return true;
  }

  const ExportRow& row_;
  Findings findings_;
  Reference reference_;
  unsigned runs_ = 0;
};

// The rows in parts, so that they can be run beside each other.
constexpr unsigned kParts = 4;

class ExportSweep : public ::testing::TestWithParam<unsigned> {
 protected:
  template <class RowSweep>
  static void Run(const char* what) {
    unsigned runs = 0;
    unsigned rows = 0;
    for (std::size_t at = GetParam(); at < ExportRows().size(); at += kParts, ++rows) {
      RowSweep sweep(ExportRows().at(at));
      sweep.Run();
      runs += sweep.runs();
    }
    std::printf("%s: %u runs of %u rows\n", what, runs, rows);
  }
};

TEST_P(ExportSweep, SaysWhatFailedAndLeavesNothingBehind) {
  Run<FaultSweep>("fault sweep");
}

TEST_P(ExportSweep, LeavesADeviceThatTheNextProcessCanUse) {
  Run<KillSweep>("kill sweep");
}

INSTANTIATE_TEST_SUITE_P(Rows, ExportSweep, ::testing::Range(0u, kParts));

// The library's entry in another process, as a row: with the repair of the keypad.
ExportRow EntryRow() {
  const auto device = std::make_shared<sim::Device*>();
  return {.name = "the entry",
          .run =
              [device](const sim::Exports&, Room&) {
                sim::Process(**device, "second.exe").End();
                return DWORD{0};
              },
          .before =
              [device](sim::Process& process) {
                *device = &process.device();
                (*device)->registry().SetDword(R"(HKLM\SOFTWARE\Dravonel\PAL)", "FixActive", 0);
              },
          .other_writes = OtherWrites::kWhereMissing};
}

TEST(RestartSweep, ARefusedRestartLeavesADeviceThatGoesOn) {
  const ExportRow row{
      .name = "PALBOOT_BootTerminal",
      .run = [](const sim::Exports& pal,
                Room&) { return static_cast<DWORD>(pal.PALBOOT_BootTerminal(PAL_BOOT_PREPARED)); },
      .once_per_process = true};
  FaultSweep faults(row);
  faults.Run();
  KillSweep kills(row);
  kills.Run();
  EXPECT_GE(faults.runs(), 5u);
  EXPECT_EQ(kills.runs(), 2u);
}

TEST(EntrySweep, AProcessStartsAndEndsWhateverFails) {
  const ExportRow row = EntryRow();
  FaultSweep faults(row);
  faults.Run();
  KillSweep kills(row);
  kills.Run();
  std::printf("fault sweep: %u runs of the entry\n", faults.runs());
  std::printf("kill sweep: %u runs of the entry\n", kills.runs());
}

TEST(ExportRows, AreThereForEveryExportButTheRestart) {
  std::set<std::string> left;
  for (const auto& [name, results] : ResultsByExport()) left.insert(name);
  for (const ExportRow& row : ExportRows()) left.erase(row.name);
  EXPECT_EQ(left, std::set<std::string>{"PALBOOT_BootTerminal"});
}

TEST(ExportRows, DoTheirWorkWhereNothingFails) {
  std::set<std::string> failing;
  for (const ExportRow& row : ExportRows()) {
    Outcome outcome;
    Desk(row).Call(outcome);
    if (static_cast<HRESULT>(*outcome.result) < 0) failing.insert(row.title());
  }
  EXPECT_EQ(failing,
            (std::set<std::string>{"PALMFGOpt_GetConfigString", "PALMFGOpt_RestoreDefaults",
                                   "PALSysio_VirtualAllocCopy: without provider",
                                   "PALUARTGetMuxMode", "PALUARTSetMuxMode"}));
}

}  // namespace

// A run as what went on at the same time: who ran, who held what, what was heard and seen. Made
// from the run's journal alone; times are milliseconds since the run began.
#ifndef TOOLS_PALSIM_TIMELINE_TIMELINE_H_
#define TOOLS_PALSIM_TIMELINE_TIMELINE_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/palsim/run_record.h"

namespace palsim {

struct Span {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::uint32_t process = 0;  // by its id
  bool open = true;           // nothing has ended it yet
};

struct CallSpan : Span {
  std::uint32_t thread = 0;
  std::string call;    // "PALBEEPGoodReadEx(1)"
  std::string result;  // empty where it did not return
  bool failed = false;

  // "PALBEEPKeyClick() = S_OK", with a cross in front where it failed.
  [[nodiscard]] std::string Text() const;
};

struct ProcessLine : Span {
  std::string name;
  bool killed = false;  // and not by a restart of the device
  bool detaching = false;
  std::vector<CallSpan> calls;
};

struct HoldSpan : Span {
  std::uint32_t thread = 0;
  bool abandoned = false;
  bool at_detach = false;
};

struct WaitSpan : Span {
  bool in_vain = false;
};

struct MutexLine {
  std::string name;
  std::vector<HoldSpan> holds;
  std::vector<WaitSpan> waits;  // as far as the journal shows them

  // The processes that held it or waited for it, in order.
  [[nodiscard]] std::vector<std::uint32_t> Users() const;
};

struct SoundSpan : Span {
  std::string path;
  std::uint64_t length_ms = 0;  // of its file
  bool looping = false;
  bool stopped = false;  // before its end
};

struct VibrationSpan : Span {
  std::string preset;
};

struct LedSpan : Span {
  bool blinks = false;
};

struct LedLine {
  std::string number;
  std::vector<LedSpan> spans;
};

// A level from its time on.
struct Level {
  std::uint64_t time = 0;
  std::uint32_t value = 0;
};

// What came from outside of all processes, and who was killed.
struct OutsideEvent {
  std::uint64_t time = 0;
  std::string text;
};

struct Expectation {
  std::uint64_t time = 0;  // of the line that was expected, else of its check
  bool held = false;
  std::string text;
  std::size_t entry = 0;  // of the run

  // The id of its mark in the page's chart.
  [[nodiscard]] std::string MarkId() const;
};

struct Timeline {
  RunRecord run;  // entries with their times in the run
  std::uint64_t length_ms = 0;
  std::vector<ProcessLine> processes;
  std::map<std::uint32_t, std::size_t> process_places;  // in `processes`, by id
  std::vector<MutexLine> mutexes;
  std::vector<SoundSpan> sounds;
  std::vector<VibrationSpan> vibrations;
  std::vector<LedLine> leds;
  std::vector<Level> volume;  // the first at 0 where it was known then
  std::vector<Level> gain;
  std::vector<OutsideEvent> outside;
  std::vector<OutsideEvent> restarts;
  std::vector<Expectation> expectations;

  // "scanner.exe", or "the device" for 0.
  [[nodiscard]] std::string ProcessName(std::uint32_t id) const;
  // The process that an entry belongs to, or the device.
  [[nodiscard]] std::string Actor(const sim::JournalEntry& entry) const;
  // "2 of 11 expectations do not hold; 1 call failed"; empty where there is nothing to say.
  [[nodiscard]] std::string Verdict() const;
  [[nodiscard]] bool Failed() const;
};

// Stand before the text of a result, so that nobody needs to tell colours apart.
constexpr std::string_view kHeldMark = "✓ ";
constexpr std::string_view kFailedMark = "✗ ";

// Whether a result is the code of an error: "0x80004005 E_FAIL".
[[nodiscard]] bool IsFailure(std::string_view result);

[[nodiscard]] Timeline MakeTimeline(const RunRecord& run);

// The two halves of a wave-out word in per cent: "80 %", "left 80 %, right 40 %".
[[nodiscard]] std::string VolumeText(std::uint32_t word);
// The last part of a path.
[[nodiscard]] std::string FileName(const std::string& path);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_TIMELINE_H_

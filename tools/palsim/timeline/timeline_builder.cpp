// How a run's journal becomes its timeline.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <utility>

#include "tools/palsim/timeline/journal_text.h"
#include "tools/palsim/timeline/timeline.h"

namespace palsim {
namespace {

using sim::Effect;
using sim::JournalEntry;

class Builder {
 public:
  explicit Builder(const RunRecord& run) {
    timeline_.run = run;
    if (run.volume) timeline_.volume.push_back({0, *run.volume});
    if (run.gain) timeline_.gain.push_back({0, *run.gain});
    SetTimes();
  }

  Timeline Build() {
    for (std::size_t index = 0; index < timeline_.run.entries.size(); ++index) {
      const JournalEntry& entry = timeline_.run.entries[index];
      entry_ = index;
      for (const Row& row : kRows) {
        if (row.effect == entry.effect) (this->*row.take)(entry);
      }
      if (entry.process_id == 0 && entry.effect != Effect::kExpect) TakeOutside(entry);
      last_seen_[{entry.process_id, entry.thread_id}] = entry.time_ms;
    }
    DropWhatIsNoise();
    CloseWhatIsOpen();
    return std::move(timeline_);
  }

 private:
  struct Row {
    Effect effect;
    void (Builder::*take)(const JournalEntry& entry);
  };
  static const std::array<Row, 9> kRows;

  // Times from the start of the run. What a device does before its clock is set stands before the
  // start, and a journal can be edited: no time goes back, and none is beyond what can be drawn.
  void SetTimes() {
    static constexpr std::uint64_t kLongestMs = std::uint64_t{1} << 40;  // 34 years
    const std::uint64_t start = timeline_.run.start_ms;
    const auto since_start = [start](std::uint64_t time_ms) {
      return time_ms < start ? 0 : std::min(time_ms - start, kLongestMs);
    };
    std::uint64_t last = 0;
    for (JournalEntry& entry : timeline_.run.entries) {
      entry.time_ms = last = std::max(last, since_start(entry.time_ms));
    }
    timeline_.length_ms = std::max(last, since_start(timeline_.run.end_ms));
  }

  template <class Kind>
  static Kind Begun(const JournalEntry& entry) {
    Kind span;
    span.begin = span.end = entry.time_ms;
    span.process = entry.process_id;
    return span;
  }

  static void Close(Span& span, std::uint64_t time) {
    span.end = time;
    span.open = false;
  }

  ProcessLine* Process(std::uint32_t id) {
    const auto found = timeline_.process_places.find(id);
    return found == timeline_.process_places.end() ? nullptr : &timeline_.processes[found->second];
  }

  void TakeProcess(const JournalEntry& entry) {
    const auto [name, what] = SplitAtWord(entry.text, {"started", "detaches", "ended", "killed"});
    if (what.starts_with("started")) {
      auto line = Begun<ProcessLine>(entry);
      line.name = name;
      timeline_.process_places.emplace(entry.process_id, timeline_.processes.size());
      timeline_.processes.push_back(std::move(line));
      return;
    }
    ProcessLine* line = Process(entry.process_id);
    if (line == nullptr || what.empty()) return;
    if (what == "detaches") {
      line->detaching = true;
      return;
    }
    const bool restarts =
        !timeline_.restarts.empty() && timeline_.restarts.back().time == entry.time_ms;
    line->killed = what == "killed" && !restarts;
    Close(*line, entry.time_ms);
    if (line->killed) timeline_.outside.push_back({entry.time_ms, line->name + " killed"});
    for (CallSpan& call : line->calls) {
      if (call.open) Close(call, entry.time_ms);
    }
  }

  void TakeCall(const JournalEntry& entry) {
    ProcessLine* line = Process(entry.process_id);
    if (line == nullptr) return;
    const std::size_t equals = entry.text.rfind(") = ");
    if (equals == std::string::npos) {
      auto call = Begun<CallSpan>(entry);
      call.thread = entry.thread_id;
      call.call = entry.text;
      line->calls.push_back(std::move(call));
      return;
    }
    const auto call = std::find_if(line->calls.rbegin(), line->calls.rend(), [&](const auto& each) {
      return each.open && each.thread == entry.thread_id;
    });
    if (call == line->calls.rend()) return;
    call->result = entry.text.substr(equals + 4);
    call->failed = IsFailure(call->result);
    Close(*call, entry.time_ms);
  }

  MutexLine& Mutex(const std::string& name) {
    const auto [found, is_new] = mutex_places_.emplace(name, timeline_.mutexes.size());
    if (is_new) timeline_.mutexes.push_back({.name = name, .holds = {}, .waits = {}});
    return timeline_.mutexes[found->second];
  }

  void TakeMutex(const JournalEntry& entry) {
    const auto [name, what] = SplitAtWord(entry.text, {"taken", "released", "abandoned"});
    if (what.empty()) return;
    MutexLine& mutex = Mutex(name);
    if (what == "taken") {
      NoteWait(mutex, entry);
      auto hold = Begun<HoldSpan>(entry);
      hold.thread = entry.thread_id;
      const ProcessLine* line = Process(entry.process_id);
      hold.at_detach = line != nullptr && line->detaching;
      mutex.holds.push_back(hold);
      return;
    }
    const bool is_abandoned = what == "abandoned";
    ForEachOpen(mutex, [&](HoldSpan& hold) {
      if (hold.process != entry.process_id) return;
      hold.abandoned = is_abandoned;
      Close(hold, entry.time_ms);
    });
  }

  // One process after the other holds it, so that what is open stands at the end.
  template <class Work>
  static void ForEachOpen(MutexLine& mutex, const Work& work) {
    for (auto hold = mutex.holds.rbegin(); hold != mutex.holds.rend() && hold->open; ++hold) {
      work(*hold);
    }
  }

  // Time passes for a thread only where it waits: one that takes a mutex after another's hold, and
  // did nothing else since, has waited for it.
  void NoteWait(MutexLine& mutex, const JournalEntry& entry) {
    const auto seen = last_seen_.find({entry.process_id, entry.thread_id});
    if (seen == last_seen_.end() || mutex.holds.empty()) return;
    const std::uint64_t begin = seen->second;
    if (begin >= entry.time_ms || mutex.holds.back().end <= begin) return;
    auto wait = Begun<WaitSpan>(entry);
    wait.begin = begin;
    wait.open = false;
    mutex.waits.push_back(wait);
  }

  // A wait that timed out is told by the library alone, and without the mutex's name: it is one
  // that was held all the time.
  void TakeTrace(const JournalEntry& entry) {
    constexpr std::string_view kTimeout = "PALWaitForMutex - ERROR timeout.";
    if (!entry.text.starts_with(kTimeout)) return;
    const std::uint64_t duration = NumberAfter(entry.text, "dur: ").value_or(0);
    if (duration == 0 || duration > entry.time_ms) return;
    auto wait = Begun<WaitSpan>(entry);
    wait.begin = entry.time_ms - duration;
    wait.open = false;
    wait.in_vain = true;
    for (MutexLine& mutex : timeline_.mutexes) {
      bool held = false;
      ForEachOpen(mutex, [&](const HoldSpan& hold) { held = held || hold.begin <= wait.begin; });
      if (held) return mutex.waits.push_back(wait);
    }
  }

  void TakeAudio(const JournalEntry& entry) {
    if (const auto volume = NumberAfter(entry.text, "volume ")) {
      timeline_.volume.push_back({entry.time_ms, *volume});
    } else if (const auto gain = NumberAfter(entry.text, "gain ")) {
      timeline_.gain.push_back({entry.time_ms, *gain});
    } else if (const auto begun = SoundBegun(entry.text)) {
      auto sound = Begun<SoundSpan>(entry);
      sound.path = begun->path;
      sound.length_ms = begun->length_ms;
      sound.looping = begun->looping;
      open_sounds_.push_back(timeline_.sounds.size());
      timeline_.sounds.push_back(std::move(sound));
    } else if (const auto ended = SoundEnded(entry.text)) {
      std::erase_if(open_sounds_, [&](std::size_t place) {
        SoundSpan& sound = timeline_.sounds[place];
        if (sound.path != ended->path) return false;
        sound.stopped = ended->stopped;
        Close(sound, entry.time_ms);
        return true;
      });
    }
  }

  void TakeVibration(const JournalEntry& entry) {
    const auto preset = NumberAfter(entry.text, "preset ");
    const auto length = NumberAfter(entry.text, " for ");
    if (!preset || !length) return;
    auto vibration = Begun<VibrationSpan>(entry);
    vibration.preset = fmt::format("{}", *preset);
    Close(vibration, entry.time_ms + *length);
    timeline_.vibrations.push_back(std::move(vibration));
  }

  void TakeLed(const JournalEntry& entry) {
    const auto [led, what] = SplitAtWord(entry.text, {"on", "off", "blinks"});
    if (what.empty() || !led.starts_with("LED ")) return;
    const std::string number = led.substr(4);
    auto line = std::ranges::find(timeline_.leds, number, &LedLine::number);
    if (line == timeline_.leds.end()) {
      line = timeline_.leds.insert(line, LedLine{.number = number, .spans = {}});
    }
    if (!line->spans.empty() && line->spans.back().open) Close(line->spans.back(), entry.time_ms);
    if (what == "off") return;
    auto span = Begun<LedSpan>(entry);
    span.blinks = what == "blinks";
    line->spans.push_back(span);
  }

  // Every process ends, and with it what it holds.
  void TakePower(const JournalEntry& entry) {
    if (!entry.text.starts_with("restart, ")) return;
    timeline_.restarts.push_back({entry.time_ms, entry.text});
    for (MutexLine& mutex : timeline_.mutexes) {
      ForEachOpen(mutex, [&](HoldSpan& hold) { Close(hold, entry.time_ms); });
    }
  }

  void TakeExpectation(const JournalEntry& entry) {
    const ExpectationResult result = ExpectationIn(entry.text);
    const std::uint64_t seen = std::min<std::uint64_t>(
        result.seen_ms.value_or(std::numeric_limits<std::uint32_t>::max()), entry.time_ms);
    timeline_.expectations.push_back({seen, result.held, entry.text, entry_});
  }

  void TakeOutside(const JournalEntry& entry) {
    timeline_.outside.push_back({entry.time_ms, entry.text});
  }

  // A process that detaches takes and releases every mutex of the library: that tells nothing.
  void DropWhatIsNoise() {
    for (MutexLine& mutex : timeline_.mutexes) {
      std::erase_if(mutex.holds, [](const HoldSpan& hold) {
        return hold.at_detach && !hold.open && hold.begin == hold.end;
      });
    }
    std::erase_if(timeline_.mutexes, [](const MutexLine& mutex) {
      return mutex.holds.empty() && mutex.waits.empty();
    });
  }

  void CloseWhatIsOpen() {
    const std::uint64_t end = timeline_.length_ms;
    for (ProcessLine& line : timeline_.processes) {
      if (line.open) line.end = end;
      for (CallSpan& call : line.calls) {
        if (call.open) call.end = end;
      }
    }
    for (MutexLine& mutex : timeline_.mutexes) {
      for (HoldSpan& hold : mutex.holds) {
        if (hold.open) hold.end = end;
      }
    }
    for (SoundSpan& sound : timeline_.sounds) {
      if (sound.open)
        sound.end = sound.looping ? end : std::min(end, sound.begin + sound.length_ms);
    }
    for (LedLine& led : timeline_.leds) {
      for (LedSpan& span : led.spans) {
        if (span.open) span.end = end;
      }
    }
  }

  Timeline timeline_;
  std::map<std::string, std::size_t> mutex_places_;  // in the timeline, by name
  std::vector<std::size_t> open_sounds_;             // places in the timeline
  std::size_t entry_ = 0;                            // that is taken
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint64_t> last_seen_;  // of each thread
};

const std::array<Builder::Row, 9> Builder::kRows{{
    {Effect::kProcess, &Builder::TakeProcess},
    {Effect::kCall, &Builder::TakeCall},
    {Effect::kMutex, &Builder::TakeMutex},
    {Effect::kTrace, &Builder::TakeTrace},
    {Effect::kAudio, &Builder::TakeAudio},
    {Effect::kVibration, &Builder::TakeVibration},
    {Effect::kLed, &Builder::TakeLed},
    {Effect::kPower, &Builder::TakePower},
    {Effect::kExpect, &Builder::TakeExpectation},
}};

}  // namespace

Timeline MakeTimeline(const RunRecord& run) {
  return Builder(run).Build();
}

}  // namespace palsim

#include "tools/palsim/timeline/trace_events.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "tools/palsim/timeline/text.h"

namespace palsim {
namespace {

using Json = nlohmann::ordered_json;
using sim::Effect;

// These are spans and counters.
constexpr std::array kNoInstants{Effect::kCall, Effect::kMutex, Effect::kLed, Effect::kVibration};

class TraceWriter {
 public:
  explicit TraceWriter(const Timeline& timeline) : timeline_(timeline) {
    for (const sim::JournalEntry& entry : timeline.run.entries) {
      device_ = std::max<std::uint64_t>(device_, entry.process_id + std::uint64_t{1});
    }
  }

  std::string Write() {
    AddProcesses();
    AddMutexes();
    AddSoundsAndLights();
    AddLevels();
    for (const sim::JournalEntry& entry : timeline_.run.entries) AddInstant(entry);
    Json file{{"displayTimeUnit", "ms"}, {"otherData", {{"title", timeline_.run.title}}}};
    file["traceEvents"] = std::move(events_);
    return file.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  }

 private:
  // A process or thread 0 would be the system's idle one. The device is behind all processes.
  [[nodiscard]] std::uint64_t Pid(std::uint32_t process) const {
    return process == 0 ? device_ : process;
  }

  Json& Add(std::string_view phase, std::uint64_t pid, std::uint64_t tid, std::uint64_t time_ms,
            std::string_view name) {
    events_.push_back(
        {{"ph", phase}, {"pid", pid}, {"tid", tid}, {"ts", time_ms * 1000}, {"name", name}});
    return events_.back();
  }

  void Name(std::string_view what, std::uint64_t pid, std::uint64_t tid, std::string_view name) {
    Add("M", pid, tid, 0, what)["args"] = {{"name", name}};
  }

  // As a beginning and an end: those of one time stay in their order. Readers find the two by all
  // that they have in common.
  void AddSpan(std::string_view category, std::uint64_t pid, std::uint64_t tid, const Span& span,
               std::string_view name, const Json& args = Json::object()) {
    for (const auto& [phase, time] : {std::pair{"B", span.begin}, std::pair{"E", span.end}}) {
      Json& event = Add(phase, pid, tid, time, name);
      event["cat"] = category;
      if (!args.empty()) event["args"] = args;
    }
  }

  void AddProcesses() {
    Name("process_name", device_, 1, "the device");
    Name("thread_name", device_, 1, "events");
    for (const ProcessLine& process : timeline_.processes) {
      Name("process_name", process.process, 1, process.name);
      for (const CallSpan& call : process.calls) {
        const std::string name = call.call.substr(0, call.call.find('('));
        AddSpan("call", process.process, call.thread, call,
                (call.failed ? std::string(kFailedMark) : std::string()) + name,
                {{"call", call.call},
                 {"result", call.result.empty() ? "did not return" : call.result}});
      }
    }
  }

  // A track of the device. What overlaps is put on one more, since spans of a track must nest.
  template <class Kind, class Text>
  void AddTrack(const std::string& name, std::vector<Kind> spans, Text&& text) {
    std::ranges::stable_sort(spans, {}, &Span::begin);
    std::vector<std::uint64_t> ends;  // of each of the tracks
    const std::uint64_t first = last_track_ + 1;
    for (const Kind& span : spans) {
      const auto found =
          std::ranges::find_if(ends, [&](std::uint64_t end) { return end <= span.begin; });
      const auto tid = first + static_cast<std::uint64_t>(found - ends.begin());
      if (found == ends.end()) {
        ends.push_back(0);
        Name("thread_name", device_, tid, name);
      }
      ends[static_cast<std::size_t>(tid - first)] = span.end;
      AddSpan(name, device_, tid, span, text(span));
    }
    last_track_ += ends.size();
  }

  void AddMutexes() {
    for (const MutexLine& mutex : timeline_.mutexes) {
      AddTrack(mutex.name, mutex.holds, [&](const HoldSpan& hold) {
        return timeline_.ProcessName(hold.process) + (hold.abandoned ? ", abandoned" : "");
      });
      AddTrack(mutex.name + " waited for", mutex.waits, [&](const WaitSpan& wait) {
        return timeline_.ProcessName(wait.process) + (wait.in_vain ? ", in vain" : "");
      });
    }
  }

  void AddSoundsAndLights() {
    AddTrack("sound", timeline_.sounds,
             [](const SoundSpan& sound) { return FileName(sound.path); });
    AddTrack("vibration", timeline_.vibrations,
             [](const VibrationSpan& vibration) { return "preset " + vibration.preset; });
    for (const LedLine& led : timeline_.leds) {
      AddTrack("LED " + led.number, led.spans,
               [](const LedSpan& span) { return span.blinks ? "blinks" : "on"; });
    }
  }

  void AddLevels() {
    for (const Level& level : timeline_.volume) {
      Add("C", device_, 1, level.time, "volume")["args"] = {{"left", level.value & 0xFFFF},
                                                            {"right", level.value >> 16}};
    }
    for (const Level& level : timeline_.gain) {
      Add("C", device_, 1, level.time, "gain")["args"] = {{"gain", level.value}};
    }
  }

  // A restart and an expectation are marked over all tracks, another instant in its thread.
  void AddInstant(const sim::JournalEntry& entry) {
    if (std::ranges::find(kNoInstants, entry.effect) != kNoInstants.end()) return;
    const bool is_restart = entry.effect == Effect::kPower && entry.text.starts_with("restart, ");
    Json& event = Add("i", Pid(entry.process_id), std::max(entry.thread_id, std::uint32_t{1}),
                      entry.time_ms, ReadableText(entry));
    event["s"] = is_restart || entry.effect == Effect::kExpect ? "g" : "t";
    event["cat"] = sim::EffectName(entry.effect);
    if (entry.effect != Effect::kTrace) return;
    event["args"] = {{"category", fmt::format("0x{:08X}", entry.category)}};
  }

  const Timeline& timeline_;
  Json events_ = Json::array();
  std::uint64_t device_ = 1;
  std::uint64_t last_track_ = 1;  // of the device; the first has its events
};

}  // namespace

std::string TraceEventsJson(const Timeline& timeline) {
  return TraceWriter(timeline).Write();
}

}  // namespace palsim

#include "tools/palsim/timeline/chart.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/palsim/scenario/values.h"
#include "tools/palsim/timeline/journal_text.h"
#include "tools/palsim/timeline/lanes.h"

namespace palsim {
namespace {

std::string NumberLabel(std::uint32_t value) {
  return fmt::format("{}", value);
}

// One mark for those that held at a moment, and one for those that failed.
void AddExpectations(Lanes& lanes, const Timeline& timeline) {
  std::vector<Expectation> expectations = timeline.expectations;
  std::ranges::stable_sort(expectations, {}, &Expectation::time);
  std::vector<Bar> bars;
  for (const bool held : {false, true}) {
    std::size_t count = 0;
    for (const Expectation& each : expectations) {
      if (each.held != held) continue;
      if (bars.empty() || bars.back().begin != each.time || count == 0) {
        bars.push_back({each.time, each.time, "", held ? "held" : "failed",
                        "at " + MomentText(each.time), fmt::format("x{}", each.entry),
                        each.MarkId()});
        count = 0;
      }
      bars.back().text = fmt::format("{}{}", held ? kHeldMark : kFailedMark, ++count);
      bars.back().title += "\n" + each.text;
    }
  }
  std::ranges::stable_sort(bars, {}, &Bar::begin);
  if (!bars.empty()) lanes.AddBars("expectations", "held, failed", bars);
}

void AddOutside(Lanes& lanes, const Timeline& timeline) {
  std::vector<Bar> bars;
  for (const OutsideEvent& event : timeline.outside) {
    bars.push_back({event.time, event.time, ShortText(event.text), "outside",
                    fmt::format("{}\nat {}", event.text, MomentText(event.time))});
  }
  if (!bars.empty()) lanes.AddBars("from outside", "events", bars);
}

std::string CallClasses(const CallSpan& call, const std::string& colour) {
  if (call.failed) return "failed " + colour;
  return call.result.empty() ? "unfinished " + colour : colour;
}

void AddProcesses(Lanes& lanes, const Timeline& timeline) {
  for (const ProcessLine& process : timeline.processes) {
    const std::string colour = ProcessColour(timeline, process.process);
    std::vector<Bar> bars;
    for (const CallSpan& call : process.calls) {
      const std::string result = call.result.empty() ? "did not return" : call.result;
      bars.push_back({call.begin, call.end, call.Text(), CallClasses(call, colour),
                      SpanTitle(call.call + " = " + result, call.begin, call.end)});
    }
    const Lifeline life{process.begin, process.end, colour, process.killed};
    lanes.AddBars(process.name, fmt::format("process {}", process.process), bars, &life);
  }
}

std::vector<Bar> BarsOfUser(const MutexLine& mutex, std::uint32_t process, const std::string& name,
                            const std::string& colour) {
  std::vector<Bar> bars;
  for (const HoldSpan& hold : mutex.holds) {
    if (hold.process != process) continue;
    const std::string how = hold.abandoned ? "held it and was killed" : "holds it";
    const std::string text = hold.abandoned ? "abandoned" : TimeText(hold.end - hold.begin);
    bars.push_back({hold.begin, hold.end, text, colour,
                    SpanTitle(fmt::format("{} {}", name, how), hold.begin, hold.end)});
  }
  for (const WaitSpan& wait : mutex.waits) {
    if (wait.process != process) continue;
    const std::string text = wait.in_vain ? "waits in vain" : "waits";
    bars.push_back({wait.begin, wait.end, text, "wait " + colour,
                    SpanTitle(fmt::format("{} {}", name, text), wait.begin, wait.end)});
  }
  std::ranges::stable_sort(bars, {}, &Bar::begin);
  return bars;
}

void AddMutexes(Lanes& lanes, const Timeline& timeline) {
  constexpr std::string_view kOwn = "DVLORQPAL_";
  for (const MutexLine& mutex : timeline.mutexes) {
    const std::string name =
        mutex.name.starts_with(kOwn) ? mutex.name.substr(kOwn.size()) : mutex.name;
    for (const std::uint32_t user : mutex.Users()) {
      const std::string owner = timeline.ProcessName(user);
      lanes.AddBars(name, owner, BarsOfUser(mutex, user, owner, ProcessColour(timeline, user)));
    }
  }
}

void AddSounds(Lanes& lanes, const Timeline& timeline) {
  std::vector<Bar> bars;
  for (const SoundSpan& sound : timeline.sounds) {
    const std::string looping = sound.looping ? ", looping" : "";
    const std::string how = looping + (sound.stopped ? ", stopped" : "");
    const std::string length = TimeText(sound.length_ms);
    bars.push_back(
        {sound.begin, sound.end, fmt::format("{} {}{}", FileName(sound.path), length, looping),
         "sound",
         SpanTitle(fmt::format("{}, {}{}", sound.path, length, how), sound.begin, sound.end)});
  }
  if (!bars.empty()) lanes.AddBars("sound", "wave files", bars);
}

void AddVolume(Lanes& lanes, const Timeline& timeline) {
  if (timeline.volume.empty()) return;
  constexpr double kLoudest = 0xFFFF;
  std::vector<Level> left;
  std::vector<Level> right;
  for (const Level& level : timeline.volume) {
    left.push_back({level.time, level.value & 0xFFFF});
    right.push_back({level.time, level.value >> 16});
  }
  const auto text = [](std::uint32_t half) { return VolumeText(half << 16 | half); };
  const bool equal = std::ranges::equal(left, right, {}, &Level::value, &Level::value);
  lanes.AddSteps("volume", equal ? "wave-out level" : "wave-out, left", left, kLoudest, "volume",
                 text);
  if (!equal) lanes.AddSteps("volume", "wave-out, right", right, kLoudest, "volume", text);
}

void AddGain(Lanes& lanes, const Timeline& timeline) {
  if (timeline.gain.empty()) return;
  const std::uint32_t most = std::ranges::max(timeline.gain, {}, &Level::value).value;
  lanes.AddSteps("gain", "of the codec", timeline.gain, std::max(1.0, static_cast<double>(most)),
                 "gain", &NumberLabel);
}

void AddVibrations(Lanes& lanes, const Timeline& timeline) {
  std::vector<Bar> bars;
  for (const VibrationSpan& vibration : timeline.vibrations) {
    const std::string text =
        fmt::format("preset {} {}", vibration.preset, TimeText(vibration.end - vibration.begin));
    bars.push_back(
        {vibration.begin, vibration.end, text, "vibration",
         SpanTitle("vibrates with preset " + vibration.preset, vibration.begin, vibration.end)});
  }
  if (!bars.empty()) lanes.AddBars("vibration", "presets", bars);
}

void AddLeds(Lanes& lanes, const Timeline& timeline) {
  for (const LedLine& led : timeline.leds) {
    std::vector<Bar> bars;
    for (const LedSpan& span : led.spans) {
      const std::string what = span.blinks ? "blinks" : "on";
      bars.push_back(
          {span.begin, span.end, fmt::format("{} {}", what, TimeText(span.end - span.begin)),
           span.blinks ? "led blinks" : "led",
           SpanTitle(what + (span.open ? ", at the end still" : ""), span.begin, span.end)});
    }
    lanes.AddBars("LED " + led.number, "light", bars);
  }
}

struct PartRow {
  const char* title;
  std::vector<void (*)(Lanes& lanes, const Timeline& timeline)> add;
};

Lanes LanesOf(const Timeline& timeline) {
  static const std::vector<PartRow> parts{
      {"expectations and events", {&AddExpectations, &AddOutside}},
      {"processes", {&AddProcesses}},
      {"mutexes", {&AddMutexes}},
      {"sound", {&AddSounds, &AddVolume, &AddGain}},
      {"lights and vibration", {&AddVibrations, &AddLeds}},
  };
  Lanes lanes(timeline);
  for (const PartRow& part : parts) {
    lanes.BeginPart(part.title);
    for (const auto add : part.add) add(lanes, timeline);
  }
  return lanes;
}

}  // namespace

std::string ProcessColour(const Timeline& timeline, std::uint32_t process) {
  constexpr std::size_t kColours = 6;
  const auto found = timeline.process_places.find(process);
  if (found == timeline.process_places.end()) return {};
  return fmt::format("p{}", found->second % kColours);
}

std::string ChartHtml(const Timeline& timeline) {
  return LanesOf(timeline).Html();
}

std::string ChartPicture(const Timeline& timeline, std::string_view head) {
  return LanesOf(timeline).Picture(head);
}

}  // namespace palsim

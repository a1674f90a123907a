// A run on a time axis: what is made of a journal, how long gaps are cut, the page, and the sound.
#include "tools/palsim/timeline/timeline.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>

#include "platform/sim/hardware/wave_file.h"
#include "tests/support/device_test.h"
#include "tools/palsim/run_record.h"
#include "tools/palsim/timeline/page.h"
#include "tools/palsim/timeline/sound_of_run.h"
#include "tools/palsim/timeline/svg.h"
#include "tools/palsim/timeline/text.h"
#include "tools/palsim/timeline/time_scale.h"
#include "tools/palsim/timeline/trace_events.h"

namespace {

using palsim::MakeTimeline;
using palsim::Timeline;
using palsim::TimeScale;

Timeline FromJournal(const std::string& lines, unsigned end_ms) {
  std::istringstream text("= run Two <tones>\n= device rm21: a handheld\n= start 5000\n= end " +
                          std::to_string(5000 + end_ms) + "\n= volume 2863311530\n= gain 50\n" +
                          lines);
  return MakeTimeline(palsim::ReadRuns(text).at(0));
}

constexpr const char* kTwoBeeps =
    "     5.000 p1 t1 process a.exe started\n"
    "     5.000 p2 t1 process b.exe started\n"
    "     5.000 p1 t2 call PALBEEPKeyClick()\n"
    "     5.000 p1 t2 mutex M taken\n"
    "     5.000 p1 t2 audio volume 0x80004000\n"
    "     5.000 p1 t2 audio sound begins \\a b.wav 100 ms\n"
    "     5.020 p2 t2 call PALBEEPKeyClick()\n"
    "     5.060 p1 t1 process a.exe killed\n"
    "     5.060 p1 t2 mutex M abandoned\n"
    "     5.060 p1 t2 audio sound stops \\a b.wav\n"
    "     5.060 p2 t2 mutex M taken\n"
    "     5.060 p2 t2 trace 0xC3EB0000 <b> & \"quotes\"\n"
    "     5.060 p2 t2 audio sound begins \\loop.wav 40 ms, looping\n"
    "     5.060 p2 t2 mutex M released\n"
    "     5.060 p2 t2 call PALBEEPKeyClick() = 0x00000000 S_OK\n"
    "     5.070 p0 t0 registry HKEY_LOCAL_MACHINE\\K \"Headset\"=dword:00000001\n"
    "     5.070 p2 t1 vibration preset 2 for 250 ms\n"
    "     5.070 p2 t1 led LED 3 on\n"
    "     5.100 p2 t1 led LED 3 blinks\n"
    "    35.100 p2 t1 led LED 3 off\n"
    "    35.100 p2 t1 process b.exe ended\n";

TEST(TimelineModel, KnowsWhoDidWhatWhen) {
  const Timeline timeline = FromJournal(kTwoBeeps, 30100);
  ASSERT_EQ(timeline.processes.size(), 2u);
  EXPECT_TRUE(timeline.processes[0].killed);
  EXPECT_EQ(timeline.processes[0].end, 60u);
  EXPECT_EQ(timeline.processes[0].calls.at(0).result, "") << "it did not return";
  EXPECT_EQ(timeline.processes[1].calls.at(0).result, "0x00000000 S_OK");
  ASSERT_EQ(timeline.mutexes.size(), 1u);
  EXPECT_TRUE(timeline.mutexes[0].holds.at(0).abandoned);
  ASSERT_EQ(timeline.mutexes[0].waits.size(), 1u);
  EXPECT_EQ(timeline.mutexes[0].waits[0].process, 2u);
  EXPECT_EQ(timeline.mutexes[0].waits[0].begin, 20u);
  EXPECT_EQ(timeline.mutexes[0].waits[0].end, 60u);
  ASSERT_EQ(timeline.sounds.size(), 2u);
  EXPECT_EQ(timeline.sounds[0].path, "\\a b.wav");
  EXPECT_TRUE(timeline.sounds[0].stopped);
  EXPECT_EQ(timeline.sounds[1].end, 30100u) << "it loops to the end";
  EXPECT_EQ(timeline.volume.at(0).value, 0xAAAAAAAAu);
  EXPECT_EQ(timeline.volume.at(1).value, 0x80004000u);
  EXPECT_EQ(timeline.vibrations.at(0).end, 320u);
  ASSERT_EQ(timeline.leds.at(0).spans.size(), 2u);
  EXPECT_TRUE(timeline.leds[0].spans[1].blinks);
  EXPECT_EQ(timeline.leds[0].spans[1].begin, 100u);
  ASSERT_EQ(timeline.outside.size(), 2u);
  EXPECT_EQ(timeline.outside[0].text, "a.exe killed");
}

TEST(TimelineModel, KnowsAWaitInVainFromTheEventLog) {
  const Timeline timeline = FromJournal(
      "     5.000 p1 t1 mutex M taken\n"
      "     7.500 p2 t1 trace 0xC3EB0000 PALWaitForMutex - ERROR timeout. hMutex: 0x4, ret: 0x102, "
      "dur: 2000\\r\\n\n",
      3000);
  ASSERT_EQ(timeline.mutexes.at(0).waits.size(), 1u);
  EXPECT_TRUE(timeline.mutexes[0].waits[0].in_vain);
  EXPECT_EQ(timeline.mutexes[0].waits[0].begin, 500u);
}

// Lines of a journal with wrong times, in any order, cut and with any bytes in them.
std::string DamagedJournal(std::mt19937& random) {
  constexpr std::array kTimes{"0", "5000", "5060", "18446744073709551", "junk", "-1"};
  const auto below = [&](std::size_t count) { return random() % count; };
  std::vector<std::string> lines;
  std::istringstream text(kTwoBeeps);
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  std::string journal = "= run x\n";
  for (const char* heading : {"start", "end", "volume", "gain"}) {
    journal += fmt::format("= {} {}\n", heading, kTimes.at(below(kTimes.size())));
  }
  for (std::size_t count = below(40); count > 0; --count) {
    std::string line = lines.at(below(lines.size()));
    if (below(3) == 0) line.replace(0, 6, kTimes.at(below(kTimes.size())));
    if (below(4) == 0) line.at(below(line.size())) = static_cast<char>(random());
    if (below(8) == 0) line.resize(below(line.size()));
    journal += line + '\n';
  }
  return journal;
}

TEST(TimelineModel, HasAPictureOfAnyJournal) {
  std::vector<std::string> journals{
      "= run empty\n= start 5000\n= end 5000\n     0.000 p1 t1 process a.exe started\n",
      "= run back\n= start 5000\n= end 0\n", "     9.000 p1 t1 led LED 3 on\n"};
  std::mt19937 random(1);  // the same journals each time
  while (journals.size() < 300) journals.push_back(DamagedJournal(random));
  for (const std::string& journal : journals) {
    std::istringstream file(journal);
    const Timeline timeline = MakeTimeline(palsim::ReadRuns(file).at(0));
    EXPECT_NE(TimelineText(timeline), "");
    const std::string page = TimelinePage(timeline);
    for (const char* wrong : {"nan", "inf\"", "width=\"-"}) {
      EXPECT_EQ(page.find(wrong), std::string::npos) << wrong << "\n" << journal;
    }
  }
}

TEST(RunRecords, KeepRunsApart) {
  palsim::RunRecord run;
  run.title = "one\ntwo";
  run.volume = 7;
  run.entries.push_back({.time_ms = 3, .process_id = 1, .thread_id = 1, .text = "a started"});
  std::stringstream file("     1.000 p1 t1 process old started\nno entry\n");
  file.seekp(0, std::ios::end);
  palsim::WriteRun(file, run);
  run.volume.reset();
  palsim::WriteRun(file, run);
  const std::vector<palsim::RunRecord> runs = palsim::ReadRuns(file);
  ASSERT_EQ(runs.size(), 3u);
  EXPECT_EQ(runs[0].start_ms, 1000u);
  EXPECT_EQ(runs[1].title, "one\\ntwo");
  EXPECT_EQ(runs[1].volume, 7u);
  EXPECT_EQ(runs[1].entries.size(), 1u);
  EXPECT_FALSE(runs[2].volume.has_value());
}

TEST(TimelineScale, CutsWhatIsLongAndIdleAlone) {
  struct Case {
    std::vector<std::uint64_t> moments;
    std::vector<bool> cut;
  };
  for (const Case& test : {
           Case{{0, 100, 200, 300}, {false, false, false}},
           Case{{0, 100, 30100, 30200}, {false, true, false}},
           Case{{0, 100, 2100, 32100, 32200}, {false, true, true, false}},
           Case{{0, 1000, 2000, 3000}, {false, false, false}},
           Case{{0, 100, 450, 460}, {false, false, false}},
           Case{{0, 5000}, {false}},
           Case{{0}, {}},
       }) {
    const TimeScale scale(test.moments, {.width = 600, .least_interval = 10, .gap = 50});
    std::vector<bool> cut;
    for (const TimeScale::Interval& interval : scale.intervals()) {
      cut.push_back(interval.cut);
      EXPECT_GE(interval.to - interval.from, interval.cut ? 50 : 10);
      EXPECT_DOUBLE_EQ(scale.At(interval.end), interval.to);
    }
    EXPECT_EQ(cut, test.cut);
    EXPECT_LT(scale.width(), 800);
  }
}

TEST(TimelineScale, TicksKeepApartAndOutOfCuts) {
  const TimeScale scale({0, 100, 110, 111, 30100, 30200, 99000},
                        {.width = 600, .least_interval = 10, .gap = 50});
  const std::vector<TimeScale::Tick> ticks = scale.Ticks(7);
  ASSERT_GE(ticks.size(), 3u);
  EXPECT_EQ(ticks[0].time, 0u);
  EXPECT_TRUE(std::ranges::any_of(ticks, [](const auto& tick) { return tick.time == 30100; }))
      << "where the axis goes on";
  for (std::size_t index = 0; index < ticks.size(); ++index) {
    const double end = ticks[index].at + 7.0 * static_cast<double>(ticks[index].text.size());
    const double next = index + 1 < ticks.size() ? ticks[index + 1].at : end;
    EXPECT_LE(end, next) << ticks[index].text;
    for (const TimeScale::Interval& interval : scale.intervals()) {
      const bool overlaps = end > interval.from && ticks[index].at < interval.to;
      EXPECT_FALSE(interval.cut && overlaps) << ticks[index].text;
    }
  }
}

TEST(TimelinePage, StandsAloneAndEscapesWhatItShows) {
  const std::string page = TimelinePage(FromJournal(kTwoBeeps, 30100));
  EXPECT_NE(page.find("<h1>Two &lt;tones&gt;</h1>"), std::string::npos);
  EXPECT_NE(page.find("&lt;b&gt; &amp; &quot;quotes&quot;"), std::string::npos);
  for (const char* foreign : {"<script", "http:", "https:", "@import", "<b> &", "nan", "inf\""}) {
    EXPECT_EQ(page.find(foreign), std::string::npos) << foreign;
  }
  for (const char* shown :
       {"a.exe killed", "Headset = 1", "<small>b.exe</small>", ">waits<", "blinks 30 s",
        "loop.wav 40 ms, looping", "preset 2 250 ms", "prefers-color-scheme"}) {
    EXPECT_NE(page.find(shown), std::string::npos) << shown;
  }
}

// Three processes share a mutex, a call fails, the device restarts, and an expectation fails.
constexpr const char* kGoneWrong =
    "     5.000 p1 t1 process a.exe started\n"
    "     5.000 p2 t1 process b.exe started\n"
    "     5.000 p3 t1 process c.exe started\n"
    "     5.000 p1 t1 mutex M taken\n"
    "     5.010 p2 t1 call PALLEDGrLedOn()\n"
    "     5.010 p3 t1 call PALLEDGrLedOn()\n"
    "     5.100 p1 t1 mutex M released\n"
    "     5.100 p2 t1 mutex M taken\n"
    "     5.200 p2 t1 mutex M released\n"
    "     5.200 p3 t1 mutex M taken\n"
    "     5.200 p2 t1 call PALLEDGrLedOn() = 0x80070005 PAL_E_ACCESS_DENIED\n"
    "     5.200 p1 t1 process a.exe detaches\n"
    "     5.200 p1 t1 mutex N taken\n"
    "     5.200 p1 t1 mutex N released\n"
    "     5.200 p1 t1 process a.exe ended\n"
    "     5.200 p0 t0 expect s:7 held, seen at 100 ms: expected mutex 'M released' at 100 ms\n"
    "     5.200 p0 t0 expect s:8 failed: expected <b> to return S_OK; there was E\n"
    "     5.300 p2 t1 power restart, warm\n"
    "     5.300 p2 t1 process b.exe killed\n"
    "     5.300 p3 t1 process c.exe killed\n"
    "     5.300 p4 t1 process a.exe started\n"
    "     5.300 p4 t1 call PALDevInfo_GetDeviceIdentificationText()\n"
    "     5.400 p4 t1 call PALDevInfo_GetDeviceIdentificationText() = 0x00000000 S_OK\n";

TEST(TimelineModel, KnowsWhatFailedAndWhatARestartEnded) {
  const Timeline timeline = FromJournal(kGoneWrong, 400);
  EXPECT_TRUE(timeline.Failed());
  EXPECT_EQ(timeline.Verdict(), "1 of 2 expectations do not hold; 1 call failed");
  ASSERT_EQ(timeline.expectations.size(), 2u);
  EXPECT_EQ(timeline.expectations[0].time, 100u) << "where the line stood";
  EXPECT_EQ(timeline.expectations[1].time, 200u) << "where it was looked for";
  ASSERT_EQ(timeline.restarts.size(), 1u);
  EXPECT_TRUE(timeline.outside.empty()) << "nobody was killed but by the restart";
  EXPECT_EQ(timeline.processes.at(2).calls.at(0).Text(), "PALLEDGrLedOn() did not return");
  ASSERT_EQ(timeline.mutexes.size(), 1u) << "what is taken for a detach alone is no lane";
  EXPECT_EQ(timeline.mutexes[0].Users(), (std::vector<std::uint32_t>{1, 2, 3}));
  EXPECT_EQ(timeline.mutexes[0].holds.at(2).end, 300u);
}

bool HasAll(const std::string& text, std::initializer_list<const char*> parts) {
  return std::ranges::all_of(parts, [&](const char* part) {
    const bool found = text.find(part) != std::string::npos;
    EXPECT_TRUE(found) << part;
    return found;
  });
}

TEST(TimelinePage, TellsHowItWent) {
  const std::string page = TimelinePage(FromJournal(kGoneWrong, 400));
  EXPECT_TRUE(HasAll(
      page, {"<p class=\"verdict failed\">✗ 1 of 2", "class=\"bar failed p1\"",
             ">✗ PALLEDGrLedOn() = PAL_E_ACCESS_DENIED<", "class=\"bar unfinished p2\"",
             ">⟳ restart, warm<", "<small>a.exe</small>", "<small>c.exe</small>",
             "<li id=\"x16\" class=\"failed\">✗ s:8 failed: expected &lt;b&gt;",
             "<a href=\"#failed200\">", "<a href=\"#x16\" id=\"failed200\">", "href=\"#e16\"",
             "<tr id=\"e16\">", "<a href=\"#x15\" id=\"held100\">", "<summary>mutexes</summary>"}));
}

// The place behind some words.
double NumberBehind(const std::string& text, const std::string& words, std::size_t from) {
  const std::size_t found = text.find(words, from);
  return found == std::string::npos ? 0 : std::stod(text.substr(found + words.size()));
}

TEST(TimelinePage, CutsNoLabelAndDrawsNoLineThroughOne) {
  const std::string page = TimelinePage(FromJournal(kGoneWrong, 400));
  const double width = NumberBehind(page, "<svg class=\"plot\" width=\"", 0);
  const std::size_t label = page.rfind("<text class=\"out p3");
  ASSERT_NE(label, std::string::npos);
  const double begin = NumberBehind(page, " x=\"", label);
  EXPECT_LE(begin + palsim::TextWidth("PALDevInfo_GetDeviceIdentificationText() = S_OK"), width);
  const std::size_t plate = page.rfind("<rect class=\"plate\"", label);
  ASSERT_NE(plate, std::string::npos);
  EXPECT_LE(NumberBehind(page, " x=\"", plate), begin);
}

TEST(TimelineText, HasALineForEachOwnerAndFitsTheTerminal) {
  const Timeline timeline = FromJournal(kGoneWrong, 400);
  EXPECT_TRUE(HasAll(TimelineText(timeline),
                     {"✗ 1 of 2 expectations", "║", "\n  M ", "\n    a.exe", "\n    b.exe",
                      "\n    c.exe", "✗ PALLEDGrLedOn() returns", "the scenario   ✓ s:7 held"}));
  for (const std::size_t columns : {40u, 80u, 160u}) {
    std::istringstream lines(TimelineText(timeline, columns));
    for (std::string line; std::getline(lines, line) && line.find("before") == std::string::npos;) {
      EXPECT_LE(palsim::TextWidth(line) / palsim::TextWidth(" "),
                static_cast<double>(std::max<std::size_t>(columns, 62)))
          << line;
    }
  }
}

using TraceEvents = std::vector<nlohmann::json>;

// Readers sort by time and keep the file's order of one time; then each track's spans must nest.
void CheckSpans(TraceEvents events) {
  std::ranges::stable_sort(events, {},
                           [](const auto& event) { return event.at("ts").template get<int>(); });
  std::map<std::pair<int, int>, std::vector<std::string>> open;
  for (const auto& event : events) {
    auto& spans = open[{event.at("pid"), event.at("tid")}];
    const std::string name =
        event.at("name").get<std::string>() + event.value("args", nlohmann::json()).dump();
    if (event.at("ph") == "B") spans.push_back(name);
    if (event.at("ph") != "E") continue;
    ASSERT_FALSE(spans.empty()) << event;
    EXPECT_EQ(spans.back(), name) << event;
    spans.pop_back();
  }
  for (const auto& [track, spans] : open) EXPECT_TRUE(spans.empty()) << track.second;
}

TEST(TimelineTrace, KeepsTheRulesOfTheFormat) {
  for (const char* journal : {kTwoBeeps, kGoneWrong}) {
    const auto file = nlohmann::json::parse(TraceEventsJson(FromJournal(journal, 30100)));
    const TraceEvents events = file.at("traceEvents");
    std::map<std::string, int> phases;
    std::set<int> named;
    for (const auto& event : events) {
      const std::string phase = event.at("ph");
      ++phases[phase];
      EXPECT_FALSE(event.at("name").get<std::string>().empty());
      EXPECT_TRUE(event.at("ts").is_number_unsigned());
      EXPECT_GT(event.at("pid"), 0) << "that is the idle process";
      EXPECT_TRUE(phase != "C" || event.at("args").begin()->is_number());
      EXPECT_TRUE(phase != "i" || event.at("s") == "g" || event.at("s") == "t");
      if (event.at("name") == "process_name") named.insert(event.at("pid").get<int>());
      EXPECT_TRUE(phase == "M" || named.contains(event.at("pid"))) << event;
    }
    for (const char* phase : {"M", "B", "E", "C", "i"}) EXPECT_GT(phases[phase], 0) << phase;
    CheckSpans(events);
  }
  const std::string text = TraceEventsJson(FromJournal(kGoneWrong, 400));
  EXPECT_TRUE(HasAll(
      text, {R"("ts":10000,"name":"✗ PALLEDGrLedOn")", R"("ts":200000,"name":"✗ PALLEDGrLedOn")",
             R"("name":"restart, warm","s":"g")", R"("name":"c.exe")"}));
}

TEST(TimelinePage, LabelsALevelThatLastsNoTime) {
  const std::string page = TimelinePage(
      FromJournal("     5.100 p0 t0 audio gain 85\n     5.100 p0 t0 audio gain 60\n", 30100));
  EXPECT_NE(page.find(">85, 60<"), std::string::npos);
}

TEST(TimelineText, ShowsLevelsBeforeAndAfterAndEveryEffectInOrder) {
  const std::string text = TimelineText(FromJournal(kTwoBeeps, 30100));
  std::size_t from = 0;
  for (const char* part :
       {"Two <tones>", "before  volume 67 % (0xAAAAAAAA), gain 50", "calls PALBEEPKeyClick()",
        "volume left 25 %, right 50 % (0x80004000)", "60 ms  a.exe          is killed",
        "PALBEEPKeyClick() returns 0x00000000 S_OK", "vibrates: preset 2 for 250 ms",
        "30.100 s  b.exe          LED 3 off", "after  volume left 25 %, right 50 %"}) {
    const std::size_t found = text.find(part, from);
    ASSERT_NE(found, std::string::npos) << part << "\n" << text;
    from = found;
  }
}

// A wave file of 8 bits, mono, with one sample value.
std::vector<std::uint8_t> Tone(std::uint8_t sample, std::uint8_t frames) {
  std::vector<std::uint8_t> file{'R', 'I', 'F',  'F', 0,   0,   0,    0,      'W', 'A', 'V',
                                 'E', 'f', 'm',  't', ' ', 16,  0,    0,      0,   1,   0,
                                 1,   0,   0xE8, 3,   0,   0,   0xE8, 3,      0,   0,   1,
                                 0,   8,   0,    'd', 'a', 't', 'a',  frames, 0,   0,   0};
  file[4] = static_cast<std::uint8_t>(36 + frames);
  file.insert(file.end(), frames, sample);
  return file;
}

class RunSoundTest : public ::testing::Test {
 protected:
  // The sample of a channel at a time.
  [[nodiscard]] int At(unsigned ms, unsigned channel) const {
    const std::size_t frame = ms * palsim::kSoundRate / 1000 + 1;
    const std::size_t at = 44 + frame * 4 + channel * 2;
    return static_cast<std::int16_t>(static_cast<std::uint8_t>(wav.at(at)) |
                                     static_cast<std::uint8_t>(wav.at(at + 1)) << 8);
  }
  void Render(const std::string& journal, unsigned end_ms) {
    files.Write("\\loud.wav", Tone(192, 100));  // half of the loudest, 100 ms
    files.Write("\\low.wav", Tone(64, 100));
    wav.clear();
    sound = palsim::WriteSoundOfRun(FromJournal(journal, end_ms), files,
                                    [this](std::string_view bytes) { wav += bytes; });
  }

  sim::FileSystem files;
  std::string wav;
  palsim::RunSound sound;
};

TEST_F(RunSoundTest, HasTheLengthOfTheRunAndTheLevelsOfItsVolume) {
  Render(
      "     5.000 p1 t1 audio volume 0x8000FFFF\n"
      "     5.100 p1 t1 audio sound begins \\loud.wav 100 ms\n"
      "     5.200 p1 t1 audio sound ends \\loud.wav\n"
      "     5.300 p1 t1 audio volume 0xFFFF0000\n"
      "     5.300 p1 t1 audio sound begins \\loud.wav 100 ms\n"
      "     5.350 p1 t1 audio sound stops \\loud.wav\n",
      500);
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(wav.data());
  const auto wave = sim::ReadWaveFile({bytes, wav.size()});
  ASSERT_TRUE(wave.has_value());
  EXPECT_EQ(wave->length_ms(), 500u);
  EXPECT_EQ(wave->channels, 2);
  struct Case {
    unsigned ms;
    int left, right;
  };
  for (const Case& test : {Case{50, 0, 0}, Case{150, 16384, 8192}, Case{250, 0, 0},
                           Case{320, 0, 16384}, Case{370, 0, 0}, Case{450, 0, 0}}) {
    EXPECT_EQ(At(test.ms, 0), test.left) << test.ms;
    EXPECT_EQ(At(test.ms, 1), test.right) << test.ms;
  }
}

TEST_F(RunSoundTest, RepeatsLoopsMixesAndSaysWhatIsMissing) {
  Render(
      "     5.000 p1 t1 audio volume 0xFFFFFFFF\n"
      "     5.000 p1 t1 audio sound begins \\loud.wav 100 ms, looping\n"
      "     5.150 p2 t1 audio sound begins \\low.wav 100 ms\n"
      "     5.250 p2 t1 audio sound ends \\low.wav\n"
      "     5.300 p3 t1 audio sound begins \\none.wav 10 ms\n"
      "     5.400 p1 t1 audio sound stops \\loud.wav\n",
      500);
  EXPECT_EQ(At(120, 0), 16384) << "the second turn of the loop";
  EXPECT_EQ(At(200, 0), 0) << "both together";
  EXPECT_EQ(At(390, 0), 16384);
  EXPECT_EQ(At(410, 0), 0) << "stopped";
  EXPECT_EQ(sound.missing, std::vector<std::string>{"\\none.wav"});
  EXPECT_EQ(sound.cut_at_ms, std::nullopt);
}

TEST_F(RunSoundTest, OfALongRunHoldsWhatTheFormatHasRoomFor) {
  std::uint64_t size = 0;
  std::size_t largest = 0;
  std::string head;
  const auto count = [&](std::string_view bytes) {
    if (size == 0) head = bytes;
    size += bytes.size();
    largest = std::max(largest, bytes.size());
  };
  sound = palsim::WriteSoundOfRun(FromJournal("", 0xFFFFFFF), files, count);  // three days
  constexpr std::uint64_t kMost = 0xFFFFFFFF;
  EXPECT_LE(size, kMost + 8) << "the first size in the file is of what stands behind it";
  EXPECT_GT(size, kMost);
  EXPECT_LT(largest, 1000000u) << "memory has to hold it";
  const auto size_at = [&](std::size_t at) {
    std::uint64_t number = 0;
    for (std::size_t index = 4; index-- > 0;) {
      number = number << 8 | static_cast<std::uint8_t>(head.at(at + index));
    }
    return number;
  };
  EXPECT_EQ(size_at(4) + 8, size);
  EXPECT_EQ(size_at(40) + 44, size);
  EXPECT_EQ(sound.cut_at_ms, (size - 44) / 4 * 1000 / palsim::kSoundRate);
}

}  // namespace

// The search for runs in which a property does not hold: that each property sees what it is about,
// that worlds repeat themselves and are made small, and that it finds nothing in the library.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "tools/palsim/explore/report.h"
#include "tools/palsim/explore/shrink.h"
#include "tools/palsim/scenario/scenario.h"
#include "tools/palsim/usage_error.h"

namespace {

using palsim::CallOutcome;
using palsim::Move;
using palsim::Moves;
using palsim::Report;
using palsim::WorldOptions;

#ifdef SHORT_SWEEP  // a call takes many times as long
constexpr std::uint64_t kSeeds = 20;
#else
constexpr std::uint64_t kSeeds = 150;
#endif

Report PlaySeeds(std::uint64_t first, const WorldOptions& options) {
  Report report;
  for (std::uint64_t at = 0; at < kSeeds; ++at) report.Add(palsim::PlaySeed(first + at, options));
  return report;
}

void ExpectNothingFound(const Report& report) {
  EXPECT_TRUE(report.findings.empty()) << palsim::ReportText(report);
  EXPECT_EQ(report.seeds, kSeeds);
  EXPECT_GT(report.calls, 0U);
}

TEST(Explore, FindsNothingFromSeedsThatAreKnown) {
  ExpectNothingFound(PlaySeeds(1, {.faults = "rare"}));
}

TEST(Explore, FindsNothingUnderManyFaultsAndMeetsTheConditionOfEachProperty) {
  const Report report = PlaySeeds(1, {.faults = "often"});
  ExpectNothingFound(report);
#ifndef SHORT_SWEEP
  for (const auto& [property, count] : report.met) {
    if (property == "programs-hold") continue;  // there is no program
    EXPECT_GT(count, 0U) << property;
  }
#endif
}

TEST(Explore, FindsNothingFromFreshSeeds) {
  const std::uint64_t seed = std::random_device()();
  std::printf("fresh seeds from %llu on\n", static_cast<unsigned long long>(seed));
  ExpectNothingFound(PlaySeeds(seed, {.faults = "often"}));
}

TEST(Explore, WritesMovesThatAScenarioCanSay) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    std::string text;
    for (const Move& move : palsim::MakeWorld(seed, {}).moves) text += move.Text() + "\n";
    EXPECT_NO_THROW(static_cast<void>(palsim::ParseScenario("moves", text))) << seed;
  }
}

// What a library with a fault would do in a call, or leave behind it.
struct Fault {
  const char* property;
  const char* name;  // of the export
  std::vector<std::string> arguments;
  std::uint32_t code;  // that it answers without the fault
  void (*leave)(sim::Device& device, CallOutcome& outcome);
};

const Fault kFaults[] = {
    {"answers-are-listed",
     "PALBEEPGetVolume",
     {"out"},
     0,
     [](sim::Device&, CallOutcome& outcome) { outcome.code = 0x80041234; }},
    {"errors-are-of-calls",
     "PALBEEPGetVolume",
     {"out"},
     0,
     [](sim::Device&, CallOutcome& outcome) { outcome.code = 0x8007001F; }},
    {"waits-are-documented",
     "PALBEEPGetVolume",
     {"out"},
     0,
     [](sim::Device& device, CallOutcome&) { device.Advance(600'000); }},
    {"room-is-kept",
     "PALSysinfo_GetSerialNumber",
     {"20", "40"},
     0,
     [](sim::Device&, CallOutcome& outcome) { outcome.within_room = false; }},
    {"levels-come-back",
     "PALBEEPKeyClick",
     {},
     0,
     [](sim::Device& device, CallOutcome&) { ++device.hardware().audio.levels.volume; }},
    {"wrong-passwords-are-wrong",
     "PALSecurity_CheckPx",
     {"nobody", "wrong"},
     1,
     [](sim::Device&, CallOutcome& outcome) { outcome.code = 0; }},
};

bool IsSeen(const Fault& fault, bool is_there) {
  sim::Device device;
  sim::LoadDevice(device, PROJECT_DIR "/devices/rm21");
  const sim::Process process(device, "scanner.exe");
  palsim::Watch watch(device, {&palsim::FindProperty(fault.property), 1});
  CallOutcome outcome;
  outcome.code = fault.code;
  const auto call = watch.CallBegins(process, palsim::ExportIndex(fault.name), fault.arguments);
  if (is_there) fault.leave(device, outcome);
  watch.CallEnds(call, &outcome);
  watch.StatementEnds();
  return watch.violation().has_value();
}

TEST(Properties, SeeWhatTheyAreAbout) {
  for (const Fault& fault : kFaults) {
    EXPECT_TRUE(IsSeen(fault, true)) << fault.property;
    EXPECT_FALSE(IsSeen(fault, false)) << fault.property;
  }
}

TEST(Properties, HaveNamesOfTheirOwnAndASentence) {
  std::vector<std::string_view> names;
  for (const palsim::PropertyRow& row : palsim::Properties()) {
    EXPECT_EQ(&palsim::FindProperty(row.name), &row);
    EXPECT_TRUE(row.sentence.ends_with('.')) << row.name;
    EXPECT_EQ(std::ranges::count(names, row.name), 0) << row.name;
    names.push_back(row.name);
  }
  EXPECT_THROW(static_cast<void>(palsim::FindProperty("no-such")), palsim::UsageError);
}

Moves NumberedMoves(std::size_t count) {
  Moves moves;
  for (std::size_t at = 0; at < count; ++at) {
    moves.push_back({.process = at % 2 == 0 ? "one" : "two", .text = std::to_string(at)});
  }
  return moves;
}

TEST(Shrink, KeepsWhatAViolationNeedsAndNoMore) {
  const auto has = [](const Moves& moves, const char* text) {
    return std::ranges::count(moves, text, &Move::text) != 0;
  };
  const Moves small = palsim::Shrink(NumberedMoves(200), [&](const Moves& moves) {
    return has(moves, "17") && has(moves, "18") && has(moves, "163");
  });
  ASSERT_EQ(small.size(), 3U);
  EXPECT_EQ(small[0].text, "17");
  EXPECT_EQ(small[1].text, "18");
  EXPECT_EQ(small[2].text, "163");
  // Nothing is needed of one of the two processes.
  unsigned asked = 0;
  const Moves one = palsim::Shrink(NumberedMoves(200), [&](const Moves& moves) {
    ++asked;
    return has(moves, "18");
  });
  EXPECT_EQ(one.size(), 1U);
  EXPECT_LT(asked, 40U);
}

Report Found(std::uint64_t seed, const char* how) {
  Report report{.seeds = 1, .calls = 10, .met = {{"p", 2}}, .more = {}, .findings = {}};
  report.findings = {{.property = "p", .seed = seed, .how = how, .command = {}}};
  return report;
}

TEST(Report, AddsUpAndKeepsTheFirstFindingsOfAProperty) {
  Report report = Found(1, "so");
  report.Add(Found(2, "so"));
  report.Add(Found(3, "otherwise"));
  report.Add(Found(4, "otherwise again"));
  report.Add(Found(5, "and again"));
  EXPECT_EQ(report.seeds, 5U);
  EXPECT_EQ(report.calls, 50U);
  EXPECT_EQ(report.met.at("p"), 10U);
  ASSERT_EQ(report.findings.size(), 3U);
  EXPECT_EQ(report.findings[1].seed, 3U);
  EXPECT_EQ(report.more.at("p"), 2U);
}

}  // namespace

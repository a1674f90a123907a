// The search for runs in which a property does not hold: that it repeats itself, that it makes
// small what it finds, and that it finds nothing in the library.
#include "tools/palsim/explore/explore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>

#include "tools/palsim/explore/shrink.h"
#include "tools/palsim/scenario/scenario.h"
#include "tools/palsim/usage_error.h"

namespace {

using palsim::Finding;
using palsim::Move;
using palsim::Moves;
using palsim::Report;
using palsim::WorldOptions;

// The seeds from the first one on, for a time.
Report ExploreFor(std::chrono::milliseconds time, std::uint64_t first, palsim::FaultRate faults) {
  const auto end = std::chrono::steady_clock::now() + time;
  return palsim::ExploreSeeds({.faults = faults}, [&](std::uint64_t& seed) {
    seed = first++;
    return std::chrono::steady_clock::now() < end;
  });
}

void ExpectNothingFound(const Report& report) {
  for (const Finding& finding : report.findings) {
    ADD_FAILURE() << finding.command << "\n" << finding.how << "\n" << finding.scenario;
  }
  EXPECT_GT(report.calls, 0U);
}

constexpr std::chrono::seconds kTime{2};

TEST(Explore, FindsNothingFromSeedsThatAreKnown) {
  ExpectNothingFound(ExploreFor(kTime, 1, palsim::FaultRate::kRare));
  ExpectNothingFound(ExploreFor(kTime, 1, palsim::FaultRate::kOften));
}

TEST(Explore, FindsNothingFromFreshSeeds) {
  const std::uint64_t seed = std::random_device()();
  std::printf("fresh seeds from %llu on\n", static_cast<unsigned long long>(seed));
  ExpectNothingFound(ExploreFor(kTime, seed, palsim::FaultRate::kNone));
}

// All that a run leaves: what it counts, and what it says.
std::string Trail(std::uint64_t first, std::uint64_t last) {
  Report report = palsim::ExploreSeeds({.steps = 100, .faults = palsim::FaultRate::kOften},
                                       [&](std::uint64_t& seed) {
                                         seed = first;
                                         return first++ <= last;
                                       });
  report.seconds = 0;
  return palsim::ReportText(report);
}

TEST(Explore, GivesTheSameForTheSameSeed) {
  EXPECT_EQ(Trail(1, 30), Trail(1, 30));
  EXPECT_NE(Trail(1, 30), Trail(2, 31));
}

TEST(Explore, WritesMovesThatAScenarioCanSay) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    std::string text;
    for (const Move& move : palsim::MakeWorld(seed, {}).moves) text += move.Text() + "\n";
    EXPECT_NO_THROW(static_cast<void>(palsim::ParseScenario("moves", text))) << seed;
  }
}

#ifndef SHORT_SWEEP  // which takes many times as long
TEST(Explore, MeetsTheConditionOfEachProperty) {
  constexpr std::uint64_t kSeeds = 150;
  std::uint64_t next = 1;
  const Report report =
      palsim::ExploreSeeds({.faults = palsim::FaultRate::kOften}, [&](std::uint64_t& seed) {
        seed = next;
        return next++ <= kSeeds;
      });
  for (const auto& [property, count] : report.met) {
    if (property == "programs-hold") continue;  // there is no program
    EXPECT_GT(count, 0U) << property;
  }
}

#endif

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

TEST(Report, AddsUpAndKeepsOneFindingOfAKind) {
  Report first{.seeds = 2, .calls = 10, .seconds = 1.5, .met = {{"a", 1}}, .findings = {}};
  first.Add(
      Finding{.property = "p", .seed = 1, .how = "so", .command = {}, .scenario = {}, .lines = {}});
  Report second{.seeds = 3, .calls = 20, .seconds = 1, .met = {{"a", 4}, {"b", 1}}, .findings = {}};
  second.Add(
      Finding{.property = "p", .seed = 7, .how = "so", .command = {}, .scenario = {}, .lines = {}});
  second.Add(Finding{
      .property = "p", .seed = 8, .how = "otherwise", .command = {}, .scenario = {}, .lines = {}});
  first.Add(second);
  EXPECT_EQ(first.seeds, 5U);
  EXPECT_EQ(first.calls, 30U);
  EXPECT_EQ(first.met, (std::map<std::string, std::uint64_t>{{"a", 5}, {"b", 1}}));
  ASSERT_EQ(first.findings.size(), 2U);
  EXPECT_EQ(first.findings[0].seed, 1U);
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

}  // namespace

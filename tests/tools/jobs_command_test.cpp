// Jobs in processes of their own, and how they are shared out among machines.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>

#include "tools/palsim/jobs.h"
#include "tools/palsim/usage_error.h"

namespace {

using palsim::JobEnd;

TEST(Jobs, EndEachAsItDoesAndLoseNoOther) {
  const std::string large(300'000, 'x');  // more than a pipe holds
  std::map<std::size_t, JobEnd> ends;
  palsim::RunJobs(
      {.count = 9, .at_once = 3},
      [&](std::size_t index) -> std::string {
        if (index == 2) throw std::runtime_error("no device");
        if (index == 3) std::abort();
        if (index == 4) std::_Exit(7);
        return std::to_string(index) + large;
      },
      [&](std::size_t index, const JobEnd& end) { ends.emplace(index, end); });
  ASSERT_EQ(ends.size(), 9U);
  for (const std::size_t index : {0U, 1U, 5U, 6U, 7U, 8U}) {
    EXPECT_EQ(ends[index].error, "");
    EXPECT_TRUE(ends[index].answer == std::to_string(index) + large) << index;
  }
  EXPECT_EQ(ends[2].error, "no device");
  EXPECT_EQ(ends[3].error, "its process crashed: Aborted");
  EXPECT_EQ(ends[4].error, "its process ended with 7");

  const auto wait = [](std::size_t /*index*/) -> std::string {
    while (true) pause();
  };
  palsim::RunJobs({.count = 1, .most_seconds = 1}, wait, [](std::size_t, const JobEnd& end) {
    EXPECT_EQ(end.error, "it took longer than 1 s");
  });
}

TEST(Jobs, AreSharedOutOnceEach) {
  for (std::size_t index = 0; index < 20; ++index) {
    int machines = 0;
    for (const char* shard : {"1/3", "2/3", "3/3"}) {
      machines += palsim::ParseShard(shard).Has(index) ? 1 : 0;
    }
    EXPECT_EQ(machines, 1) << index;
  }
  EXPECT_EQ(palsim::ParseSeeds("3-4294967295").last, 4294967295U);
  EXPECT_EQ(palsim::ParseSeeds("7").first, 7U);
  EXPECT_EQ(palsim::ParseSeeds("7").last, 7U);
  for (const char* wrong : {"", "0/3", "4/3", "1/0", "1", "1/", "/3", "-1/3", "1/3x", "1-3",
                            "1/99999999999999999999"}) {
    EXPECT_THROW(static_cast<void>(palsim::ParseShard(wrong)), palsim::UsageError) << wrong;
  }
  for (const char* wrong : {"", "5-4", "-5", "5-", "1-2-3", "1/2", "0-4294967296", "x"}) {
    EXPECT_THROW(static_cast<void>(palsim::ParseSeeds(wrong)), palsim::UsageError) << wrong;
  }
}

}  // namespace

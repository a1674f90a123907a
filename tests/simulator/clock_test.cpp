// The simulated device's own rules: time and turns, named objects, processes that are ended.
#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

using SimClock = DeviceTest;

HANDLE NamedMutex(const WCHAR* name) {
  return CreateMutexW(nullptr, FALSE, name);
}

TEST_F(SimClock, WakesThreadsInTheOrderOfTheirDeadlines) {
  sim::Process process(device);
  std::vector<std::string> order;
  const auto sleeper = [&](const std::string& name, const std::vector<DWORD>& naps) {
    return process.Start([&order, name, naps] {
      for (const DWORD nap : naps) {
        Sleep(nap);
        order.push_back(name + std::to_string(GetTickCount()));
      }
    });
  };
  sleeper("a", {30, 30});
  sleeper("b", {10, 50, 5});
  sleeper("c", {60});
  device.RunUntilIdle();
  // At 60 all three are due. They go on in the order in which they began to wait.
  EXPECT_EQ(order, (std::vector<std::string>{"b10", "a30", "c60", "b60", "a60", "b65"}));
  EXPECT_EQ(device.now_ms(), 65u);
}

TEST_F(SimClock, ShuffledTurnsFollowFromTheSeed) {
  const auto run = [](std::uint32_t seed) {
    sim::Device shuffled;
    shuffled.ShuffleTurns(seed);
    sim::Process process(shuffled);
    std::string order;
    for (const char name : {'a', 'b', 'c'}) {
      process.Start([&order, name] {
        for (int call = 0; call < 8; ++call) {
          GetTickCount();
          order += name;
        }
      });
    }
    shuffled.RunUntilIdle();
    return order;
  };
  EXPECT_EQ(run(1), run(1));
  EXPECT_NE(run(1), "aaaaaaaabbbbbbbbcccccccc");
  EXPECT_NE(run(1), run(2));
}

TEST_F(SimClock, HandsAMutexOverInTheOrderOfArrival) {
  sim::Process first(device, "first.exe");
  sim::Process second(device, "second.exe");
  std::string order;
  const auto contender = [&](sim::Process& process, char name, DWORD arrives) {
    process.Start([&order, name, arrives] {
      const HANDLE mutex = NamedMutex(TEXT("M"));
      Sleep(arrives);
      EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
      EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0)
          << "a mutex is recursive for its owner";
      order += name;
      Sleep(100);
      EXPECT_NE(ReleaseMutex(mutex), FALSE);
      EXPECT_NE(ReleaseMutex(mutex), FALSE);
      EXPECT_EQ(ReleaseMutex(mutex), FALSE);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_OWNER));
      CloseHandle(mutex);
    });
  };
  contender(first, 'a', 3);
  contender(second, 'b', 1);
  contender(first, 'c', 2);
  device.RunUntilIdle();
  EXPECT_EQ(order, "bca");
  EXPECT_EQ(device.now_ms(), 301u);
}

TEST_F(SimClock, TimesOutAtTheDeadlineAndNotLater) {
  sim::Process process(device);
  process.Run([] {
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_EQ(WaitForSingleObject(event, 250), WAIT_TIMEOUT);
    EXPECT_EQ(GetTickCount(), 250u);
    SetEvent(event);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT) << "an automatic event resets itself";
    CloseHandle(event);
  });
}

TEST_F(SimClock, APulseReleasesThoseThatWaitAndNobodyElse) {
  sim::Process process(device);
  int released = 0;
  const auto wait = [&] {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, TEXT("E"));
    released += WaitForSingleObject(event, 1000) == WAIT_OBJECT_0;
    CloseHandle(event);
  };
  process.Start(wait);
  process.Start(wait);
  device.Advance(10);
  process.Run([] {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, TEXT("E"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    EventModify(event, EVENT_PULSE);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    CloseHandle(event);
  });
  device.RunUntilIdle();
  EXPECT_EQ(released, 2);
}

TEST_F(SimClock, ReportsADeadlockInsteadOfHanging) {
  sim::Process process(device);
  sim::Thread stuck = process.Start([] { Sleep(INFINITE); });
  EXPECT_FALSE(stuck.Join());
  EXPECT_FALSE(process.alive());
  EXPECT_EQ(device.TakeMisuse(),
            std::vector<std::string>{"caller.exe: deadlock: thread 2 waits for ever"});
}

// The wait's end and the release fall on the same moment. A waiter that times out must not own it.
TEST_F(SimClock, GivesNothingToAWaiterWhoseTimeIsUp) {
  sim::Process owner(device, "owner.exe");
  sim::Process late(device, "late.exe");
  owner.Start([] {
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, TEXT("M"));
    Sleep(2000);
    EXPECT_NE(ReleaseMutex(mutex), FALSE);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0) << "nobody else may have it";
    ReleaseMutex(mutex);
    CloseHandle(mutex);
  });
  late.Start([] {
    const HANDLE mutex = NamedMutex(TEXT("M"));
    EXPECT_EQ(WaitForSingleObject(mutex, 2000), WAIT_TIMEOUT);
    EXPECT_EQ(ReleaseMutex(mutex), FALSE);
    CloseHandle(mutex);
  });
  device.RunUntilIdle();
}

TEST_F(SimClock, KillsAMainThreadWhereItWaits) {
  sim::Process process(device, "victim.exe");
  device.PlanFault({.call = "GetTickCount", .kill = true});
  process.Start([] {
    Sleep(100);
    GetTickCount();
  });
  sim::Process other(device, "other.exe");
  other.Start([] {
    for (int nap = 0; nap < 50; ++nap) Sleep(1000);
  });
  EXPECT_THROW(
      process.Run([] { WaitForSingleObject(NamedMutex(TEXT("M")), INFINITE), Sleep(INFINITE); }),
      sim::ProcessKilled);
  EXPECT_EQ(device.now_ms(), 100u);
}

TEST_F(SimClock, EndsAProcessWhoseThreadsRun) {
  sim::Process process(device, "ending.exe");
  sim::Thread naps = process.Start([] {
    for (;;) Sleep(20000);
  });
  device.Advance(50000);
  process.End();
  EXPECT_TRUE(naps.ended());
  EXPECT_FALSE(naps.Join()) << "it did not come to its own end";
  EXPECT_EQ(device.now_ms(), 50000u);
}

}  // namespace

// What the simulated device answers to the questions that palcheck.exe puts to a handheld.
#include <fmt/format.h>

#include <string>

#include "platform/conformance/rows.h"
#include "platform/sim/device_folder.h"
#include "platform/sim/kernel/registry_text.h"
#include "tests/support/device_test.h"

namespace {

constexpr const char* kAnswers = R"(
registry: create a key again, in other case = 0 disposition 2
registry: open a path with a leading backslash = 0
registry: open a path with a doubled backslash = 0
registry: open a missing key = 2
registry: open without a path = 0
registry: the last error after a failed open = 2 last error 2
registry: set null data of 0 and of 4 bytes = 0 87
registry: query in other case = 0 bytes 8
registry: query into 6 of 8 bytes = 234 bytes 8
registry: query the size alone = 0 bytes 8
registry: query a missing value = 2 bytes 64
registry: query the unnamed value = 2 bytes 64
registry: query without a size = 87
registry: size of a text set without terminator = 0 bytes 6
registry: order of values = 0 zText units 5 0 aNumber units 7 259
registry: order of keys = 0 zebra 0 ant 259
registry: enumerate names without room for their ends = value 234 key 234
registry: delete a key with subkeys = 0 left 0
registry: delete a key that is open = 5
registry: write through query access = 0
registry: delete a value twice = 0 2
registry: flush = 0
registry: 14 levels below two = 0
registry: 15 levels below two = 87
file: open a missing one = error 2
file: open one in a missing folder = error 2
file: create one in a missing folder = 0 error 3
file: attributes = ffffffff error 2 folder 10
driver: open a missing one = error 55
mutex: create twice = error 0 error 183 owned 0
mutex: release without owning = 0 error 288
mutex: take twice, release three times = 0 0 1 1 0
mutex: its owner ends = 128 then 0
event: wait, set, wait twice, pulse, wait = 258 set 1 0 258 pulse 1 258
event: modify with 9 = 0
names: a mutex with the name of an event = 1 error 0
module: load a missing one = 0 error 126
module: load by two spellings = same 1
module: load the same file name from a folder without it = same 1
module: find a missing entry = 0 error 127
text: _vsnprintf of 8-bit and wide text = 6 'ab cd|'
text: _vsnprintf of a text that just fits = 8 '12345678.'
text: _vsnprintf of a text that does not fit = -1 '12345678.'
text: _vsnprintf of a padded number = 8 '0000ABCD.'
text: conversion of other letters = 2 61 e9 3 3f
system: platform type = 1 some 1 short 0 error 122
system: OEM information = 1 some 1 short 0 error 122
sound: play a missing file = 0
sound: stop where none plays = 1
LED: set one that is not there = 0
LED: ask for one that is not there = 0
cryptography: a missing key set = 0 error 80090016
)";

TEST(Conformance, SimulatedDeviceAnswersAsItIsMeantTo) {
  sim::Device device;
  sim::LoadDevice(device, PROJECT_DIR "/devices/rm21");
  device.registry().Create("HKEY_CURRENT_USER\\Software");
  const std::string registry = sim::ExportRegistryText(device.registry());
  std::string answers = "\n";
  {
    sim::Process process(device, "palcheck.exe");
    process.Run([&answers] {
      conformance::ForEachRow([&answers](const conformance::Row& row) {
        conformance::Answer answer;
        row.ask(answer);
        answers += fmt::format("{} = {}\n", row.name, answer.text());
      });
    });
  }
  EXPECT_EQ(answers, kAnswers);
  EXPECT_EQ(sim::ExportRegistryText(device.registry()), registry);
  // Some rows ask what a mistake is answered: it is recorded as one.
  EXPECT_FALSE(device.TakeMisuse().empty());
}

}  // namespace
